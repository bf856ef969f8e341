// Plug-in identity, the global registry, status switching, sorting and progress reporting.
#include <gtest/gtest.h>

#include "EngineFixture.h"
#include "engine/TC_Common.h"

namespace tc {
namespace {

class TraceModelTest : public EngineFixture {};

TEST_F(TraceModelTest, IdIsClassNameWithoutPrefixAndLookupIsCaseSensitive) {
  TestPlugin abc(u"TTCPAbc");
  TTCPlugin* found = nullptr;
  EXPECT_EQ(abc.ID, u"Abc");
  EXPECT_TRUE(GetPluginByID(u"Abc", found));
  EXPECT_EQ(found, &abc);
  EXPECT_FALSE(GetPluginByID(u"abc", found));
  EXPECT_EQ(found, nullptr);
}

TEST_F(TraceModelTest, SetPluginStatusTouchesSortOrderOnlyForNonNegativeOrders) {
  TestPlugin p(u"TTCPStatus");
  p.SortOrder = 7;
  p.Active = false;
  SetPluginStatus(u"Status", true, -1);
  EXPECT_TRUE(p.Active);
  EXPECT_EQ(p.SortOrder, 7);
  SetPluginStatus(u"Status", false, 0);
  EXPECT_FALSE(p.Active);
  EXPECT_EQ(p.SortOrder, 0);
  SetPluginStatus(u"Unknown", true, 3);  // ignored silently
  EXPECT_FALSE(p.Active);
}

TEST_F(TraceModelTest, NotCleanedRecordsAreNeverMerged) {
  TestPlugin p(u"TTCPKeep");
  p.Caption = u"Kekse";
  Plugins->AddNotCleanedTrace(&p, 3);
  Plugins->AddNotCleanedTrace(&p, 5);
  ASSERT_EQ(Plugins->NotCleanedTraces.size(), 2u);
  EXPECT_EQ(Plugins->CountNotCleanedTraces(&p), 3);
  EXPECT_EQ(Plugins->NotCleanedTraces[1].PluginCaption, u"Kekse");
  TestPlugin other(u"TTCPOther");
  EXPECT_EQ(Plugins->CountNotCleanedTraces(&other), 0);
}

TEST_F(TraceModelTest, SortsByTheirKeys) {
  struct Case {
    const char* name;
    int orderA, orderB;
    const char16_t *sectionA, *sectionB, *appA, *appB, *captionA, *captionB;
    bool sortPutsAFirst;     // Sort: caption compared ordinally
    bool appSortPutsAFirst;  // SortAppCaption: caption compared with the locale
  } cases[] = {
      {"order first", 1, 2, u"Z", u"A", u"Z", u"A", u"z", u"a", true, true},
      {"section second", 0, 0, u"Browser", u"Büroprogramme", u"Z", u"A", u"a", u"a", true, false},
      {"umlaut caption", 0, 0, u"S", u"S", u"App", u"App", u"Äpfel", u"Birnen", false, true},
      {"case-only caption", 0, 0, u"S", u"S", u"App", u"App", u"B", u"c", true, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TestPlugin b(u"TTCPB"), a(u"TTCPA");  // b first, so a stable order would keep b first
    a.SortOrder = c.orderA, b.SortOrder = c.orderB;
    a.Section = c.sectionA, b.Section = c.sectionB;
    a.AppCaption = c.appA, b.AppCaption = c.appB;
    a.Caption = c.captionA, b.Caption = c.captionB;
    Plugins->Sort();
    EXPECT_EQ(Plugins->IndexOf(&a) < Plugins->IndexOf(&b), c.sortPutsAFirst) << "Sort";
    Plugins->SortAppCaption();
    EXPECT_EQ(Plugins->IndexOf(&a) < Plugins->IndexOf(&b), c.appSortPutsAFirst) << "SortAppCaption";
  }
}

TEST_F(TraceModelTest, ProgressReportersRoundHalfToEvenAndHonourStop) {
  TestPlugin p(u"TTCPProgress");
  std::vector<int> promilles;
  p.OnScanProgress = [&](TTCPlugin*, int pm, const String&, bool) { promilles.push_back(pm); };
  p.OnCleanProgress = [&](TTCPlugin*, int pm, const String&, const String&, bool) {
    promilles.push_back(pm);
  };
  p.ProgressFactor = 2.5;
  EXPECT_TRUE(p.ShowScanItem(u"x", false));  // 1 * 2.5 -> 2
  p.ProgressFactor = 1.75;
  EXPECT_TRUE(p.ShowScanItem(u"x", false));  // 2 * 1.75 = 3.5 -> 4
  p.CleanPosition = 5;
  p.ProgressFactor = 0.5;
  EXPECT_TRUE(p.ShowCleanItem(u"a", u"b", true));  // 2.5 -> 2, position untouched
  EXPECT_EQ(p.CleanPosition, 5);
  EXPECT_EQ(promilles, (std::vector<int>{2, 4, 2}));

  StopWorking = true;
  EXPECT_FALSE(p.ShowScanItem(u"x", false));
  EXPECT_FALSE(p.ShowCleanItem(u"a", u"b", false));
  EXPECT_EQ(p.ScanPosition, 2);
  EXPECT_EQ(promilles.size(), 3u);
}

}  // namespace
}  // namespace tc
