// The host component and package start-up, end to end on the in-memory Windows.
#include <gtest/gtest.h>

#include <stdexcept>

#include "EngineFixture.h"
#include "engine/Orvitracecleaner.h"

namespace tc {
namespace {

class CountingPlugin : public TTCPlugin {
 public:
  explicit CountingPlugin(const String& name, bool throws = false)
      : TTCPlugin(name), throws_(throws) {}
  int scans = 0, fixes = 0;
  void Scan() override {
    ++scans;
    if (throws_) throw std::runtime_error("store unreadable");
  }
  void Fix() override { ++fixes; }

 private:
  bool throws_;
};

class HostComponentTest : public EngineFixture {};

TEST_F(HostComponentTest, StopBeforeTheFirstPluginScansNothing) {
  CountingPlugin a(u"TTCPA");
  TOrviMRU mru;
  StopWorking = true;
  mru.Scan();
  mru.Fix();
  EXPECT_EQ(a.scans, 0);
  EXPECT_EQ(a.fixes, 0);
}

TEST_F(HostComponentTest, InactivePluginsAreSkippedButGetTheHandlerAndARaisingOneIsReported) {
  CountingPlugin bad(u"TTCPBad", true), on(u"TTCPOn"), off(u"TTCPOff");
  off.Active = false;
  TOrviMRU mru;
  int calls = 0;
  mru.SetOnScanTraceFound([&](TTCPlugin*, TTraceSourceType, const TTraceSourceData&,
                              TTraceTargetType, TTraceFlags, const String&) { ++calls; });
  mru.Scan();
  mru.Fix();
  EXPECT_EQ(on.scans, 1);  // the run goes on after the one that raised
  EXPECT_EQ(on.fixes, 1);
  EXPECT_EQ(off.scans + off.fixes, 0);
  ASSERT_EQ(mru.Failures.size(), 1u);
  EXPECT_EQ(mru.Failures[0].PluginID, u"Bad");
  EXPECT_EQ(mru.Failures[0].Message, u"store unreadable");
  ASSERT_TRUE(off.OnScanTraceFound);
  off.OnScanTraceFound(&off, TST_Unknown, {}, TTT_Unknown, 0, {});
  EXPECT_EQ(calls, 1);

  CountingPlugin later(u"TTCPLater");  // created after the handler was handed out
  EXPECT_FALSE(later.OnScanTraceFound);
}

TEST_F(HostComponentTest, PackageLoadsOnceAndUnloadsCompletely) {
  ASSERT_NE(Plugins, nullptr);
  int created = Plugins->Count();
  Initialize();  // a second load starts no unit again
  EXPECT_EQ(Plugins->Count(), created);
  Finalize();
  EXPECT_NE(Plugins, nullptr);  // still loaded once
  Finalize();
  EXPECT_EQ(Plugins, nullptr);
  Initialize();  // the fixture's TearDown unloads this one
  EXPECT_EQ(Plugins->Count(), created);
  EXPECT_EQ(PackageUnits().front().Name, String(u"TC_BasePlugin"));
}

}  // namespace
}  // namespace tc
