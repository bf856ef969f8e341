#include "platform/memory/MemoryShell.h"

#include "platform/common/KnownFolders.h"

namespace tc {

MemoryShell::MemoryShell() {
  const String profile = kDefaultProfile;
  const String roaming = profile + u"\\AppData\\Roaming";
  const String local = profile + u"\\AppData\\Local";
  const String startMenu = roaming + u"\\Microsoft\\Windows\\Start Menu";
  folders_ = {
      {kCSIDL_DESKTOP, profile + u"\\Desktop"},
      {kCSIDL_PROGRAMS, startMenu + u"\\Programs"},
      {kCSIDL_PERSONAL, profile + u"\\Documents"},
      {kCSIDL_FAVORITES, profile + u"\\Favorites"},
      {kCSIDL_RECENT, roaming + u"\\Microsoft\\Windows\\Recent"},
      {kCSIDL_STARTMENU, startMenu},
      {kCSIDL_FONTS, u"C:\\Windows\\Fonts"},
      {kCSIDL_TEMPLATES, roaming + u"\\Microsoft\\Windows\\Templates"},
      {kCSIDL_APPDATA, roaming},
      {kCSIDL_LOCAL_APPDATA, local},
      {kCSIDL_INTERNET_CACHE, local + u"\\Microsoft\\Windows\\Temporary Internet Files"},
      {kCSIDL_COOKIES, roaming + u"\\Microsoft\\Windows\\Cookies"},
      {kCSIDL_HISTORY, local + u"\\Microsoft\\Windows\\History"},
      {kCSIDL_WINDOWS, u"C:\\Windows"},
      {kCSIDL_SYSTEM, u"C:\\Windows\\system32"},
      {kCSIDL_PROGRAM_FILES, u"C:\\Program Files"},
      {kCSIDL_PROFILE, profile},
      {kCSIDL_SYSTEMX86, u"C:\\Windows\\SysWOW64"},
      {kCSIDL_PROGRAM_FILESX86, u"C:\\Program Files (x86)"},
  };
}

uint32_t MemoryShell::GetSpecialFolder(int csidl, String& path) {
  auto it = folders_.find(csidl);
  if (it == folders_.end()) {
    path.clear();
    return ERROR_FILE_NOT_FOUND;
  }
  path = it->second;
  return ERROR_SUCCESS;
}

uint32_t MemoryShell::GetKnownFolder(const String& folderId, String& path) {
  return KnownFolderFromSpecialFolders(*this, folderId, path);
}

void MemoryShell::ChangeNotify(int32_t eventId, uint32_t flags, const String& path) {
  notifications_.push_back({eventId, flags, path});
}

void MemoryShell::SetFolder(int csidl, const String& path) { folders_[csidl] = path; }

void MemoryShell::RemoveFolder(int csidl) { folders_.erase(csidl); }

}  // namespace tc
