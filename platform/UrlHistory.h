// The browser's URL history store (IUrlHistoryStg2 on Windows).
#pragma once
#include "WinTypes.h"

namespace tc {

struct UrlHistoryEntry {
  String Url;
  String Title;
  int Kind = 0;  // the history component's entry kind
};

// Contract: Enumerate fills the entries in the store's order; a backend without a URL
// history answers ERROR_NOT_SUPPORTED. DeleteUrl removes one entry (ERROR_FILE_NOT_FOUND
// if it is not there); later calls see it gone. Commit makes the deletions so far durable
// (a backend that writes each one at once has nothing to do); destroying the store commits.
class IUrlHistory {
 public:
  virtual ~IUrlHistory() = default;
  virtual uint32_t Enumerate(std::vector<UrlHistoryEntry>& entries) = 0;
  virtual uint32_t DeleteUrl(const String& url) = 0;
  virtual uint32_t Commit() = 0;
};

}  // namespace tc
