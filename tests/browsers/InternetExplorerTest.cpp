// The URL cache walk, cookie hosts and the keep-list rule.
#include "plugins/AppPluginFixture.h"
#include "browsers/TC_InternetExplorer.h"

namespace tc {
namespace {

const String kCookies = u"C:\\Users\\Tester\\AppData\\Roaming\\Microsoft\\Windows\\Cookies\\";
const String kContent = u"C:\\Users\\Tester\\AppData\\Local\\Microsoft\\Windows\\"
                        u"Temporary Internet Files\\Content.IE5\\AB12CD34\\";

class InternetExplorerStoreTest : public AppPluginFixture {
 public:
  void Cookie(const String& url, const String& file = u"tester@x[1].txt") {
    mem.UrlCache->Add({url, kCookies + file, kCOOKIE_CACHE_ENTRY, 10});
  }
  void Page(const String& url, const String& local) {
    mem.UrlCache->Add({url, local, kNORMAL_CACHE_ENTRY, 10});
  }
  void Keep(const String& host) {
    ASSERT_EQ(0u, mem.Platform->ProductSettings->WriteBool(kIECookieSection, host, false));
  }
  StringList Remaining() {
    StringList urls;
    for (const auto& e : mem.UrlCache->Entries()) urls.push_back(e.SourceUrlName);
    return urls;
  }
  StringList Hosts() {
    StringList hosts{u"before"};
    GetIECookieEntries(hosts);
    return hosts;
  }
};

TEST_F(InternetExplorerStoreTest, HostsAreCutWhereverThePatternsStand) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"Cookie:tester@www.alpha.test/shop/", u"alpha.test/shop"},
      {u"Cookie:tester@awwwb.alpha.test/", u"b.alpha.test"},
      {u"Cookie:tester@newwww.alpha.test/", u"alpha.test"},
      {u"Cookie:tester@.www3.alpha.test/", u"alpha.test"},
      {u"Cookie:tester@mail.www7.beta.test/", u"beta.test"},
      {u"Cookie:tester@www1.www.gamma.test/", u"gamma.test"},
      {u"Cookie:tester@a@b.test/", u"a@b.test"},  // only the first "@" counts
      {u"Cookie:alpha.test/", u"Cookie:alpha.test"},
      // No "/" at the end: the host before it comes again.
      {u"Cookie:tester@delta.test", u"Cookie:alpha.test"},
  };
  StringList expected{u"before"};
  for (const auto& [url, host] : cases) {
    Cookie(url);
    expected.push_back(host);
  }
  EXPECT_EQ(expected, Hosts());

  Reset();
  Cookie(u"Cookie:tester@delta.test");
  Cookie(u"Cookie:tester@delta.test/");
  EXPECT_EQ((StringList{u"before", u"", u"delta.test"}), Hosts());
}

TEST_F(InternetExplorerStoreTest, KeepListIsReadUnderTheNormalisedHost) {
  Keep(u"alpha.test");
  Keep(u"Cookie:beta.test");
  const std::pair<const char16_t*, bool> cases[] = {
      {u"Cookie:tester@www.alpha.test/", false},
      {u"Cookie:tester@alpha.test/shop/", true},
      {u"Cookie:beta.test/", false},
      {u"Cookie:tester@beta.test/", true},
      {u"Cookie:tester@gamma.test", true},
  };
  for (const auto& [url, deletable] : cases) EXPECT_EQ(deletable, CookieCanBeDeleted(url)) << ToUtf8(url);
  // A key without "/" at its end is looked up under the empty name.
  Keep(u"");
  EXPECT_FALSE(CookieCanBeDeleted(u"Cookie:tester@gamma.test"));
}

TEST_F(InternetExplorerStoreTest, WalkModesCountDeleteAndKeep) {
  struct Case {
    bool cookies, remove, countKept;
    int result;
    StringList remaining;
  } cases[] = {
      {true, false, false, 5, {}},
      {true, false, true, 5, {}},
      {false, false, false, 3, {}},
      // Kept hosts stay and count; the entry in use stays but does not count as kept.
      {true, true, true, 2,
       {u"Cookie:tester@kept.test/", u"http://alpha.test/a.png", u"Cookie:tester@www.kept.test/a/",
        u"http://alpha.test/", u"Cookie:tester@busy.test/", u"http://beta.test/"}},
      {true, true, false, 5,
       {u"Cookie:tester@kept.test/", u"http://alpha.test/a.png", u"Cookie:tester@www.kept.test/a/",
        u"http://alpha.test/", u"Cookie:tester@busy.test/", u"http://beta.test/"}},
      // A local path holding "Cookie" makes a cookie entry, wherever it lies.
      {false, true, false, 3,
       {u"Cookie:tester@kept.test/", u"Cookie:tester@www.kept.test/a/", u"Cookie:tester@gone.test/",
        u"Cookie:tester@busy.test/", u"http://cookiejar.test/"}},
  };
  for (const auto& c : cases) {
    Reset();
    Cookie(u"Cookie:tester@kept.test/");
    Page(u"http://alpha.test/a.png", kContent + u"a[1].png");
    Cookie(u"Cookie:tester@www.kept.test/a/");
    Cookie(u"Cookie:tester@gone.test/");
    Page(u"http://alpha.test/", u"");
    Cookie(u"Cookie:tester@busy.test/");
    Page(u"http://cookiejar.test/", u"D:\\Cookies-Backup\\jar.txt");
    Page(u"http://beta.test/", kContent + u"index[1].htm");
    Keep(u"kept.test");
    Keep(u"kept.test/a");
    mem.UrlCache->LockEntry(u"Cookie:tester@busy.test/");
    SCOPED_TRACE(testing::Message() << c.cookies << c.remove << c.countKept);
    EXPECT_EQ(c.result, EnumIECacheFiles(c.cookies, c.remove, c.countKept));
    if (c.remove) EXPECT_EQ(c.remaining, Remaining());
    else EXPECT_EQ(8u, Remaining().size());
  }
}

TEST_F(InternetExplorerStoreTest, EntriesLargerThanTheBufferAreEachSeenOnce) {
  // Each entry needs more room than the one before, so every step grows the buffer first.
  for (int n = 1; n <= 4; ++n) Cookie(u"Cookie:tester@" + String(n * 200, u'a') + u".test/");
  Cookie(u"Cookie:tester@b.test/");
  Cookie(u"Cookie:tester@" + String(2000, u'c') + u".test/");
  EXPECT_EQ(6, EnumIECacheFiles(true, false, false));
  EXPECT_EQ(6, EnumIECacheFiles(true, true, false));
  EXPECT_TRUE(Remaining().empty());
}

TEST_F(InternetExplorerStoreTest, NoCacheMeansNothingFoundAndNothingDeleted) {
  Cookie(u"Cookie:tester@alpha.test/");
  mem.UrlCache->SetUnavailable();
  EXPECT_EQ(0, EnumIECacheFiles(true, true, true));
  EXPECT_EQ((StringList{u"before"}), Hosts());
  mem.UrlCache->SetUnavailable(0);
  EXPECT_EQ(1u, Remaining().size());
}

}  // namespace
}  // namespace tc
