#include "platform/memory/MemoryPlatform.h"

#include <gtest/gtest.h>

#include "platform/helpers/TextCodec.h"

namespace tc {
namespace {

TEST(MemoryPlatformTest, EveryShellFolderExists) {
  MemoryWindows mem = MakeMemoryWindows();
  for (const auto& [csidl, path] : mem.Shell->Folders()) {
    EXPECT_TRUE(mem.Files->IsFolder(path)) << ToUtf8(path);
  }
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

}  // namespace
}  // namespace tc
