// The URL cache service against WinINet's own cache.
#include <map>

#include "LiveFixture.h"

#include <wininet.h>

namespace tc {
namespace {

using UrlCacheLive = LiveTest;

// Puts an entry into the cache the way a browser does; false when WinINet refuses.
bool Commit(const String& url, DWORD type) {
  wchar_t file[MAX_PATH + 1] = {};
  if (!CreateUrlCacheEntryW(Wide(url), 0, L"txt", file, 0)) return false;
  HANDLE h = CreateFileW(file, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (h == INVALID_HANDLE_VALUE) return false;
  DWORD put = 0;
  WriteFile(h, "data", 4, &put, nullptr);
  CloseHandle(h);
  FILETIME none{};
  return CommitUrlCacheEntryW(Wide(url), file, none, none, type, nullptr, 0, nullptr, nullptr);
}

// Every entry of the cache, by source URL.
std::map<String, UrlCacheEntry> Walk(IUrlCache& cache) {
  std::map<String, UrlCacheEntry> all;
  std::unique_ptr<IUrlCacheFind> find;
  UrlCacheEntry e;
  if (cache.FindFirst(find, e) != ERROR_SUCCESS) return all;
  do all[e.SourceUrlName] = e;
  while (find->Next(e) == ERROR_SUCCESS);
  return all;
}

TEST_F(UrlCacheLive, CommittedEntriesAreFoundAndDeleted) {
  const String page = u"http://tc-live.test/" + key_.substr(key_.rfind(u'\\') + 1) + u"/page";
  const String cookie = u"Cookie:user@tc-live.test/" + key_.substr(key_.rfind(u'\\') + 1) + u"/";
  // A source URL longer than the first record buffer makes the walk grow it.
  const String longPage = page + u"?" + String(6000, u'q');
  ASSERT_TRUE(Commit(page, NORMAL_CACHE_ENTRY));
  ASSERT_TRUE(Commit(cookie, COOKIE_CACHE_ENTRY));
  ASSERT_TRUE(Commit(longPage, NORMAL_CACHE_ENTRY));

  IUrlCache& cache = *platform_->UrlCache;
  auto all = Walk(cache);
  ASSERT_TRUE(all.count(page));
  ASSERT_TRUE(all.count(cookie));
  ASSERT_TRUE(all.count(longPage));
  EXPECT_NE(String::npos, all[cookie].LocalFileName.find(u"Cookie"));
  EXPECT_EQ(String::npos, all[page].LocalFileName.find(u"Cookie"));
  EXPECT_EQ(4u, all[page].Size);

  for (const auto& url : {page, cookie, longPage}) EXPECT_EQ(0u, cache.DeleteEntry(url));
  all = Walk(cache);
  EXPECT_FALSE(all.count(page) || all.count(cookie) || all.count(longPage));
  EXPECT_EQ(uint32_t{ERROR_FILE_NOT_FOUND}, cache.DeleteEntry(page));
}

}  // namespace
}  // namespace tc
