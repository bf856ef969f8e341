// Progress on a terminal and the stop request (Ctrl+C).
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "platform/UserInterface.h"

namespace tc::host {

// A one-line bar on standard error; does nothing when disabled.
class ProgressBar {
 public:
  explicit ProgressBar(bool enabled) : enabled_(enabled) {}
  ~ProgressBar() { Done(); }
  void Show(int done, int total, const std::string& label);
  void Done();

 private:
  bool enabled_;
  bool shown_ = false;
};

// Ctrl+C asks the run to stop; the engine sees it as StopWorking at its next item.
void CatchInterrupt();
bool InterruptRequested();

// The platform's user interface, with a hook run every time the engine lets messages be
// processed (where the host updates its bar and passes Ctrl+C on as StopWorking).
class HookedUI : public IUserInterface {
 public:
  HookedUI(std::shared_ptr<IUserInterface> inner, std::function<void()> hook)
      : inner_(std::move(inner)), hook_(std::move(hook)) {}
  void ProcessMessages() override;
  uint32_t StartTimer(uint32_t ms, std::function<void()> onTimer) override {
    return inner_->StartTimer(ms, std::move(onTimer));
  }
  void KillTimer(uint32_t id) override { inner_->KillTimer(id); }
  int ShowMessage(const String& text, const String& caption, uint32_t flags) override {
    return inner_->ShowMessage(text, caption, flags);
  }

 private:
  std::shared_ptr<IUserInterface> inner_;
  std::function<void()> hook_;
};

}  // namespace tc::host
