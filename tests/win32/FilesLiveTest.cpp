// The shredder against the live file system and its sharing rules.
#include <algorithm>

#include "engine/TC_BasePlugin.h"
#include "platform/LastError.h"
#include "LiveFixture.h"  // last: it brings <windows.h>

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

}  // namespace
}  // namespace tc
