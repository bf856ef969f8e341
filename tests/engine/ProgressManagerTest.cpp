// The weighted progress manager.
#include <gtest/gtest.h>

#include "EngineFixture.h"
#include "engine/TC_Common.h"

namespace tc {
namespace {

class ProgressManagerTest : public EngineFixture {};

struct ItemSpec {
  int count, weight, progress;
};

struct TotalCase {
  std::vector<ItemSpec> items;
  int totalProgress;
  int doneItems;
};

TEST_F(ProgressManagerTest, TotalProgressAndDoneItems) {
  const TotalCase cases[] = {
      {{}, 0, 0},
      {{{5, 0, 1000}, {3, 0, 500}}, 0, 7},  // only zero weights: no progress
      {{{1, 1, 1000}, {1, 3, 0}}, 250, 1},
      {{{10, 1000, 500}}, 500, 5},
      {{{3, 1, 500}}, 0, 2},  // 0.5 weight share rounds to 0; 1.5 done items round to 2
      {{{5, 1, 500}}, 0, 2},  // 2.5 done items round to even
  };
  for (const auto& c : cases) {
    TProgressManager pm;
    for (size_t i = 0; i < c.items.size(); ++i) {
      String name = u"item" + String(1, u'a' + i);
      pm.AddItem(name, c.items[i].count, c.items[i].weight);
      pm.SetProgress(name, c.items[i].progress);
    }
    EXPECT_EQ(pm.TotalProgress(), c.totalProgress);
    EXPECT_EQ(pm.DoneItems(), c.doneItems);
  }
}

TEST_F(ProgressManagerTest, ClearKeepsTotalItemsAndRepeatedNamesKeepCounting) {
  TProgressManager pm;
  pm.AddItem(u"a", 5, 1);
  pm.Clear();
  pm.AddItem(u"b", 2, 1);
  EXPECT_EQ(pm.TotalItems(), 7);

  TProgressManager twice;
  twice.AddItem(u"x", 4, 1);
  twice.AddItem(u"x", 6, 1);
  twice.SetProgress(u"x", 1000);   // reaches the newer record only
  twice.SetProgress(u"nope", 1000);  // unknown: nothing changes
  EXPECT_EQ(twice.DoneItems(), 6);
  EXPECT_EQ(twice.TotalProgress(), 500);
}

}  // namespace
}  // namespace tc
