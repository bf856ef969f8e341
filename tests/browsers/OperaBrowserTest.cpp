#include "browsers/TC_OperaBrowser.h"

#include "plugins/AppPluginFixture.h"
#include "platform/helpers/FileContents.h"

namespace tc {
namespace {

const String kProfile = u"C:\\Users\\Tester\\AppData\\Roaming\\Opera\\Opera\\profile";
const String kCookies = kProfile + u"\\cookies4.dat";

// Cookie file pieces: one-byte tags, two-byte lengths.
std::string Header(uint16_t app = 0x2000) {
  return std::string("\0\0\x10\0\0\0", 6) + char(app >> 8) + char(app & 0xFF) +
         std::string("\0\x01\0\x02", 4);
}
std::string Rec(uint8_t tag, const std::string& payload) {
  return std::string(1, char(tag)) + char(payload.size() >> 8) + char(payload.size() & 0xFF) +
         payload;
}
std::string Flag(uint8_t tag) { return std::string(1, char(tag)); }
std::string Domain(const std::string& name) { return Rec(0x01, Rec(0x1E, name)); }
std::string Cookie(const std::string& name) { return Rec(0x03, Rec(0x10, name) + Flag(0xA0)); }

class OperaBrowserTest : public AppPluginFixture {
 public:
  // The cookies of `file` as "host key|name" lines, or the error the parse raised.
  StringList Parse(const std::string& file) {
    mem.Files->RemoveFile(kCookies);
    File(kCookies, file);
    TOperaBrowser browser(kProfile);
    StringList out;
    try {
      browser.EnumCookies();
    } catch (const EOperaCookieFile&) {
      return {u"raises"};
    }
    if (!browser.Refusal.empty()) return {browser.Refusal};
    for (const auto& c : browser.Cookies)
      out.push_back(OperaHostKey(c->Domain, c->Path) + u"|" + c->Name);
    return out;
  }
};

TEST_F(OperaBrowserTest, ReadsTheCookieFileWithItsQuirks) {
  struct Case {
    const char* name;
    std::string file;
    StringList cookies;
  };
  const Case cases[] = {
      {"domain stack, innermost first", Header() + Domain("com") + Domain("alpha") + Cookie("a") +
                                            Flag(0x84) + Domain("beta") + Cookie("b"),
       {u"alpha.com|a", u"beta.com|b"}},
      {"a path other than / joins the host", Header() + Domain("test") + Domain("alpha") +
                                                 Rec(0x02, Rec(0x1D, "/")) + Cookie("root") +
                                                 Flag(0x85) + Rec(0x02, Rec(0x1D, "shop")) + Cookie("s"),
       {u"alpha.test|root", u"alpha.testshop|s"}},
      {"www cuts anywhere in the host", Header() + Domain("test") + Domain("awwwb") + Cookie("x") +
                                            Flag(0x84) + Domain("newwww") + Cookie("y"),
       {u"b.test|x", u"test|y"}},
      {"unknown tags are skipped by their length", Header() + Domain("c") + Rec(0x42, "\x03\x03\x03") +
                                                       Flag(0xFF) + Cookie("n"),
       {u"c|n"}},
      {"the last two bytes start no record", Header() + Flag(0x03) + Flag(0x00), {}},
      {"Opera 9 and later", Header(0x2001) + Cookie("n"), {u"cookie file version 2001 is not read"}},
      {"another file format", std::string("\0\0\x10\x01\0\0\x20\0\0\x01\0\x02", 12) + Cookie("n"),
       {u"cookie file format 1001 is not read"}},
      {"hexadecimal letters in the header", std::string("\0\0\x1A\0\0\0\x20\0\0\x01\0\x02", 12), {u"raises"}},
      {"an empty file", "", {u"raises"}},
      {"a time cut off at the end", Header() + Domain("c") + Rec(0x03, "") + std::string("\x12\0\x08", 3),
       {u"raises"}},
  };
  for (const auto& c : cases) EXPECT_EQ(Parse(c.file), c.cookies) << c.name;
}

TEST_F(OperaBrowserTest, ACookieLeftOpenTakesInWhatFollowsUntilTheNextCookie) {
  const std::string first = Cookie("a");
  const std::string file = Header() + Domain("one") + first + Flag(0x84) + Domain("two") +
                           Cookie("b") + Flag(0x85) + Cookie("c");
  File(kCookies, file);
  TOperaBrowser browser(kProfile);
  ASSERT_EQ(3, browser.EnumCookies());
  const int64_t second = static_cast<int64_t>(file.find(Cookie("b"))) + 1;
  EXPECT_EQ(browser.GetOperaCookieEntry(0).EndPos, second - 1) << "the domain end and start go with it";
  EXPECT_EQ(browser.GetOperaCookieEntry(2).EndPos, 0) << "never closed";
  EXPECT_TRUE(browser.GetOperaCookieEntry(0).TagA0);

  for (auto& c : browser.Cookies) c->Deleted = true;
  EXPECT_TRUE(browser.i_in_Deleted_Cookie(second - 1));
  browser.UpdateCookies();
  std::string expected = file;
  expected.erase(expected.find(first), static_cast<size_t>(second - 1) - expected.find(first));
  expected.erase(expected.find(Cookie("b")), Cookie("b").size());
  EXPECT_EQ(expected, mem.Files->Contents(kCookies)) << "the open cookie stays";
}

TEST_F(OperaBrowserTest, RealFilesReadAsTheirOriginListsThem) {
  TC_REAL_FILE(file, "opera/cookies4.dat");
  std::string patched = file;
  patched[7] = 0x00;  // application version 0x2000
  Parse(patched);
  TOperaBrowser browser(kProfile);
  ASSERT_EQ(12, browser.EnumCookies());
  StringList where;
  for (const auto& c : browser.Cookies) where.push_back(c->Domain + u"/" + c->Path + u" " + c->Name);
  EXPECT_EQ(where, (StringList{u"bing.com/ SRCHUSR", u"bing.com/ _UR", u"bing.com/ MUID", u"bing.com/ SRCHD",
                               u"bing.com/fb FBB", u"www.bing.com/ SRCHUID", u"github.com/ _gh_sess",
                               u"github.com/ tracker", u"google.com/ NID", u"google.com/ PREF",
                               u"google.com/verify SNID", u"yahoo.com/ B"}));
  EXPECT_EQ(browser.CookieHosts.size(), 6u);
  EXPECT_DOUBLE_EQ(browser.GetOperaCookieEntry(0).Expires, 25569.0 + 0x7C5ECD24 / 86400.0);

  TC_REAL_FILE(big, "opera/cookies4-2014.dat");
  std::string bigPatched = big;
  bigPatched[7] = 0x00;
  EXPECT_EQ(Parse(bigPatched).size(), 723u);
}

TEST_F(OperaBrowserTest, HistoryAndTypedAddressesOfARealProfile) {
  TC_REAL_FILE(history, "opera/global_history.dat");
  TC_REAL_FILE(typed, "opera/typed_history.xml");
  File(kProfile + u"\\global_history.dat", history);
  File(kProfile + u"\\typed_history.xml", typed);
  TOperaBrowser browser(kProfile);
  ASSERT_TRUE(browser.EnumHistory());
  ASSERT_EQ(browser.History.size(), 37u);
  EXPECT_EQ(browser.History[0], u"http://redir.opera.com/www.opera.com/firstrun/");
  ASSERT_TRUE(browser.EnumTypedURLs());
  EXPECT_EQ(browser.TypedURLs, (StringList{u"plaso.kiddaland.net", u"mbl.is",
                                           u"code.google.com/p/plaso", u"theonion.com"}));
}

}  // namespace
}  // namespace tc
