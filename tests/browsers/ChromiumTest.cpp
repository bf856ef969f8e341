// The Chromium-family plug-ins on a real Chromium profile copied into the in-memory Windows.
#include "plugins/AppPluginFixture.h"
#include "browsers/BrowserDatabase.h"
#include "browsers/ChromiumCache.h"
#include "browsers/ChromiumProfiles.h"
#include "engine/CookieKeepLists.h"
#include "platform/helpers/FileContents.h"

namespace tc {
namespace {

const String kUserData = u"C:\\Users\\Tester\\AppData\\Local\\Google\\Chrome\\User Data\\";

class ChromiumTest : public AppPluginFixture {
 protected:
  void SetUp() override {
    AppPluginFixture::SetUp();
    String why;
    if (!BrowserDatabasesAvailable(why)) GTEST_SKIP() << ToUtf8(why);
  }
  // Every byte of every file under User Data.
  std::string AllBytes(const String& folder = kUserData) {
    std::string all;
    std::vector<FileInfo> entries;
    mem.Files->ListFolder(folder, entries);
    for (const auto& e : entries) {
      if (e.IsDirectory()) {
        all += AllBytes(folder + e.Name + u"\\");
      } else {
        Bytes data;
        FileContents::Read(*mem.Platform->Files, folder + e.Name, data);
        all.append(data.begin(), data.end());
      }
    }
    return all;
  }
};

TEST_F(ChromiumTest, ARunningBrowserIsToldToCloseAndNothingChanges) {
  if (!CopyReal("profiles/chromium-156", kUserData)) GTEST_SKIP() << "the real Chromium profile is not available";
  File(kUserData + u"lockfile", "");
  mem.FileFaults->LockFile(kUserData + u"lockfile");
  Start();
  const std::string before = AllBytes();
  CleanAndFix({u"ChromeHistory", u"ChromeCookies"});
  EXPECT_NE(String::npos, Plugin(u"ChromeHistory").Note.find(u"close Google Chrome first"));
  mem.FileFaults->ClearFaults();
  EXPECT_EQ(before, AllBytes());
}

TEST(ChromiumFormats, LocalStateNamesOnlyPlainProfileFolders) {
  struct Case {
    const char* json;
    bool ok;
    std::vector<std::pair<String, String>> profiles;  // folder, name
  } cases[] = {
      {R"({"profile":{"info_cache":{"Default":{"name":"Anna"},"Profile 2":{}}}})", true,
       {{u"Default", u"Anna"}, {u"Profile 2", u"Profile 2"}}},
      {R"({"profile":{"info_cache":{"..":{},"a\\b":{},"C:x":{},"Profile 3":{"name":7}}}})", true,
       {{u"Profile 3", u"Profile 3"}}},
      {R"({"profile":{"info_cache":[]}})", false, {}},
      {R"({"profile":{"info_cache":{"Default":)", false, {}},
  };
  for (const auto& c : cases) {
    TBrowserProfileList got;
    EXPECT_EQ(c.ok, ParseLocalStateProfiles(c.json, got)) << c.json;
    std::vector<std::pair<String, String>> pairs;
    for (const auto& p : got) pairs.emplace_back(p.Path, p.Name);
    EXPECT_EQ(c.profiles, pairs) << c.json;
  }
}

TEST(ChromiumFormats, CacheEntriesGiveTheirAddressAndAnIndexItsCount) {
  TC_REAL_FILE(entry, "profiles/chromium-156/Default/Cache/Cache_Data/0363fda8da71f378_0");
  String url;
  ASSERT_TRUE(ParseSimpleCacheEntryUrl(entry, url));
  EXPECT_EQ(u"http://localhost:8082/", url);
  EXPECT_FALSE(ParseSimpleCacheEntryUrl(entry.substr(0, 20), url));
  EXPECT_FALSE(ParseSimpleCacheEntryUrl(std::string(64, 'x'), url));
  EXPECT_EQ(3, ParseBlockfileIndexCount(std::string("\xC3\xCA\x03\xC1\0\0\x03\0\x03\0\0\0", 12)));
  EXPECT_EQ(-1, ParseBlockfileIndexCount(std::string("\xC3\xCA\x03\xC1\0\0\x03\0\xFF\xFF\xFF\xFF", 12)));
  EXPECT_EQ(-1, ParseBlockfileIndexCount(entry));
}

}  // namespace
}  // namespace tc
