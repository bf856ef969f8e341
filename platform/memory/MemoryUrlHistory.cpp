#include "platform/memory/MemoryUrlHistory.h"

#include <algorithm>

namespace tc {

uint32_t MemoryUrlHistory::Enumerate(std::vector<UrlHistoryEntry>& entries) {
  entries.clear();
  if (failure_) return failure_;
  entries = entries_;
  return ERROR_SUCCESS;
}

uint32_t MemoryUrlHistory::DeleteUrl(const String& url) {
  if (failure_) return failure_;
  auto it = std::find_if(entries_.begin(), entries_.end(),
                         [&](const UrlHistoryEntry& e) { return e.Url == url; });
  if (it == entries_.end()) return ERROR_FILE_NOT_FOUND;
  entries_.erase(it);
  return ERROR_SUCCESS;
}

}  // namespace tc
