// The offline volume: paths on the host without case, links never passed, and the short
// cuts (a name-only listing, look-ups that skip the case-insensitive search) answering as
// the full walk does.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <tuple>

#include "OfflineTestSupport.h"
#include "platform/helpers/TextCodec.h"
#include "platform/offline/OfflineVolume.h"

namespace fs = std::filesystem;

namespace tc {
namespace {

class VolumeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    c_ = dir_.Path() / "c";
    outside_ = dir_.Path() / "outside";
    fs::create_directories(c_ / "Users" / "Anna" / "Recent");
    fs::create_directories(c_ / "Cache" / "Sub");
    fs::create_directories(outside_);
    test::WriteBytes(c_ / "Users" / "Anna" / "Recent" / "Brief.txt.lnk", "link");
    test::WriteBytes(c_ / "Cache" / "f_01", "data");
    test::WriteBytes(c_ / "Cache" / "Größe.txt", "");
    test::WriteBytes(c_ / "Cache" / "0123", "digits");
    test::WriteBytes(outside_ / "secret.txt", "keep me");
    fs::create_symlink(outside_, c_ / "abs-link");
    fs::create_symlink("../../outside", c_ / "Users" / "rel-out");
    fs::create_symlink("Anna/Recent", c_ / "Users" / "inside");
    fs::create_symlink(outside_ / "secret.txt", c_ / "Users" / "Anna" / "secret-link.txt");
    fs::create_symlink(c_ / "Cache" / "Sub", c_ / "Cache" / "dir-link");
    fs::create_symlink(c_ / "Cache" / "f_01", c_ / "Cache" / "file-link");  // inside, all the same
    ASSERT_EQ(0, mkfifo((c_ / "Cache" / "pipe").c_str(), 0600));
    DriveMap drives;
    ASSERT_TRUE(drives.Map(u'C', c_.string()));
    volume_ = std::make_unique<OfflineVolume>(drives);
  }
  test::TempDir dir_;
  fs::path c_, outside_;
  std::unique_ptr<OfflineVolume> volume_;
};

TEST_F(VolumeTest, PathsResolveWithoutCaseAndNeverPassALink) {
  struct Case {
    const char16_t* path;
    uint32_t expected;
  };
  const Case cases[] = {
      {u"C:\\Users\\Anna\\Recent\\Brief.txt.lnk", ERROR_SUCCESS},  // spelled exactly: one walk
      {u"c:\\USERS\\anna\\recent\\BRIEF.TXT.LNK", ERROR_SUCCESS},  // another spelling: searched
      {u"C:/Users/Anna/Recent/Brief.txt.lnk", ERROR_SUCCESS},
      {u"C:\\Cache\\0123", ERROR_SUCCESS},
      {u"C:\\Cache\\4567", ERROR_FILE_NOT_FOUND},  // no letters: no search needed
      {u"C:\\Cache\\.\\f_01", ERROR_SUCCESS},
      {u"C:\\Cache\\f_01\\.", ERROR_PATH_NOT_FOUND},  // a file is no folder
      {u"C:\\Users\\inside\\Brief.txt.lnk", ERROR_ACCESS_DENIED},  // even one inside
      {u"C:\\Users\\Anna\\Recent\\Nothing.lnk", ERROR_FILE_NOT_FOUND},
      {u"C:\\Users\\Nobody\\Recent\\x", ERROR_PATH_NOT_FOUND},
      {u"C:\\Users\\Anna\\Recent\\Brief.txt.lnk\\x", ERROR_PATH_NOT_FOUND},
      {u"D:\\Users", ERROR_PATH_NOT_FOUND},
      {u"C:\\Users\\..\\..\\outside\\secret.txt", ERROR_INVALID_NAME},
      {u"C:\\abs-link\\secret.txt", ERROR_ACCESS_DENIED},
      {u"C:\\Users\\rel-out\\secret.txt", ERROR_ACCESS_DENIED},
      {u"C:\\Cache\\file-link", ERROR_ACCESS_DENIED},
      {u"C:\\Cache\\dir-link\\x", ERROR_ACCESS_DENIED},
  };
  for (const auto& c : cases) {
    std::unique_ptr<IFileHandle> file;
    EXPECT_EQ(c.expected, volume_->Open(c.path, OpenMode::Read, file)) << ToUtf8(c.path);
  }
  std::vector<FileInfo> entries;
  EXPECT_EQ(ERROR_ACCESS_DENIED, volume_->ListFolder(u"C:\\abs-link", entries));
  EXPECT_EQ(ERROR_ACCESS_DENIED, volume_->ListFolder(u"C:\\users\\INSIDE", entries));
  EXPECT_EQ(ERROR_SUCCESS, volume_->ListFolder(u"C:\\users\\ANNA\\recent", entries));
  ASSERT_EQ(1u, entries.size());
  EXPECT_EQ(u"Brief.txt.lnk", entries[0].Name);
}

TEST_F(VolumeTest, NameListingGivesTheNamesAndKindsOfTheFullListing) {
  // Name with what a name listing must carry, sorted; with sizes also a file's size and links.
  auto kinds = [](const std::vector<FileInfo>& entries, bool sizes) {
    std::vector<std::tuple<String, uint32_t, uint64_t, uint32_t>> out;
    uint32_t bits = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT;
    for (const auto& e : entries) {
      bool file = sizes && !(e.Attributes & bits);
      out.emplace_back(e.Name, e.Attributes & (bits | (file ? FILE_ATTRIBUTE_READONLY : 0)),
                       file ? e.Size : 0, file ? e.Links : 1);
    }
    std::sort(out.begin(), out.end());
    return out;
  };
  fs::create_hard_link(c_ / "Cache" / "f_01", c_ / "Cache" / "Sub" / "hard");
  fs::permissions(c_ / "Cache" / "0123", fs::perms::owner_write, fs::perm_options::remove);
  for (ListDetail detail : {ListDetail::Kinds, ListDetail::Sizes}) {
    const bool sizes = detail == ListDetail::Sizes;
    for (const char16_t* folder : {u"C:\\Cache", u"c:\\CACHE\\", u"C:\\Cache\\Sub"}) {
      std::vector<FileInfo> full, names;
      ASSERT_EQ(ERROR_SUCCESS, volume_->ListFolder(folder, full)) << ToUtf8(folder);
      ASSERT_EQ(ERROR_SUCCESS, volume_->ListFolderNames(folder, names, detail)) << ToUtf8(folder);
      EXPECT_EQ(kinds(full, sizes), kinds(names, sizes)) << ToUtf8(folder) << sizes;
    }
    std::vector<FileInfo> names;
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, volume_->ListFolderNames(u"C:\\Missing", names, detail));
    EXPECT_EQ(ERROR_ACCESS_DENIED,
              volume_->ListFolderNames(u"C:\\Cache\\dir-link", names, detail));
  }
}

TEST_F(VolumeTest, FileOpenForWritingIsInUse) {
  const String path = u"C:\\Users\\Anna\\Recent\\Brief.txt.lnk";
  std::unique_ptr<IFileHandle> writer, other;
  ASSERT_EQ(0u, volume_->Open(path, OpenMode::ReadWrite, writer));
  EXPECT_EQ(ERROR_SHARING_VIOLATION, volume_->Open(path, OpenMode::Read, other));
  EXPECT_EQ(ERROR_SHARING_VIOLATION, volume_->RemoveFile(path));
  EXPECT_EQ(ERROR_SHARING_VIOLATION, volume_->Rename(path, u"C:\\Users\\x.lnk"));
  writer.reset();
  EXPECT_EQ(0u, volume_->RemoveFile(path));
  EXPECT_FALSE(fs::exists(c_ / "Users" / "Anna" / "Recent" / "Brief.txt.lnk"));
}

TEST_F(VolumeTest, NewNamesKeepTheirCaseInsideExistingFolders) {
  ASSERT_EQ(0u, volume_->MakeFolder(u"C:\\USERS\\anna\\AppData\\Local\\Temp"));
  EXPECT_TRUE(fs::is_directory(c_ / "Users" / "Anna" / "AppData" / "Local" / "Temp"));
  std::unique_ptr<IFileHandle> file;
  ASSERT_EQ(0u, volume_->Open(u"C:\\users\\ANNA\\AppData\\Local\\Temp\\Neu.tmp",
                              OpenMode::CreateNew, file));
  ASSERT_EQ(0u, file->Write(0, "abc", 3));
  file.reset();
  EXPECT_EQ("abc",
            test::ReadBytes(c_ / "Users" / "Anna" / "AppData" / "Local" / "Temp" / "Neu.tmp"));
  EXPECT_EQ(ERROR_FILE_EXISTS, volume_->Open(u"C:\\Users\\Anna\\AppData\\Local\\Temp\\neu.TMP",
                                             OpenMode::CreateNew, file));
  EXPECT_EQ(ERROR_ACCESS_DENIED, volume_->MakeFolder(u"C:\\abs-link\\new"));
  EXPECT_FALSE(fs::exists(outside_ / "new"));
  // The shredder's digit-only names.
  EXPECT_EQ(ERROR_SUCCESS, volume_->Rename(u"C:\\Cache\\0123", u"C:\\Cache\\9876"));
  EXPECT_EQ("digits", test::ReadBytes(c_ / "Cache" / "9876"));
}

}  // namespace
}  // namespace tc
