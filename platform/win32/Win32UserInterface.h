// The message loop, thread timers and message boxes of the calling (user-interface) thread.
#pragma once
#include <map>

#include "platform/UserInterface.h"

namespace tc {

// Timers are thread timers without a window: their WM_TIMER messages are picked out of the
// queue by ProcessMessages, which is the only place their handlers run.
class Win32UserInterface : public IUserInterface {
 public:
  ~Win32UserInterface() override;
  void ProcessMessages() override;
  uint32_t StartTimer(uint32_t intervalMs, std::function<void()> onTimer) override;
  void KillTimer(uint32_t id) override;
  int ShowMessage(const String& text, const String& caption, uint32_t flags) override;

 private:
  std::map<uintptr_t, std::function<void()>> timers_;
};

}  // namespace tc
