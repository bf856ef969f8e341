// The cache readers: a Chromium simple-cache entry, a block-file index and a Firefox cache2
// entry; any bytes give an address no longer than the input and a count of 0 or more or -1.
// Seeds: realworld/firefox/cache1/* realworld/profiles/*Cache* tools/demo/tree/*Cache*
// Options: -max_len=32768
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "browsers/ChromiumCache.h"
#include "browsers/FirefoxStores.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  tc::String url;
  if (tc::ParseSimpleCacheEntryUrl(bytes, url) && url.size() > size) std::abort();
  if (tc::ParseBlockfileIndexCount(bytes) < -1) std::abort();
  if (tc::ParseFirefoxCacheEntryUrl(bytes).size() > size) std::abort();
  return 0;
}
