// The URL cache contract on the in-memory Windows: entries and their files seeded by hand.
#include "UrlCacheContract.h"
#include "platform/helpers/WinPath.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc::contract {
namespace {

struct MemoryUrlCacheTraits {
  static std::shared_ptr<Platform> Make() { return MakeMemoryPlatform(); }
  static void Seed(const std::shared_ptr<Platform>& p, const StringList& urls) {
    MemoryWindows mem = MemoryOf(p);
    String cache, cookies;
    p->Shell->GetSpecialFolder(kCSIDL_INTERNET_CACHE, cache);
    p->Shell->GetSpecialFolder(kCSIDL_COOKIES, cookies);
    int n = 0;
    for (const auto& url : urls) {
      const String name = FromUtf8(std::to_string(++n));
      const String file = url.rfind(u"Cookie:", 0) == 0
                              ? WinPath::Join(cookies, u"anna@" + name + u"[1].txt")
                              : WinPath::Join(cache, u"Content.IE5\\AB12CD34\\" + name + u"[1].htm");
      ASSERT_EQ(0u, mem.Files->AddFile(file, "data"));
      mem.UrlCache->Add({url, file, 0, 4});
    }
  }
  static bool Lock(const std::shared_ptr<Platform>& p, const String& url) {
    MemoryOf(p).UrlCache->LockEntry(url);
    return true;
  }
  static void UnlockAll() {}
  static bool StartsEmpty() { return true; }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, UrlCacheContractTest, MemoryUrlCacheTraits);

}  // namespace tc::contract
