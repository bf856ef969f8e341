#include "platform/offline/OfflineVolume.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"
#include "platform/offline/OsError.h"

namespace tc {

namespace {

constexpr int64_t kUnixEpochAsFileTime = 116444736000000000LL;
// Hidden and system have no POSIX bit: ntfs-3g shows a volume's real attributes in the
// first attribute; on other file systems this backend keeps them in the second.
constexpr char kNtfsAttributes[] = "system.ntfs_attrib";
constexpr char kOwnAttributes[] = "user.tc.attributes";
constexpr uint32_t kExtraAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

bool ReadAttributeWord(const std::string& host, const char* name, uint32_t& value,
                       int* error = nullptr) {
  uint8_t b[4];
  if (lgetxattr(host.c_str(), name, b, sizeof b) != sizeof b) {
    if (error) *error = errno;
    return false;
  }
  value = uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
  return true;
}

void WriteExtraAttributes(const std::string& host, uint32_t attributes) {
  uint32_t word = 0;
  const char* name =
      ReadAttributeWord(host, kNtfsAttributes, word) ? kNtfsAttributes : kOwnAttributes;
  word = (word & ~kExtraAttributes) | (attributes & kExtraAttributes);
  uint8_t b[4] = {uint8_t(word), uint8_t(word >> 8), uint8_t(word >> 16), uint8_t(word >> 24)};
  if (name == kOwnAttributes && word == 0) {
    lremovexattr(host.c_str(), name);  // nothing to keep
    return;
  }
  lsetxattr(host.c_str(), name, b, sizeof b, 0);  // a file system without them keeps none
}

// Kind, size, links, read-only bit and time; hidden and system come apart (ExtraAttributes).
FileInfo InfoFromStat(const std::string& name, const struct stat& st, const std::string& host) {
  FileInfo info;
  info.Name = FromUtf8Lossless(name);
  if (S_ISLNK(st.st_mode)) {
    info.Attributes = FILE_ATTRIBUTE_REPARSE_POINT;
    struct stat target {};
    if (stat(host.c_str(), &target) == 0 && S_ISDIR(target.st_mode))
      info.Attributes |= FILE_ATTRIBUTE_DIRECTORY;
  } else if (S_ISDIR(st.st_mode)) {
    info.Attributes = FILE_ATTRIBUTE_DIRECTORY;
  } else if (S_ISREG(st.st_mode)) {
    info.Attributes = FILE_ATTRIBUTE_ARCHIVE;
    info.Size = uint64_t(st.st_size);
    info.Links = uint32_t(st.st_nlink);
  } else {
    info.Attributes = FILE_ATTRIBUTE_DEVICE;
    return info;
  }
  if ((st.st_mode & S_IWUSR) == 0) info.Attributes |= FILE_ATTRIBUTE_READONLY;
  info.LastWriteTime =
      kUnixEpochAsFileTime + int64_t(st.st_mtim.tv_sec) * 10000000 + st.st_mtim.tv_nsec / 100;
  return info;
}

std::string BaseName(const std::string& host) { return host.substr(host.rfind('/') + 1); }

// True while another open handle holds the file for writing (or, for `exclusive`, at all).
bool InUse(const std::string& host, bool exclusive) {
  int fd = open(host.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return false;
  bool busy = flock(fd, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(fd);
  return busy;
}

class FileHandle : public IFileHandle {
 public:
  FileHandle(int fd, bool writable) : fd_(fd), writable_(writable) {}
  ~FileHandle() override { close(fd_); }
  uint32_t Read(uint64_t offset, void* buffer, size_t size, size_t& done) override {
    done = 0;
    while (done < size) {
      ssize_t n = pread(fd_, static_cast<char*>(buffer) + done, size - done, off_t(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return WinErrorFromErrno(errno);
      if (n == 0) break;
      done += size_t(n);
    }
    return ERROR_SUCCESS;
  }
  uint32_t Write(uint64_t offset, const void* data, size_t size) override {
    if (!writable_) return ERROR_ACCESS_DENIED;
    size_t done = 0;
    while (done < size) {
      ssize_t n = pwrite(fd_, static_cast<const char*>(data) + done, size - done,
                         off_t(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return WinErrorFromErrno(errno);
      if (n == 0) return ERROR_DISK_FULL;
      done += size_t(n);
    }
    return ERROR_SUCCESS;
  }
  uint32_t Flush() override { return fsync(fd_) == 0 ? ERROR_SUCCESS : WinErrorFromErrno(errno); }
  uint32_t SetSize(uint64_t size) override {
    if (!writable_) return ERROR_ACCESS_DENIED;
    return ftruncate(fd_, off_t(size)) == 0 ? ERROR_SUCCESS : WinErrorFromErrno(errno);
  }
  uint32_t GetSize(uint64_t& size) override {
    struct stat st {};
    if (fstat(fd_, &st) != 0) return WinErrorFromErrno(errno);
    size = uint64_t(st.st_size);
    return ERROR_SUCCESS;
  }

 private:
  int fd_;
  bool writable_;
};

}  // namespace

uint32_t OfflineVolume::ExtraAttributes(const std::string& host, const struct stat& st) {
  if (!S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode)) return 0;  // links carry none of their own
  auto known = std::find_if(noAttributes_.begin(), noAttributes_.end(),
                            [&](const auto& d) { return d.first == st.st_dev; });
  uint8_t lacking = known == noAttributes_.end() ? 0 : known->second;
  uint8_t found = 0;
  uint32_t value = 0;
  bool read = false;
  // A file system that cannot hold an attribute says so for every file: asked once.
  for (auto [bit, name] : {std::pair<uint8_t, const char*>{1, kNtfsAttributes}, {2, kOwnAttributes}}) {
    if (read || (lacking & bit)) continue;
    int error = 0;
    read = ReadAttributeWord(host, name, value, &error);
    if (!read && (error == ENOTSUP || error == EOPNOTSUPP)) found |= bit;
  }
  if (found) {
    if (known == noAttributes_.end()) noAttributes_.emplace_back(st.st_dev, found);
    else known->second |= found;
  }
  return read ? value & kExtraAttributes : 0;
}

FileInfo OfflineVolume::FullInfo(const std::string& name, const struct stat& st,
                                 const std::string& host) {
  FileInfo info = InfoFromStat(name, st, host);
  info.Attributes |= ExtraAttributes(host, st);
  return info;
}

uint32_t OfflineVolume::ListFolder(const String& folder, std::vector<FileInfo>& entries) {
  entries.clear();
  std::string host;
  uint32_t rc = drives_.Resolve(folder, LastLink::Refuse, false, host);
  if (rc != ERROR_SUCCESS) return rc == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : rc;
  DIR* dir = opendir(host.c_str());
  if (!dir) return errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND;
  while (dirent* e = readdir(dir)) {
    std::string name = e->d_name;
    if (name == "." || name == "..") continue;
    struct stat st {};
    std::string child = host + "/" + name;
    if (lstat(child.c_str(), &st) == 0) entries.push_back(FullInfo(name, st, child));
  }
  closedir(dir);
  SortByUpperCasedName(entries);
  return ERROR_SUCCESS;
}

uint32_t OfflineVolume::ListFolderNames(const String& folder, std::vector<FileInfo>& entries,
                                       ListDetail detail) {
  entries.clear();
  return VisitFolderNames(folder, detail, [&](FileInfo& e) {
    entries.push_back(std::move(e));
    return true;
  });
}

uint32_t OfflineVolume::VisitFolderNames(const String& folder, ListDetail detail,
                                        const std::function<bool(FileInfo&)>& visit) {
  std::string host;
  uint32_t rc = drives_.Resolve(folder, LastLink::Refuse, false, host);
  if (rc != ERROR_SUCCESS) return rc == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : rc;
  DIR* dir = opendir(host.c_str());
  if (!dir) return errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND;
  const bool sizes = detail == ListDetail::Sizes;
  while (dirent* e = readdir(dir)) {
    if (std::strcmp(e->d_name, ".") == 0 || std::strcmp(e->d_name, "..") == 0) continue;
    unsigned char type = e->d_type;
    struct stat st {};
    FileInfo info;
    // File systems that keep no type in the directory, and files whose size is asked.
    if (type == DT_UNKNOWN || (sizes && type == DT_REG)) {
      if (fstatat(dirfd(dir), e->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
      type = IFTODT(st.st_mode);
      if (sizes && type == DT_REG) {
        info = InfoFromStat(e->d_name, st, host);
        if (!visit(info)) break;
        continue;
      }
    }
    info.Name = FromUtf8Lossless(e->d_name);
    if (type == DT_LNK) {
      info.Attributes = FILE_ATTRIBUTE_REPARSE_POINT;
      if (fstatat(dirfd(dir), e->d_name, &st, 0) == 0 && S_ISDIR(st.st_mode))
        info.Attributes |= FILE_ATTRIBUTE_DIRECTORY;
    } else if (type == DT_DIR) {
      info.Attributes = FILE_ATTRIBUTE_DIRECTORY;
    } else if (type != DT_REG) {
      info.Attributes = FILE_ATTRIBUTE_DEVICE;
    }
    if (!visit(info)) break;
  }
  closedir(dir);
  return ERROR_SUCCESS;
}

uint32_t OfflineVolume::GetInfo(const String& path, FileInfo& info) {
  std::string host;
  uint32_t rc = drives_.Resolve(path, LastLink::NoFollow, false, host);
  if (rc != ERROR_SUCCESS) return rc;
  struct stat st {};
  if (lstat(host.c_str(), &st) != 0) return WinErrorFromErrno(errno);
  info = FullInfo(BaseName(host), st, host);
  return ERROR_SUCCESS;
}

uint32_t OfflineVolume::GetBasicInfo(const String& path, FileInfo& info) {
  std::string host;
  uint32_t rc = drives_.Resolve(path, LastLink::NoFollow, false, host);
  if (rc != ERROR_SUCCESS) return rc;
  struct stat st {};
  if (lstat(host.c_str(), &st) != 0) return WinErrorFromErrno(errno);
  info = InfoFromStat(BaseName(host), st, host);
  return ERROR_SUCCESS;
}

uint32_t OfflineVolume::Open(const String& path, OpenMode mode,
                             std::unique_ptr<IFileHandle>& file) {
  file.reset();
  bool creating = mode == OpenMode::CreateAlways || mode == OpenMode::CreateNew;
  std::string host;
  uint32_t rc = drives_.Resolve(path, LastLink::Refuse, creating, host);
  if (rc != ERROR_SUCCESS) return rc;
  struct stat st {};
  bool exists = lstat(host.c_str(), &st) == 0;
  if (exists && !S_ISREG(st.st_mode)) return ERROR_ACCESS_DENIED;
  if (mode == OpenMode::CreateNew && exists) return ERROR_FILE_EXISTS;
  if (mode != OpenMode::Read && exists && (st.st_mode & S_IWUSR) == 0) return ERROR_ACCESS_DENIED;
  // Never waits on a pipe put there after the look-up; checked to be a file below.
  int flags = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
  switch (mode) {
    case OpenMode::Read: flags |= O_RDONLY; break;
    case OpenMode::ReadWrite: flags |= O_RDWR; break;
    case OpenMode::CreateAlways: flags |= O_RDWR | O_CREAT; break;
    case OpenMode::CreateNew: flags |= O_RDWR | O_CREAT | O_EXCL; break;
  }
  int fd = open(host.c_str(), flags, 0666);
  if (fd < 0) return WinErrorFromErrno(errno);
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(fd);
    return ERROR_ACCESS_DENIED;
  }
  // Readers share with readers; a writer shares with nobody.
  if (flock(fd, (mode == OpenMode::Read ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0) {
    int err = errno;
    close(fd);
    if (!exists) unlink(host.c_str());
    return err == EWOULDBLOCK ? ERROR_SHARING_VIOLATION : WinErrorFromErrno(err);
  }
  if (mode == OpenMode::CreateAlways && ftruncate(fd, 0) != 0) {
    int err = errno;
    close(fd);
    return WinErrorFromErrno(err);
  }
  file = std::make_unique<FileHandle>(fd, mode != OpenMode::Read);
  return ERROR_SUCCESS;
}

uint32_t OfflineVolume::RemoveFile(const String& path) {
  std::string host;
  uint32_t rc = drives_.Resolve(path, LastLink::NoFollow, false, host);
  if (rc != ERROR_SUCCESS) return rc;
  struct stat st {};
  if (lstat(host.c_str(), &st) != 0) return WinErrorFromErrno(errno);
  if (!S_ISREG(st.st_mode) && !S_ISLNK(st.st_mode)) return ERROR_ACCESS_DENIED;
  if (!S_ISLNK(st.st_mode)) {
    if ((st.st_mode & S_IWUSR) == 0) return ERROR_ACCESS_DENIED;
    if (InUse(host, true)) return ERROR_SHARING_VIOLATION;
  }
  return unlink(host.c_str()) == 0 ? ERROR_SUCCESS : WinErrorFromErrno(errno);
}

uint32_t OfflineVolume::MakeFolder(const String& path) {
  if (path.size() < 2 || path[1] != u':' || !drives_.Has(path[0])) return ERROR_PATH_NOT_FOUND;
  String prefix = path.substr(0, std::min<size_t>(path.size(), 3));
  size_t pos = prefix.size();
  while (pos <= path.size()) {
    size_t end = path.find_first_of(u"\\/", pos);
    if (end == String::npos) end = path.size();
    if (end > pos) {
      String partial = path.substr(0, end);
      std::string host;
      uint32_t rc = drives_.Resolve(partial, LastLink::Refuse, true, host);
      if (rc != ERROR_SUCCESS) return rc;
      struct stat st {};
      if (stat(host.c_str(), &st) != 0) {
        if (mkdir(host.c_str(), 0777) != 0 && errno != EEXIST) return WinErrorFromErrno(errno);
      } else if (!S_ISDIR(st.st_mode)) {
        return ERROR_ALREADY_EXISTS;
      }
    }
    pos = end + 1;
  }
  return ERROR_SUCCESS;
}

uint32_t OfflineVolume::RemoveFolder(const String& path) {
  std::string host;
  uint32_t rc = drives_.Resolve(path, LastLink::NoFollow, false, host);
  if (rc != ERROR_SUCCESS) return rc;
  struct stat st {};
  if (lstat(host.c_str(), &st) != 0) return WinErrorFromErrno(errno);
  if (S_ISLNK(st.st_mode)) return unlink(host.c_str()) == 0 ? 0 : WinErrorFromErrno(errno);
  if (!S_ISDIR(st.st_mode)) return ERROR_PATH_NOT_FOUND;
  if (rmdir(host.c_str()) == 0) return ERROR_SUCCESS;
  return errno == EEXIST ? ERROR_DIR_NOT_EMPTY : WinErrorFromErrno(errno);
}

uint32_t OfflineVolume::Rename(const String& from, const String& to) {
  std::string hostFrom, hostTo;
  uint32_t rc = drives_.Resolve(from, LastLink::NoFollow, false, hostFrom);
  if (rc != ERROR_SUCCESS) return rc;
  rc = drives_.Resolve(to, LastLink::NoFollow, true, hostTo);
  if (rc != ERROR_SUCCESS) return rc == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : rc;
  if (hostTo == hostFrom) {
    // Only the case changes: the new name is the one given, not the entry it matched.
    size_t cut = to.find_last_of(u"\\/");
    hostTo = hostTo.substr(0, hostTo.rfind('/') + 1) + ToUtf8Lossless(to.substr(cut + 1));
  }
  struct stat st {};
  if (lstat(hostFrom.c_str(), &st) == 0) {
    if (!S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode) && !S_ISLNK(st.st_mode))
      return ERROR_ACCESS_DENIED;
    if (S_ISREG(st.st_mode) && InUse(hostFrom, true)) return ERROR_SHARING_VIOLATION;
  }
  struct stat target {};
  if (lstat(hostTo.c_str(), &target) == 0 && hostTo != hostFrom) {
    if (S_ISDIR(target.st_mode)) return ERROR_ACCESS_DENIED;
    if (S_ISREG(target.st_mode) && InUse(hostTo, true)) return ERROR_SHARING_VIOLATION;
  }
  return rename(hostFrom.c_str(), hostTo.c_str()) == 0 ? ERROR_SUCCESS : WinErrorFromErrno(errno);
}

uint32_t OfflineVolume::SetAttributes(const String& path, uint32_t attributes) {
  std::string host;
  uint32_t rc = drives_.Resolve(path, LastLink::NoFollow, false, host);
  if (rc != ERROR_SUCCESS) return rc;
  struct stat st {};
  if (lstat(host.c_str(), &st) != 0) return WinErrorFromErrno(errno);
  if (S_ISLNK(st.st_mode)) return ERROR_SUCCESS;  // links carry no attributes of their own
  if (!S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode)) return ERROR_ACCESS_DENIED;
  mode_t mode = st.st_mode & 07777;
  mode = (attributes & FILE_ATTRIBUTE_READONLY) ? (mode & ~mode_t(0222)) : (mode | S_IWUSR);
  if (chmod(host.c_str(), mode) != 0) return WinErrorFromErrno(errno);
  WriteExtraAttributes(host, attributes);
  return ERROR_SUCCESS;
}

uint32_t OfflineVolume::DriveType(const String& path) {
  if (path.size() >= 2 && path[1] == u':' && drives_.Has(path[0])) return kDriveFixed;
  return kDriveNoRootDir;
}

}  // namespace tc
