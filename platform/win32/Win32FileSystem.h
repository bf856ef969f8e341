// The live file system through the wide file API.
#pragma once
#include "platform/FileSystem.h"

namespace tc {

// Reparse points are never followed: listings and look-ups report them with their own
// attributes, opening one opens the link itself, removing one removes only the link, and a
// path that passes through one is refused with ERROR_CANT_RESOLVE_FILENAME.
// Files open for reading share reading only; files open for writing share nothing, so a
// file being shredded cannot be read meanwhile.
class Win32FileSystem : public IFileSystem {
 public:
  uint32_t ListFolder(const String& folder, std::vector<FileInfo>& entries) override;
  uint32_t VisitFolderNames(const String& folder, ListDetail detail,
                            const std::function<bool(FileInfo&)>& visit) override;
  uint32_t GetInfo(const String& path, FileInfo& info) override;
  uint32_t Open(const String& path, OpenMode mode, std::unique_ptr<IFileHandle>& file) override;
  uint32_t RemoveFile(const String& path) override;
  uint32_t MakeFolder(const String& path) override;
  uint32_t RemoveFolder(const String& path) override;
  uint32_t Rename(const String& from, const String& to) override;
  uint32_t SetAttributes(const String& path, uint32_t attributes) override;
  uint32_t DriveType(const String& path) override;
};

}  // namespace tc
