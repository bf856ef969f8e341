#include "platform/FaultInjection.h"

#include <gtest/gtest.h>

#include "platform/RegData.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {
namespace {

class FaultInjectionTest : public ::testing::Test {
 protected:
  uint32_t Write(const String& path, uint64_t offset, std::string_view data) {
    std::unique_ptr<IFileHandle> f;
    if (uint32_t rc = faults.Open(path, OpenMode::ReadWrite, f)) return rc;
    return f->Write(offset, data.data(), data.size());
  }

  MemoryWindows mem = MakeMemoryWindows();
  FaultyFileSystem& faults = *mem.FileFaults;
  const String file = u"C:\\data.bin";
};

TEST_F(FaultInjectionTest, TheNthWriteFailsOnceAndWritesNothing) {
  mem.Files->AddFile(file, "....");
  faults.FailNthWrite(2, ERROR_WRITE_FAULT);
  EXPECT_EQ(ERROR_SUCCESS, Write(file, 0, "a"));
  EXPECT_EQ(ERROR_WRITE_FAULT, Write(file, 1, "b"));
  EXPECT_EQ(ERROR_SUCCESS, Write(file, 2, "c"));
  EXPECT_EQ("a.c.", mem.Files->Contents(file));
}

TEST_F(FaultInjectionTest, AFullVolumeRefusesGrowthUntilSpaceIsFreed) {
  mem.Files->AddFile(file, "0123456789");
  mem.Files->AddFile(u"C:\\other.bin", "abcd");
  faults.SetFreeSpace(3);
  EXPECT_EQ(ERROR_SUCCESS, Write(file, 0, "overwrite"));  // no growth
  EXPECT_EQ(ERROR_DISK_FULL, Write(file, 9, "12345"));    // needs 4
  EXPECT_EQ("overwrite9", mem.Files->Contents(file));
  EXPECT_EQ(ERROR_SUCCESS, Write(file, 10, "xyz"));       // exactly the 3 left
  EXPECT_EQ(ERROR_DISK_FULL, Write(file, 13, "!"));
  ASSERT_EQ(ERROR_SUCCESS, faults.RemoveFile(u"C:\\other.bin"));  // 4 bytes back
  EXPECT_EQ(ERROR_SUCCESS, Write(file, 13, "!!!!"));
  std::unique_ptr<IFileHandle> f;
  ASSERT_EQ(ERROR_SUCCESS, faults.Open(file, OpenMode::ReadWrite, f));
  EXPECT_EQ(ERROR_DISK_FULL, f->SetSize(18));
  EXPECT_EQ(ERROR_SUCCESS, f->SetSize(2));
  EXPECT_EQ(ERROR_SUCCESS, f->SetSize(17));
}

TEST_F(FaultInjectionTest, LockedFilesStayReadable) {
  mem.Files->AddFile(file, "x");
  faults.LockFile(u"c:/DATA.BIN", ERROR_LOCK_VIOLATION);  // any spelling of the path
  std::unique_ptr<IFileHandle> f;
  EXPECT_EQ(ERROR_SUCCESS, faults.Open(file, OpenMode::Read, f));
  EXPECT_EQ(ERROR_LOCK_VIOLATION, faults.Rename(u"C:\\new.bin", file));  // onto it
  faults.UnlockFile(file);
  EXPECT_EQ(ERROR_SUCCESS, faults.RemoveFile(file));
}

TEST_F(FaultInjectionTest, RegistryWritesFailByCountOrByKey) {
  FaultyRegistry& reg = *mem.RegistryFaults;
  const String key = u"Software\\App";
  mem.Registry->PutString(kHKEY_CURRENT_USER, key + u"\\Deep", u"v", u"1");
  reg.FailNthWrite(2, ERROR_ACCESS_DENIED);
  EXPECT_EQ(ERROR_SUCCESS, reg.SetValue(kHKEY_CURRENT_USER, key, u"a", RegData::Sz(u"a"), RegView::Default));
  EXPECT_EQ(ERROR_ACCESS_DENIED, reg.DeleteValue(kHKEY_CURRENT_USER, key, u"a", RegView::Default));
  EXPECT_EQ(ERROR_SUCCESS, reg.DeleteValue(kHKEY_CURRENT_USER, key, u"a", RegView::Default));

  reg.LockKey(kHKEY_CURRENT_USER, u"SOFTWARE\\APP\\deep", ERROR_ACCESS_DENIED);
  EXPECT_EQ(ERROR_ACCESS_DENIED,
            reg.SetValue(kHKEY_CURRENT_USER, key + u"\\Deep", u"v", RegData::Sz(u"2"), RegView::Default));
  EXPECT_EQ(ERROR_ACCESS_DENIED, reg.DeleteKeyTree(kHKEY_CURRENT_USER, key, RegView::Default));
  EXPECT_EQ(ERROR_SUCCESS, reg.SetValue(kHKEY_CURRENT_USER, key, u"b", RegData::Sz(u"b"), RegView::Default));
  EXPECT_EQ(u"1", mem.Registry->GetString(kHKEY_CURRENT_USER, key + u"\\Deep", u"v"));
}

}  // namespace
}  // namespace tc
