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

TEST_F(HostComponentTest, InactivePluginsAreSkippedButGetTheHandler) {
  CountingPlugin on(u"TTCPOn"), off(u"TTCPOff");
  off.Active = false;
  TOrviMRU mru;
  int calls = 0;
  mru.SetOnScanTraceFound([&](TTCPlugin*, TTraceSourceType, const TTraceSourceData&,
                              TTraceTargetType, TTraceFlags, const String&) { ++calls; });
  mru.Scan();
  mru.Fix();
  EXPECT_EQ(on.scans, 1);
  EXPECT_EQ(on.fixes, 1);
  EXPECT_EQ(off.scans + off.fixes, 0);
  ASSERT_TRUE(off.OnScanTraceFound);
  off.OnScanTraceFound(&off, TST_Unknown, {}, TTT_Unknown, 0, {});
  EXPECT_EQ(calls, 1);

  CountingPlugin later(u"TTCPLater");  // created after the handler was handed out
  EXPECT_FALSE(later.OnScanTraceFound);
}

TEST_F(HostComponentTest, APluginThatRaisesIsReportedAndTheRunGoesOn) {
  CountingPlugin bad(u"TTCPBad", true), good(u"TTCPGood");
  TOrviMRU mru;
  mru.Scan();
  EXPECT_EQ(good.scans, 1);
  ASSERT_EQ(mru.Failures.size(), 1u);
  EXPECT_EQ(mru.Failures[0].PluginID, u"Bad");
  EXPECT_EQ(mru.Failures[0].Message, u"store unreadable");
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

// A small package of declarative plug-ins run through the host's whole cycle.
TEST_F(HostComponentTest, DeclarativePackageScansCleansAndFixes) {
  const String wordpad = u"Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\Wordpad\\Recent File List";
  const String runMru = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RunMRU";
  SetString(wordpad, u"File1", u"C:\\a.rtf");
  SetString(wordpad, u"File2", u"C:\\b.rtf");
  SetString(wordpad, u"Settings", u"keep");
  SetString(runMru, u"a", u"notepad\\1");
  SetString(runMru, u"b", u"cmd\\1");
  SetString(runMru, u"MRUList", u"ba");
  WriteFile(u"C:\\Temp\\Logs\\x.log", "log");

  auto* wp = new TestPlugin(u"TTCPTestWordPad");
  wp->AddTraceLocation(TLT_Registry_NumberedNames,
                       new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, wordpad, u"File", 0),
                       TTT_FileName, 6);
  auto* run = new TestPlugin(u"TTCPTestRunMRU");
  run->AddTraceLocation(TLT_Registry_MRUList, new TLD_Registry_MRUList(HKEY_CURRENT_USER, runMru, 0),
                        TTT_RunCMD, 6);
  auto* logs = new TestPlugin(u"TTCPLogs");
  logs->AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(u"C:\\Temp\\Logs\\", u"*.log", u"", 0),
                         TTT_Unknown, 0);
  auto* absent = new TestPlugin(u"TTCPAbsent");
  absent->AddTraceLocation(TLT_Registry_AllValues,
                           new TLD_Registry_AllValues(HKEY_CURRENT_USER, u"Software\\Nobody", 0), TTT_Unknown, 0);

  TOrviMRU mru;
  std::vector<FoundTrace> found;
  mru.SetOnScanTraceFound(Recorder(found));
  SetAllPluginStatus(false);
  for (const char16_t* id : {u"TestWordPad", u"TestRunMRU", u"Logs", u"Absent"}) SetPluginStatus(id, true, -1);
  mru.Scan();
  EXPECT_EQ(wp->TraceCount, 2);
  EXPECT_EQ(run->TraceCount, 2);
  EXPECT_EQ(logs->TraceCount, 1);
  EXPECT_FALSE(absent->Active);
  EXPECT_EQ(found.size(), 5u);

  for (TTCPlugin* p : {static_cast<TTCPlugin*>(wp), static_cast<TTCPlugin*>(run),
                       static_cast<TTCPlugin*>(logs)})
    EXPECT_TRUE(mru.CleanPlugin(*p, {}));
  SetString(wordpad, u"File7", u"C:\\new.rtf");  // written meanwhile: Fix renumbers it
  mru.Fix();
  mru.Scan();
  EXPECT_EQ(wp->TraceCount, 1);
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, wordpad, u"File1", u"", RO_None), u"C:\\new.rtf");
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, wordpad, u"Settings", u"", RO_None), u"keep");
  EXPECT_EQ(run->TraceCount, 0);
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, runMru, u"MRUList", u"?", RO_None), u"");
  EXPECT_EQ(logs->TraceCount, 0);
  EXPECT_TRUE(mru.Failures.empty());

  for (TTCPlugin* p : {static_cast<TTCPlugin*>(wp), static_cast<TTCPlugin*>(run),
                       static_cast<TTCPlugin*>(logs), static_cast<TTCPlugin*>(absent)})
    delete p;
  EXPECT_EQ(Plugins->IndexOf(wp), -1);
}

}  // namespace
}  // namespace tc
