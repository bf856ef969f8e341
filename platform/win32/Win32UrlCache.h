// The current user's WinINet URL cache.
#pragma once
#include "platform/UrlCache.h"

namespace tc {

class Win32UrlCache : public IUrlCache {
 public:
  uint32_t FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                     uint32_t& size) override;
  uint32_t DeleteEntry(const String& sourceUrlName) override;
};

}  // namespace tc
