// Wrappers that make any backend fail on purpose: files in use, failing writes, a full
// volume, registry writes that are refused.
#pragma once
#include <map>
#include <memory>

#include "platform/FileSystem.h"
#include "platform/Registry.h"

namespace tc {

class FaultyFileSystem : public IFileSystem {
 public:
  explicit FaultyFileSystem(std::shared_ptr<IFileSystem> inner);
  ~FaultyFileSystem() override;

  // The file (or folder) is in use: opening it for writing, removing it and renaming it
  // (from or onto it) fail with `code`, ERROR_SHARING_VIOLATION or ERROR_LOCK_VIOLATION.
  // Reading still works.
  void LockFile(const String& path, uint32_t code = ERROR_SHARING_VIOLATION);
  void UnlockFile(const String& path);
  // The n-th change from now on (1 = the next one) fails with `code` and changes nothing;
  // later ones work again. Changes are: opening other than for reading, Write, Flush and
  // SetSize through a handle, RemoveFile, MakeFolder, RemoveFolder, Rename, SetAttributes.
  void FailNthChange(uint64_t n, uint32_t code = ERROR_WRITE_FAULT);
  // True while a change armed with FailNthChange has not been reached yet.
  bool FailurePending() const;
  // The volume has `bytes` left: a write or size change that grows files beyond that fails
  // with ERROR_DISK_FULL and changes nothing; shrinking and removing files gives room back.
  void SetFreeSpace(uint64_t bytes);
  void ClearFaults();
  const std::shared_ptr<IFileSystem>& Inner() const { return inner_; }

  uint32_t ListFolder(const String& folder, std::vector<FileInfo>& entries) override;
  uint32_t GetInfo(const String& path, FileInfo& info) override;
  uint32_t Open(const String& path, OpenMode mode, std::unique_ptr<IFileHandle>& file) override;
  uint32_t RemoveFile(const String& path) override;
  uint32_t MakeFolder(const String& path) override;
  uint32_t RemoveFolder(const String& path) override;
  uint32_t Rename(const String& from, const String& to) override;
  uint32_t SetAttributes(const String& path, uint32_t attributes) override;
  uint32_t DriveType(const String& path) override;

  struct State;

 private:
  uint32_t LockOf(const String& path) const;
  uint64_t SizeOf(const String& path);
  // Counts one change; the armed failure's code when it is this one.
  uint32_t Change();

  std::shared_ptr<IFileSystem> inner_;
  std::shared_ptr<State> state_;  // shared with the handles given out
};

class FaultyRegistry : public IRegistry {
 public:
  explicit FaultyRegistry(std::shared_ptr<IRegistry> inner);

  // The n-th SetValue / DeleteValue / DeleteKeyTree from now on (1 = the next one) fails
  // with `code` and changes nothing.
  void FailNthWrite(uint64_t n, uint32_t code = ERROR_ACCESS_DENIED);
  // Every SetValue / DeleteValue / DeleteKeyTree / CreateKey on the key or below it fails
  // with `code` (a key the user may not change).
  void LockKey(HKEY root, const String& key, uint32_t code = ERROR_ACCESS_DENIED);
  void ClearFaults();
  const std::shared_ptr<IRegistry>& Inner() const { return inner_; }

  uint32_t KeyExists(HKEY root, const String& key, RegView view) override;
  uint32_t CreateKey(HKEY root, const String& key, RegView view) override;
  uint32_t EnumKeys(HKEY root, const String& key, StringList& names, RegView view) override;
  uint32_t EnumValues(HKEY root, const String& key, std::vector<RegNamedValue>& values,
                      RegView view) override;
  uint32_t QueryValue(HKEY root, const String& key, const String& name, RegValue& value,
                      RegView view) override;
  uint32_t SetValue(HKEY root, const String& key, const String& name, const RegValue& value,
                    RegView view) override;
  uint32_t DeleteValue(HKEY root, const String& key, const String& name, RegView view) override;
  uint32_t DeleteKeyTree(HKEY root, const String& key, RegView view) override;
  uint32_t Flush() override;

 private:
  uint32_t Locked(HKEY root, const String& key) const;
  uint32_t CountWrite();

  std::shared_ptr<IRegistry> inner_;
  std::map<std::pair<HKEY, String>, uint32_t> locked_;  // upper-cased key -> code
  uint64_t failIn_ = 0;
  uint32_t failCode_ = ERROR_SUCCESS;
};

}  // namespace tc
