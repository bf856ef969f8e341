#include "platform/offline/OfflineImage.h"

#include "platform/common/DefaultIconCatalogue.h"
#include "platform/common/FolderRecycleBin.h"
#include "platform/common/LinkedSqlite.h"
#include "platform/common/LibJumpListFiles.h"
#include "platform/common/LibShellItems.h"
#include "platform/common/PendingRenameRebootDeleter.h"
#include "platform/common/PugiXmlDocuments.h"
#include "platform/common/RegistryProductSettings.h"
#include "platform/common/SqliteFiles.h"
#include "platform/common/SystemClock.h"
#include "platform/helpers/TextCodec.h"
#include "platform/common/TextIniFiles.h"
#include "platform/common/TimerQueueUI.h"
#include "platform/common/Unavailable.h"
#include "platform/offline/OfflineProtectedStorage.h"
#include "platform/offline/OfflineUrlCache.h"
#include "platform/offline/OfflineUrlHistory.h"

namespace tc {

namespace {

const char16_t* const kProfileRoots[] = {u"C:\\Users", u"C:\\Documents and Settings"};
const char16_t* const kNotProfiles[] = {u"Default", u"Default User", u"All Users", u"Public",
                                        u"LocalService", u"NetworkService"};

bool IsFile(IFileSystem& fs, const String& path) {
  FileInfo info;
  return fs.GetInfo(path, info) == ERROR_SUCCESS && !info.IsDirectory() &&
         !info.IsReparsePoint();
}

bool IsFolder(IFileSystem& fs, const String& path) {
  FileInfo info;
  return fs.GetInfo(path, info) == ERROR_SUCCESS && info.IsDirectory() && !info.IsReparsePoint();
}

std::string Listed(const std::vector<std::pair<String, String>>& profiles) {
  std::string out;
  for (const auto& p : profiles) out += (out.empty() ? "" : ", ") + ToUtf8(p.first);
  return out.empty() ? "none" : out;
}

// Opens the hive at a Windows path of the image. A missing file leaves `hive` empty.
bool LoadHive(const DriveMap& drives, const String& path, std::shared_ptr<Hive>& hive,
              std::string& hostPath, std::string& error) {
  hive.reset();
  if (drives.Resolve(path, LastLink::Refuse, false, hostPath) != ERROR_SUCCESS) {
    hostPath = ToUtf8(path);
    return true;
  }
  std::unique_ptr<Hive> opened = Hive::Open(hostPath, error);
  if (!opened) return false;
  hive = std::move(opened);
  return true;
}

}  // namespace

std::vector<std::pair<String, String>> FindProfiles(IFileSystem& volume) {
  std::vector<std::pair<String, String>> found;
  for (const char16_t* root : kProfileRoots) {
    std::vector<FileInfo> entries;
    if (volume.ListFolder(root, entries) != ERROR_SUCCESS) continue;
    for (const auto& e : entries) {
      if (!e.IsDirectory() || e.IsReparsePoint()) continue;
      bool skip = false;
      for (const char16_t* name : kNotProfiles) skip = skip || SameText(e.Name, name);
      String path = String(root) + u"\\" + e.Name;
      if (!skip && IsFile(volume, path + u"\\NTUSER.DAT")) found.emplace_back(e.Name, path);
    }
  }
  return found;
}

std::unique_ptr<OfflineImage> OfflineImage::Open(const OfflineOptions& options,
                                                 std::string& error) {
  DriveMap drives;
  if (!drives.Map(u'C', options.ImageDir)) {
    error = options.ImageDir + " is not a folder that can be opened as drive C:";
    return nullptr;
  }
  for (const auto& [letter, dir] : options.Drives) {
    if (!drives.Map(letter, dir)) {
      error = dir + " is not a folder that can be opened as drive " + ToUtf8(String(1, letter)) +
              ":";
      return nullptr;
    }
  }
  std::unique_ptr<OfflineImage> image(new OfflineImage());
  image->volume_ = std::make_shared<OfflineVolume>(drives);
  OfflineVolume& volume = *image->volume_;

  auto profiles = FindProfiles(volume);
  const std::pair<String, String>* chosen = nullptr;
  if (!options.User.empty()) {
    for (const auto& p : profiles)
      if (SameText(p.first, FromUtf8(options.User))) chosen = &p;
    if (!chosen) {
      error = options.ImageDir + " has no user profile " + options.User +
              " (profiles: " + Listed(profiles) + ")";
      return nullptr;
    }
  } else if (profiles.size() == 1) {
    chosen = &profiles[0];
  } else {
    error = profiles.empty()
                ? options.ImageDir +
                      " has no user profile (a folder with NTUSER.DAT under Users or "
                      "Documents and Settings)"
                : options.ImageDir + " has several user profiles (" + Listed(profiles) +
                      "); choose one with --user NAME";
    return nullptr;
  }
  ProfileInfo& profile = image->profile_;
  profile.UserName = chosen->first;
  profile.ProfilePath = chosen->second;
  profile.VistaLayout = chosen->second.rfind(u"C:\\Users\\", 0) == 0;
  profile.WindowsDir = u"C:\\Windows";
  for (const char16_t* dir : {u"C:\\Windows", u"C:\\WINNT"}) {
    std::string host;
    if (IsFolder(volume, dir) && drives.Resolve(dir, LastLink::Refuse, false, host) == 0) {
      profile.WindowsDir = drives.ToWindows(host);
      break;
    }
  }

  OfflineHives hives;
  std::string host;
  if (!LoadHive(drives, profile.ProfilePath + u"\\NTUSER.DAT", hives.User, host, error))
    return nullptr;
  if (!hives.User) {
    error = host + " cannot be opened";
    return nullptr;
  }
  String classes = profile.VistaLayout
                       ? u"\\AppData\\Local\\Microsoft\\Windows\\UsrClass.dat"
                       : u"\\Local Settings\\Application Data\\Microsoft\\Windows\\UsrClass.dat";
  if (!LoadHive(drives, profile.ProfilePath + classes, hives.Classes, host, error))
    return nullptr;
  String config = profile.WindowsDir + u"\\System32\\config\\";
  for (auto [name, slot] : {std::pair{u"SOFTWARE", &hives.Software},
                            std::pair{u"SYSTEM", &hives.System}}) {
    if (!LoadHive(drives, config + name, *slot, host, error)) return nullptr;
    if (!*slot)
      image->warnings_.push_back(host + " not found: HKEY_LOCAL_MACHINE\\" + ToUtf8(name) +
                                 " is empty");
  }
  image->registry_ = std::make_shared<OfflineRegistry>(std::move(hives));
  UrlCacheContainers containers(image->volume_,
                                std::make_shared<OfflineShell>(image->registry_, profile));
  for (const std::string& damaged : containers.Damaged())
    image->warnings_.push_back(damaged + "; its entries are left alone");
  return image;
}

std::shared_ptr<Platform> OfflineImage::MakePlatform() const {
  auto p = std::make_shared<Platform>();
  p->Registry = registry_;
  p->Files = volume_;
  p->Shell = std::make_shared<OfflineShell>(registry_, profile_);
  auto containers = std::make_shared<UrlCacheContainers>(volume_, p->Shell);
  p->UrlCache = std::make_shared<OfflineUrlCache>(containers);
  p->ProtectedStorage = std::make_shared<OfflineProtectedStorage>(registry_);
  p->UrlHistory = std::make_shared<OfflineUrlHistory>(containers);
  p->EventLogs = std::make_shared<UnavailableEventLogs>();
  StringList roots;
  for (const auto& drive : volume_->Drives().Drives())
    roots.push_back(String(1, drive.first) + u":\\");
  p->RecycleBin = std::make_shared<FolderRecycleBin>(volume_, roots);
  p->RebootDeleter = std::make_shared<PendingRenameRebootDeleter>(registry_);
  p->IniFiles = std::make_shared<TextIniFiles>(volume_);
  p->Xml = std::make_shared<PugiXmlDocuments>(volume_);
  p->ProductSettings = std::make_shared<RegistryProductSettings>(registry_);
  p->Clock = std::make_shared<SystemClock>();
  p->UI = std::make_shared<TimerQueueUI>(p->Clock);
  p->Icons = std::make_shared<DefaultIconCatalogue>();
  p->Sqlite = std::make_shared<SqliteFiles>(volume_, LinkedSqlite());
  p->ShellItems = std::make_shared<LibShellItems>();
  p->JumpLists = std::make_shared<LibJumpListFiles>(p->ShellItems);
  return p;
}

}  // namespace tc
