// A URL cache tests fill by hand.
#pragma once
#include <set>

#include "platform/FileSystem.h"
#include "platform/UrlCache.h"

namespace tc {

class MemoryUrlCache : public IUrlCache {
 public:
  // Deleting an entry removes its local file from `files` (none: only the entry goes).
  explicit MemoryUrlCache(std::shared_ptr<IFileSystem> files = nullptr) : files_(std::move(files)) {}
  uint32_t FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                     uint32_t& size) override;
  uint32_t DeleteEntry(const String& sourceUrlName) override;

  void Add(UrlCacheEntry entry) { entries_.push_back(std::move(entry)); }
  const std::vector<UrlCacheEntry>& Entries() const { return entries_; }
  // DeleteEntry of this URL answers ERROR_SHARING_VIOLATION (the entry is in use).
  void LockEntry(const String& sourceUrlName) { locked_.insert(sourceUrlName); }
  // Every call answers `code` (ERROR_NOT_SUPPORTED: no URL cache); 0 makes it work again.
  void SetUnavailable(uint32_t code = ERROR_NOT_SUPPORTED) { failure_ = code; }

 private:
  std::shared_ptr<IFileSystem> files_;
  std::vector<UrlCacheEntry> entries_;
  std::set<String> locked_;
  uint32_t failure_ = ERROR_SUCCESS;
};

}  // namespace tc
