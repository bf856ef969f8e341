#include "platform/offline/OfflineUrlCache.h"

namespace tc {

namespace {

using Position = std::pair<size_t, size_t>;

class OfflineFind : public IUrlCacheFind {
 public:
  OfflineFind(std::shared_ptr<UrlCacheContainers> containers, std::shared_ptr<int> openWalks,
              std::vector<Position> positions)
      : containers_(std::move(containers)),
        openWalks_(std::move(openWalks)),
        positions_(std::move(positions)) {
    ++*openWalks_;
  }
  ~OfflineFind() override {
    if (--*openWalks_ == 0) containers_->Flush();
  }
  OfflineFind(const OfflineFind&) = delete;
  OfflineFind& operator=(const OfflineFind&) = delete;

  uint32_t Next(UrlCacheEntry& entry, uint32_t& size) override {
    auto& all = containers_->All();
    // Entries deleted since the walk began are no longer there to give.
    while (next_ < positions_.size() &&
           all[positions_[next_].first].Entries[positions_[next_].second].Freed)
      ++next_;
    if (next_ >= positions_.size()) return ERROR_NO_MORE_ITEMS;
    const auto& e = all[positions_[next_].first].Entries[positions_[next_].second];
    UrlCacheEntry found{e.Record.Url, e.LocalFile, e.Record.EntryType, e.Record.FileSize};
    const uint32_t needed = UrlCacheRecordSize(found);
    const bool fits = size >= needed;
    size = needed;
    if (!fits) return ERROR_INSUFFICIENT_BUFFER;
    entry = std::move(found);
    ++next_;
    return ERROR_SUCCESS;
  }

 private:
  std::shared_ptr<UrlCacheContainers> containers_;
  std::shared_ptr<int> openWalks_;
  std::vector<Position> positions_;
  size_t next_ = 0;
};

bool InWalk(ContainerKind kind) { return kind != ContainerKind::DailyHistory; }

}  // namespace

uint32_t OfflineUrlCache::FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                                    uint32_t& size) {
  find.reset();
  auto& all = containers_->Load();
  std::vector<Position> positions;
  for (size_t c = 0; c < all.size(); ++c)
    if (InWalk(all[c].Kind))
      for (size_t e = 0; e < all[c].Entries.size(); ++e)
        if (!all[c].Entries[e].Freed) positions.emplace_back(c, e);
  if (positions.empty()) return ERROR_NO_MORE_ITEMS;
  auto walk = std::make_unique<OfflineFind>(containers_, openWalks_, std::move(positions));
  if (uint32_t rc = walk->Next(entry, size)) return rc;  // closing the walk writes nothing new
  find = std::move(walk);
  return ERROR_SUCCESS;
}

uint32_t OfflineUrlCache::DeleteEntry(const String& sourceUrlName) {
  // An open walk works on what it loaded; outside one the files may have changed.
  auto& all = *openWalks_ == 0 ? containers_->Load() : containers_->All();
  for (auto [c, e] : containers_->Find(sourceUrlName)) {
    if (!InWalk(all[c].Kind)) continue;
    if (uint32_t rc = containers_->Free(c, e)) return rc;
    return *openWalks_ == 0 ? containers_->Flush() : ERROR_SUCCESS;
  }
  return ERROR_FILE_NOT_FOUND;
}

}  // namespace tc
