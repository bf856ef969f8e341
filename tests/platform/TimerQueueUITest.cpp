#include "platform/common/TimerQueueUI.h"

#include <gtest/gtest.h>

#include "platform/memory/ManualClock.h"

namespace tc {
namespace {

TEST(TimerQueueUITest, TimersFireOnlyFromTheMessageLoopWhenDue) {
  auto clock = std::make_shared<ManualClock>();
  TimerQueueUI ui(clock);
  std::vector<std::string> fired;
  uint32_t slow = ui.StartTimer(2000, [&] { fired.push_back("slow"); });
  ui.StartTimer(500, [&] { fired.push_back("fast"); });

  clock->Advance(3000);
  EXPECT_TRUE(fired.empty());  // time alone fires nothing
  ui.ProcessMessages();
  EXPECT_EQ((std::vector<std::string>{"slow", "fast"}), fired);  // once each, start order
  ui.ProcessMessages();
  EXPECT_EQ(2u, fired.size());  // the interval restarts when a timer fires

  clock->Advance(500);
  ui.KillTimer(slow);
  ui.KillTimer(999);
  ui.ProcessMessages();
  EXPECT_EQ((std::vector<std::string>{"slow", "fast", "fast"}), fired);
}

TEST(TimerQueueUITest, HandlersMayKillTimersAndTheHookRunsFirst) {
  auto clock = std::make_shared<ManualClock>();
  TimerQueueUI ui(clock);
  int once = 0, other = 0;
  uint32_t second = 0;
  uint32_t first = 0;
  first = ui.StartTimer(100, [&] {
    ++once;
    ui.KillTimer(first);
    ui.KillTimer(second);
  });
  second = ui.StartTimer(100, [&] { ++other; });
  ui.SetMessageHook([&] { clock->Advance(100); });  // time passes while messages run
  ui.ProcessMessages();
  ui.ProcessMessages();
  EXPECT_EQ(1, once);
  EXPECT_EQ(0, other);
  EXPECT_EQ(0u, ui.ActiveTimers());
  EXPECT_EQ(2u, ui.ProcessCount());
}

}  // namespace
}  // namespace tc
