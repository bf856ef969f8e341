#include "platform/memory/MemoryFileSystem.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"

namespace tc {

namespace {

// 2010-01-01 00:00 UTC as FILETIME.
constexpr int64_t kDefaultTime = 129067776000000000LL;
constexpr uint32_t kSettableAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                         FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                                         0x100 /* temporary */ | 0x1000 /* offline */ |
                                         0x2000 /* not content indexed */;

struct Body {
  Bytes Data;
  int64_t LastWrite = 0;
  uint32_t Names = 1;  // hard links to this content
};

}  // namespace

struct MemoryFileSystem::Node {
  String Name;
  uint32_t Attributes = 0;  // FILE_ATTRIBUTE_DIRECTORY / _REPARSE_POINT included
  int64_t LastWrite = 0;    // folders and links; files keep theirs in Body
  std::shared_ptr<Body> File;
  String LinkTarget;
  std::map<String, std::unique_ptr<Node>> Children;  // by upper-cased name

  bool IsLink() const { return (Attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0; }
  bool IsRealFolder() const {
    return (Attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && !IsLink();
  }
  bool IsPlainFile() const { return File != nullptr; }
  bool IsDevice() const { return (Attributes & FILE_ATTRIBUTE_DEVICE) != 0; }
};

struct MemoryFileSystem::Shared {
  std::shared_ptr<IClock> Clock;
  bool Recording = false;
  std::vector<FsChange> Changes;

  int64_t Now() const { return Clock ? Clock->Now() : kDefaultTime; }
  void Note(FsChange change) {
    if (Recording) Changes.push_back(std::move(change));
  }
};

// Where a path leads: its parent folder and the entry (null when only the entry is missing).
struct MemoryFileSystem::Place {
  Node* Parent = nullptr;  // null for a drive root
  Node* Entry = nullptr;
  String Leaf;
  String Key;              // upper-cased full path, for ancestry tests
};

namespace {

class MemoryFileHandle : public IFileHandle {
 public:
  using Note = std::function<void(FsChange)>;
  MemoryFileHandle(std::shared_ptr<Body> body, std::shared_ptr<IClock> clock, String path,
                   bool writable, Note note)
      : body_(std::move(body)), clock_(std::move(clock)), path_(std::move(path)),
        writable_(writable), note_(std::move(note)) {}

  uint32_t Read(uint64_t offset, void* buffer, size_t size, size_t& done) override {
    done = 0;
    if (offset >= body_->Data.size()) return ERROR_SUCCESS;
    done = static_cast<size_t>(std::min<uint64_t>(size, body_->Data.size() - offset));
    if (done) std::memcpy(buffer, body_->Data.data() + offset, done);
    return ERROR_SUCCESS;
  }

  uint32_t Write(uint64_t offset, const void* data, size_t size) override {
    if (!writable_) return ERROR_ACCESS_DENIED;
    if (size == 0) return ERROR_SUCCESS;
    if (offset + size > body_->Data.size()) body_->Data.resize(offset + size);
    std::memcpy(body_->Data.data() + offset, data, size);
    Touch();
    FsChange c{FsChange::Kind::Write, path_, String(), offset, Bytes()};
    const uint8_t* p = static_cast<const uint8_t*>(data);
    c.Data.assign(p, p + size);
    note_(std::move(c));
    return ERROR_SUCCESS;
  }

  uint32_t Flush() override { return writable_ ? ERROR_SUCCESS : ERROR_ACCESS_DENIED; }

  uint32_t SetSize(uint64_t size) override {
    if (!writable_) return ERROR_ACCESS_DENIED;
    body_->Data.resize(size);
    Touch();
    note_(FsChange{FsChange::Kind::SetSize, path_, String(), size, Bytes()});
    return ERROR_SUCCESS;
  }

  uint32_t GetSize(uint64_t& size) override {
    size = body_->Data.size();
    return ERROR_SUCCESS;
  }

 private:
  void Touch() { body_->LastWrite = clock_ ? clock_->Now() : kDefaultTime; }

  std::shared_ptr<Body> body_;
  std::shared_ptr<IClock> clock_;
  String path_;
  bool writable_;
  Note note_;
};

FileInfo InfoOf(const String& name, uint32_t attributes, uint64_t size, int64_t time,
                uint32_t links = 1) {
  FileInfo info;
  info.Name = name;
  info.Attributes = attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
  info.Size = size;
  info.LastWriteTime = time;
  info.Links = links;
  return info;
}

}  // namespace

MemoryFileSystem::MemoryFileSystem(std::shared_ptr<IClock> clock)
    : shared_(std::make_shared<Shared>()) {
  shared_->Clock = std::move(clock);
  AddDrive(u'C', kDriveFixed);
}

MemoryFileSystem::~MemoryFileSystem() = default;

int64_t MemoryFileSystem::Now() { return shared_->Now(); }

void MemoryFileSystem::Note(FsChange change) { shared_->Note(std::move(change)); }

uint32_t MemoryFileSystem::Locate(const String& path, Place& place) {
  place = Place();
  char16_t drive;
  StringList parts;
  if (uint32_t rc = WinPath::Split(path, drive, parts)) return rc;
  auto d = drives_.find(drive);
  if (d == drives_.end()) return ERROR_PATH_NOT_FOUND;
  place.Key = String(1, drive) + u":";
  Node* node = d->second.get();
  if (parts.empty()) {
    place.Entry = node;
    return ERROR_SUCCESS;
  }
  for (size_t i = 0; i + 1 < parts.size(); ++i) {
    auto it = node->Children.find(UpperCase(parts[i]));
    // A link on the way is never entered.
    if (it == node->Children.end() || !it->second->IsRealFolder()) return ERROR_PATH_NOT_FOUND;
    node = it->second.get();
    place.Key += u"\\" + it->first;
  }
  place.Parent = node;
  place.Leaf = parts.back();
  const String up = UpperCase(place.Leaf);
  place.Key += u"\\" + up;
  auto it = node->Children.find(up);
  if (it != node->Children.end()) place.Entry = it->second.get();
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::ListFolder(const String& folder, std::vector<FileInfo>& entries) {
  entries.clear();
  Place p;
  if (Locate(folder, p) != ERROR_SUCCESS || !p.Entry || !p.Entry->IsRealFolder()) {
    return ERROR_PATH_NOT_FOUND;
  }
  for (const auto& [up, child] : p.Entry->Children) {
    if (child->File) {
      entries.push_back(InfoOf(child->Name, child->Attributes, child->File->Data.size(),
                               child->File->LastWrite, child->File->Names));
    } else {
      entries.push_back(InfoOf(child->Name, child->Attributes, 0, child->LastWrite));
    }
  }
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::GetInfo(const String& path, FileInfo& info) {
  Place p;
  if (uint32_t rc = Locate(path, p)) return rc;
  if (!p.Entry) return ERROR_FILE_NOT_FOUND;
  const Node& n = *p.Entry;
  info = n.File ? InfoOf(n.Name, n.Attributes, n.File->Data.size(), n.File->LastWrite,
                         n.File->Names)
                : InfoOf(n.Name, n.Attributes, 0, n.LastWrite);
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::Open(const String& path, OpenMode mode,
                                std::unique_ptr<IFileHandle>& file) {
  file.reset();
  Place p;
  if (uint32_t rc = Locate(path, p)) return rc;
  Node* n = p.Entry;
  if (n && (!n->IsPlainFile() || n->IsLink())) return ERROR_ACCESS_DENIED;
  const bool readOnly = n && (n->Attributes & FILE_ATTRIBUTE_READONLY);
  switch (mode) {
    case OpenMode::Read:
    case OpenMode::ReadWrite:
      if (!n) return ERROR_FILE_NOT_FOUND;
      if (mode == OpenMode::ReadWrite && readOnly) return ERROR_ACCESS_DENIED;
      break;
    case OpenMode::CreateNew:
    case OpenMode::CreateAlways:
      if (!p.Parent) return ERROR_ACCESS_DENIED;  // a drive root
      if (n && mode == OpenMode::CreateNew) return ERROR_FILE_EXISTS;
      if (n && readOnly) return ERROR_ACCESS_DENIED;
      if (n) {
        n->File->Data.clear();
        n->File->LastWrite = Now();
        n->Attributes |= FILE_ATTRIBUTE_ARCHIVE;
      } else {
        auto node = std::make_unique<Node>();
        node->Name = p.Leaf;
        node->Attributes = FILE_ATTRIBUTE_ARCHIVE;
        node->File = std::make_shared<Body>();
        node->File->LastWrite = Now();
        n = node.get();
        p.Parent->Children[UpperCase(p.Leaf)] = std::move(node);
      }
      Note(FsChange{FsChange::Kind::Create, path, String(), 0, Bytes()});
      break;
  }
  std::weak_ptr<Shared> shared = shared_;
  auto note = [shared](FsChange c) {
    if (auto s = shared.lock()) s->Note(std::move(c));
  };
  file = std::make_unique<MemoryFileHandle>(n->File, shared_->Clock, path,
                                            mode != OpenMode::Read, note);
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::RemoveFile(const String& path) {
  Place p;
  if (uint32_t rc = Locate(path, p)) return rc;
  if (!p.Entry) return ERROR_FILE_NOT_FOUND;
  if (!p.Parent || p.Entry->IsRealFolder() || p.Entry->IsDevice()) return ERROR_ACCESS_DENIED;
  if (!p.Entry->IsLink() && (p.Entry->Attributes & FILE_ATTRIBUTE_READONLY)) {
    return ERROR_ACCESS_DENIED;
  }
  if (p.Entry->File) --p.Entry->File->Names;
  p.Parent->Children.erase(UpperCase(p.Leaf));
  Note(FsChange{FsChange::Kind::RemoveFile, path, String(), 0, Bytes()});
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::MakeFolder(const String& path) {
  char16_t drive;
  StringList parts;
  if (uint32_t rc = WinPath::Split(path, drive, parts)) return rc;
  auto d = drives_.find(drive);
  if (d == drives_.end()) return ERROR_PATH_NOT_FOUND;
  Node* node = d->second.get();
  bool created = false;
  for (size_t i = 0; i < parts.size(); ++i) {
    auto& slot = node->Children[UpperCase(parts[i])];
    if (!slot) {
      slot = std::make_unique<Node>();
      slot->Name = parts[i];
      slot->Attributes = FILE_ATTRIBUTE_DIRECTORY;
      slot->LastWrite = Now();
      created = true;
    } else if (!slot->IsRealFolder()) {
      return i + 1 == parts.size() ? ERROR_ALREADY_EXISTS : ERROR_PATH_NOT_FOUND;
    }
    node = slot.get();
  }
  if (created) Note(FsChange{FsChange::Kind::MakeFolder, path, String(), 0, Bytes()});
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::RemoveFolder(const String& path) {
  Place p;
  if (uint32_t rc = Locate(path, p)) return rc;
  if (!p.Entry) return ERROR_FILE_NOT_FOUND;
  if (!p.Parent) return ERROR_ACCESS_DENIED;
  if (p.Entry->IsPlainFile() || p.Entry->IsDevice()) return ERROR_PATH_NOT_FOUND;
  if (!p.Entry->IsLink()) {
    if (p.Entry->Attributes & FILE_ATTRIBUTE_READONLY) return ERROR_ACCESS_DENIED;
    if (!p.Entry->Children.empty()) return ERROR_DIR_NOT_EMPTY;
  }
  p.Parent->Children.erase(UpperCase(p.Leaf));
  Note(FsChange{FsChange::Kind::RemoveFolder, path, String(), 0, Bytes()});
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::Rename(const String& from, const String& to) {
  Place src, dst;
  if (uint32_t rc = Locate(from, src)) return rc;
  if (!src.Entry) return ERROR_FILE_NOT_FOUND;
  if (!src.Parent || src.Entry->IsDevice()) return ERROR_ACCESS_DENIED;
  if (uint32_t rc = Locate(to, dst)) return rc;
  if (!dst.Parent) return ERROR_ACCESS_DENIED;
  const bool sameEntry = dst.Entry == src.Entry;
  if (dst.Entry && !sameEntry) {
    if (!dst.Entry->IsPlainFile() || !src.Entry->IsPlainFile()) return ERROR_ACCESS_DENIED;
    if (dst.Entry->Attributes & FILE_ATTRIBUTE_READONLY) return ERROR_ACCESS_DENIED;
  }
  if (!sameEntry && dst.Key.size() > src.Key.size() &&
      dst.Key.compare(0, src.Key.size(), src.Key) == 0 && dst.Key[src.Key.size()] == u'\\') {
    return ERROR_ACCESS_DENIED;  // a folder into itself
  }
  if (dst.Entry && !sameEntry) --dst.Entry->File->Names;
  auto it = src.Parent->Children.find(UpperCase(src.Leaf));
  std::unique_ptr<Node> moving = std::move(it->second);
  src.Parent->Children.erase(it);
  moving->Name = dst.Leaf;
  dst.Parent->Children[UpperCase(dst.Leaf)] = std::move(moving);
  Note(FsChange{FsChange::Kind::Rename, from, to, 0, Bytes()});
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::SetAttributes(const String& path, uint32_t attributes) {
  Place p;
  if (uint32_t rc = Locate(path, p)) return rc;
  if (!p.Entry) return ERROR_FILE_NOT_FOUND;
  Node& n = *p.Entry;
  n.Attributes = (n.Attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) |
                 (attributes & kSettableAttributes);
  Note(FsChange{FsChange::Kind::SetAttributes, path, String(), attributes, Bytes()});
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::DriveType(const String& path) {
  if (path.size() < 2 || path[1] != u':') return kDriveNoRootDir;
  auto it = driveTypes_.find(UpCaseAscii(path[0]));
  return it == driveTypes_.end() ? kDriveNoRootDir : it->second;
}

void MemoryFileSystem::AddDrive(char16_t letter, uint32_t driveType) {
  letter = UpCaseAscii(letter);
  driveTypes_[letter] = driveType;
  auto& root = drives_[letter];
  if (!root) {
    root = std::make_unique<Node>();
    root->Name = String(1, letter) + u":";
    root->Attributes = FILE_ATTRIBUTE_DIRECTORY;
    root->LastWrite = kDefaultTime;
  }
}

uint32_t MemoryFileSystem::AddNode(const String& path, std::unique_ptr<Node> node) {
  if (uint32_t rc = MakeFolder(WinPath::Parent(path))) return rc;
  Place p;
  if (uint32_t rc = Locate(path, p)) return rc;
  if (!p.Parent) return ERROR_ACCESS_DENIED;
  if (p.Entry) return ERROR_ALREADY_EXISTS;
  node->Name = p.Leaf;
  p.Parent->Children[UpperCase(p.Leaf)] = std::move(node);
  return ERROR_SUCCESS;
}

uint32_t MemoryFileSystem::AddFolder(const String& path, uint32_t attributes) {
  bool wasRecording = shared_->Recording;
  shared_->Recording = false;
  uint32_t rc = MakeFolder(path);
  shared_->Recording = wasRecording;
  if (rc == ERROR_SUCCESS && attributes != 0) {
    Place p;
    Locate(path, p);
    p.Entry->Attributes = FILE_ATTRIBUTE_DIRECTORY | (attributes & kSettableAttributes);
  }
  return rc;
}

uint32_t MemoryFileSystem::AddFile(const String& path, std::string_view content,
                                   uint32_t attributes) {
  return AddFile(path, Bytes(content.begin(), content.end()), attributes);
}

uint32_t MemoryFileSystem::AddFile(const String& path, const Bytes& content,
                                   uint32_t attributes) {
  auto node = std::make_unique<Node>();
  node->Attributes = attributes & kSettableAttributes;
  node->File = std::make_shared<Body>();
  node->File->Data = content;
  node->File->LastWrite = Now();
  bool wasRecording = shared_->Recording;
  shared_->Recording = false;
  uint32_t rc = AddNode(path, std::move(node));
  shared_->Recording = wasRecording;
  return rc;
}

uint32_t MemoryFileSystem::AddLink(const String& path, const String& target, bool folder) {
  auto node = std::make_unique<Node>();
  node->Attributes =
      FILE_ATTRIBUTE_REPARSE_POINT | (folder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE);
  node->LastWrite = Now();
  node->LinkTarget = target;
  bool wasRecording = shared_->Recording;
  shared_->Recording = false;
  uint32_t rc = AddNode(path, std::move(node));
  shared_->Recording = wasRecording;
  return rc;
}

uint32_t MemoryFileSystem::AddHardLink(const String& path, const String& existing) {
  Place p;
  if (uint32_t rc = Locate(existing, p)) return rc;
  if (!p.Entry || !p.Entry->IsPlainFile()) return ERROR_FILE_NOT_FOUND;
  auto node = std::make_unique<Node>();
  node->Attributes = p.Entry->Attributes;
  node->File = p.Entry->File;
  bool wasRecording = shared_->Recording;
  shared_->Recording = false;
  uint32_t rc = AddNode(path, std::move(node));
  shared_->Recording = wasRecording;
  if (rc == ERROR_SUCCESS) ++p.Entry->File->Names;
  return rc;
}

uint32_t MemoryFileSystem::AddDevice(const String& path) {
  auto node = std::make_unique<Node>();
  node->Attributes = FILE_ATTRIBUTE_DEVICE;
  node->LastWrite = Now();
  return AddNode(path, std::move(node));
}

uint32_t MemoryFileSystem::SetLastWriteTime(const String& path, int64_t fileTime) {
  Place p;
  if (uint32_t rc = Locate(path, p)) return rc;
  if (!p.Entry) return ERROR_FILE_NOT_FOUND;
  if (p.Entry->File) {
    p.Entry->File->LastWrite = fileTime;
  } else {
    p.Entry->LastWrite = fileTime;
  }
  return ERROR_SUCCESS;
}

bool MemoryFileSystem::Exists(const String& path) {
  Place p;
  return Locate(path, p) == ERROR_SUCCESS && p.Entry;
}

bool MemoryFileSystem::IsFolder(const String& path) {
  Place p;
  return Locate(path, p) == ERROR_SUCCESS && p.Entry && p.Entry->IsRealFolder();
}

std::string MemoryFileSystem::Contents(const String& path) {
  Place p;
  if (Locate(path, p) != ERROR_SUCCESS || !p.Entry || !p.Entry->File) return std::string();
  const Bytes& d = p.Entry->File->Data;
  return std::string(d.begin(), d.end());
}

StringList MemoryFileSystem::Names(const String& folder) {
  std::vector<FileInfo> entries;
  ListFolder(folder, entries);
  StringList names;
  for (const auto& e : entries) names.push_back(e.Name);
  return names;
}

void MemoryFileSystem::RecordChanges(bool on) { shared_->Recording = on; }

std::vector<FsChange> MemoryFileSystem::Changes() const { return shared_->Changes; }

void MemoryFileSystem::ClearChanges() { shared_->Changes.clear(); }

}  // namespace tc
