// A Windows installation that is not running: a mounted system drive (and further drives)
// with its user profile and hive files, opened once per run.
#pragma once
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "platform/offline/OfflineRegistry.h"
#include "platform/offline/OfflineShell.h"
#include "platform/offline/OfflineVolume.h"

namespace tc {

struct OfflineOptions {
  std::string ImageDir;                                   // drive C:
  std::vector<std::pair<char16_t, std::string>> Drives;   // further drives
  std::string User;  // profile folder name; "" for the only profile there is
};

class OfflineImage {
 public:
  // Opens the image: finds the user's profile, loads NTUSER.DAT, UsrClass.dat and the
  // machine's SOFTWARE and SYSTEM hives. nullptr when the image, the profile or a hive
  // cannot be opened or is refused; `error` then names the file and the reason.
  static std::unique_ptr<OfflineImage> Open(const OfflineOptions& options, std::string& error);

  // Things the user should know that do not stop the run (a missing machine hive).
  const std::vector<std::string>& Warnings() const { return warnings_; }
  const ProfileInfo& Profile() const { return profile_; }
  const std::shared_ptr<OfflineRegistry>& Registry() const { return registry_; }
  const std::shared_ptr<OfflineVolume>& Volume() const { return volume_; }
  // Every service of the installation; the event logs, which do not exist offline, answer
  // ERROR_NOT_SUPPORTED.
  std::shared_ptr<Platform> MakePlatform() const;

 private:
  OfflineImage() = default;
  std::vector<std::string> warnings_;
  ProfileInfo profile_;
  std::shared_ptr<OfflineRegistry> registry_;
  std::shared_ptr<OfflineVolume> volume_;
};

// Names of the user profiles of an image (folders with an NTUSER.DAT under Users or
// Documents and Settings, without the Default templates), with their Windows paths.
std::vector<std::pair<String, String>> FindProfiles(IFileSystem& volume);

}  // namespace tc
