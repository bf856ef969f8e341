// A user-interface timer: fires only while the message loop runs.
#pragma once
#include <functional>

namespace tc {

class TTimer {
 public:
  TTimer() = default;
  ~TTimer();
  TTimer(const TTimer&) = delete;
  TTimer& operator=(const TTimer&) = delete;

  unsigned Interval = 1000;
  std::function<void()> OnTimer;

  bool Enabled() const { return id_ != 0; }
  // Enabling (also an enabled timer) starts its interval afresh.
  void SetEnabled(bool enabled);

 private:
  unsigned id_ = 0;
};

}  // namespace tc
