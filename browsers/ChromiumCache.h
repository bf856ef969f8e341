// The two disk cache formats of Chromium: the simple cache (an "<hash>_0" file per entry,
// its key - the address - in the header) and the block-file cache (an "index" that counts
// its entries, which live in "data_N" and "f_N" files).
#pragma once
#include <string_view>

#include "platform/WinTypes.h"

namespace tc {

// The address a simple-cache entry file starts with; false when the bytes are no entry.
bool ParseSimpleCacheEntryUrl(std::string_view Head, String& Url);
// The entries a block-file "index" counts; -1 when the bytes are no such index.
int ParseBlockfileIndexCount(std::string_view Head);

}  // namespace tc
