#include "platform/common/FaultInjection.h"

#include <limits>

#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"

namespace tc {

struct FaultyFileSystem::State {
  std::map<String, uint32_t> Locks;  // WinPath::Key -> code
  uint64_t FailIn = 0;               // changes until the failing one; 0 = none
  uint32_t FailCode = ERROR_SUCCESS;
  bool Limited = false;
  uint64_t Free = 0;

  // True when the change may go on; else `rc` says why not.
  bool NextChange(uint32_t& rc) {
    if (FailIn == 0) return true;
    if (--FailIn != 0) return true;
    rc = FailCode;
    return false;
  }
  bool Take(uint64_t grow, uint32_t& rc) {
    if (!Limited || grow == 0) return true;
    if (grow > Free) {
      rc = ERROR_DISK_FULL;
      return false;
    }
    Free -= grow;
    return true;
  }
  void GiveBack(uint64_t bytes) {
    if (Limited) Free += bytes;
  }
};

namespace {

class FaultyHandle : public IFileHandle {
 public:
  FaultyHandle(std::unique_ptr<IFileHandle> inner, std::shared_ptr<FaultyFileSystem::State> state)
      : inner_(std::move(inner)), state_(std::move(state)) {}

  uint32_t Read(uint64_t offset, void* buffer, size_t size, size_t& done) override {
    return inner_->Read(offset, buffer, size, done);
  }

  uint32_t Write(uint64_t offset, const void* data, size_t size) override {
    uint32_t rc = ERROR_SUCCESS;
    if (!state_->NextChange(rc)) return rc;
    uint64_t before = 0;
    if (uint32_t sizeRc = inner_->GetSize(before)) return sizeRc;
    const uint64_t end = offset + size;
    const uint64_t grow = end > before ? end - before : 0;
    if (!state_->Take(grow, rc)) return rc;
    rc = inner_->Write(offset, data, size);
    if (rc != ERROR_SUCCESS) state_->GiveBack(grow);
    return rc;
  }

  uint32_t Flush() override {
    uint32_t rc = ERROR_SUCCESS;
    if (!state_->NextChange(rc)) return rc;
    return inner_->Flush();
  }

  uint32_t SetSize(uint64_t size) override {
    uint32_t rc = ERROR_SUCCESS;
    if (!state_->NextChange(rc)) return rc;
    uint64_t before = 0;
    if ((rc = inner_->GetSize(before))) return rc;
    if (size > before && !state_->Take(size - before, rc)) return rc;
    rc = inner_->SetSize(size);
    if (rc != ERROR_SUCCESS) {
      if (size > before) state_->GiveBack(size - before);
    } else if (size < before) {
      state_->GiveBack(before - size);
    }
    return rc;
  }

  uint32_t GetSize(uint64_t& size) override { return inner_->GetSize(size); }

 private:
  std::unique_ptr<IFileHandle> inner_;
  std::shared_ptr<FaultyFileSystem::State> state_;
};

}  // namespace

FaultyFileSystem::FaultyFileSystem(std::shared_ptr<IFileSystem> inner)
    : inner_(std::move(inner)), state_(std::make_shared<State>()) {}

FaultyFileSystem::~FaultyFileSystem() = default;

void FaultyFileSystem::LockFile(const String& path, uint32_t code) {
  state_->Locks[WinPath::Key(path)] = code;
}

void FaultyFileSystem::UnlockFile(const String& path) { state_->Locks.erase(WinPath::Key(path)); }

void FaultyFileSystem::FailNthChange(uint64_t n, uint32_t code) {
  state_->FailIn = n;
  state_->FailCode = code;
}

bool FaultyFileSystem::FailurePending() const { return state_->FailIn != 0; }

uint32_t FaultyFileSystem::Change() {
  uint32_t rc = ERROR_SUCCESS;
  state_->NextChange(rc);
  return rc;
}

void FaultyFileSystem::SetFreeSpace(uint64_t bytes) {
  state_->Limited = true;
  state_->Free = bytes;
}

void FaultyFileSystem::ClearFaults() { *state_ = State(); }

uint32_t FaultyFileSystem::LockOf(const String& path) const {
  auto it = state_->Locks.find(WinPath::Key(path));
  return it == state_->Locks.end() ? ERROR_SUCCESS : it->second;
}

uint64_t FaultyFileSystem::SizeOf(const String& path) {
  FileInfo info;
  if (inner_->GetInfo(path, info) != ERROR_SUCCESS || info.IsDirectory()) return 0;
  return info.Size;
}

uint32_t FaultyFileSystem::ListFolder(const String& folder, std::vector<FileInfo>& entries) {
  return inner_->ListFolder(folder, entries);
}

uint32_t FaultyFileSystem::GetInfo(const String& path, FileInfo& info) {
  return inner_->GetInfo(path, info);
}

uint32_t FaultyFileSystem::Open(const String& path, OpenMode mode,
                                std::unique_ptr<IFileHandle>& file) {
  file.reset();
  if (mode != OpenMode::Read) {
    if (uint32_t rc = LockOf(path)) return rc;
    if (uint32_t rc = Change()) return rc;
  }
  const uint64_t dropped = mode == OpenMode::CreateAlways ? SizeOf(path) : 0;
  std::unique_ptr<IFileHandle> inner;
  if (uint32_t rc = inner_->Open(path, mode, inner)) return rc;
  state_->GiveBack(dropped);
  file = std::make_unique<FaultyHandle>(std::move(inner), state_);
  return ERROR_SUCCESS;
}

uint32_t FaultyFileSystem::RemoveFile(const String& path) {
  if (uint32_t rc = LockOf(path)) return rc;
  if (uint32_t rc = Change()) return rc;
  const uint64_t size = SizeOf(path);
  uint32_t rc = inner_->RemoveFile(path);
  if (rc == ERROR_SUCCESS) state_->GiveBack(size);
  return rc;
}

uint32_t FaultyFileSystem::MakeFolder(const String& path) {
  if (uint32_t rc = Change()) return rc;
  return inner_->MakeFolder(path);
}

uint32_t FaultyFileSystem::RemoveFolder(const String& path) {
  if (uint32_t rc = LockOf(path)) return rc;
  if (uint32_t rc = Change()) return rc;
  return inner_->RemoveFolder(path);
}

uint32_t FaultyFileSystem::Rename(const String& from, const String& to) {
  if (uint32_t rc = LockOf(from)) return rc;
  if (uint32_t rc = LockOf(to)) return rc;
  if (uint32_t rc = Change()) return rc;
  const uint64_t replaced = WinPath::Key(from) == WinPath::Key(to) ? 0 : SizeOf(to);
  uint32_t rc = inner_->Rename(from, to);
  if (rc == ERROR_SUCCESS) state_->GiveBack(replaced);
  return rc;
}

uint32_t FaultyFileSystem::SetAttributes(const String& path, uint32_t attributes) {
  if (uint32_t rc = Change()) return rc;
  return inner_->SetAttributes(path, attributes);
}

uint32_t FaultyFileSystem::DriveType(const String& path) { return inner_->DriveType(path); }

FaultyRegistry::FaultyRegistry(std::shared_ptr<IRegistry> inner) : inner_(std::move(inner)) {}

void FaultyRegistry::FailNthWrite(uint64_t n, uint32_t code) {
  failIn_ = n;
  failCode_ = code;
}

void FaultyRegistry::LockKey(HKEY root, const String& key, uint32_t code) {
  locked_[{root, UpperCase(key)}] = code;
}

void FaultyRegistry::ClearFaults() {
  locked_.clear();
  failIn_ = 0;
  failCode_ = ERROR_SUCCESS;
}

uint32_t FaultyRegistry::Locked(HKEY root, const String& key) const {
  const String up = UpperCase(key);
  for (const auto& [where, code] : locked_) {
    if (where.first != root) continue;
    const String& k = where.second;
    if (k.empty() || up == k || (up.size() > k.size() && up.compare(0, k.size(), k) == 0 &&
                                 up[k.size()] == u'\\')) {
      return code;
    }
  }
  return ERROR_SUCCESS;
}

uint32_t FaultyRegistry::CountWrite() {
  if (failIn_ == 0 || --failIn_ != 0) return ERROR_SUCCESS;
  return failCode_;
}

uint32_t FaultyRegistry::KeyExists(HKEY root, const String& key, RegView view) {
  return inner_->KeyExists(root, key, view);
}

uint32_t FaultyRegistry::CreateKey(HKEY root, const String& key, RegView view) {
  if (uint32_t rc = Locked(root, key)) return rc;
  return inner_->CreateKey(root, key, view);
}

uint32_t FaultyRegistry::EnumKeys(HKEY root, const String& key, StringList& names,
                                  RegView view) {
  return inner_->EnumKeys(root, key, names, view);
}

uint32_t FaultyRegistry::EnumValues(HKEY root, const String& key,
                                    std::vector<RegNamedValue>& values, RegView view) {
  return inner_->EnumValues(root, key, values, view);
}

uint32_t FaultyRegistry::QueryValue(HKEY root, const String& key, const String& name,
                                    RegValue& value, RegView view) {
  return inner_->QueryValue(root, key, name, value, view);
}

uint32_t FaultyRegistry::SetValue(HKEY root, const String& key, const String& name,
                                  const RegValue& value, RegView view) {
  if (uint32_t rc = Locked(root, key)) return rc;
  if (uint32_t rc = CountWrite()) return rc;
  return inner_->SetValue(root, key, name, value, view);
}

uint32_t FaultyRegistry::DeleteValue(HKEY root, const String& key, const String& name,
                                     RegView view) {
  if (uint32_t rc = Locked(root, key)) return rc;
  if (uint32_t rc = CountWrite()) return rc;
  return inner_->DeleteValue(root, key, name, view);
}

uint32_t FaultyRegistry::DeleteKeyTree(HKEY root, const String& key, RegView view) {
  if (uint32_t rc = Locked(root, key)) return rc;
  // A locked key further down keeps the whole tree.
  const String up = UpperCase(key) + u"\\";
  for (const auto& [where, code] : locked_) {
    if (where.first == root && where.second.compare(0, up.size(), up) == 0) return code;
  }
  if (uint32_t rc = CountWrite()) return rc;
  return inner_->DeleteKeyTree(root, key, view);
}

uint32_t FaultyRegistry::Flush() { return inner_->Flush(); }

}  // namespace tc
