// The URL history of an offline profile: the "Visited:" entries of History.IE5 and the
// addresses of its daily and weekly containers.
#pragma once
#include <map>

#include "platform/UrlHistory.h"
#include "platform/offline/UrlCacheContainers.h"

namespace tc {

// Every address comes once, as a top-level page (kind 2). Deleting one removes it from every
// history index, with a day's host entry once no address of that host is left in that day;
// the indexes are rewritten at Commit.
class OfflineUrlHistory : public IUrlHistory {
 public:
  explicit OfflineUrlHistory(std::shared_ptr<UrlCacheContainers> containers)
      : containers_(std::move(containers)) {}
  uint32_t Enumerate(std::vector<UrlHistoryEntry>& entries) override;
  uint32_t DeleteUrl(const String& url) override;
  uint32_t Commit() override { return containers_->Flush(); }

  // The address a history key names ("Visited: user@URL", ":2013031020130311: user@URL");
  // a host entry's key gives ":Host: name"; "" for keys of no history.
  static String AddressOf(const String& key);

 private:
  using Position = std::pair<size_t, size_t>;
  using HostInContainer = std::pair<size_t, String>;  // container, upper-cased host
  void Index();

  std::shared_ptr<UrlCacheContainers> containers_;
  uint64_t indexed_ = ~uint64_t{0};
  std::map<String, std::vector<Position>> byAddress_;
  std::map<HostInContainer, int> liveByHost_;
  std::map<HostInContainer, std::vector<size_t>> hostEntries_;
};

}  // namespace tc
