// The host's user interface: message loop, timers, message boxes.
#pragma once
#include <functional>

#include "WinTypes.h"

namespace tc {

// Contract: timers fire only from ProcessMessages (they are user-interface timers), each
// at most once per call, when their interval has passed on the platform's clock since they
// were started or last fired. KillTimer on an unknown id does nothing.
class IUserInterface {
 public:
  virtual ~IUserInterface() = default;
  virtual void ProcessMessages() = 0;
  virtual uint32_t StartTimer(uint32_t intervalMs, std::function<void()> onTimer) = 0;
  virtual void KillTimer(uint32_t id) = 0;
  // Returns the button chosen (IDOK = 1, IDYES = 6, IDNO = 7, ...).
  virtual int ShowMessage(const String& text, const String& caption, uint32_t flags) = 0;
};

}  // namespace tc
