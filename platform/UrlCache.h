// The WinINet URL cache (temporary internet files and cookies).
#pragma once
#include <memory>

#include "WinTypes.h"

namespace tc {

inline constexpr uint32_t kNORMAL_CACHE_ENTRY = 0x00000001;
inline constexpr uint32_t kSPARSE_CACHE_ENTRY = 0x00010000;
inline constexpr uint32_t kCOOKIE_CACHE_ENTRY = 0x00100000;
inline constexpr uint32_t kURLHISTORY_CACHE_ENTRY = 0x00200000;

struct UrlCacheEntry {
  String SourceUrlName;
  String LocalFileName;
  uint32_t CacheEntryType = 0;
  uint64_t Size = 0;
};

// A walk over all entries, FindFirst/FindNext style; closing it is destroying it.
class IUrlCacheFind {
 public:
  virtual ~IUrlCacheFind() = default;
  // ERROR_NO_MORE_ITEMS at the end.
  virtual uint32_t Next(UrlCacheEntry& entry) = 0;
};

// Contract: FindFirst gives the first entry and the walk, or ERROR_NO_MORE_ITEMS for an
// empty cache; a backend without a URL cache answers ERROR_NOT_SUPPORTED. DeleteEntry
// removes the entry with that source URL (ERROR_FILE_NOT_FOUND if none, 32 while in use).
class IUrlCache {
 public:
  virtual ~IUrlCache() = default;
  virtual uint32_t FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry) = 0;
  virtual uint32_t DeleteEntry(const String& sourceUrlName) = 0;
};

}  // namespace tc
