#include "platform/win32/Win32UrlCache.h"

#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <wininet.h>

namespace tc {

namespace {

// A record buffer of the caller's size; WinINet writes the size it needs back into it.
class EntryBuffer {
 public:
  explicit EntryBuffer(uint32_t& size) : size_(size), bytes_(size, 0) {}
  INTERNET_CACHE_ENTRY_INFOW* Info() {
    // WinINet fails a buffer smaller than its record head cleanly with the size it needs.
    return bytes_.empty() ? nullptr : reinterpret_cast<INTERNET_CACHE_ENTRY_INFOW*>(bytes_.data());
  }
  DWORD* Size() { return reinterpret_cast<DWORD*>(&size_); }
  UrlCacheEntry Entry() {
    const auto* info = Info();
    UrlCacheEntry e;
    e.SourceUrlName = FromWide(info->lpszSourceUrlName);
    e.LocalFileName = FromWide(info->lpszLocalFileName);
    e.CacheEntryType = info->CacheEntryType;
    e.Size = (static_cast<uint64_t>(info->dwSizeHigh) << 32) | info->dwSizeLow;
    return e;
  }

 private:
  uint32_t& size_;
  std::vector<uint8_t> bytes_;
};

static_assert(sizeof(DWORD) == sizeof(uint32_t));

class Win32UrlCacheFind : public IUrlCacheFind {
 public:
  explicit Win32UrlCacheFind(HANDLE h) : h_(h) {}
  ~Win32UrlCacheFind() override { FindCloseUrlCache(h_); }

  uint32_t Next(UrlCacheEntry& entry, uint32_t& size) override {
    EntryBuffer buffer(size);
    if (!FindNextUrlCacheEntryW(h_, buffer.Info(), buffer.Size())) return LastNativeError();
    entry = buffer.Entry();
    return ERROR_SUCCESS;
  }

 private:
  HANDLE h_;
};

}  // namespace

uint32_t Win32UrlCache::FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                                  uint32_t& size) {
  find.reset();
  EntryBuffer buffer(size);
  HANDLE h = FindFirstUrlCacheEntryW(nullptr, buffer.Info(), buffer.Size());
  if (!h) return LastNativeError();
  entry = buffer.Entry();
  find = std::make_unique<Win32UrlCacheFind>(h);
  return ERROR_SUCCESS;
}

uint32_t Win32UrlCache::DeleteEntry(const String& sourceUrlName) {
  return DeleteUrlCacheEntryW(Wide(sourceUrlName)) ? ERROR_SUCCESS : LastNativeError();
}

}  // namespace tc
