#include "browsers/ChromiumProfiles.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "platform/Platform.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

bool PlainFolderName(const String& name) {
  return !name.empty() && name != u"." && name != u".." &&
         name.find_first_of(u"\\/:") == String::npos;
}

// "Profile N" with N a number.
bool IsNumberedProfile(const String& name) {
  const String prefix = u"Profile ";
  if (name.size() <= prefix.size() || !SameText(name.substr(0, prefix.size()), prefix)) return false;
  return std::all_of(name.begin() + prefix.size(), name.end(),
                     [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

}  // namespace

const std::vector<TChromiumBrowser>& ChromiumBrowsers() {
  static const std::vector<TChromiumBrowser> browsers = {
      {u"Chrome", u"Google Chrome", u"chrome", false, u"Google\\Chrome\\User Data", false},
      {u"Edge", u"Microsoft Edge", u"edge", false, u"Microsoft\\Edge\\User Data", false},
      {u"Brave", u"Brave", u"brave", false, u"BraveSoftware\\Brave-Browser\\User Data", false},
      {u"Vivaldi", u"Vivaldi", u"vivaldi", false, u"Vivaldi\\User Data", false},
      {u"OperaStable", u"Opera", u"operastable", true, u"Opera Software\\Opera Stable", true},
  };
  return browsers;
}

String ChromiumUserData(const TChromiumBrowser& Browser) {
  String base = Browser.Roaming ? GetAppDataDir() : GetLocalAppDataDir();
  return base.empty() ? base : base + Browser.Folder + u"\\";
}

bool ParseLocalStateProfiles(std::string_view Json, TBrowserProfileList& Profiles) {
  using nlohmann::json;
  const json doc = json::parse(Json.begin(), Json.end(), nullptr, false);
  if (!doc.is_object()) return false;
  auto profile = doc.find("profile");
  if (profile == doc.end() || !profile->is_object()) return false;
  auto cache = profile->find("info_cache");
  if (cache == profile->end() || !cache->is_object()) return false;
  const size_t before = Profiles.size();
  for (auto it = cache->begin(); it != cache->end(); ++it) {
    const String folder = FromUtf8(it.key());
    if (!PlainFolderName(folder)) continue;
    String name = folder;
    if (it->is_object()) {
      auto n = it->find("name");
      if (n != it->end() && n->is_string()) name = FromUtf8(n->get<std::string>());
    }
    Profiles.push_back({name, folder});
  }
  return Profiles.size() > before;
}

TBrowserProfileList GetChromiumProfiles(const TChromiumBrowser& Browser) {
  TBrowserProfileList found;
  const String userData = ChromiumUserData(Browser);
  if (userData.empty() || !DirExists(userData)) return found;
  if (Browser.SingleProfile) {
    found.push_back({Browser.Caption, userData});
    return found;
  }
  TBrowserProfileList listed;
  Bytes state;
  if (FileContents::Read(*Services().Files, userData + u"Local State", state) == ERROR_SUCCESS)
    ParseLocalStateProfiles(std::string_view(reinterpret_cast<const char*>(state.data()), state.size()),
                            listed);
  StringList folders;
  EnumDirectories(userData, folders);
  std::sort(folders.begin(), folders.end(),
            [](const String& a, const String& b) { return CompareText(a, b) < 0; });
  for (const String& f : folders)
    if (SameText(f, u"Default") || IsNumberedProfile(f)) listed.push_back({f, f});
  for (const auto& p : listed) {
    const String path = userData + p.Path + u"\\";
    bool seen = false;
    for (const auto& f : found) seen = seen || SameText(f.Path, path);
    if (!seen && DirExists(path)) found.push_back({p.Name, path});
  }
  return found;
}

bool IsChromiumRunning(const TChromiumBrowser& Browser) {
  const String userData = ChromiumUserData(Browser);
  if (userData.empty()) return false;
  for (const char16_t* lock : {u"lockfile", u"SingletonLock"}) {
    FileInfo info;
    if (Services().Files->GetInfo(userData + lock, info) != ERROR_SUCCESS ||
        info.IsDirectory() || info.IsReparsePoint())
      continue;
    std::unique_ptr<IFileHandle> file;
    uint32_t rc = Services().Files->Open(userData + lock, OpenMode::ReadWrite, file);
    if (rc == ERROR_SHARING_VIOLATION || rc == ERROR_LOCK_VIOLATION) return true;
  }
  return false;
}

}  // namespace tc
