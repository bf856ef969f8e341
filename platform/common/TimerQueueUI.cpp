#include "platform/common/TimerQueueUI.h"

namespace tc {

TimerQueueUI::TimerQueueUI(std::shared_ptr<IClock> clock) : clock_(std::move(clock)) {}

void TimerQueueUI::ProcessMessages() {
  ++processed_;
  if (hook_) hook_();
  // Ids taken first: a handler may kill or start timers; new ones wait for the next call.
  std::vector<uint32_t> ids;
  for (const auto& [id, timer] : timers_) ids.push_back(id);
  for (uint32_t id : ids) {
    auto it = timers_.find(id);
    if (it == timers_.end()) continue;
    const uint64_t now = clock_->TickCount();
    if (now - it->second.Since < it->second.Interval) continue;
    it->second.Since = now;
    auto onTimer = it->second.OnTimer;  // the handler may kill its own timer
    if (onTimer) onTimer();
  }
}

uint32_t TimerQueueUI::StartTimer(uint32_t intervalMs, std::function<void()> onTimer) {
  uint32_t id = nextId_++;
  timers_[id] = Timer{intervalMs, clock_->TickCount(), std::move(onTimer)};
  return id;
}

void TimerQueueUI::KillTimer(uint32_t id) { timers_.erase(id); }

int TimerQueueUI::ShowMessage(const String& text, const String& caption, uint32_t flags) {
  messages_.push_back({text, caption, flags});
  return answer_;
}

}  // namespace tc
