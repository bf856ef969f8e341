// The browser's URL history through IUrlHistoryStg2.
#pragma once
#include "platform/UrlHistory.h"

namespace tc {

// An entry's Kind is its STATURL flags: 1 cached, 2 top-level page, 3 both. Top-level
// pages (2 and 3) are what the user sees in the history list.
class Win32UrlHistory : public IUrlHistory {
 public:
  uint32_t Enumerate(std::vector<UrlHistoryEntry>& entries) override;
  uint32_t DeleteUrl(const String& url) override;
  uint32_t Commit() override { return ERROR_SUCCESS; }  // each deletion is written at once
};

}  // namespace tc
