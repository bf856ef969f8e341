// The Windows file system as a service.
#pragma once
#include <functional>
#include <memory>

#include "WinTypes.h"

namespace tc {

struct FileInfo {
  String Name;  // last path component, as stored
  uint64_t Size = 0;
  uint32_t Attributes = 0;
  int64_t LastWriteTime = 0;  // FILETIME: 100 ns units since 1601-01-01 UTC
  // Names the file's content goes by (hard links); GetInfo tells, listings may leave 1.
  uint32_t Links = 1;
  bool IsDirectory() const { return (Attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
  bool IsReparsePoint() const { return (Attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0; }
  // A pipe, socket or device node: no file, and opening one may wait forever.
  bool IsDevice() const { return (Attributes & FILE_ATTRIBUTE_DEVICE) != 0; }
};

// How much a walk's listing must carry beyond names and kinds.
enum class ListDetail : uint8_t {
  Kinds,  // nothing more
  Sizes,  // files' sizes, links and read-only bit
};

// An open file; positional I/O so no hidden file pointer. Closed on destruction.
class IFileHandle {
 public:
  virtual ~IFileHandle() = default;
  virtual uint32_t Read(uint64_t offset, void* buffer, size_t size, size_t& done) = 0;
  // ERROR_DISK_FULL when the volume has no room left.
  virtual uint32_t Write(uint64_t offset, const void* data, size_t size) = 0;
  // Pushes written data through to the medium.
  virtual uint32_t Flush() = 0;
  virtual uint32_t SetSize(uint64_t size) = 0;
  virtual uint32_t GetSize(uint64_t& size) = 0;
};

enum class OpenMode : uint8_t {
  Read,          // existing file, read only
  ReadWrite,     // existing file, read and write, not truncated
  CreateAlways,  // create or truncate, read and write
  CreateNew,     // create; ERROR_FILE_EXISTS if the file exists
};

// Contract (every backend):
// - Paths are absolute Windows paths ("C:\dir\file"); components compare case-insensitively.
// - ListFolder returns the folder's entries without "." and "..", ascending by upper-cased
//   name; a missing folder is ERROR_PATH_NOT_FOUND, a file given as folder ERROR_DIRECTORY
//   style failures map to ERROR_PATH_NOT_FOUND too.
// - A missing file is ERROR_FILE_NOT_FOUND, a missing parent folder ERROR_PATH_NOT_FOUND.
// - A file in use elsewhere fails to open for writing, to be removed or renamed with
//   ERROR_SHARING_VIOLATION (32) or ERROR_LOCK_VIOLATION (33).
// - Symbolic links, junctions and other reparse points are reported with
//   FILE_ATTRIBUTE_REPARSE_POINT and never followed by GetInfo or ListFolder; RemoveFile
//   on one removes the link, not its target.
// - Pipes, sockets and device nodes are reported with FILE_ATTRIBUTE_DEVICE; they cannot be
//   opened (ERROR_ACCESS_DENIED), removed or renamed.
class IFileSystem {
 public:
  virtual ~IFileSystem() = default;
  virtual uint32_t ListFolder(const String& folder, std::vector<FileInfo>& entries) = 0;
  // The same entries for walks, in no particular order: each is sure to carry its Name and
  // the directory, reparse-point and device bits, and with ListDetail::Sizes a file's Size,
  // Links and read-only bit too. A backend whose listing costs more per entry (a stat for
  // the size, an extended attribute for hidden and system) answers it more cheaply.
  virtual uint32_t ListFolderNames(const String& folder, std::vector<FileInfo>& entries,
                                   ListDetail detail) {
    (void)detail;
    return ListFolder(folder, entries);
  }
  // The entries of ListFolderNames handed over one at a time, so a walk of a huge folder need
  // not hold its listing; `visit` returns false to stop. Entries may be removed meanwhile.
  virtual uint32_t VisitFolderNames(const String& folder, ListDetail detail,
                                    const std::function<bool(FileInfo&)>& visit) {
    std::vector<FileInfo> entries;
    uint32_t rc = ListFolderNames(folder, entries, detail);
    for (size_t i = 0; rc == ERROR_SUCCESS && i < entries.size(); ++i)
      if (!visit(entries[i])) break;
    return rc;
  }
  virtual uint32_t GetInfo(const String& path, FileInfo& info) = 0;
  // GetInfo that may leave out the hidden and system bits where they cost a look-up of
  // their own; everything else (kind, size, links, read-only, time) is there.
  virtual uint32_t GetBasicInfo(const String& path, FileInfo& info) { return GetInfo(path, info); }
  virtual uint32_t Open(const String& path, OpenMode mode, std::unique_ptr<IFileHandle>& file) = 0;
  virtual uint32_t RemoveFile(const String& path) = 0;
  // Creates the folder and missing parents; an existing folder is success.
  virtual uint32_t MakeFolder(const String& path) = 0;
  // Removes an empty folder (ERROR_DIR_NOT_EMPTY otherwise).
  virtual uint32_t RemoveFolder(const String& path) = 0;
  // Renames a file or folder; an existing target file is replaced.
  virtual uint32_t Rename(const String& from, const String& to) = 0;
  virtual uint32_t SetAttributes(const String& path, uint32_t attributes) = 0;
  // Drive type of the volume holding the path (kDriveFixed, ...), kDriveNoRootDir if none.
  virtual uint32_t DriveType(const String& path) = 0;
};

}  // namespace tc
