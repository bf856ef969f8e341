// The operating system's "last error" of the calling thread, as the shredder leaves it.
#pragma once
#include <cstdint>

namespace tc {
uint32_t GetLastOSError();
void SetLastOSError(uint32_t code);
}  // namespace tc
