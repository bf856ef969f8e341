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

// Bytes of the 32-bit INTERNET_CACHE_ENTRY_INFOW record before its strings.
inline constexpr uint32_t kUrlCacheRecordHead = 80;

// The record buffer an entry needs: the record and its two strings with their NULs.
inline uint32_t UrlCacheRecordSize(const UrlCacheEntry& e) {
  return kUrlCacheRecordHead +
         static_cast<uint32_t>(2 * (e.SourceUrlName.size() + 1 + e.LocalFileName.size() + 1));
}

// A walk over all entries, FindFirst/FindNext style; closing it is destroying it.
class IUrlCacheFind {
 public:
  virtual ~IUrlCacheFind() = default;
  // ERROR_NO_MORE_ITEMS at the end. `size` as for FindFirst; after ERROR_INSUFFICIENT_BUFFER
  // the walk has not moved and the same entry comes back.
  virtual uint32_t Next(UrlCacheEntry& entry, uint32_t& size) = 0;
};

// Contract: `size` is in/out, WinINet's record buffer: in, the bytes the caller's buffer
// holds; out, the bytes the entry's record needs. A buffer too small for the entry answers
// ERROR_INSUFFICIENT_BUFFER and gives no entry (FindFirst then gives no walk either).
// FindFirst gives the first entry and the walk, or ERROR_NO_MORE_ITEMS for an empty cache;
// a backend without a URL cache answers ERROR_NOT_SUPPORTED. DeleteEntry removes the entry
// with that source URL and its local file (ERROR_FILE_NOT_FOUND if none, 32 while in use);
// a walk open meanwhile goes on over the entries it has not yet given, and the deletion is
// durable once the walk is closed.
class IUrlCache {
 public:
  virtual ~IUrlCache() = default;
  virtual uint32_t FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                             uint32_t& size) = 0;
  virtual uint32_t DeleteEntry(const String& sourceUrlName) = 0;
};

}  // namespace tc
