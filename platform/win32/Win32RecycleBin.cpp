#include "platform/win32/Win32RecycleBin.h"

#include "platform/win32/Win32Error.h"

#include <windows.h>
#include <shellapi.h>

namespace tc {

uint32_t Win32RecycleBin::Query(uint64_t& items, uint64_t& bytes) {
  items = bytes = 0;
  SHQUERYRBINFO info{};
  info.cbSize = sizeof(info);
  const HRESULT hr = SHQueryRecycleBinW(nullptr, &info);  // no root: every drive
  if (FAILED(hr)) return MapNativeError(static_cast<uint32_t>(hr));
  items = static_cast<uint64_t>(info.i64NumItems);
  bytes = static_cast<uint64_t>(info.i64Size);
  return ERROR_SUCCESS;
}

uint32_t Win32RecycleBin::Empty() {
  const HRESULT hr = SHEmptyRecycleBinW(nullptr, nullptr,
                                        SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND);
  if (SUCCEEDED(hr)) return ERROR_SUCCESS;
  // Some systems answer a failure for a bin that was already empty.
  uint64_t items = 0, bytes = 0;
  if (Query(items, bytes) == ERROR_SUCCESS && items == 0) return ERROR_SUCCESS;
  return MapNativeError(static_cast<uint32_t>(hr));
}

}  // namespace tc
