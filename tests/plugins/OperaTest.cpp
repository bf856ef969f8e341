#include "plugins/TCP_Opera.h"

#include <cstring>

#include "AppPluginFixture.h"

namespace tc {
namespace {

const String kProfile = AppPluginFixture::kAppData + u"Opera\\Opera\\profile\\";

// The cookies of one host at the root path and the flag that closes each record.
std::string Site(const std::string& host, std::initializer_list<const char*> names) {
  std::string cookies;
  for (const char* n : names) {
    std::string name = std::string(1, '\x10') + '\0' + char(std::strlen(n)) + n;
    cookies += std::string(1, '\x03') + '\0' + char(name.size()) + name;
  }
  std::string part = std::string(1, '\x1E') + '\0' + char(host.size()) + host;
  return std::string(1, '\x01') + '\0' + char(part.size()) + part + cookies + "\x85\x84";
}
const std::string kHeader("\0\0\x10\0\0\0\x20\0\0\x01\0\x02", 12);

class OperaTest : public AppPluginFixture {
 public:
  void SetUp() override {
    AppPluginFixture::SetUp();
    Str(HKEY_CURRENT_USER, u"Software\\Opera Software", u"Last Directory3", u"C:\\Programme\\Opera");
    ASSERT_EQ(mem.Files->MakeFolder(u"C:\\Programme\\Opera"), ERROR_SUCCESS);
  }
  void Keep(const String& host) {
    ASSERT_EQ(mem.Platform->ProductSettings->WriteBool(u"Cookies\\OPERA", u"default-" + host, false),
              ERROR_SUCCESS);
  }
};

TEST_F(OperaTest, CookiesGoExceptTheKeptHostsWhichAreReportedNotCleaned) {
  const std::string file = kHeader + Site("alpha", {"a1", "a2"}) + Site("beta", {"b"}) +
                           Site("gamma", {"g"}) + "\x84\x84";
  File(kProfile + u"cookies4.dat", file);
  Keep(u"beta");
  Keep(u"gamma");
  Start();
  EXPECT_EQ(4, Scan(u"OperaCookies"));
  EXPECT_EQ(found[0].Data, u"alpha");

  CleanAndFix({u"OperaCookies"});
  EXPECT_EQ(mem.Files->Contents(kProfile + u"cookies4.dat"),
            kHeader + Site("alpha", {}) + Site("beta", {"b"}) + Site("gamma", {"g"}) + "\x84\x84");
  EXPECT_EQ(Plugins->CountNotCleanedTraces(&Plugin(u"OperaCookies")), 2);
  EXPECT_EQ(2, Scan(u"OperaCookies"));
}

TEST_F(OperaTest, HistoryTypedAddressesAndCacheOfAProfile) {
  File(kProfile + u"global_history.dat", "Start\nhttp://a.example/\n1384209918\n-1\n"
                                         "B\nhttp://b.example/\n1384209922\n-1\n");
  File(kProfile + u"vlink4.dat", std::string("\0\0\x10\0\0\x02\0\0\0\x01\0\x02", 12));
  File(kProfile + u"typed_history.xml",
       "<?xml version=\"1.0\"?>\n<typed_history>\n  <typed_history_item content=\"a.example\"/>\n"
       "</typed_history>\n");
  Files(kProfile + u"cache4\\", {u"opr00001.tmp", u"opr00002.tmp"});
  File(kProfile + u"cache4\\sesn\\opr00003.tmp");
  Start();
  EXPECT_EQ(2, Scan(u"OperaHistory"));
  EXPECT_EQ(found[1].Data, u"http://b.example/");
  EXPECT_EQ(1, Scan(u"OperaTypedURLs"));
  EXPECT_EQ(3, Scan(u"OperaCache"));

  CleanAndFix({u"OperaHistory", u"OperaTypedURLs", u"OperaCache"});
  EXPECT_FALSE(Exists(kProfile + u"global_history.dat"));
  EXPECT_FALSE(Exists(kProfile + u"vlink4.dat"));
  EXPECT_EQ(mem.Files->Contents(kProfile + u"typed_history.xml"),
            "<?xml version=\"1.0\"?>\n<typed_history>\n</typed_history>\n");
  EXPECT_EQ(0, Scan(u"OperaCache"));
  EXPECT_TRUE(Exists(kProfile + u"cache4\\sesn"));
}

}  // namespace
}  // namespace tc
