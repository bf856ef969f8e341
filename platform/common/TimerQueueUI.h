// A user interface without windows: timers run from ProcessMessages on a given clock,
// message boxes answer with a preset button and are remembered.
#pragma once
#include <map>
#include <memory>

#include "platform/Clock.h"
#include "platform/UserInterface.h"

namespace tc {

struct ShownMessage {
  String Text;
  String Caption;
  uint32_t Flags = 0;
};

class TimerQueueUI : public IUserInterface {
 public:
  static constexpr int kIDOK = 1;

  explicit TimerQueueUI(std::shared_ptr<IClock> clock);

  // Runs the hook first (it may advance a hand-driven clock), then every timer that is due,
  // in the order they were started, each at most once.
  void ProcessMessages() override;
  uint32_t StartTimer(uint32_t intervalMs, std::function<void()> onTimer) override;
  void KillTimer(uint32_t id) override;
  int ShowMessage(const String& text, const String& caption, uint32_t flags) override;

  // Called at the start of every ProcessMessages (e.g. a test setting the stop flag).
  void SetMessageHook(std::function<void()> hook) { hook_ = std::move(hook); }
  // The button ShowMessage answers with (IDOK unless set).
  void SetMessageAnswer(int button) { answer_ = button; }
  const std::vector<ShownMessage>& Messages() const { return messages_; }
  // How often ProcessMessages ran.
  uint64_t ProcessCount() const { return processed_; }
  size_t ActiveTimers() const { return timers_.size(); }

 private:
  struct Timer {
    uint32_t Interval;
    uint64_t Since;
    std::function<void()> OnTimer;
  };
  std::shared_ptr<IClock> clock_;
  std::map<uint32_t, Timer> timers_;  // ids rise, so map order is start order
  uint32_t nextId_ = 1;
  std::function<void()> hook_;
  int answer_ = kIDOK;
  std::vector<ShownMessage> messages_;
  uint64_t processed_ = 0;
};

}  // namespace tc
