// Services a backend does not have: every call answers ERROR_NOT_SUPPORTED.
#pragma once
#include "platform/EventLogs.h"
#include "platform/ProtectedStorage.h"
#include "platform/UrlCache.h"
#include "platform/UrlHistory.h"

namespace tc {

class UnavailableUrlCache : public IUrlCache {
 public:
  uint32_t FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry& entry,
                     uint32_t& size) override;
  uint32_t DeleteEntry(const String& sourceUrlName) override;
};

class UnavailableProtectedStorage : public IProtectedStorage {
 public:
  uint32_t Open() override;
  uint32_t EnumItems(const Guid& type, const Guid& subtype, StringList& names) override;
  uint32_t ReadItem(const Guid& type, const Guid& subtype, const String& name,
                    Bytes& data) override;
  uint32_t DeleteItem(const Guid& type, const Guid& subtype, const String& name) override;
};

class UnavailableUrlHistory : public IUrlHistory {
 public:
  uint32_t Enumerate(std::vector<UrlHistoryEntry>& entries) override;
  uint32_t DeleteUrl(const String& url) override;
  uint32_t Commit() override;
};

class UnavailableEventLogs : public IEventLogs {
 public:
  uint32_t ListLogs(StringList& names) override;
  uint32_t CountRecords(const String& log, uint32_t& count) override;
  uint32_t ClearLog(const String& log) override;
};

}  // namespace tc
