#include "platform/offline/OfflineUrlHistory.h"

#include <set>

#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

constexpr std::u16string_view kHostKey = u":Host: ";

bool IsHistory(ContainerKind kind) {
  return kind == ContainerKind::History || kind == ContainerKind::DailyHistory;
}

bool IsHostKey(const String& address) { return address.rfind(kHostKey, 0) == 0; }

// The host part of an address ("http://www.bing.com/search" -> "WWW.BING.COM").
String HostOf(const String& address) {
  if (IsHostKey(address)) return UpperCase(address.substr(kHostKey.size()));
  size_t start = address.find(u"://");
  if (start == String::npos) return String();
  start += 3;
  size_t end = address.find_first_of(u"/:?#", start);
  return UpperCase(address.substr(start, end == String::npos ? String::npos : end - start));
}

}  // namespace

String OfflineUrlHistory::AddressOf(const String& key) {
  String rest;
  if (UpperCase(key.substr(0, 9)) == u"VISITED: ") {
    rest = key.substr(9);
  } else if (!key.empty() && key[0] == u':') {
    size_t end = key.find(u": ", 1);
    if (end == String::npos) return String();
    rest = key.substr(end + 2);
  } else {
    return String();
  }
  size_t at = rest.find(u'@');
  return at == String::npos ? rest : rest.substr(at + 1);
}

void OfflineUrlHistory::Index() {
  auto& all = containers_->Load();
  if (indexed_ == containers_->Generation()) return;
  indexed_ = containers_->Generation();
  byAddress_.clear();
  liveByHost_.clear();
  hostEntries_.clear();
  for (size_t c = 0; c < all.size(); ++c) {
    if (!IsHistory(all[c].Kind)) continue;
    for (size_t e = 0; e < all[c].Entries.size(); ++e) {
      if (all[c].Entries[e].Freed) continue;
      String address = AddressOf(all[c].Entries[e].Record.Url);
      if (address.empty()) continue;
      HostInContainer host{c, HostOf(address)};
      if (IsHostKey(address)) {
        hostEntries_[host].push_back(e);
      } else {
        byAddress_[address].emplace_back(c, e);
        ++liveByHost_[host];
      }
    }
  }
}

uint32_t OfflineUrlHistory::Enumerate(std::vector<UrlHistoryEntry>& entries) {
  entries.clear();
  std::set<String> seen;
  for (const auto& c : containers_->Load()) {
    if (!IsHistory(c.Kind)) continue;
    for (const auto& e : c.Entries) {
      String address = AddressOf(e.Record.Url);
      if (e.Freed || address.empty() || IsHostKey(address) || !seen.insert(address).second)
        continue;
      entries.push_back({address, String(), 2});
    }
  }
  return ERROR_SUCCESS;
}

uint32_t OfflineUrlHistory::DeleteUrl(const String& url) {
  Index();
  auto& all = containers_->All();
  bool found = false;
  for (auto [c, e] : byAddress_[url]) {
    if (all[c].Entries[e].Freed) continue;
    if (uint32_t rc = containers_->Free(c, e)) return rc;
    found = true;
    HostInContainer host{c, HostOf(url)};
    if (host.second.empty() || --liveByHost_[host] > 0) continue;
    for (size_t hostEntry : hostEntries_[host]) containers_->Free(c, hostEntry);
  }
  return found ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

}  // namespace tc
