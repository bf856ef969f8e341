// Time, so tests can drive it by hand.
#pragma once
#include <cstdint>

namespace tc {

class IClock {
 public:
  virtual ~IClock() = default;
  // Milliseconds since an arbitrary start; never goes back.
  virtual uint64_t TickCount() = 0;
  // Current time as FILETIME (100 ns since 1601-01-01 UTC).
  virtual int64_t Now() = 0;
};

}  // namespace tc
