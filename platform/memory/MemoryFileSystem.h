// The file system of the in-memory Windows: drive letters, case-insensitive names that keep
// their case, real contents, attributes, last-write times and links that are never followed.
#pragma once
#include <map>
#include <memory>
#include <string_view>

#include "platform/Clock.h"
#include "platform/FileSystem.h"

namespace tc {

// One change made through the IFileSystem interface (or a handle it gave out).
struct FsChange {
  enum class Kind : uint8_t {
    Create, Write, SetSize, RemoveFile, Rename, MakeFolder, RemoveFolder, SetAttributes
  };
  Kind What = Kind::Create;
  String Path;
  String Target;        // Rename: the new path
  uint64_t Offset = 0;  // Write: position; SetSize: the new size; SetAttributes: the value
  Bytes Data;           // Write: the bytes written
};

class MemoryFileSystem : public IFileSystem {
 public:
  // `clock` dates new and written files; without one they carry a fixed date in 2010.
  explicit MemoryFileSystem(std::shared_ptr<IClock> clock = nullptr);
  ~MemoryFileSystem() override;

  uint32_t ListFolder(const String& folder, std::vector<FileInfo>& entries) override;
  uint32_t GetInfo(const String& path, FileInfo& info) override;
  uint32_t Open(const String& path, OpenMode mode, std::unique_ptr<IFileHandle>& file) override;
  uint32_t RemoveFile(const String& path) override;
  uint32_t MakeFolder(const String& path) override;
  uint32_t RemoveFolder(const String& path) override;
  uint32_t Rename(const String& from, const String& to) override;
  uint32_t SetAttributes(const String& path, uint32_t attributes) override;
  uint32_t DriveType(const String& path) override;

  // Seeding for tests. Drive C: exists (fixed); AddDrive adds an empty volume of the given
  // type (kDriveRemovable, kDriveCdRom, ...) or changes the type of an existing one.
  void AddDrive(char16_t letter, uint32_t driveType);
  // Folders and files are created with their missing parents.
  uint32_t AddFolder(const String& path, uint32_t attributes = 0);
  uint32_t AddFile(const String& path, std::string_view content,
                   uint32_t attributes = FILE_ATTRIBUTE_ARCHIVE);
  uint32_t AddFile(const String& path, const Bytes& content,
                   uint32_t attributes = FILE_ATTRIBUTE_ARCHIVE);
  // A symbolic link (file) or junction (folder = true) named `path`: listed with
  // FILE_ATTRIBUTE_REPARSE_POINT, never entered; `target` is only remembered.
  uint32_t AddLink(const String& path, const String& target, bool folder = true);
  // A second name for the content of the file `existing` (a hard link).
  uint32_t AddHardLink(const String& path, const String& existing);
  // A pipe or device node: listed with FILE_ATTRIBUTE_DEVICE, never opened or removed.
  uint32_t AddDevice(const String& path);
  uint32_t SetLastWriteTime(const String& path, int64_t fileTime);

  // Inspection for tests.
  bool Exists(const String& path);
  bool IsFolder(const String& path);
  // The file's bytes as a std::string (raw); "" when the file is missing.
  std::string Contents(const String& path);
  // Names of a folder's entries (files and folders), in listing order.
  StringList Names(const String& folder);

  void RecordChanges(bool on);
  std::vector<FsChange> Changes() const;
  void ClearChanges();

 private:
  struct Node;
  struct Shared;
  struct Place;
  uint32_t Locate(const String& path, Place& place);
  uint32_t AddNode(const String& path, std::unique_ptr<Node> node);
  void Note(FsChange change);
  int64_t Now();

  std::map<char16_t, std::unique_ptr<Node>> drives_;
  std::map<char16_t, uint32_t> driveTypes_;
  std::shared_ptr<Shared> shared_;
};

}  // namespace tc
