#include "platform/win32/Win32UrlCache.h"

#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <wininet.h>

namespace tc {

namespace {

// The record buffer; WinINet says how large it must be when it is too small.
class EntryBuffer {
 public:
  EntryBuffer() : bytes_(4096) {}
  INTERNET_CACHE_ENTRY_INFOW* Info() {
    return reinterpret_cast<INTERNET_CACHE_ENTRY_INFOW*>(bytes_.data());
  }
  DWORD* Size() { return &size_; }
  // Called before each WinINet call: the size argument is in/out.
  void Prepare() { size_ = static_cast<DWORD>(bytes_.size()); }
  // After ERROR_INSUFFICIENT_BUFFER: a zeroed block of the reported size.
  bool Grow() {
    if (size_ <= bytes_.size()) return false;  // no progress would be made
    bytes_.assign(size_, 0);
    return true;
  }
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
  std::vector<uint8_t> bytes_;
  DWORD size_ = 0;
};

class Win32UrlCacheFind : public IUrlCacheFind {
 public:
  Win32UrlCacheFind(HANDLE h, EntryBuffer buffer) : h_(h), buffer_(std::move(buffer)) {}
  ~Win32UrlCacheFind() override { FindCloseUrlCache(h_); }

  uint32_t Next(UrlCacheEntry& entry) override {
    for (;;) {
      buffer_.Prepare();
      if (FindNextUrlCacheEntryW(h_, buffer_.Info(), buffer_.Size())) {
        entry = buffer_.Entry();
        return ERROR_SUCCESS;
      }
      // Too small: the walk has not moved, so the same entry comes back with room for it.
      if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || !buffer_.Grow()) return LastNativeError();
    }
  }

 private:
  HANDLE h_;
  EntryBuffer buffer_;
};

}  // namespace

uint32_t Win32UrlCache::FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry) {
  EntryBuffer buffer;
  for (;;) {
    buffer.Prepare();
    HANDLE h = FindFirstUrlCacheEntryW(nullptr, buffer.Info(), buffer.Size());
    if (h) {
      entry = buffer.Entry();
      find = std::make_unique<Win32UrlCacheFind>(h, std::move(buffer));
      return ERROR_SUCCESS;
    }
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || !buffer.Grow()) return LastNativeError();
  }
}

uint32_t Win32UrlCache::DeleteEntry(const String& sourceUrlName) {
  return DeleteUrlCacheEntryW(Wide(sourceUrlName)) ? ERROR_SUCCESS : LastNativeError();
}

}  // namespace tc
