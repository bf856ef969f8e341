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

uint32_t Win32Shell::GetKnownFolder(const String& folderId, String& path) {
  path.clear();
  String id = folderId;  // CLSIDFromString wants a writable, terminated string
  CLSID guid;
  if (FAILED(CLSIDFromString(Wide(id), &guid))) return ERROR_FILE_NOT_FOUND;
  PWSTR found = nullptr;
  const HRESULT hr = SHGetKnownFolderPath(guid, KF_FLAG_DONT_VERIFY, nullptr, &found);
  if (SUCCEEDED(hr) && found) path = FromWide(found);
  CoTaskMemFree(found);
  while (path.size() > 3 && path.back() == kPathDelim) path.pop_back();
  return path.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

void Win32Shell::ChangeNotify(int32_t eventId, uint32_t flags, const String& path) {
  // Only wide text is at hand: a path given as ANSI is passed as the wide one.
  if ((flags & SHCNF_TYPE) == SHCNF_PATHA) flags = (flags & ~SHCNF_TYPE) | SHCNF_PATHW;
  SHChangeNotify(static_cast<LONG>(eventId), flags, path.empty() ? nullptr : Wide(path),
                 nullptr);
}

}  // namespace tc
