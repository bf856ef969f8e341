// Progress on a terminal and the stop request (Ctrl+C).
#pragma once
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/UserInterface.h"

namespace tc::host {

// One line on standard error: the plug-in among all, its items and bytes so far and the time
// it has left. Does nothing when disabled.
class ProgressBar {
 public:
  explicit ProgressBar(bool enabled) : enabled_(enabled) {}
  ~ProgressBar() { Done(); }
  // A plug-in starts: the `index`-th of `count`; `items` and `bytes` it has to do (0: unknown).
  void StartPlugin(int index, int count, const std::string& label, int items, int64_t bytes);
  void Item();
  void Bytes(int64_t done);
  void Done();

 private:
  void Draw(bool force);
  bool enabled_;
  bool shown_ = false;
  int index_ = 0, count_ = 0, items_ = 0, itemsDone_ = 0;
  int64_t bytes_ = 0, bytesDone_ = 0;
  std::string label_;
  std::chrono::steady_clock::time_point started_, drawn_;
};

// Ctrl+C: the first sets StopWorking at once (every loop ends after its item), the second also
// StopAtOnce (the file being shredded is removed, nothing further starts), a third ends the
// process on the spot.
void CatchInterrupt();
int Interrupts();

// The platform's user interface, with a hook run every time the engine lets messages be
// processed (where the host names the plug-in that starts next).
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
