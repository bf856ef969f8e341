#include "platform/common/FolderRecycleBin.h"

#include <gtest/gtest.h>

#include "platform/memory/MemoryPlatform.h"

namespace tc {
namespace {

const String kSid = u"C:\\$Recycle.Bin\\S-1-5-21-1004336348-1177238915-682003330-1001";

class FolderRecycleBinTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto& f = *mem.Files;
    f.AddFile(kSid + u"\\$IAB12CD.txt", std::string(544, 'i'));
    f.AddFile(kSid + u"\\$RAB12CD.txt", std::string(100, 'r'));
    f.AddFile(kSid + u"\\$RFOLDER\\a.bin", std::string(10, 'a'), FILE_ATTRIBUTE_READONLY);
    f.AddFile(kSid + u"\\$RFOLDER\\sub\\b.bin", std::string(20, 'b'));
    f.AddFile(u"C:\\Outside\\big.bin", std::string(5000, 'x'));
    f.AddLink(kSid + u"\\$RFOLDER\\link", u"C:\\Outside");
    f.AddLink(kSid + u"\\$RLINKED", u"C:\\Outside");
    f.AddFile(kSid + u"\\$IORPHAN", "i");
    // An XP bin on a second fixed drive; a removable drive's bin is not looked at.
    f.AddDrive(u'D', kDriveFixed);
    f.AddFile(u"D:\\RECYCLER\\S-1-5-21-1\\INFO2", std::string(20, '\0'));
    f.AddFile(u"D:\\RECYCLER\\S-1-5-21-1\\desktop.ini", "x");
    f.AddFile(u"D:\\RECYCLER\\S-1-5-21-1\\Dc1.txt", std::string(7, 'd'));
    f.AddDrive(u'E', kDriveRemovable);
    f.AddFile(u"E:\\$Recycle.Bin\\S-1\\$RX.txt", "e");
  }

  MemoryWindows mem = MakeMemoryWindows();
};

TEST_F(FolderRecycleBinTest, CountsItemsAndTheirSizesWithoutFollowingLinks) {
  uint64_t items = 0, bytes = 0;
  ASSERT_EQ(ERROR_SUCCESS, mem.RecycleBin->Query(items, bytes));
  EXPECT_EQ(4u, items);  // $RAB12CD.txt, $RFOLDER, $RLINKED, Dc1.txt
  EXPECT_EQ(100u + 10u + 20u + 7u, bytes);
}

TEST_F(FolderRecycleBinTest, EmptyRemovesItemsWithTheirIndexButNeverLinkTargets) {
  ASSERT_EQ(ERROR_SUCCESS, mem.RecycleBin->Empty());
  EXPECT_EQ((StringList{u"desktop.ini"}), mem.Files->Names(kSid));
  EXPECT_EQ((StringList{u"desktop.ini"}), mem.Files->Names(u"D:\\RECYCLER\\S-1-5-21-1"));
  EXPECT_EQ(5000u, mem.Files->Contents(u"C:\\Outside\\big.bin").size());
  EXPECT_TRUE(mem.Files->Exists(u"E:\\$Recycle.Bin\\S-1\\$RX.txt"));
  uint64_t items = 1, bytes = 1;
  ASSERT_EQ(ERROR_SUCCESS, mem.RecycleBin->Query(items, bytes));
  EXPECT_EQ(0u, items);
  EXPECT_EQ(0u, bytes);
}

TEST_F(FolderRecycleBinTest, ALockedItemStaysWithItsIndexAndTheRestGoes) {
  mem.FileFaults->LockFile(kSid + u"\\$RAB12CD.txt", ERROR_SHARING_VIOLATION);
  EXPECT_EQ(ERROR_SHARING_VIOLATION, mem.RecycleBin->Empty());
  EXPECT_EQ((StringList{u"$IAB12CD.txt", u"$RAB12CD.txt", u"desktop.ini"}),
            mem.Files->Names(kSid));
  EXPECT_FALSE(mem.Files->Exists(u"D:\\RECYCLER\\S-1-5-21-1\\Dc1.txt"));
}

}  // namespace
}  // namespace tc
