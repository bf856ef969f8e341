#include "plugins/MozillaPreviews.h"

namespace tc {

namespace {
void Line(TTCPlugin& p, const String& file, TTraceTargetType target, const String& data) {
  p.PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, file}, target, 0, data);
}
}  // namespace

void PreviewCookies(TTCPlugin& Plugin, const TMozillaBrowser& Profile) {
  if (!Plugin.OnPreviewTrace) return;
  for (const auto& c : Profile.Cookies)
    Line(Plugin, Profile.ProfileFolder() + u"cookies.txt", TTT_Unknown,
         c.Domain + c.Path + u" " + c.Name);
}

void PreviewHistory(TTCPlugin& Plugin, const TMozillaBrowser& Profile) {
  if (!Plugin.OnPreviewTrace) return;
  for (const auto& h : Profile.History)
    Line(Plugin, Profile.ProfileFolder() + u"history.dat", TTT_URL, h.URL);
}

void PreviewFormData(TTCPlugin& Plugin, TMozillaBrowser& Profile) {
  if (!Plugin.OnPreviewTrace || Profile.FormData.empty()) return;
  const String file = Profile.ProfileFolder() + Profile.FormDataFileName();
  for (const auto& f : Profile.FormData) Line(Plugin, file, TTT_Unknown, f.Name + u": " + f.Value);
}

void PreviewSavedPasswords(TTCPlugin& Plugin, TMozillaBrowser& Profile) {
  if (!Plugin.OnPreviewTrace || Profile.SavedPasswords.empty()) return;
  const String file = Profile.ProfileFolder() + Profile.SavedPasswordsFileName();
  for (const auto& s : Profile.SavedPasswords) Line(Plugin, file, TTT_URL, s.Host);
}

int CountCacheFiles(TTCPlugin& Plugin, TMozillaBrowser& Profile) {
  if (!Plugin.OnPreviewTrace) return Profile.GetCacheFileCount();
  const String folder = Profile.GetCachefileDirectory();
  const std::vector<FileInfo> entries = Profile.GetCacheEntries();
  for (const auto& e : entries)
    Plugin.PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, folder + e.Name}, TTT_FileName,
                        0, {}, e.IsDirectory() ? -1 : static_cast<int64_t>(e.Size));
  return static_cast<int>(entries.size());
}

}  // namespace tc
