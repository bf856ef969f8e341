#include "platform/memory/MemoryUrlCache.h"

#include <algorithm>

namespace tc {

namespace {

// Gives `e` when it fits the caller's buffer; `size` tells what it needs either way.
uint32_t Hand(const UrlCacheEntry& e, UrlCacheEntry& entry, uint32_t& size) {
  const uint32_t needed = UrlCacheRecordSize(e);
  const bool fits = size >= needed;
  size = needed;
  if (!fits) return ERROR_INSUFFICIENT_BUFFER;
  entry = e;
  return ERROR_SUCCESS;
}

// Walks a copy taken at FindFirst, so deleting entries during the walk is safe.
class SnapshotFind : public IUrlCacheFind {
 public:
  explicit SnapshotFind(std::vector<UrlCacheEntry> entries) : entries_(std::move(entries)) {}
  uint32_t Next(UrlCacheEntry& entry, uint32_t& size) override {
    if (next_ >= entries_.size()) return ERROR_NO_MORE_ITEMS;
    uint32_t rc = Hand(entries_[next_], entry, size);
    if (rc == ERROR_SUCCESS) ++next_;
    return rc;
  }

 private:
  std::vector<UrlCacheEntry> entries_;
  size_t next_ = 1;  // FindFirst handed out the first one
};

}  // namespace

uint32_t MemoryUrlCache::FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                                   uint32_t& size) {
  find.reset();
  if (failure_) return failure_;
  if (entries_.empty()) return ERROR_NO_MORE_ITEMS;
  if (uint32_t rc = Hand(entries_.front(), entry, size)) return rc;
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
  if (files_ && !it->LocalFileName.empty()) files_->RemoveFile(it->LocalFileName);
  entries_.erase(it);
  return ERROR_SUCCESS;
}

}  // namespace tc
