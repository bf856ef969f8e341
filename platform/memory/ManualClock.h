// A clock that moves only when a test advances it.
#pragma once
#include "platform/Clock.h"

namespace tc {

class ManualClock : public IClock {
 public:
  // 2010-01-01 00:00 UTC as FILETIME.
  static constexpr int64_t kDefaultNow = 129067776000000000LL;

  explicit ManualClock(int64_t now = kDefaultNow) : now_(now) {}

  uint64_t TickCount() override { return tick_; }
  int64_t Now() override { return now_; }

  // Moves both the tick count and the wall clock forward.
  void Advance(uint64_t milliseconds) {
    tick_ += milliseconds;
    now_ += static_cast<int64_t>(milliseconds) * 10000;
  }
  // Sets the wall clock only; the tick count never goes back.
  void SetNow(int64_t fileTime) { now_ = fileTime; }

 private:
  uint64_t tick_ = 100000;
  int64_t now_;
};

}  // namespace tc
