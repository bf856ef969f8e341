// Shell folders and change notification.
#pragma once
#include "WinTypes.h"

namespace tc {

// Shell folder identifiers (CSIDL values) the system asks for.
inline constexpr int kCSIDL_DESKTOP = 0x0000;
inline constexpr int kCSIDL_PROGRAMS = 0x0002;
inline constexpr int kCSIDL_PERSONAL = 0x0005;
inline constexpr int kCSIDL_FAVORITES = 0x0006;
inline constexpr int kCSIDL_RECENT = 0x0008;
inline constexpr int kCSIDL_STARTMENU = 0x000b;
inline constexpr int kCSIDL_FONTS = 0x0014;
inline constexpr int kCSIDL_TEMPLATES = 0x0015;
inline constexpr int kCSIDL_APPDATA = 0x001a;
inline constexpr int kCSIDL_LOCAL_APPDATA = 0x001c;
inline constexpr int kCSIDL_INTERNET_CACHE = 0x0020;
inline constexpr int kCSIDL_COOKIES = 0x0021;
inline constexpr int kCSIDL_HISTORY = 0x0022;
inline constexpr int kCSIDL_WINDOWS = 0x0024;
inline constexpr int kCSIDL_SYSTEM = 0x0025;
inline constexpr int kCSIDL_PROGRAM_FILES = 0x0026;
inline constexpr int kCSIDL_PROFILE = 0x0028;
inline constexpr int kCSIDL_SYSTEMX86 = 0x0029;
inline constexpr int kCSIDL_PROGRAM_FILESX86 = 0x002a;

// Contract: GetSpecialFolder gives the folder's path without trailing delimiter, or
// ERROR_FILE_NOT_FOUND when the system has no such folder. ChangeNotify tells the shell
// that something changed (SHChangeNotify's event id, flags and path); it never fails.
// GetKnownFolder answers as GetSpecialFolder for a known-folder id written as
// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" (any case); an id it does not know is
// ERROR_FILE_NOT_FOUND.
class IShell {
 public:
  virtual ~IShell() = default;
  virtual uint32_t GetSpecialFolder(int csidl, String& path) = 0;
  virtual uint32_t GetKnownFolder(const String& folderId, String& path) = 0;
  virtual void ChangeNotify(int32_t eventId, uint32_t flags, const String& path) = 0;
};

}  // namespace tc
