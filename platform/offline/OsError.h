// The offline backend's one translation from POSIX errno to Windows error codes.
#pragma once
#include <cstdint>

namespace tc {

inline constexpr uint32_t kErrorNotSameDevice = 17;  // ERROR_NOT_SAME_DEVICE
inline constexpr uint32_t kErrorGenFailure = 31;     // ERROR_GEN_FAILURE

uint32_t WinErrorFromErrno(int err);

}  // namespace tc
