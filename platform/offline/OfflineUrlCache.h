// The URL cache of an offline profile: the entries of its content, cookie and history
// indexes, in WinINet's walk order.
#pragma once
#include "platform/UrlCache.h"
#include "platform/offline/UrlCacheContainers.h"

namespace tc {

// Deletions made while a walk is open are written when the last open walk closes (one
// rewrite per index); others at once. Each rewrite is all-or-nothing.
class OfflineUrlCache : public IUrlCache {
 public:
  explicit OfflineUrlCache(std::shared_ptr<UrlCacheContainers> containers)
      : containers_(std::move(containers)) {}
  uint32_t FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                     uint32_t& size) override;
  uint32_t DeleteEntry(const String& sourceUrlName) override;

 private:
  std::shared_ptr<UrlCacheContainers> containers_;
  std::shared_ptr<int> openWalks_ = std::make_shared<int>(0);
};

}  // namespace tc
