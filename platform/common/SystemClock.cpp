#include "platform/common/SystemClock.h"

#include <chrono>

namespace tc {

namespace {
// FILETIME of 1970-01-01 00:00 UTC.
constexpr int64_t kUnixEpochAsFileTime = 116444736000000000LL;
}  // namespace

uint64_t SystemClock::TickCount() {
  using namespace std::chrono;
  return static_cast<uint64_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

int64_t SystemClock::Now() {
  using namespace std::chrono;
  auto since = duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
  return kUnixEpochAsFileTime + static_cast<int64_t>(since) * 10;
}

}  // namespace tc
