// The Internet Explorer and T-Online plug-ins on the live system's WinINet, URL history and
// Protected Storage (Wine's own in the project's runs).
#include "engine/Orvitracecleaner.h"
#include "engine/TC_BasePlugin.h"
#include "engine/Traces.h"
#include "LiveFixture.h"  // last: it brings <windows.h>

#include <wininet.h>

namespace tc {
namespace {

using InternetExplorerLive = LiveTest;

bool CommitCookie(const String& url) {
  wchar_t file[MAX_PATH + 1] = {};
  if (!CreateUrlCacheEntryW(Wide(url), 0, L"txt", file, 0)) return false;
  HANDLE h = CreateFileW(file, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (h == INVALID_HANDLE_VALUE) return false;
  DWORD put = 0;
  WriteFile(h, "x\n1\nlive.test/\n", 15, &put, nullptr);
  CloseHandle(h);
  FILETIME none{};
  return CommitUrlCacheEntryW(Wide(url), file, none, none, COOKIE_CACHE_ENTRY, nullptr, 0,
                              nullptr, nullptr);
}

TEST_F(InternetExplorerLive, EveryPluginScansAndCleansTheLiveStores) {
  const String unique = key_.substr(key_.rfind(u'\\') + 1);
  const String cookie = u"Cookie:tester@live-" + unique + u".test/";
  ASSERT_TRUE(CommitCookie(cookie));
  Initialize();
  const StringList ids = {u"IETypedURLs", u"IECookies", u"IEHistory", u"IEAutoComplete",
                          u"IESavedPasswords", u"IETempInternetFiles", u"TOnlineCache",
                          u"TOnlineCookies"};
  TOrviMRU host;
  for (const String& id : ids) {
    SCOPED_TRACE(ToUtf8(id));
    TTCPlugin* p = nullptr;
    ASSERT_TRUE(GetPluginByID(id, p));
    p->Scan();
    EXPECT_GE(p->TraceCount, id == u"IECookies" ? 1 : 0);
    EXPECT_TRUE(host.CleanPlugin(*p, {}));
  }
  EXPECT_FALSE(DeleteUrlCacheEntryW(Wide(cookie)));  // the cookie clean took it
  EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, GetLastError());
  Finalize();
}

}  // namespace
}  // namespace tc
