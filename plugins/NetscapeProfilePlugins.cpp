#include "plugins/NetscapeProfilePlugins.h"

#include "engine/TC_Common.h"
#include "platform/helpers/LastError.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "plugins/MozillaPreviews.h"
#include "plugins/TCP_Firefox.h"

namespace tc {

TNetscapeProfilePlugin::TNetscapeProfilePlugin(const String& ClassName,
                                               const TNetscapeEdition& Edition,
                                               const String& Folder, const String& Name,
                                               const String& Caption, const String& Captions,
                                               const String& Description)
    : TTCPlugin(ClassName), Folder(Folder), ProfileName(Name) {
  Describe(rsTCPSection_Browser, Edition.AppCaption, 10000,
           Edition.ProfileCount > 1 ? Replace(Captions, u"%s", Name) : Caption, Description);
  Active = Edition.Installed;
}

TMozillaBrowser TNetscapeProfilePlugin::Profile() const {
  TMozillaBrowser b(Folder, MT_MozillaNetscape);
  b.ShredMethod = ShredMethod;
  b.ShredRecurrence = ShredRecurrence;
  return b;
}

void TNetscapeCachePlugin::Scan() {
  TTCPlugin::Scan();
  TMozillaBrowser b = Profile();
  IncTraceCount(CountCacheFiles(*this, b));
}

void TNetscapeCachePlugin::Clean() {
  TTCPlugin::Clean();
  StringList failed;
  if (Profile().DeleteCache(failed)) return;
  const uint32_t error = GetLastOSError();
  if (error != ERROR_SHARING_VIOLATION && error != ERROR_LOCK_VIOLATION) return;
  for (const auto& file : failed) DeleteFileOnReboot(file);
  RebootRequired = true;
}

TNetscapeCookiesPlugin::TNetscapeCookiesPlugin(const String& ClassName,
                                               const TNetscapeEdition& Edition,
                                               const String& Folder, const String& Name,
                                               const String& Caption, const String& Captions,
                                               const String& Description)
    : TNetscapeProfilePlugin(ClassName, Edition, Folder, Name, Caption, Captions, Description),
      keepListSection_(Edition.KeepListSection) {}

void TNetscapeCookiesPlugin::Scan() {
  TTCPlugin::Scan();
  Note.clear();
  TMozillaBrowser b = Profile();
  if (!b.EnumCookies() && !b.CookieError().empty())
    AddNote(*this, b.ProfileFolder() + u"cookies.txt: " + b.CookieError());
  if (!b.Cookies.empty()) AddNote(*this, u"a clean keeps every cookie");
  PreviewCookies(*this, b);
  IncTraceCount(static_cast<int>(b.Cookies.size()));
}

void TNetscapeCookiesPlugin::Clean() {
  TTCPlugin::Clean();
  TMozillaBrowser b = Profile();
  b.EnumCookies();
  for (const auto& group : b.CookieGroups) {
    if (GetProductRegSetting(keepListSection_, Folder + u"-" + group.Name, true, 0))
      for (size_t i : group.Entries) b.Cookies[i].Deleted = true;
  }
  // Kept by the keep-list or by design (a cookie in no group stays): reported, not failed.
  int kept = 0;
  for (const auto& c : b.Cookies) kept += c.Deleted ? 0 : 1;
  if (kept > 0 && Plugins) Plugins->AddNotCleanedTrace(this, kept);
  b.UpdateCookies();
}

void TNetscapeHistoryPlugin::Scan() {
  TTCPlugin::Scan();
  TMozillaBrowser b = Profile();
  b.EnumHistory();
  PreviewHistory(*this, b);
  IncTraceCount(static_cast<int>(b.History.size()));
}

void TNetscapeHistoryPlugin::Clean() {
  TTCPlugin::Clean();
  if (!RestartWhenLocked) {
    Profile().DeleteHistory();
  } else if (!Folder.empty() && !Profile().DeleteHistory() &&
             OrviFileExists(IncludeTrailingPathDelimiter(Folder) + u"history.dat")) {
    RebootRequired = true;  // the file waits for the next start
  }
}

void TNetscapeFormdataPlugin::Scan() {
  TTCPlugin::Scan();
  TMozillaBrowser b = Profile();
  b.EnumFormData();
  PreviewFormData(*this, b);
  IncTraceCount(static_cast<int>(b.FormData.size()));
}

void TNetscapeFormdataPlugin::Clean() {
  TTCPlugin::Clean();
  Profile().DeleteFormData();
}

void TNetscapePasswordsPlugin::Scan() {
  TTCPlugin::Scan();
  Note.clear();
  TMozillaBrowser b = Profile();
  if (!b.EnumSavedPasswords() && !b.PasswordError().empty())
    AddNote(*this, b.ProfileFolder() + b.SavedPasswordsFileName() + u": " + b.PasswordError());
  PreviewSavedPasswords(*this, b);
  IncTraceCount(static_cast<int>(b.SavedPasswords.size()));
}

void TNetscapePasswordsPlugin::Clean() {
  TTCPlugin::Clean();
  TMozillaBrowser b = Profile();
  b.EnumSavedPasswords();
  for (auto& e : b.SavedPasswords) e.Deleted = true;
  b.UpdateSavedPasswords();
}

}  // namespace tc
