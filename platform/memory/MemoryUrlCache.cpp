#include "platform/memory/MemoryUrlCache.h"

#include <algorithm>

namespace tc {

namespace {

// Walks a copy taken at FindFirst, so deleting entries during the walk is safe.
class SnapshotFind : public IUrlCacheFind {
 public:
  explicit SnapshotFind(std::vector<UrlCacheEntry> entries) : entries_(std::move(entries)) {}
  uint32_t Next(UrlCacheEntry& entry) override {
    if (next_ >= entries_.size()) return ERROR_NO_MORE_ITEMS;
    entry = entries_[next_++];
    return ERROR_SUCCESS;
  }

 private:
  std::vector<UrlCacheEntry> entries_;
  size_t next_ = 1;  // FindFirst handed out the first one
};

}  // namespace

uint32_t MemoryUrlCache::FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry) {
  find.reset();
  if (failure_) return failure_;
  if (entries_.empty()) return ERROR_NO_MORE_ITEMS;
  entry = entries_.front();
  find = std::make_unique<SnapshotFind>(entries_);
  return ERROR_SUCCESS;
}

uint32_t MemoryUrlCache::DeleteEntry(const String& sourceUrlName) {
  if (failure_) return failure_;
  auto it = std::find_if(entries_.begin(), entries_.end(), [&](const UrlCacheEntry& e) {
    return e.SourceUrlName == sourceUrlName;
  });
  if (it == entries_.end()) return ERROR_FILE_NOT_FOUND;
  if (locked_.count(sourceUrlName)) return ERROR_SHARING_VIOLATION;
  entries_.erase(it);
  return ERROR_SUCCESS;
}

}  // namespace tc
