#include "platform/memory/MemoryPlatform.h"

#include <gtest/gtest.h>

#include "platform/TextCodec.h"

namespace tc {
namespace {

// Every shell folder exists, and the services can be found again from the platform alone.
TEST(MemoryPlatformTest, ShellFoldersExistAndTheMachineIsFoundFromItsPlatform) {
  MemoryWindows mem = MakeMemoryWindows();
  for (const auto& [csidl, path] : mem.Shell->Folders()) {
    EXPECT_TRUE(mem.Files->IsFolder(path)) << ToUtf8(path);
  }
  MemoryWindows again = MemoryOf(mem.Platform);
  EXPECT_EQ(mem.Files, again.Files);
  EXPECT_EQ(mem.Registry, again.Registry);
  EXPECT_EQ(mem.Clock, again.Clock);
  EXPECT_EQ(mem.ProtectedStorage, again.ProtectedStorage);
}

TEST(MemoryPlatformTest, PathsAreCheckedAndLinksNeverEntered) {
  MemoryWindows mem = MakeMemoryWindows();
  IFileSystem& fs = *mem.Platform->Files;
  mem.Files->AddFile(u"C:\\Real\\f.txt", "f");
  mem.Files->AddLink(u"C:\\Jump", u"C:\\Real");
  FileInfo info;
  std::unique_ptr<IFileHandle> h;
  struct Case {
    const char16_t* path;
    uint32_t expected;
  } cases[] = {
      {u"C:\\Real\\*.txt", ERROR_INVALID_NAME}, {u"C:\\Real\\..\\Real\\f.txt", ERROR_INVALID_NAME},
      {u"Real\\f.txt", ERROR_INVALID_NAME},     {u"C:Real\\f.txt", ERROR_INVALID_NAME},
      {u"Q:\\f.txt", ERROR_PATH_NOT_FOUND},     {u"C:\\Jump\\f.txt", ERROR_PATH_NOT_FOUND},
      {u"c:/real//F.TXT", ERROR_SUCCESS},
  };
  for (const Case& c : cases) EXPECT_EQ(c.expected, fs.GetInfo(c.path, info)) << ToUtf8(c.path);
  EXPECT_EQ(ERROR_PATH_NOT_FOUND, fs.MakeFolder(u"C:\\Jump\\New"));
  EXPECT_EQ(ERROR_PATH_NOT_FOUND, fs.Open(u"C:\\Jump\\g.txt", OpenMode::CreateAlways, h));
  EXPECT_EQ(ERROR_ACCESS_DENIED, fs.Rename(u"C:\\Real", u"C:\\Real\\Inside"));
  EXPECT_EQ((StringList{u"f.txt"}), mem.Files->Names(u"C:\\Real"));
}

TEST(MemoryPlatformTest, DrivesHaveTypes) {
  MemoryWindows mem = MakeMemoryWindows();
  mem.Files->AddDrive(u'e', kDriveRemovable);
  mem.Files->AddDrive(u'R', kDriveCdRom);
  IFileSystem& fs = *mem.Platform->Files;
  EXPECT_EQ(kDriveFixed, fs.DriveType(u"C:\\Windows"));
  EXPECT_EQ(kDriveRemovable, fs.DriveType(u"E:\\"));
  EXPECT_EQ(kDriveCdRom, fs.DriveType(u"r:\\x\\y"));
  EXPECT_EQ(kDriveNoRootDir, fs.DriveType(u"Q:\\"));
  EXPECT_EQ(kDriveNoRootDir, fs.DriveType(u"\\\\server\\share"));
  EXPECT_TRUE(mem.Files->Names(u"E:\\").empty());
}

// A handle follows its file through a rename; writes take the clock's time.
TEST(MemoryPlatformTest, HandlesFollowRenamesAndWritesAreTimed) {
  MemoryWindows mem = MakeMemoryWindows();
  IFileSystem& fs = *mem.Platform->Files;
  mem.Files->AddFile(u"C:\\secret.txt", "secret");
  mem.Clock->Advance(60000);
  std::unique_ptr<IFileHandle> h;
  ASSERT_EQ(ERROR_SUCCESS, fs.Open(u"C:\\secret.txt", OpenMode::ReadWrite, h));
  ASSERT_EQ(ERROR_SUCCESS, h->Write(0, "000000", 6));
  ASSERT_EQ(ERROR_SUCCESS, fs.Rename(u"C:\\secret.txt", u"C:\\QWERTY.tmp"));
  ASSERT_EQ(ERROR_SUCCESS, h->SetSize(0));
  h.reset();
  FileInfo info;
  ASSERT_EQ(ERROR_SUCCESS, fs.GetInfo(u"C:\\QWERTY.tmp", info));
  EXPECT_EQ(0u, info.Size);
  EXPECT_EQ(ManualClock::kDefaultNow + 60000LL * 10000, info.LastWriteTime);
}

}  // namespace
}  // namespace tc
