// The files of Firefox 3 and later: a running Firefox keeps its databases, and a cache
// entry names its address (the command test cleans the real profile).
#include "plugins/AppPluginFixture.h"
#include "browsers/BrowserDatabase.h"
#include "browsers/FirefoxStores.h"

namespace tc {
namespace {

const String kRoaming = u"C:\\Users\\Tester\\AppData\\Roaming\\Mozilla\\Firefox\\";
const String kProfile = kRoaming + u"Profiles\\k7x2m9qa.default-release\\";

class FirefoxModernTest : public AppPluginFixture {
 protected:
  void SetUp() override {
    AppPluginFixture::SetUp();
    String why;
    if (!BrowserDatabasesAvailable(why)) GTEST_SKIP() << ToUtf8(why);
  }
  bool SeedRealProfile() {
    if (!CopyReal("profiles/firefox-esr-153/Roaming", kRoaming) ||
        !CopyReal("profiles/firefox-esr-153/Local", u"C:\\Users\\Tester\\AppData\\Local\\Mozilla\\Firefox\\"))
      return false;
    File(u"C:\\Program Files\\Mozilla Firefox\\firefox.exe");
    Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Mozilla\\Mozilla Firefox 153.0\\bin", u"PathToExe",
        u"C:\\Program Files\\Mozilla Firefox\\firefox.exe");
    return true;
  }
  int64_t Count(const String& db, const std::string& sql) {
    TBrowserDatabase d;
    std::vector<StringList> rows;
    if (!d.Open(kProfile + db) || !d.Query(sql, rows)) return -1;
    return std::stoll(ToUtf8(rows.at(0).at(0)));
  }
};

TEST_F(FirefoxModernTest, ARunningFirefoxKeepsItsDatabases) {
  if (!SeedRealProfile()) GTEST_SKIP() << "the real Firefox profile is not available";
  File(kProfile + u"parent.lock", "");
  mem.FileFaults->LockFile(kProfile + u"parent.lock");
  Start();
  CleanAndFix({u"FirefoxHistory"});
  EXPECT_NE(String::npos, Plugin(u"FirefoxHistory").Note.find(u"close Mozilla Firefox first"));
  EXPECT_EQ(5, Count(u"places.sqlite", "SELECT count(*) FROM moz_historyvisits"));
}

TEST(FirefoxFormats, CacheEntryAddressComesFromTheMetadata) {
  TC_REAL_FILE(entry, "profiles/firefox-esr-153/Local/Profiles/k7x2m9qa.default-release/cache2/"
                      "entries/354D6C817527579B21784FE350598F96C196EB74");
  EXPECT_EQ(0u, ParseFirefoxCacheEntryUrl(entry).rfind(u"http://", 0));
  EXPECT_EQ(u"", ParseFirefoxCacheEntryUrl(std::string(40, '\xFF')));
}

}  // namespace
}  // namespace tc
