// The host's URL-history component: the entries of the browser's history, and deleting one.
#pragma once
#include "platform/UrlHistory.h"

namespace tc {

class TUrlHistory {
 public:
  std::vector<UrlHistoryEntry> Items;

  TUrlHistory() = default;
  // Freeing the component makes its deletions durable.
  ~TUrlHistory();
  TUrlHistory(const TUrlHistory&) = delete;
  TUrlHistory& operator=(const TUrlHistory&) = delete;

  // Fills Items; the number of entries, 0 when the history cannot be read.
  int Enumerate();
  bool DeleteUrl(const String& url);

 private:
  bool changed_ = false;
};

}  // namespace tc
