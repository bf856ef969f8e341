// The command's pieces that need no image: keep-list commands over a provider of the test's
// own, readable names, plug-in patterns.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "engine/CookieKeepLists.h"
#include "host/CookieCommands.h"
#include "host/PluginChoice.h"
#include "host/Readable.h"

namespace tc::host {
namespace {

// A browser whose clean ignores the keep-list.
class FakeKeepList : public ICookieKeepList {
 public:
  String Browser() const override { return u"fake"; }
  String Caption() const override { return u"Fake Browser"; }
  bool HonoursKeepList(String& why) const override {
    why = u"its clean empties the file";
    return false;
  }
  bool Hosts(std::vector<TCookieHostInfo>& hosts, String&) override {
    hosts = {{u"a.example", u"", 2, kept.count(u"a.example") > 0}};
    return true;
  }
  uint32_t SetKept(const String& host, bool) override {
    kept.insert(host);
    return ERROR_SUCCESS;
  }
  std::set<String> kept;
};

class CookieCommandsTest : public ::testing::Test {
 protected:
  void SetUp() override { RegisterCookieKeepList(&fake); }
  void TearDown() override { UnregisterCookieKeepList(&fake); }
  ExitCode Run(Command what, std::vector<std::string> hosts, std::string browser = "fake") {
    Options o;
    o.What = what;
    o.ImageGiven = true;  // keep and unkeep write into an image off Windows
    o.Json = true;
    o.Browser = std::move(browser);
    o.Hosts = std::move(hosts);
    std::ostringstream text;
    error.clear();
    ExitCode code = RunCookieCommand(o, "source", [&](std::string&) { return ++flushes, true; },
                                     text, error);
    doc = nlohmann::json::parse(text.str().empty() ? "null" : text.str());
    return code;
  }
  FakeKeepList fake;
  nlohmann::json doc;
  std::string error;
  int flushes = 0;
};

TEST_F(CookieCommandsTest, AKeepListTheCleanIgnoresRefusesAndWritesNothing) {
  EXPECT_EQ(kExitUsage, Run(Command::Keep, {"a.example"}));
  EXPECT_NE(doc["refused"].get<std::string>().find("empties the file"), std::string::npos);
  EXPECT_TRUE(fake.kept.empty());
  EXPECT_EQ(0, flushes);
  EXPECT_EQ(kExitUsage, Run(Command::Keep, {"a.example"}, "lynx"));
  EXPECT_NE(error.find("fake"), std::string::npos) << "names the browsers there are: " << error;
}

TEST(ReadableTest, DifferentNamesNeverPrintAlike) {
  const std::pair<String, std::string> cases[] = {
      {u"Kündigung.rtf", "Kündigung.rtf"},
      {String(u"a") + char16_t(0xDCFF), "a\\x{FF}"},        // a byte that was not UTF-8
      {String(u"a") + char16_t(0xD800) + u"b", "a\\u{D800}b"},  // a lone UTF-16 surrogate
      {u"line\nbreak", "line\\x{0A}break"},
      {u"C:\\x{FF}", "C:\\\\x{FF}"},                         // the escape's own spelling
      {u"C:\\Users\\x.txt", "C:\\Users\\x.txt"}};
  for (const auto& [name, shown] : cases) EXPECT_EQ(shown, Readable(name));
  EXPECT_EQ(u"UEME_RUNPATH:C:\\x.exe", PreviewValueName(TTT_UserAssist, u"HRZR_EHACNGU:P:\\k.rkr"));
  EXPECT_EQ(u"cmd", PreviewData(TTT_RunCMD, u"cmd\\1"));
}

TEST(PluginChoiceTest, PatternsMatchInAnyCase) {
  const std::tuple<const char16_t*, const char16_t*, bool> cases[] = {
      {u"FirefoxCookies", u"firefox*", true}, {u"FirefoxCookies", u"*Cookies", true},
      {u"IECookies", u"Firefox*", false},     {u"WordPad", u"w?rdpad", true},
      {u"WordPad", u"WordPa", false},         {u"WinRARRecentFolders", u"*rar*folders", true}};
  for (const auto& [id, pattern, want] : cases)
    EXPECT_EQ(want, MatchesPattern(id, pattern));
}

}  // namespace
}  // namespace tc::host
