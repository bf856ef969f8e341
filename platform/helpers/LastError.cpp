#include "platform/helpers/LastError.h"

namespace tc {
namespace {
thread_local uint32_t lastError = 0;
}
uint32_t GetLastOSError() { return lastError; }
void SetLastOSError(uint32_t code) { lastError = code; }
}  // namespace tc
