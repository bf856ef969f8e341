// The file system of an offline Windows installation: its drives are host folders.
#pragma once
#include <memory>

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
  // From the directory's own entry types: no stat or attribute read per file.
  uint32_t ListFolderNames(const String& folder, std::vector<FileInfo>& entries) override;
  uint32_t GetInfo(const String& path, FileInfo& info) override;
  uint32_t Open(const String& path, OpenMode mode, std::unique_ptr<IFileHandle>& file) override;
  uint32_t RemoveFile(const String& path) override;
  uint32_t MakeFolder(const String& path) override;
  uint32_t RemoveFolder(const String& path) override;
  uint32_t Rename(const String& from, const String& to) override;
  uint32_t SetAttributes(const String& path, uint32_t attributes) override;
  uint32_t DriveType(const String& path) override;

 private:
  DriveMap drives_;
};

}  // namespace tc
