#include "platform/win32/Win32FileSystem.h"

#include <algorithm>
#include <string>

#include "platform/helpers/TextCodec.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>

namespace tc {

namespace {

String WithoutTrailingDelim(String path) {
  while (path.size() > 3 && path.back() == kPathDelim) path.pop_back();
  return path;
}

bool IsDriveRoot(const String& path) {
  return (path.size() == 2 || (path.size() == 3 && path[2] == kPathDelim)) && path[1] == u':';
}

int64_t FileTimeOf(const FILETIME& t) {
  return static_cast<int64_t>((static_cast<uint64_t>(t.dwHighDateTime) << 32) | t.dwLowDateTime);
}

FileInfo InfoOf(const WIN32_FIND_DATAW& d) {
  FileInfo info;
  info.Name = FromWide(d.cFileName);
  info.Size = (static_cast<uint64_t>(d.nFileSizeHigh) << 32) | d.nFileSizeLow;
  info.Attributes = d.dwFileAttributes;
  info.LastWriteTime = FileTimeOf(d.ftLastWriteTime);
  return info;
}

// FindFirstFileEx does not follow reparse points: it reports the link's own entry.
HANDLE FindFirst(const String& pattern, WIN32_FIND_DATAW& data) {
  return FindFirstFileExW(Wide(ExtendedPath(pattern)), FindExInfoBasic, &data,
                          FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
}

DWORD AttributesOf(const String& path) {
  return GetFileAttributesW(Wide(ExtendedPath(WithoutTrailingDelim(path))));
}

// Names an NTFS file goes by; asking for attributes only shares with any other opener.
uint32_t LinksOf(const String& path) {
  HANDLE h = CreateFileW(Wide(ExtendedPath(path)), FILE_READ_ATTRIBUTES,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (h == INVALID_HANDLE_VALUE) return 1;
  BY_HANDLE_FILE_INFORMATION about;
  const bool known = GetFileInformationByHandle(h, &about);
  CloseHandle(h);
  return known && about.nNumberOfLinks > 0 ? about.nNumberOfLinks : 1;
}

// Windows resolves links anywhere in a path; refusing paths that pass through one keeps
// every operation on this side of a link. `withLast` includes the path's own last component
// (for listing a folder, which would enter it).
uint32_t CrossesLink(const String& path, bool withLast) {
  size_t start = 0;
  if (path.starts_with(u"\\\\?\\")) start = 4;
  if (path.size() >= start + 3 && path[start + 1] == u':') {
    start += 3;
  } else if (path.starts_with(u"\\\\")) {  // \\server\share\ is the root
    const size_t share = path.find(kPathDelim, 2);
    start = share == String::npos ? path.size() : path.find(kPathDelim, share + 1);
    if (start == String::npos) return ERROR_SUCCESS;
    ++start;
  }
  const String p = WithoutTrailingDelim(path);
  for (size_t cut = p.find(kPathDelim, start);; cut = p.find(kPathDelim, cut + 1)) {
    if (cut == String::npos && !withLast) break;
    const String prefix = cut == String::npos ? p : p.substr(0, cut);
    const DWORD a = GetFileAttributesW(Wide(ExtendedPath(prefix)));
    if (a == INVALID_FILE_ATTRIBUTES) break;  // missing: the operation itself says so
    if (a & FILE_ATTRIBUTE_REPARSE_POINT) return ERROR_CANT_RESOLVE_FILENAME;
    if (cut == String::npos) break;
  }
  return ERROR_SUCCESS;
}

class Win32FileHandle : public IFileHandle {
 public:
  Win32FileHandle(HANDLE h, bool writable) : h_(h), writable_(writable) {}
  ~Win32FileHandle() override { CloseHandle(h_); }

  uint32_t Read(uint64_t offset, void* buffer, size_t size, size_t& done) override {
    done = 0;
    auto* out = static_cast<uint8_t*>(buffer);
    while (done < size) {
      DWORD chunk = static_cast<DWORD>(std::min<size_t>(size - done, 1u << 30));
      DWORD got = 0;
      OVERLAPPED at = Position(offset + done);
      if (!ReadFile(h_, out + done, chunk, &got, &at)) {
        if (GetLastError() == ERROR_HANDLE_EOF) break;
        return LastNativeError();
      }
      if (got == 0) break;
      done += got;
    }
    return ERROR_SUCCESS;
  }

  // A handle opened for reading refuses changes itself: systems disagree on the code.
  uint32_t Write(uint64_t offset, const void* data, size_t size) override {
    if (!writable_) return ERROR_ACCESS_DENIED;
    const auto* in = static_cast<const uint8_t*>(data);
    size_t done = 0;
    while (done < size) {
      DWORD chunk = static_cast<DWORD>(std::min<size_t>(size - done, 1u << 30));
      DWORD put = 0;
      OVERLAPPED at = Position(offset + done);
      if (!WriteFile(h_, in + done, chunk, &put, &at)) return LastNativeError();
      if (put == 0) return ERROR_WRITE_FAULT;
      done += put;
    }
    return ERROR_SUCCESS;
  }

  uint32_t Flush() override { return FlushFileBuffers(h_) ? ERROR_SUCCESS : LastNativeError(); }

  uint32_t SetSize(uint64_t size) override {
    if (!writable_) return ERROR_ACCESS_DENIED;
    LARGE_INTEGER at;
    at.QuadPart = static_cast<LONGLONG>(size);
    if (!SetFilePointerEx(h_, at, nullptr, FILE_BEGIN) || !SetEndOfFile(h_))
      return LastNativeError();
    return ERROR_SUCCESS;
  }

  uint32_t GetSize(uint64_t& size) override {
    LARGE_INTEGER s;
    if (!GetFileSizeEx(h_, &s)) return LastNativeError();
    size = static_cast<uint64_t>(s.QuadPart);
    return ERROR_SUCCESS;
  }

 private:
  static OVERLAPPED Position(uint64_t offset) {
    OVERLAPPED o{};
    o.Offset = static_cast<DWORD>(offset);
    o.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return o;
  }

  HANDLE h_;
  bool writable_;
};

}  // namespace

uint32_t Win32FileSystem::ListFolder(const String& folder, std::vector<FileInfo>& entries) {
  entries.clear();
  uint32_t rc = VisitFolderNames(folder, ListDetail::Sizes, [&](FileInfo& e) {
    entries.push_back(std::move(e));
    return true;
  });
  if (rc != ERROR_SUCCESS) {
    entries.clear();
    return rc;
  }
  std::stable_sort(entries.begin(), entries.end(), [](const FileInfo& a, const FileInfo& b) {
    return UpperCase(a.Name) < UpperCase(b.Name);
  });
  return ERROR_SUCCESS;
}

uint32_t Win32FileSystem::VisitFolderNames(const String& folder, ListDetail /*detail*/,
                                           const std::function<bool(FileInfo&)>& visit) {
  if (uint32_t rc = CrossesLink(folder, true)) return rc;
  String pattern = folder;
  if (pattern.empty() || pattern.back() != kPathDelim) pattern += kPathDelim;
  pattern += u'*';
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirst(pattern, data);
  if (find == INVALID_HANDLE_VALUE) {
    const DWORD e = GetLastError();
    // Systems differ in what they answer for a missing folder or a file given as one.
    const DWORD a = AttributesOf(folder);
    if (a == INVALID_FILE_ATTRIBUTES || !(a & FILE_ATTRIBUTE_DIRECTORY)) return ERROR_PATH_NOT_FOUND;
    // An empty drive root has no "." entry: nothing found there is an empty folder.
    if (e == ERROR_FILE_NOT_FOUND || e == ERROR_NO_MORE_FILES) return ERROR_SUCCESS;
    return MapNativeError(e);
  }
  // The find data carries everything a walk asks: no look-up per entry.
  do {
    const std::wstring_view name(data.cFileName);
    if (name == L"." || name == L"..") continue;
    FileInfo info = InfoOf(data);
    if (!visit(info)) {
      FindClose(find);
      return ERROR_SUCCESS;
    }
  } while (FindNextFileW(find, &data));
  const DWORD e = GetLastError();
  FindClose(find);
  return e == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : MapNativeError(e);
}

uint32_t Win32FileSystem::GetInfo(const String& path, FileInfo& info) {
  if (path.find_first_of(u"*?") != String::npos) return ERROR_INVALID_NAME;
  if (uint32_t rc = CrossesLink(path, false)) return rc;
  const String p = WithoutTrailingDelim(path);
  if (IsDriveRoot(p)) {
    WIN32_FILE_ATTRIBUTE_DATA a;
    String root = p.size() == 2 ? p + kPathDelim : p;
    if (!GetFileAttributesExW(Wide(root), GetFileExInfoStandard, &a)) return LastNativeError();
    info = FileInfo{};
    info.Name = root;
    info.Attributes = a.dwFileAttributes;
    info.LastWriteTime = FileTimeOf(a.ftLastWriteTime);
    return ERROR_SUCCESS;
  }
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirst(p, data);
  if (find == INVALID_HANDLE_VALUE) return LastNativeError();
  FindClose(find);
  info = InfoOf(data);
  if (!info.IsDirectory() && !info.IsReparsePoint()) info.Links = LinksOf(p);
  return ERROR_SUCCESS;
}

uint32_t Win32FileSystem::Open(const String& path, OpenMode mode,
                               std::unique_ptr<IFileHandle>& file) {
  DWORD access = GENERIC_READ | GENERIC_WRITE, share = 0, disposition = OPEN_EXISTING;
  switch (mode) {
    case OpenMode::Read:
      access = GENERIC_READ;
      share = FILE_SHARE_READ;
      break;
    case OpenMode::ReadWrite:
      break;
    case OpenMode::CreateAlways:
      disposition = CREATE_ALWAYS;
      break;
    case OpenMode::CreateNew:
      disposition = CREATE_NEW;
      break;
  }
  if (uint32_t rc = CrossesLink(path, false)) return rc;
  if (mode != OpenMode::Read && mode != OpenMode::CreateNew) {
    // Windows refuses to write a read-only file even to administrators; Wine running as
    // root would not.
    const DWORD a = GetFileAttributesW(Wide(ExtendedPath(path)));
    if (a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_READONLY)) return ERROR_ACCESS_DENIED;
  }
  HANDLE h = CreateFileW(Wide(ExtendedPath(path)), access, share, nullptr, disposition,
                         FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (h == INVALID_HANDLE_VALUE) return LastNativeError();
  file = std::make_unique<Win32FileHandle>(h, mode != OpenMode::Read);
  return ERROR_SUCCESS;
}

uint32_t Win32FileSystem::RemoveFile(const String& path) {
  if (uint32_t rc = CrossesLink(path, false)) return rc;
  const String p = ExtendedPath(path);
  const DWORD a = GetFileAttributesW(Wide(p));
  if (a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY)) {
    // A linked folder goes as a link; a real folder is not a file.
    if (!(a & FILE_ATTRIBUTE_REPARSE_POINT)) return ERROR_ACCESS_DENIED;
    return RemoveDirectoryW(Wide(p)) ? ERROR_SUCCESS : LastNativeError();
  }
  return DeleteFileW(Wide(p)) ? ERROR_SUCCESS : LastNativeError();
}

uint32_t Win32FileSystem::MakeFolder(const String& path) {
  if (uint32_t rc = CrossesLink(path, false)) return rc;
  const String p = WithoutTrailingDelim(path);
  if (IsDriveRoot(p)) {
    const DWORD a = AttributesOf(p + kPathDelim);
    return a != INVALID_FILE_ATTRIBUTES ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
  }
  if (CreateDirectoryW(Wide(ExtendedPath(p)), nullptr)) return ERROR_SUCCESS;
  DWORD e = GetLastError();
  if (e == ERROR_ALREADY_EXISTS) {
    const DWORD a = AttributesOf(p);
    return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY) ? ERROR_SUCCESS
                                                                   : ERROR_ALREADY_EXISTS;
  }
  if (e != ERROR_PATH_NOT_FOUND) return MapNativeError(e);
  const size_t cut = p.rfind(kPathDelim);
  if (cut == String::npos || cut == 0) return ERROR_PATH_NOT_FOUND;
  if (uint32_t rc = MakeFolder(p.substr(0, cut))) return rc;
  if (CreateDirectoryW(Wide(ExtendedPath(p)), nullptr)) return ERROR_SUCCESS;
  return LastNativeError();
}

uint32_t Win32FileSystem::RemoveFolder(const String& path) {
  if (uint32_t rc = CrossesLink(path, false)) return rc;
  return RemoveDirectoryW(Wide(ExtendedPath(WithoutTrailingDelim(path)))) ? ERROR_SUCCESS
                                                                          : LastNativeError();
}

uint32_t Win32FileSystem::Rename(const String& from, const String& to) {
  if (uint32_t rc = CrossesLink(from, false)) return rc;
  if (uint32_t rc = CrossesLink(to, false)) return rc;
  // Same volume only: a rename never turns into a copy that leaves the old data behind.
  auto move = [](const String& a, const String& b) {
    return MoveFileExW(Wide(ExtendedPath(a)), Wide(ExtendedPath(b)), MOVEFILE_REPLACE_EXISTING)
               ? ERROR_SUCCESS
               : LastNativeError();
  };
  if (from == to || !SameText(from, to)) return move(from, to);
  // A change of case only: Wine takes it for a rename onto itself and does nothing, so the
  // name goes through a free temporary one.
  String temp;
  FileInfo unused;
  for (int i = 0; temp.empty() || GetInfo(temp, unused) == ERROR_SUCCESS; ++i)
    temp = WithoutTrailingDelim(from) + u".tc-case" + FromUtf8(std::to_string(i));
  if (uint32_t rc = move(from, temp)) return rc;
  const uint32_t rc = move(temp, to);
  if (rc != ERROR_SUCCESS) move(temp, from);
  return rc;
}

uint32_t Win32FileSystem::SetAttributes(const String& path, uint32_t attributes) {
  if (uint32_t rc = CrossesLink(path, false)) return rc;
  return SetFileAttributesW(Wide(ExtendedPath(path)), attributes) ? ERROR_SUCCESS
                                                                   : LastNativeError();
}

uint32_t Win32FileSystem::DriveType(const String& path) {
  String root;
  if (path.size() >= 2 && path[1] == u':') {
    root = path.substr(0, 2) + kPathDelim;
  } else {
    wchar_t volume[MAX_PATH + 1];
    if (!GetVolumePathNameW(Wide(path), volume, MAX_PATH + 1)) return kDriveNoRootDir;
    root = FromWide(volume);
  }
  return GetDriveTypeW(Wide(root));
}

}  // namespace tc
