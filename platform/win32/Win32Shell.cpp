#include "platform/win32/Win32Shell.h"

#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <shlobj.h>

namespace tc {

uint32_t Win32Shell::GetSpecialFolder(int csidl, String& path) {
  LPITEMIDLIST pidl = nullptr;
  if (FAILED(SHGetSpecialFolderLocation(nullptr, csidl, &pidl)) || !pidl)
    return ERROR_FILE_NOT_FOUND;
  wchar_t buffer[MAX_PATH + 1] = {};
  const BOOL isPath = SHGetPathFromIDListW(pidl, buffer);
  CoTaskMemFree(pidl);
  if (!isPath || !buffer[0]) return ERROR_FILE_NOT_FOUND;  // a virtual folder
  path = FromWide(buffer);
  while (path.size() > 3 && path.back() == kPathDelim) path.pop_back();
  return ERROR_SUCCESS;
}

void Win32Shell::ChangeNotify(int32_t eventId, uint32_t flags, const String& path) {
  // Only wide text is at hand: a path given as ANSI is passed as the wide one.
  if ((flags & SHCNF_TYPE) == SHCNF_PATHA) flags = (flags & ~SHCNF_TYPE) | SHCNF_PATHW;
  SHChangeNotify(static_cast<LONG>(eventId), flags, path.empty() ? nullptr : Wide(path),
                 nullptr);
}

}  // namespace tc
