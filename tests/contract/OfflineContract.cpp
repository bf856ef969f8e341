// The contract suite on an offline image: a fresh folder with a profile and empty hives per
// test; files in use are held with the same advisory locks the backend honours.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <list>
#include <map>

#include "ContractSuite.h"
#include "SqliteContract.h"
#include "OfflineTestSupport.h"
#include "platform/offline/OfflineImage.h"

namespace tc::contract {
namespace {

namespace fs = std::filesystem;

// Images made by this process, removed when it ends; held files by platform.
struct OfflineState {
  std::list<test::TempDir> images;
  std::map<const Platform*, std::vector<int>> held;
  ~OfflineState() {
    for (auto& [p, fds] : held)
      for (int fd : fds) close(fd);
  }
};

OfflineState& State() {
  static OfflineState state;
  return state;
}

std::shared_ptr<OfflineVolume> VolumeOf(Platform& p) {
  return std::dynamic_pointer_cast<OfflineVolume>(p.Files);
}

struct OfflineTraits {
  // A profile and empty hives; the platform's services hold them, the image itself may go.
  static std::shared_ptr<Platform> Make() {
    const test::TempDir& dir = State().images.emplace_back();
    test::MakeImage(dir.Path(), "Contract",
                    "Windows Registry Editor Version 5.00\n"
                    "[HKEY_LOCAL_MACHINE\\SYSTEM\\Select]\n\"Current\"=dword:00000001\n"
                    "[HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Control\\Session Manager]\n");
    std::string error;
    std::shared_ptr<OfflineImage> image = OfflineImage::Open({dir.Str(), {}, ""}, error);
    return image ? image->MakePlatform() : nullptr;
  }
  static String FolderBase() { return u"C:\\ContractTests"; }
  static String KeyBase() { return u"Software\\TraceCleanerContract"; }
  static bool LockFile(Platform& p, const String& path, uint32_t) {
    std::string host;
    if (VolumeOf(p)->Drives().Resolve(path, LastLink::NoFollow, false, host) != 0) return false;
    int fd = open(host.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
      close(fd);
      return false;
    }
    State().held[&p].push_back(fd);
    return true;
  }
  static void UnlockAll(Platform& p) {
    for (int fd : State().held[&p]) close(fd);
    State().held.erase(&p);
  }
  static bool MakeFolderLink(Platform& p, const String& link, const String& target) {
    std::string hostLink, hostTarget;
    const DriveMap& drives = VolumeOf(p)->Drives();
    if (drives.Resolve(link, LastLink::NoFollow, true, hostLink) != 0 ||
        drives.Resolve(target, LastLink::NoFollow, false, hostTarget) != 0)
      return false;
    std::error_code ec;
    fs::create_directory_symlink(fs::path(hostTarget).lexically_relative(
                                     fs::path(hostLink).parent_path()),
                                 hostLink, ec);
    return !ec;
  }
  static bool RefuseLog(Platform&, const String&) { return false; }
  static bool MakeHardLink(Platform& p, const String& link, const String& existing) {
    std::string hostLink, hostExisting;
    const DriveMap& drives = VolumeOf(p)->Drives();
    return drives.Resolve(link, LastLink::NoFollow, true, hostLink) == 0 &&
           drives.Resolve(existing, LastLink::NoFollow, false, hostExisting) == 0 &&
           ::link(hostExisting.c_str(), hostLink.c_str()) == 0;
  }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Offline, ContractTest, OfflineTraits);
INSTANTIATE_TYPED_TEST_SUITE_P(Offline, SqliteContractTest, OfflineTraits);

}  // namespace tc::contract
