// keep and unkeep through the command, followed by cleans of the demo image's Internet
// Explorer and Opera cookies.
#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

// The hosts of one browser with cookies, and whether each is kept.
std::map<std::string, bool> Hosts(const std::string& image, const std::string& browser) {
  json doc = RunJson("cookies --browser " + browser + " --image " + Quote(image));
  std::map<std::string, bool> hosts;
  for (const auto& h : doc["browsers"][0]["hosts"]) hosts[h["host"]] = h["kept"];
  return hosts;
}

TEST(CookieCommandsTest, AKeptHostSurvivesTheCleanUntilItIsUnkept) {
  TempDir dir;
  const fs::path copy = DemoCopy(dir);
  const std::string image = Quote(copy.string());
  struct Case {
    const char* browser;
    const char* plugin;
    const char* host;     // kept by the test
    const char* already;  // kept by the demo image
  };
  const Case cases[] = {{"ie", "IECookies", "shop-demo.example", "bank-demo.example"},
                        {"opera", "OperaCookies", "ebay.de", "sparkasse.de"}};
  const std::string clean = "clean --yes --plugins IECookies,OperaCookies --image " + image;

  for (const auto& c : cases) {
    json kept = RunJson(std::string("keep ") + c.host + " --browser " + c.browser + " --image " + image);
    EXPECT_EQ(true, kept["hosts"][0]["hasCookies"]) << c.browser;
  }
  json first = RunJson(clean);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.browser);
    const std::map<std::string, bool> left = {{c.already, true}, {c.host, true}};
    EXPECT_EQ(left, Hosts(copy.string(), c.browser));
    EXPECT_EQ(2, PluginOf(first, c.plugin)["kept"]);
    EXPECT_EQ("cleaned", PluginOf(first, c.plugin)["outcome"]);
  }
  EXPECT_EQ(2u, first["notCleaned"].size());
  EXPECT_EQ(0, first["totals"]["left"]);

  for (const auto& c : cases)
    RunJson(std::string("unkeep ") + c.host + " --browser " + c.browser + " --image " + image);
  RunJson(clean);
  for (const auto& c : cases)
    EXPECT_EQ((std::map<std::string, bool>{{c.already, true}}), Hosts(copy.string(), c.browser))
        << c.browser;

  std::string out;
  EXPECT_EQ(1, Tracecleaner("keep a.example --browser firefox --image " + image, out));
  EXPECT_NE(std::string::npos, out.find("ignores the keep-list")) << out;
}

}  // namespace
}  // namespace tc
