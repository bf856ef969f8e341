#include "platform/offline/Hive.h"

#include <fcntl.h>
#include <hivex.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <type_traits>

#include "platform/helpers/TextCodec.h"
#include "platform/offline/HiveFormat.h"
#include "platform/offline/OsError.h"

namespace tc {

namespace {

bool IsAscii(const String& s) {
  for (char16_t c : s)
    if (c >= 0x80) return false;
  return true;
}

String NodeName(hive_h* h, Hive::Node node) {
  char* raw = hivex_node_name(h, node);
  if (!raw) return String();
  String name = FromUtf8(raw);
  free(raw);
  return name;
}

uint32_t LastHivexError() { return errno ? WinErrorFromErrno(errno) : ERROR_BADDB; }

void SyncFolderOf(const std::string& path) {
  size_t slash = path.rfind('/');
  std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd >= 0) {
    fsync(fd);
    close(fd);
  }
}

}  // namespace

std::unique_ptr<Hive> Hive::Open(const std::string& path, std::string& error) {
  std::string problem = CheckHiveFile(path);
  if (!problem.empty()) {
    error = path + " " + problem;
    return nullptr;
  }
  errno = 0;
  hive_h* h = hivex_open(path.c_str(), HIVEX_OPEN_WRITE);
  if (!h) {
    error = path + " is damaged and cannot be read as a hive (" +
            (errno ? std::strerror(errno) : "unknown fault") + ")";
    return nullptr;
  }
  return std::unique_ptr<Hive>(new Hive(h, path));
}

Hive::~Hive() { hivex_close(h_); }

Hive::Node Hive::Root() const { return hivex_root(h_); }

Hive::Node Hive::Child(Node parent, const String& name) {
  if (name.empty()) return 0;
  errno = 0;
  Node child = hivex_node_get_child(h_, parent, ToUtf8(name).c_str());
  if (child || IsAscii(name)) return child;
  // hivex folds ASCII letters only; names with other letters are compared here.
  hive_node_h* children = hivex_node_children(h_, parent);
  if (!children) return 0;
  for (hive_node_h* c = children; *c; ++c) {
    if (SameText(NodeName(h_, *c), name)) {
      child = *c;
      break;
    }
  }
  free(children);
  return child;
}

uint32_t Hive::ChildNames(Node node, StringList& names) {
  names.clear();
  errno = 0;
  hive_node_h* children = hivex_node_children(h_, node);
  if (!children) return LastHivexError();
  for (hive_node_h* c = children; *c; ++c) names.push_back(NodeName(h_, *c));
  free(children);
  return ERROR_SUCCESS;
}

uint32_t Hive::Load(Node node, CachedValues*& cached) {
  auto it = values_.find(node);
  if (it == values_.end()) {
    errno = 0;
    hive_value_h* handles = hivex_node_values(h_, node);
    if (!handles) return LastHivexError();
    CachedValues read;
    for (hive_value_h* v = handles; *v; ++v) {
      char* key = hivex_value_key(h_, *v);
      // A damaged hive may hold any number as a type: held as the integer, never as the enum.
      std::underlying_type_t<hive_type> type = 0;
      size_t len = 0;
      char* data = hivex_value_value(h_, *v, reinterpret_cast<hive_type*>(&type), &len);
      if (key && data) {  // a damaged value is left out rather than failing the key
        RegNamedValue value;
        value.Name = FromUtf8(key);
        value.Value.Type = uint32_t(type);
        value.Value.Data.assign(reinterpret_cast<uint8_t*>(data),
                                reinterpret_cast<uint8_t*>(data) + len);
        read.values.push_back(std::move(value));
      }
      free(key);
      free(data);
    }
    free(handles);
    it = values_.emplace(node, std::move(read)).first;
  }
  cached = &it->second;
  return ERROR_SUCCESS;
}

void Hive::Compact(CachedValues& cached) {
  if (cached.removed.empty()) return;
  size_t kept = 0;
  for (size_t i = 0; i < cached.values.size(); ++i) {
    if (cached.removed[i]) continue;
    if (kept != i) cached.values[kept] = std::move(cached.values[i]);  // never onto itself
    ++kept;
  }
  cached.values.resize(kept);
  cached.removed.clear();
  cached.indexed = false;
}

void Hive::Index(CachedValues& cached) {
  if (cached.indexed) return;
  Compact(cached);
  cached.index.clear();
  cached.duplicates = false;
  for (size_t i = 0; i < cached.values.size(); ++i)
    cached.duplicates |= !cached.index.emplace(UpperCase(cached.values[i].Name), i).second;
  cached.indexed = true;
}

uint32_t Hive::Values(Node node, const std::vector<RegNamedValue>*& values) {
  CachedValues* cached = nullptr;
  uint32_t rc = Load(node, cached);
  if (rc != ERROR_SUCCESS) return rc;
  Compact(*cached);
  values = &cached->values;
  return ERROR_SUCCESS;
}

uint32_t Hive::SetValues(Node node, std::vector<RegNamedValue> values) {
  CachedValues& cached = values_[node];
  cached.values = std::move(values);
  cached.removed.clear();
  cached.indexed = false;
  cached.changed = true;
  dirty_ = true;
  return ERROR_SUCCESS;
}

uint32_t Hive::FindValue(Node node, const String& name, const RegValue*& value) {
  value = nullptr;
  CachedValues* cached = nullptr;
  uint32_t rc = Load(node, cached);
  if (rc != ERROR_SUCCESS) return rc;
  Index(*cached);
  auto it = cached->index.find(UpperCase(name));
  if (it != cached->index.end()) value = &cached->values[it->second].Value;
  return ERROR_SUCCESS;
}

uint32_t Hive::SetValue(Node node, const String& name, const RegValue& value) {
  CachedValues* cached = nullptr;
  uint32_t rc = Load(node, cached);
  if (rc != ERROR_SUCCESS) return rc;
  Index(*cached);
  auto [it, added] = cached->index.emplace(UpperCase(name), cached->values.size());
  if (added) {
    cached->values.push_back({name, value});
    if (!cached->removed.empty()) cached->removed.push_back(false);
  } else {
    cached->values[it->second].Value = value;
  }
  cached->changed = true;
  dirty_ = true;
  return ERROR_SUCCESS;
}

uint32_t Hive::DeleteValue(Node node, const String& name) {
  CachedValues* cached = nullptr;
  uint32_t rc = Load(node, cached);
  if (rc != ERROR_SUCCESS) return rc;
  Index(*cached);
  auto it = cached->index.find(UpperCase(name));
  if (it == cached->index.end()) return ERROR_FILE_NOT_FOUND;
  if (cached->duplicates) {  // every value of that name goes, as a damaged hive may hold two
    std::erase_if(cached->values, [&](const RegNamedValue& v) { return SameText(v.Name, name); });
    cached->indexed = false;
  } else {
    if (cached->removed.empty()) cached->removed.assign(cached->values.size(), false);
    cached->removed[it->second] = true;
    cached->index.erase(it);
  }
  cached->changed = true;
  dirty_ = true;
  return ERROR_SUCCESS;
}

uint32_t Hive::AddChild(Node parent, const String& name, Node& child) {
  errno = 0;
  child = hivex_node_add_child(h_, parent, ToUtf8(name).c_str());
  if (!child) return LastHivexError();
  dirty_ = true;
  return ERROR_SUCCESS;
}

bool Hive::IsBelow(Node node, Node ancestor) {
  Node root = Root();
  for (int depth = 0; node && depth < 512; ++depth) {
    if (node == ancestor) return true;
    if (node == root) return false;
    node = hivex_node_parent(h_, node);
  }
  return false;
}

uint32_t Hive::DeleteTree(Node node) {
  if (node == Root()) return ERROR_ACCESS_DENIED;
  // Pending values of deleted nodes must never be written into their freed cells.
  for (auto it = values_.begin(); it != values_.end();)
    it = IsBelow(it->first, node) ? values_.erase(it) : std::next(it);
  errno = 0;
  if (hivex_node_delete_child(h_, node) != 0) return LastHivexError();
  dirty_ = true;
  return ERROR_SUCCESS;
}

uint32_t Hive::CheckReplaceable(std::string& error) const {
  const std::string probe = path_ + ".tc-check";
  int fd = open(probe.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) {
    int err = errno;
    error = path_ + " cannot be replaced: its folder takes no new file (" + std::strerror(err) + ")";
    return WinErrorFromErrno(err);
  }
  close(fd);
  unlink(probe.c_str());
  struct stat st {};
  struct statvfs vfs {};
  if (stat(path_.c_str(), &st) == 0 && statvfs(probe.substr(0, probe.rfind('/') + 1).c_str(), &vfs) == 0 &&
      uint64_t(vfs.f_bavail) * vfs.f_frsize < uint64_t(st.st_size)) {
    error = path_ + " cannot be replaced: no room for the new copy";
    return ERROR_DISK_FULL;
  }
  int flags = 0;
  fd = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd >= 0) {
    bool fixed = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0 &&
                 (flags & (FS_IMMUTABLE_FL | FS_APPEND_FL)) != 0;
    close(fd);
    if (fixed) {
      error = path_ + " cannot be replaced: the file is immutable";
      return ERROR_FILE_READ_ONLY;
    }
  }
  return ERROR_SUCCESS;
}

uint32_t Hive::Commit(std::string& error) {
  if (!dirty_) return ERROR_SUCCESS;
  for (auto& [node, cached] : values_) {
    if (!cached.changed) continue;
    Compact(cached);
    std::vector<std::string> names;
    names.reserve(cached.values.size());
    std::vector<hive_set_value> set(cached.values.size());
    for (size_t i = 0; i < cached.values.size(); ++i) {
      RegNamedValue& v = cached.values[i];
      names.push_back(ToUtf8(v.Name));
      set[i].key = names.back().data();
      static_assert(sizeof set[i].t == sizeof v.Value.Type);
      std::memcpy(&set[i].t, &v.Value.Type, sizeof set[i].t);  // any type number, as it was read
      set[i].len = v.Value.Data.size();
      set[i].value = reinterpret_cast<char*>(v.Value.Data.data());
    }
    errno = 0;
    if (hivex_node_set_values(h_, node, set.size(), set.data(), 0) != 0) {
      uint32_t code = LastHivexError();
      error = path_ + " could not be changed (" + std::strerror(errno) + ")";
      return code;
    }
    cached.changed = false;
  }

  // A name of its own, so that no other writer of this hive meets it.
  std::string temp = path_ + ".tc-XXXXXX";
  int reserved = mkostemp(temp.data(), O_CLOEXEC);
  if (reserved < 0) {
    int err = errno;
    error = path_ + ": making the new hive failed (" + std::strerror(err) +
            "); the hive is unchanged";
    return WinErrorFromErrno(err);
  }
  close(reserved);
  auto fail = [&](const char* what, int err) {
    unlink(temp.c_str());
    error = path_ + ": " + what + " failed (" + std::strerror(err) + "); the hive is unchanged";
    return WinErrorFromErrno(err);
  };
  errno = 0;
  if (hivex_commit(h_, temp.c_str(), 0) != 0) return fail("writing the new hive", errno);
  int fd = open(temp.c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0) return fail("reopening the new hive", errno);
  int err = ZeroFreeCells(fd);
  if (err == 0 && fsync(fd) != 0) err = errno;
  struct stat st {};
  if (err == 0 && stat(path_.c_str(), &st) == 0) fchmod(fd, st.st_mode & 07777);
  close(fd);
  if (err != 0) return fail("wiping the free cells", err);
  if (rename(temp.c_str(), path_.c_str()) != 0) return fail("replacing the hive", errno);
  SyncFolderOf(path_);
  dirty_ = false;
  return ERROR_SUCCESS;
}

}  // namespace tc
