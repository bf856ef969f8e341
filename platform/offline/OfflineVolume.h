// The file system of an offline Windows installation: its drives are host folders.
#pragma once
#include <sys/stat.h>

#include <memory>
#include <utility>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/offline/VolumePath.h"

namespace tc {

// Files in use are emulated with advisory locks (flock): a file another handle has open
// for writing cannot be opened, removed or renamed (ERROR_SHARING_VIOLATION), as on
// Windows without share flags. Symbolic links are listed as reparse points and never
// entered; removing one removes the link.
class OfflineVolume : public IFileSystem {
 public:
  explicit OfflineVolume(DriveMap drives) : drives_(std::move(drives)) {}
  const DriveMap& Drives() const { return drives_; }

  uint32_t ListFolder(const String& folder, std::vector<FileInfo>& entries) override;
  // From the directory's own entry types: no attribute read per file, a stat only for sizes.
  uint32_t ListFolderNames(const String& folder, std::vector<FileInfo>& entries,
                           ListDetail detail) override;
  uint32_t VisitFolderNames(const String& folder, ListDetail detail,
                            const std::function<bool(FileInfo&)>& visit) override;
  uint32_t GetInfo(const String& path, FileInfo& info) override;
  uint32_t GetBasicInfo(const String& path, FileInfo& info) override;
  uint32_t Open(const String& path, OpenMode mode, std::unique_ptr<IFileHandle>& file) override;
  uint32_t RemoveFile(const String& path) override;
  uint32_t MakeFolder(const String& path) override;
  uint32_t RemoveFolder(const String& path) override;
  uint32_t Rename(const String& from, const String& to) override;
  uint32_t SetAttributes(const String& path, uint32_t attributes) override;
  uint32_t DriveType(const String& path) override;

 private:
  // Hidden and system from an extended attribute, 0 for a link or device.
  uint32_t ExtraAttributes(const std::string& host, const struct stat& st);
  FileInfo FullInfo(const std::string& name, const struct stat& st, const std::string& host);

  DriveMap drives_;
  // File systems (by device) that refuse the first (bit 1) or second (bit 2) attribute.
  std::vector<std::pair<dev_t, uint8_t>> noAttributes_;
};

}  // namespace tc
