#include "platform/common/PendingRenameRebootDeleter.h"

#include <gtest/gtest.h>

#include "platform/helpers/RegData.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {
namespace {

const String kKey = PendingRenameRebootDeleter::kKey;
const String kValue = PendingRenameRebootDeleter::kValue;

TEST(PendingRenameRebootDeleterTest, KeepsOtherProgramsEntriesAndListsOnlyDeletions) {
  MemoryWindows mem = MakeMemoryWindows();
  // An installer's rename (with replace marker) and an earlier deletion.
  Bytes data = RegData::JoinStrings(
      {u"\\??\\C:\\new.dll", u"!\\??\\C:\\Windows\\old.dll", u"\\??\\C:\\gone.tmp", u""});
  data.insert(data.end(), {0, 0});
  mem.Registry->Put(kHKEY_LOCAL_MACHINE, kKey, kValue, {REG_MULTI_SZ, data});

  ASSERT_EQ(ERROR_SUCCESS, mem.RebootDeleter->Schedule(u"C:\\Users\\Tester\\NTUSER.tmp"));
  StringList pending;
  ASSERT_EQ(ERROR_SUCCESS, mem.RebootDeleter->Pending(pending));
  EXPECT_EQ((StringList{u"C:\\gone.tmp", u"C:\\Users\\Tester\\NTUSER.tmp"}), pending);

  RegValue v;
  ASSERT_EQ(ERROR_SUCCESS,
            mem.Registry->QueryValue(kHKEY_LOCAL_MACHINE, kKey, kValue, v, RegView::Default));
  Bytes expected = RegData::JoinStrings({u"\\??\\C:\\new.dll", u"!\\??\\C:\\Windows\\old.dll",
                                         u"\\??\\C:\\gone.tmp", u"",
                                         u"\\??\\C:\\Users\\Tester\\NTUSER.tmp", u""});
  expected.insert(expected.end(), {0, 0});
  EXPECT_EQ(expected, v.Data);
}

TEST(PendingRenameRebootDeleterTest, NeverCreatesTheSessionManagerKey) {
  MemoryWindows mem = MakeMemoryWindows();
  mem.Registry->DeleteKeyTree(kHKEY_LOCAL_MACHINE, kKey, RegView::Default);
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, mem.RebootDeleter->Schedule(u"C:\\x"));
  EXPECT_FALSE(mem.Registry->HasKey(kHKEY_LOCAL_MACHINE, kKey));
  StringList pending;
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, mem.RebootDeleter->Pending(pending));
}

}  // namespace
}  // namespace tc
