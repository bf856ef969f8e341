#include "browsers/TC_InternetExplorer.h"

#include "platform/Platform.h"
#include "platform/helpers/Orviregistry.h"

namespace tc {

namespace {

// Set only while GetIECookieEntries runs: the walk adds each cookie's source URL to it.
StringList* Collector = nullptr;

constexpr uint32_t kFirstRecordBuffer = 80;

bool IsCookieEntry(const UrlCacheEntry& e) { return e.LocalFileName.find(u"Cookie") != String::npos; }

// The host cuts, in order, each on the first occurrence anywhere in the text. True when the
// result ends in "/", with `host` set to it without the "/"; `host` is untouched otherwise.
bool CutCookieHost(String text, String& host) {
  size_t at = text.find(u'@');
  if (at != String::npos) text.erase(0, at + 1);
  if (!text.empty() && text[0] == u'.') text.erase(0, 1);
  for (std::u16string_view cut : {u"www.", u"www1.", u"www2.", u"www3.", u"www4.", u"www5.",
                                  u"www6.", u"www7.", u"www8.", u"www9.", u"www"}) {
    size_t found = text.find(cut);
    if (found != String::npos) text.erase(0, found + cut.size());
  }
  if (text.empty() || text.back() != u'/') return false;
  text.pop_back();
  host = std::move(text);
  return true;
}

// One FindFirst or Next call, repeated with a buffer of the reported size while the cache
// says the buffer is too small; a report that does not grow it ends the walk.
template <class Call>
uint32_t WithGrowingBuffer(uint32_t& size, Call call) {
  for (;;) {
    const uint32_t given = size;
    uint32_t rc = call();
    if (rc != ERROR_INSUFFICIENT_BUFFER) return rc;
    if (size <= given) return ERROR_INVALID_PARAMETER;
  }
}

}  // namespace

bool CookieCanBeDeleted(const String& Url) {
  String host;
  CutCookieHost(Url, host);
  return GetProductRegSetting(kIECookieSection, host, true, 0);
}

int EnumIECacheFiles(bool CookiesOnly, bool DeleteEntries, bool CountKept,
                     const std::function<void(const UrlCacheEntry&)>& Counted) {
  IUrlCache& cache = *Services().UrlCache;
  StringList files;
  int kept = 0;
  uint32_t size = kFirstRecordBuffer;
  std::unique_ptr<IUrlCacheFind> find;
  UrlCacheEntry e;
  uint32_t rc = WithGrowingBuffer(size, [&] { return cache.FindFirst(find, e, size); });
  while (rc == ERROR_SUCCESS) {
    if (CookiesOnly && IsCookieEntry(e)) {
      if (Collector) Collector->push_back(e.SourceUrlName);
      files.push_back(e.LocalFileName);
      if (Counted) Counted(e);
      if (DeleteEntries && CookieCanBeDeleted(e.SourceUrlName)) cache.DeleteEntry(e.SourceUrlName);
      else ++kept;
    } else if (!CookiesOnly && !IsCookieEntry(e)) {
      files.push_back(e.LocalFileName);
      if (Counted) Counted(e);
      if (DeleteEntries) cache.DeleteEntry(e.SourceUrlName);
    }
    rc = WithGrowingBuffer(size, [&] { return find->Next(e, size); });
  }
  find.reset();  // closes the walk
  return CountKept ? kept : static_cast<int>(files.size());
}

void GetIECookieEntries(StringList& List) {
  StringList collected;
  struct Reset {
    ~Reset() { Collector = nullptr; }
  } reset;
  Collector = &collected;
  EnumIECacheFiles(true, false, false);
  Collector = nullptr;
  // Shared across the loop: an entry not ending in "/" repeats the host before it.
  String host;
  for (const String& url : collected) {
    CutCookieHost(url, host);
    List.push_back(host);
  }
}

}  // namespace tc
