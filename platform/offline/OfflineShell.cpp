#include "platform/offline/OfflineShell.h"

#include "platform/common/KnownFolders.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

constexpr char16_t kUserFolders[] =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr char16_t kFolders[] =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

struct FolderEntry {
  int csidl;
  const char16_t* valueName;
  bool machine;
  const char16_t* vista;  // default for the Vista-and-later layout
  const char16_t* xp;     // default for the Windows XP layout
};

const FolderEntry kEntries[] = {
    {0x00, u"Desktop", false, u"%USERPROFILE%\\Desktop", u"%USERPROFILE%\\Desktop"},
    {0x10, u"Desktop", false, u"%USERPROFILE%\\Desktop", u"%USERPROFILE%\\Desktop"},
    {0x02, u"Programs", false, u"%APPDATA%\\Microsoft\\Windows\\Start Menu\\Programs",
     u"%USERPROFILE%\\Start Menu\\Programs"},
    {0x05, u"Personal", false, u"%USERPROFILE%\\Documents", u"%USERPROFILE%\\My Documents"},
    {0x06, u"Favorites", false, u"%USERPROFILE%\\Favorites", u"%USERPROFILE%\\Favorites"},
    {0x07, u"Startup", false, u"%APPDATA%\\Microsoft\\Windows\\Start Menu\\Programs\\Startup",
     u"%USERPROFILE%\\Start Menu\\Programs\\Startup"},
    {0x08, u"Recent", false, u"%APPDATA%\\Microsoft\\Windows\\Recent", u"%USERPROFILE%\\Recent"},
    {0x09, u"SendTo", false, u"%APPDATA%\\Microsoft\\Windows\\SendTo", u"%USERPROFILE%\\SendTo"},
    {0x0b, u"Start Menu", false, u"%APPDATA%\\Microsoft\\Windows\\Start Menu",
     u"%USERPROFILE%\\Start Menu"},
    {0x0d, u"My Music", false, u"%USERPROFILE%\\Music", u"%USERPROFILE%\\My Documents\\My Music"},
    {0x0e, u"My Video", false, u"%USERPROFILE%\\Videos",
     u"%USERPROFILE%\\My Documents\\My Videos"},
    {0x13, u"NetHood", false, u"%APPDATA%\\Microsoft\\Windows\\Network Shortcuts",
     u"%USERPROFILE%\\NetHood"},
    {0x15, u"Templates", false, u"%APPDATA%\\Microsoft\\Windows\\Templates",
     u"%USERPROFILE%\\Templates"},
    {0x1a, u"AppData", false, u"%USERPROFILE%\\AppData\\Roaming",
     u"%USERPROFILE%\\Application Data"},
    {0x1b, u"PrintHood", false, u"%APPDATA%\\Microsoft\\Windows\\Printer Shortcuts",
     u"%USERPROFILE%\\PrintHood"},
    {0x1c, u"Local AppData", false, u"%USERPROFILE%\\AppData\\Local",
     u"%USERPROFILE%\\Local Settings\\Application Data"},
    {0x20, u"Cache", false, u"%LOCALAPPDATA%\\Microsoft\\Windows\\Temporary Internet Files",
     u"%USERPROFILE%\\Local Settings\\Temporary Internet Files"},
    {0x21, u"Cookies", false, u"%APPDATA%\\Microsoft\\Windows\\Cookies", u"%USERPROFILE%\\Cookies"},
    {0x22, u"History", false, u"%LOCALAPPDATA%\\Microsoft\\Windows\\History",
     u"%USERPROFILE%\\Local Settings\\History"},
    {0x27, u"My Pictures", false, u"%USERPROFILE%\\Pictures",
     u"%USERPROFILE%\\My Documents\\My Pictures"},
    {0x14, u"Fonts", false, u"%SystemRoot%\\Fonts", u"%SystemRoot%\\Fonts"},
    {0x16, u"Common Start Menu", true, u"%ProgramData%\\Microsoft\\Windows\\Start Menu",
     u"%ALLUSERSPROFILE%\\Start Menu"},
    {0x17, u"Common Programs", true, u"%ProgramData%\\Microsoft\\Windows\\Start Menu\\Programs",
     u"%ALLUSERSPROFILE%\\Start Menu\\Programs"},
    {0x18, u"Common Startup", true,
     u"%ProgramData%\\Microsoft\\Windows\\Start Menu\\Programs\\Startup",
     u"%ALLUSERSPROFILE%\\Start Menu\\Programs\\Startup"},
    {0x19, u"Common Desktop", true, u"%PUBLIC%\\Desktop", u"%ALLUSERSPROFILE%\\Desktop"},
    {0x1f, u"Common Favorites", true, u"%PUBLIC%\\Favorites", u"%ALLUSERSPROFILE%\\Favorites"},
    {0x23, u"Common AppData", true, u"%ProgramData%", u"%ALLUSERSPROFILE%\\Application Data"},
    {0x2e, u"Common Documents", true, u"%PUBLIC%\\Documents", u"%ALLUSERSPROFILE%\\Documents"},
};

String RegString(IRegistry& reg, HKEY root, const String& key, const String& name) {
  RegValue v;
  if (reg.QueryValue(root, key, name, v, RegView::Default) != ERROR_SUCCESS) return String();
  if (v.Type != REG_SZ && v.Type != REG_EXPAND_SZ) return String();
  String s = FromUtf16LE(v.Data.data(), v.Data.size());
  size_t nul = s.find(u'\0');
  if (nul != String::npos) s.resize(nul);
  return s;
}

String WithoutTrailingDelimiter(String s) {
  while (s.size() > 3 && s.back() == u'\\') s.pop_back();
  return s;
}

}  // namespace

String OfflineShell::ProgramFiles() {
  String dir = RegString(*registry_, kHKEY_LOCAL_MACHINE,
                         u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion", u"ProgramFilesDir");
  return dir.empty() ? String(u"C:\\Program Files") : WithoutTrailingDelimiter(dir);
}

String OfflineShell::ProgramFilesX86() {
  String dir = RegString(*registry_, kHKEY_LOCAL_MACHINE,
                         u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion", u"ProgramFilesDir (x86)");
  return dir.empty() ? String(u"C:\\Program Files (x86)") : WithoutTrailingDelimiter(dir);
}

String OfflineShell::Variable(const String& name) {
  String n = UpperCase(name);
  const String& profile = profile_.ProfilePath;
  String drive = profile.substr(0, 2);
  if (n == u"USERPROFILE") return profile;
  if (n == u"SYSTEMROOT" || n == u"WINDIR") return profile_.WindowsDir;
  if (n == u"SYSTEMDRIVE" || n == u"HOMEDRIVE") return drive;
  if (n == u"HOMEPATH") return profile.substr(2);
  if (n == u"USERNAME") return profile_.UserName;
  if (n == u"PROGRAMFILES") return ProgramFiles();
  if (n == u"APPDATA") return EntryFolder(0x1a);
  if (n == u"LOCALAPPDATA") return EntryFolder(0x1c);
  if (n == u"TEMP" || n == u"TMP")
    return Expand(profile_.VistaLayout ? u"%LOCALAPPDATA%\\Temp"
                                       : u"%USERPROFILE%\\Local Settings\\Temp");
  if (profile_.VistaLayout) {
    if (n == u"ALLUSERSPROFILE" || n == u"PROGRAMDATA") return drive + u"\\ProgramData";
    if (n == u"PUBLIC") return drive + u"\\Users\\Public";
  } else if (n == u"ALLUSERSPROFILE") {
    return drive + u"\\Documents and Settings\\All Users";
  }
  return String();
}

String OfflineShell::Expand(const String& text) {
  String out;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t open = text.find(u'%', pos);
    size_t close = open == String::npos ? String::npos : text.find(u'%', open + 1);
    if (close == String::npos) {
      out += text.substr(pos);
      break;
    }
    out += text.substr(pos, open - pos);
    String value = Variable(text.substr(open + 1, close - open - 1));
    if (value.empty()) {
      out += text.substr(open, close - open);  // the closing '%' may open the next name
      pos = close;
    } else {
      out += value;
      pos = close + 1;
    }
  }
  return out;
}

String OfflineShell::Folder(const char16_t* valueName, bool machine, const char16_t* vista,
                            const char16_t* xp) {
  // The same key path serves both roots: HKLM\SOFTWARE\Microsoft and HKCU\Software\Microsoft.
  HKEY root = machine ? kHKEY_LOCAL_MACHINE : kHKEY_CURRENT_USER;
  String path = RegString(*registry_, root, kUserFolders, valueName);
  if (path.empty()) path = RegString(*registry_, root, kFolders, valueName);
  if (path.empty()) path = profile_.VistaLayout ? vista : xp;
  // AppData written in terms of itself would never end.
  if (SameText(valueName, u"AppData") || SameText(valueName, u"Local AppData")) {
    String own = SameText(valueName, u"AppData") ? u"%APPDATA%" : u"%LOCALAPPDATA%";
    if (UpperCase(path).find(UpperCase(own)) != String::npos)
      path = profile_.VistaLayout ? vista : xp;
  }
  return WithoutTrailingDelimiter(Expand(path));
}

String OfflineShell::EntryFolder(int csidl) {
  for (const auto& e : kEntries)
    if (e.csidl == csidl) return Folder(e.valueName, e.machine, e.vista, e.xp);
  return String();
}

uint32_t OfflineShell::GetSpecialFolder(int csidl, String& path) {
  path.clear();
  switch (csidl) {
    case kCSIDL_WINDOWS: path = profile_.WindowsDir; break;
    case kCSIDL_SYSTEM: path = profile_.WindowsDir + u"\\System32"; break;
    case kCSIDL_PROGRAM_FILES: path = ProgramFiles(); break;
    case kCSIDL_PROFILE: path = profile_.ProfilePath; break;
    case kCSIDL_SYSTEMX86: path = profile_.WindowsDir + u"\\SysWOW64"; break;
    case kCSIDL_PROGRAM_FILESX86: path = ProgramFilesX86(); break;
    default: path = EntryFolder(csidl);
  }
  return path.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

uint32_t OfflineShell::GetKnownFolder(const String& folderId, String& path) {
  path = RegString(*registry_, kHKEY_CURRENT_USER, kUserFolders, folderId);
  if (path.empty()) path = RegString(*registry_, kHKEY_CURRENT_USER, kFolders, folderId);
  if (!path.empty()) {
    path = WithoutTrailingDelimiter(Expand(path));
    return ERROR_SUCCESS;
  }
  return KnownFolderFromSpecialFolders(*this, folderId, path);
}

}  // namespace tc
