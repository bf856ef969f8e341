// The WinINet cache containers of an offline profile: the index.dat files of its temporary
// internet files, cookies and history, read together and changed together. The URL cache and
// the URL history of the image both work through one object of this class.
#pragma once
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/FileSystem.h"
#include "platform/Shell.h"
#include "platform/offline/IndexDat.h"

namespace tc {

enum class ContainerKind : uint8_t { Content, Cookies, History, DailyHistory };

class UrlCacheContainers {
 public:
  struct Entry {
    IndexDatRecord Record;
    String LocalFile;  // full path, "" when the record names none that is safe to touch
    bool Freed = false;
  };
  struct Container {
    ContainerKind Kind = ContainerKind::Content;
    String IndexPath;
    bool Readable = true;
    std::string Error;  // why an index that is there could not be read
    Bytes Data;
    std::vector<Entry> Entries;
    bool Dirty = false;  // entries freed that the file on disk still holds
  };

  UrlCacheContainers(std::shared_ptr<IFileSystem> files, std::shared_ptr<IShell> shell)
      : files_(std::move(files)), shell_(std::move(shell)) {}
  ~UrlCacheContainers();
  UrlCacheContainers(const UrlCacheContainers&) = delete;
  UrlCacheContainers& operator=(const UrlCacheContainers&) = delete;

  // Reads the containers afresh unless changes are waiting to be written. The URL cache's
  // containers come in WinINet's walk order (content, cookies, history; each with its
  // protected-mode "Low" twin), then the daily and weekly history containers.
  std::vector<Container>& Load();
  // The containers as last loaded.
  std::vector<Container>& All() { return containers_; }
  // Counts the loads that read the files afresh.
  uint64_t Generation() const { return generation_; }
  // "path: reason" for every index that is there but cannot be read; those stay untouched.
  std::vector<std::string> Damaged();

  // The live entries whose source URL is `url`, as (container, entry) positions.
  std::vector<std::pair<size_t, size_t>> Find(const String& url);
  // Shreds the entry's local file and marks the entry freed; ERROR_SHARING_VIOLATION (and
  // nothing changed) while the file is in use.
  uint32_t Free(size_t container, size_t entry);
  // Rewrites every changed index without its freed records, each all-or-nothing.
  uint32_t Flush();

 private:
  void Read(ContainerKind kind, const String& indexPath);
  void Index(size_t container);
  uint32_t Shred(const String& path);

  std::shared_ptr<IFileSystem> files_;
  std::shared_ptr<IShell> shell_;
  std::vector<Container> containers_;
  uint64_t generation_ = 0;
  std::unordered_map<String, std::vector<std::pair<size_t, size_t>>> byUrl_;
};

}  // namespace tc
