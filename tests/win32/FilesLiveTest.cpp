// The file service and the shredder against the live file system and its sharing rules.
#include <functional>

#include "LiveFixture.h"
#include "engine/TC_BasePlugin.h"
#include "platform/LastError.h"

namespace tc {
namespace {

using FilesLive = LiveTest;

// Holds the file open without sharing, as another program would.
class Holder {
 public:
  explicit Holder(const String& path)
      : h_(CreateFileW(Wide(path), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                       nullptr)) {}
  ~Holder() {
    if (h_ != INVALID_HANDLE_VALUE) CloseHandle(h_);
  }
  bool Held() const { return h_ != INVALID_HANDLE_VALUE; }

 private:
  HANDLE h_;
};

bool Exists(const String& path) { return GetFileAttributesW(Wide(path)) != INVALID_FILE_ATTRIBUTES; }

TEST_F(FilesLive, AFileInUseCannotBeChangedOrRemoved) {
  const String path = WriteFile(u"held.txt", "secret");
  Holder holder(path);
  ASSERT_TRUE(holder.Held());
  const std::pair<const char*, std::function<uint32_t()>> ops[] = {
      {"remove", [&] { return Files().RemoveFile(path); }},
      {"rename", [&] { return Files().Rename(path, folder_ + u"\\other.txt"); }},
      {"open for writing",
       [&] {
         std::unique_ptr<IFileHandle> f;
         return Files().Open(path, OpenMode::ReadWrite, f);
       }},
      {"open for reading",
       [&] {
         std::unique_ptr<IFileHandle> f;
         return Files().Open(path, OpenMode::Read, f);
       }},
  };
  for (const auto& [what, op] : ops) EXPECT_EQ(uint32_t{ERROR_SHARING_VIOLATION}, op()) << what;
  EXPECT_TRUE(Exists(path));
}

TEST_F(FilesLive, ShreddingAFileInUseSchedulesItForTheNextStart) {
  const String path = WriteFile(u"locked.dat", std::string(5000, 'x'));
  Holder holder(path);
  ASSERT_TRUE(holder.Held());
  TTCPlugin plugin(u"TTCPLiveLocked");
  EXPECT_FALSE(plugin.SecureDeleteFile(path));
  EXPECT_EQ(uint32_t{ERROR_SHARING_VIOLATION}, GetLastOSError());
  EXPECT_TRUE(plugin.RebootRequired);
  EXPECT_TRUE(Exists(path));
  StringList pending;
  ASSERT_EQ(0u, platform_->RebootDeleter->Pending(pending));
  EXPECT_NE(pending.end(), std::find_if(pending.begin(), pending.end(), [&](const String& p) {
              return SameText(p, path);
            }));
}

TEST_F(FilesLive, ShreddingAFreeFileLeavesNeitherNameNorFile) {
  const String path = WriteFile(u"free.dat", std::string(70000, 'y'));
  TTCPlugin plugin(u"TTCPLiveFree");
  plugin.ShredMethod = TDeleteMethod::dmDoD5220;
  EXPECT_TRUE(plugin.SecureDeleteFile(path));
  EXPECT_FALSE(plugin.RebootRequired);
  std::vector<FileInfo> left;
  ASSERT_EQ(0u, Files().ListFolder(folder_, left));
  EXPECT_TRUE(left.empty());
}

TEST_F(FilesLive, ListingIsSortedAndMissingPlacesAreTold) {
  for (const char16_t* name : {u"b.txt", u"_z.txt", u"A.txt"}) WriteFile(name, "1");
  ASSERT_EQ(0u, Files().MakeFolder(folder_ + u"\\sub\\deeper"));
  std::vector<FileInfo> entries;
  ASSERT_EQ(0u, Files().ListFolder(folder_, entries));
  StringList names;
  for (const auto& e : entries) names.push_back(e.Name);
  EXPECT_EQ((StringList{u"A.txt", u"b.txt", u"sub", u"_z.txt"}), names);
  EXPECT_EQ(uint32_t{ERROR_PATH_NOT_FOUND}, Files().ListFolder(folder_ + u"\\none", entries));
  EXPECT_EQ(uint32_t{ERROR_PATH_NOT_FOUND}, Files().ListFolder(folder_ + u"\\b.txt", entries));
  FileInfo info;
  EXPECT_EQ(uint32_t{ERROR_FILE_NOT_FOUND}, Files().GetInfo(folder_ + u"\\none.txt", info));
  EXPECT_EQ(uint32_t{ERROR_PATH_NOT_FOUND}, Files().GetInfo(folder_ + u"\\none\\x.txt", info));
  EXPECT_EQ(kDriveFixed, Files().DriveType(folder_));
}

TEST_F(FilesLive, LinksAreRemovedNotFollowed) {
  const String target = folder_ + u"\\target";
  ASSERT_EQ(0u, Files().MakeFolder(target));
  WriteFile(u"target\\keep.txt", "keep");
  const String link = folder_ + u"\\link";
  // Wine 8 answers success without making the link.
  if (!CreateSymbolicLinkW(Wide(link), Wide(target), SYMBOLIC_LINK_FLAG_DIRECTORY) ||
      !Exists(link))
    GTEST_SKIP() << "this system makes no symbolic links";
  FileInfo info;
  ASSERT_EQ(0u, Files().GetInfo(link, info));
  EXPECT_TRUE(info.IsReparsePoint());
  EXPECT_EQ(0u, Files().RemoveFile(link));
  EXPECT_TRUE(Exists(target + u"\\keep.txt"));
}

}  // namespace
}  // namespace tc
