// The URL cache contract on WinINet's own cache (Wine's in the project's runs).
#include "UrlCacheContract.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"
#include "tests/win32/LiveSystemLock.h"

#include <wininet.h>

namespace tc::contract {
namespace {

StringList& Held() {
  static StringList held;
  return held;
}

// An entry committed the way a browser commits one, with four bytes in its file.
void Commit(const String& url) {
  const bool cookie = url.rfind(u"Cookie:", 0) == 0;
  wchar_t file[MAX_PATH + 1] = {};
  ASSERT_TRUE(CreateUrlCacheEntryW(Wide(url), 0, cookie ? L"txt" : L"htm", file, 0));
  HANDLE h = CreateFileW(file, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, h);
  DWORD put = 0;
  WriteFile(h, "data", 4, &put, nullptr);
  CloseHandle(h);
  FILETIME none{};
  ASSERT_TRUE(CommitUrlCacheEntryW(Wide(url), file, none, none,
                                   cookie ? COOKIE_CACHE_ENTRY : NORMAL_CACHE_ENTRY, nullptr, 0,
                                   nullptr, nullptr));
}

struct Win32UrlCacheTraits {
  // The platform holds the live-system lock for the test's whole life.
  static std::shared_ptr<Platform> Make() {
    auto lock = std::make_shared<LiveSystemLock>();
    auto platform = MakeWin32Platform();
    return std::shared_ptr<Platform>(platform.get(), [platform, lock](Platform*) {});
  }
  static void Seed(const std::shared_ptr<Platform>&, const StringList& urls) {
    for (const String& url : urls) Commit(url);
  }
  // A retrieved entry is locked until it is unlocked again.
  static bool Lock(const std::shared_ptr<Platform>&, const String& url) {
    std::vector<uint8_t> buffer(1 << 16);
    DWORD size = static_cast<DWORD>(buffer.size());
    if (!RetrieveUrlCacheEntryFileW(Wide(url),
                                    reinterpret_cast<INTERNET_CACHE_ENTRY_INFOW*>(buffer.data()),
                                    &size, 0))
      return false;
    Held().push_back(url);
    return true;
  }
  static void UnlockAll() {
    for (const String& url : Held()) UnlockUrlCacheEntryFileW(Wide(url), 0);
    Held().clear();
  }
  static bool StartsEmpty() { return false; }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Win32, UrlCacheContractTest, Win32UrlCacheTraits);

}  // namespace tc::contract
