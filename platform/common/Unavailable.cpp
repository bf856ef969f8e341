#include "platform/common/Unavailable.h"

namespace tc {

uint32_t UnavailableUrlCache::FindFirst(std::unique_ptr<IUrlCacheFind>& find, UrlCacheEntry&,
                                       uint32_t&) {
  find.reset();
  return ERROR_NOT_SUPPORTED;
}

uint32_t UnavailableUrlCache::DeleteEntry(const String&) { return ERROR_NOT_SUPPORTED; }

uint32_t UnavailableProtectedStorage::Open() { return ERROR_NOT_SUPPORTED; }

uint32_t UnavailableProtectedStorage::EnumItems(const Guid&, const Guid&, StringList& names) {
  names.clear();
  return ERROR_NOT_SUPPORTED;
}

uint32_t UnavailableProtectedStorage::ReadItem(const Guid&, const Guid&, const String&,
                                               Bytes& data) {
  data.clear();
  return ERROR_NOT_SUPPORTED;
}

uint32_t UnavailableProtectedStorage::DeleteItem(const Guid&, const Guid&, const String&) {
  return ERROR_NOT_SUPPORTED;
}

uint32_t UnavailableUrlHistory::Enumerate(std::vector<UrlHistoryEntry>& entries) {
  entries.clear();
  return ERROR_NOT_SUPPORTED;
}

uint32_t UnavailableUrlHistory::DeleteUrl(const String&) { return ERROR_NOT_SUPPORTED; }

uint32_t UnavailableUrlHistory::Commit() { return ERROR_NOT_SUPPORTED; }

uint32_t UnavailableEventLogs::ListLogs(StringList& names) {
  names.clear();
  return ERROR_NOT_SUPPORTED;
}

uint32_t UnavailableEventLogs::CountRecords(const String&, uint32_t& count) {
  count = 0;
  return ERROR_NOT_SUPPORTED;
}

uint32_t UnavailableEventLogs::ClearLog(const String&) { return ERROR_NOT_SUPPORTED; }

}  // namespace tc
