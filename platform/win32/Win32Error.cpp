#include "platform/win32/Win32Error.h"

#include "platform/WinTypes.h"

#include <windows.h>

namespace tc {

uint32_t MapNativeError(uint32_t native) {
  if (native == 0) return ERROR_SUCCESS;
  if (native & 0x80000000u) {  // an HRESULT
    const HRESULT hr = static_cast<HRESULT>(native);
    if (HRESULT_FACILITY(hr) == FACILITY_WIN32) return MapNativeError(HRESULT_CODE(hr));
    switch (hr) {
      case E_OUTOFMEMORY:
        return ERROR_NOT_ENOUGH_MEMORY;
      case E_NOTIMPL:
      case REGDB_E_CLASSNOTREG:
      case CLASS_E_CLASSNOTAVAILABLE:
      case E_NOINTERFACE:
        return ERROR_NOT_SUPPORTED;
      case E_INVALIDARG:
      case E_POINTER:
        return ERROR_INVALID_PARAMETER;
      default:
        return ERROR_GEN_FAILURE;
    }
  }
  switch (native) {
    case ERROR_DIRECTORY:  // a file where a folder was expected
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return ERROR_PATH_NOT_FOUND;
    case ERROR_HANDLE_DISK_FULL:
      return ERROR_DISK_FULL;
    case ERROR_OUTOFMEMORY:
      return ERROR_NOT_ENOUGH_MEMORY;
    default:
      return native;
  }
}

uint32_t LastNativeError() {
  const DWORD e = GetLastError();
  // A failure that left no code behind still has to read as a failure.
  return e == 0 ? ERROR_GEN_FAILURE : MapNativeError(e);
}

}  // namespace tc
