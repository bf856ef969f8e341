#include "platform/offline/VolumePath.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <deque>
#include <vector>

#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

std::string Join(const std::string& root, const std::vector<std::string>& parts) {
  std::string out = root;
  for (const auto& p : parts) out += "/" + p;
  return out;
}

// Only a name with letters (or characters beyond ASCII) can be spelled another way.
bool HasOtherSpellings(const std::string& name) {
  for (unsigned char c : name)
    if (c >= 0x80 || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) return true;
  return false;
}

// The entry of `folder` named `name`, case-insensitively; an exact match wins.
bool FindEntry(const std::string& folder, const std::string& name, std::string& found,
               struct stat& st) {
  if (lstat((folder + "/" + name).c_str(), &st) == 0) {
    found = name;
    return true;
  }
  if (!HasOtherSpellings(name)) return false;  // the shredder's random names, for one
  DIR* dir = opendir(folder.c_str());
  if (!dir) return false;
  String wanted = FromUtf8Lossless(name);
  std::string best;
  while (dirent* e = readdir(dir)) {
    std::string candidate = e->d_name;
    if (candidate == "." || candidate == "..") continue;
    if (SameText(FromUtf8Lossless(candidate), wanted) && (best.empty() || candidate < best))
      best = candidate;
  }
  closedir(dir);
  if (best.empty() || lstat((folder + "/" + best).c_str(), &st) != 0) return false;
  found = best;
  return true;
}

// root/parts[0..n) as a host path; false when a part is "." ("file\." is no folder, which
// only the walk below tells).
bool ExactPath(const std::string& root, const std::deque<std::string>& parts, size_t n,
               std::string& path) {
  if (n == 0) return false;
  path = root;
  for (size_t i = 0; i < n; ++i) {
    if (parts[i] == ".") return false;
    path += "/" + parts[i];
  }
  return true;
}

// True when `path` exists spelled exactly so and no link lies on the way (a link as last
// component only with O_NOFOLLOW in `flags`): one kernel walk that refuses links instead of
// a look-up per component. False sends the caller to that walk, which also finds the reason.
bool WalksExactly(const std::string& path, uint64_t flags) {
#ifdef SYS_openat2
  open_how how{};
  how.flags = O_PATH | O_CLOEXEC | flags;
  how.resolve = RESOLVE_NO_SYMLINKS;
  int fd = static_cast<int>(syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how));
  if (fd < 0) return false;
  close(fd);
  return true;
#else
  (void)path, (void)flags;
  return false;
#endif
}

void SplitInto(const std::string& s, char sep, std::deque<std::string>& out) {
  size_t start = 0;
  while (start <= s.size()) {
    size_t end = s.find(sep, start);
    if (end == std::string::npos) end = s.size();
    if (end > start) out.push_back(s.substr(start, end - start));
    start = end + 1;
  }
}

}  // namespace

bool DriveMap::Map(char16_t letter, const std::string& folder) {
  char resolved[PATH_MAX];
  if (!realpath(folder.c_str(), resolved)) return false;
  struct stat st {};
  if (stat(resolved, &st) != 0 || !S_ISDIR(st.st_mode)) return false;
  std::string root = resolved;
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  roots_[UpCaseAscii(letter)] = root;
  return true;
}

bool DriveMap::Has(char16_t letter) const { return roots_.count(UpCaseAscii(letter)) != 0; }

std::string DriveMap::Root(char16_t letter) const {
  auto it = roots_.find(UpCaseAscii(letter));
  return it == roots_.end() ? std::string() : it->second;
}

uint32_t DriveMap::Resolve(const String& path, LastLink last, bool allowMissingLast,
                           std::string& host) const {
  if (path.size() < 2 || path[1] != u':') return ERROR_PATH_NOT_FOUND;
  std::string root = Root(path[0]);
  if (root.empty()) return ERROR_PATH_NOT_FOUND;
  std::string rest = ToUtf8Lossless(path.substr(2));
  for (char& c : rest)
    if (c == '\\') c = '/';
  std::deque<std::string> pending;
  SplitInto(rest, '/', pending);
  for (const auto& p : pending)
    if (p == "..") return ERROR_INVALID_NAME;
  std::string exact;
  if (ExactPath(root, pending, pending.size(), exact) &&
      WalksExactly(exact, last == LastLink::NoFollow ? O_NOFOLLOW : 0)) {
    host = std::move(exact);
    return ERROR_SUCCESS;
  }
  std::vector<std::string> done;
  // The folder may still be spelled exactly (a name to create, another case): then only the
  // last name needs the walk.
  if (pending.size() > 1 && ExactPath(root, pending, pending.size() - 1, exact) &&
      WalksExactly(exact, O_DIRECTORY)) {
    done.assign(pending.begin(), pending.end() - 1);
    pending.erase(pending.begin(), pending.end() - 1);
  }
  while (!pending.empty()) {
    std::string part = pending.front();
    pending.pop_front();
    bool isLast = pending.empty();
    if (part == ".") continue;
    std::string folder = Join(root, done);
    std::string found;
    struct stat st {};
    if (!FindEntry(folder, part, found, st)) {
      if (isLast && allowMissingLast) {
        done.push_back(part);
        break;
      }
      return isLast ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
    }
    // Links are never entered: what lies behind one may be outside the image, and a trace
    // location must not reach through one even inside it.
    if (S_ISLNK(st.st_mode) && (!isLast || last == LastLink::Refuse)) return ERROR_ACCESS_DENIED;
    if (!isLast && !S_ISDIR(st.st_mode)) return ERROR_PATH_NOT_FOUND;
    done.push_back(found);
  }
  host = Join(root, done);
  return ERROR_SUCCESS;
}

String DriveMap::ToWindows(const std::string& host) const {
  for (const auto& [letter, root] : roots_) {
    if (host == root) return String(1, letter) + u":\\";
    if (host.size() > root.size() && host.compare(0, root.size(), root) == 0 &&
        host[root.size()] == '/') {
      std::string rest = host.substr(root.size() + 1);
      for (char& c : rest)
        if (c == '/') c = '\\';
      return String(1, letter) + u":\\" + FromUtf8Lossless(rest);
    }
  }
  return String();
}

}  // namespace tc
