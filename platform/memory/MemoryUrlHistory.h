// A URL history tests fill by hand.
#pragma once
#include "platform/UrlHistory.h"

namespace tc {

class MemoryUrlHistory : public IUrlHistory {
 public:
  uint32_t Enumerate(std::vector<UrlHistoryEntry>& entries) override;
  uint32_t DeleteUrl(const String& url) override;
  uint32_t Commit() override { return failure_; }

  void Add(UrlHistoryEntry entry) { entries_.push_back(std::move(entry)); }
  const std::vector<UrlHistoryEntry>& Entries() const { return entries_; }
  // Every call answers `code` (ERROR_NOT_SUPPORTED: no history store); 0 makes it work again.
  void SetUnavailable(uint32_t code = ERROR_NOT_SUPPORTED) { failure_ = code; }

 private:
  std::vector<UrlHistoryEntry> entries_;
  uint32_t failure_ = ERROR_SUCCESS;
};

}  // namespace tc
