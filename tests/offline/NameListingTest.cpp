// The short cuts of the offline volume: the name-only listing that recursive counts walk,
// and look-ups that skip the case-insensitive search.
#include <gtest/gtest.h>

#include <algorithm>

#include "OfflineTestSupport.h"
#include "platform/TextCodec.h"
#include "platform/offline/OfflineVolume.h"

namespace fs = std::filesystem;

namespace tc {
namespace {

class NameListingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    c_ = dir_.Path() / "c";
    fs::create_directories(c_ / "Cache" / "Sub");
    test::WriteBytes(c_ / "Cache" / "f_01", "data");
    test::WriteBytes(c_ / "Cache" / "Größe.txt", "");
    test::WriteBytes(c_ / "Cache" / "0123", "digits");
    test::WriteBytes(c_ / "outside.txt", "x");
    fs::create_symlink(c_ / "Cache" / "Sub", c_ / "Cache" / "dir-link");
    fs::create_symlink(c_ / "outside.txt", c_ / "Cache" / "file-link");
    DriveMap drives;
    ASSERT_TRUE(drives.Map(u'C', c_.string()));
    volume_ = std::make_unique<OfflineVolume>(drives);
  }

  // Name with the two bits a name listing must carry, sorted.
  static std::vector<std::pair<String, uint32_t>> Kinds(std::vector<FileInfo> entries) {
    std::vector<std::pair<String, uint32_t>> out;
    for (const auto& e : entries)
      out.emplace_back(e.Name, e.Attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT));
    std::sort(out.begin(), out.end());
    return out;
  }

  test::TempDir dir_;
  fs::path c_;
  std::unique_ptr<OfflineVolume> volume_;
};

TEST_F(NameListingTest, NamesAndKindsAreThoseOfTheFullListing) {
  for (const char16_t* folder : {u"C:\\Cache", u"c:\\CACHE\\", u"C:\\Cache\\Sub"}) {
    std::vector<FileInfo> full, names;
    ASSERT_EQ(ERROR_SUCCESS, volume_->ListFolder(folder, full)) << ToUtf8(folder);
    ASSERT_EQ(ERROR_SUCCESS, volume_->ListFolderNames(folder, names)) << ToUtf8(folder);
    EXPECT_EQ(Kinds(full), Kinds(names)) << ToUtf8(folder);
  }
  std::vector<FileInfo> names;
  EXPECT_EQ(ERROR_PATH_NOT_FOUND, volume_->ListFolderNames(u"C:\\Missing", names));
  EXPECT_EQ(ERROR_ACCESS_DENIED, volume_->ListFolderNames(u"C:\\Cache\\dir-link", names));
}

TEST_F(NameListingTest, LookUpsGiveTheSameAnswersWithOrWithoutTheShortCut) {
  struct Case {
    const char16_t* path;
    uint32_t expected;
  };
  const Case cases[] = {
      {u"C:\\Cache\\f_01", ERROR_SUCCESS},          // spelled exactly: one walk
      {u"C:\\CACHE\\F_01", ERROR_SUCCESS},          // another spelling: searched
      {u"C:\\Cache\\0123", ERROR_SUCCESS},
      {u"C:\\Cache\\4567", ERROR_FILE_NOT_FOUND},   // no letters: no search needed
      {u"C:\\Cache\\f_01\\.", ERROR_PATH_NOT_FOUND},  // a file is no folder
      {u"C:\\Cache\\.\\f_01", ERROR_SUCCESS},
      {u"C:\\Cache\\file-link", ERROR_ACCESS_DENIED},
      {u"C:\\Cache\\dir-link\\x", ERROR_ACCESS_DENIED},
  };
  for (const auto& c : cases) {
    std::unique_ptr<IFileHandle> file;
    EXPECT_EQ(c.expected, volume_->Open(c.path, OpenMode::Read, file)) << ToUtf8(c.path);
  }
  FileInfo info;
  EXPECT_EQ(ERROR_SUCCESS, volume_->GetInfo(u"C:\\Cache\\file-link", info));
  EXPECT_TRUE(info.IsReparsePoint());  // the link itself, not what it points to
  EXPECT_EQ(ERROR_SUCCESS, volume_->Rename(u"C:\\Cache\\0123", u"C:\\Cache\\9876"));
  EXPECT_EQ("digits", test::ReadBytes(c_ / "Cache" / "9876"));
}

}  // namespace
}  // namespace tc
