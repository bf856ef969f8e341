// The one place where native Windows failure codes become the services' error codes.
#pragma once
#include <cstdint>

namespace tc {

// Maps a Win32 error (GetLastError, LSTATUS) or a COM HRESULT to the error code the
// services return. Codes the contracts name stay as they are; HRESULTs that wrap a Win32
// code are unwrapped; "not implemented" and "class not registered" read as not supported.
uint32_t MapNativeError(uint32_t native);

// MapNativeError(GetLastError()).
uint32_t LastNativeError();

}  // namespace tc
