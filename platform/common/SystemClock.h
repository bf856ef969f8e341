// The machine's clocks.
#pragma once
#include "platform/Clock.h"

namespace tc {

class SystemClock : public IClock {
 public:
  uint64_t TickCount() override;
  int64_t Now() override;
};

}  // namespace tc
