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

#include "platform/TextCodec.h"

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
  String wanted = FromUtf8(name);
  std::string best;
  while (dirent* e = readdir(dir)) {
    std::string candidate = e->d_name;
    if (candidate == "." || candidate == "..") continue;
    if (SameText(FromUtf8(candidate), wanted) && (best.empty() || candidate < best))
      best = candidate;
  }
  closedir(dir);
  if (best.empty() || lstat((folder + "/" + best).c_str(), &st) != 0) return false;
  found = best;
  return true;
}

// The path spelled exactly as given, when it exists and no link lies on the way (a link as
// last component only for NoFollow): one kernel walk that refuses links instead of a look-up
// per component. False sends the caller to that walk, which also finds the reason.
bool ResolvesExactly(const std::string& root, const std::deque<std::string>& parts,
                     LastLink last, std::string& host) {
#ifdef SYS_openat2
  std::string path = root;
  for (const auto& p : parts) {
    if (p == ".") return false;  // "file\." is no folder: the walk says so
    path += "/" + p;
  }
  if (path == root) return false;
  open_how how{};
  how.flags = O_PATH | O_CLOEXEC | (last == LastLink::NoFollow ? O_NOFOLLOW : 0);
  how.resolve = RESOLVE_NO_SYMLINKS;
  int fd = static_cast<int>(syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how));
  if (fd < 0) return false;
  close(fd);
  host = std::move(path);
  return true;
#else
  (void)root, (void)parts, (void)last, (void)host;
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
  std::string rest = ToUtf8(path.substr(2));
  for (char& c : rest)
    if (c == '\\') c = '/';
  std::deque<std::string> pending;
  SplitInto(rest, '/', pending);
  for (const auto& p : pending)
    if (p == "..") return ERROR_INVALID_NAME;
  if (ResolvesExactly(root, pending, last, host)) return ERROR_SUCCESS;
  std::vector<std::string> done;
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
      return String(1, letter) + u":\\" + FromUtf8(rest);
    }
  }
  return String();
}

}  // namespace tc
