// Internet Explorer through the command, on a Windows XP image holding real cache and history
// indexes and a cookie index; the cleaned indexes checked with libmsiecf's own tools.
#include "CommandSupport.h"

namespace tc::test {
namespace {

const fs::path kReal = fs::path(TC_REALWORLD_DIR);
const char kProfile[] = "Documents and Settings/Anna/";
const char kContent[] = "Local Settings/Temporary Internet Files/Content.IE5/index.dat";
const char kHistory[] = "Local Settings/History/History.IE5/";
const char kDaily[] = "Local Settings/History/History.IE5/MSHist012013031020130311/index.dat";

constexpr char kKeepGoogle[] = R"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\TraceCleaner\Cookies\IE]
"google.de"=dword:00000000
)";

// Every location msiecfexport lists, with the number of items msiecfinfo counts.
std::multiset<std::string> Export(const fs::path& index, int& items) {
  std::string out;
  EXPECT_EQ(0, Run("msiecfinfo " + Quote(index.string()), &out)) << out;
  size_t at = out.find("Number of items");
  items = at == std::string::npos ? -1 : std::atoi(out.c_str() + out.find(':', at) + 1);
  EXPECT_EQ(0, Run("msiecfexport " + Quote(index.string()), &out)) << out;
  std::multiset<std::string> locations;
  std::istringstream in(out);
  for (std::string line; std::getline(in, line);)
    if (line.rfind("Location", 0) == 0) locations.insert(line.substr(line.find(": ") + 2));
  return locations;
}

TEST(InternetExplorerCommandTest, RealIndexesAreScannedCleanedAndStillReadable) {
  if (!fs::exists(kReal / "iecache") || !HaveTool("msiecfexport"))
    GTEST_SKIP() << "needs the real cache files and msiecfexport";
  TempDir source, image;
  const fs::path profile = source.Path() / "tree" / kProfile;
  const std::string cookieFile = ReadBytes(kReal / "iecookies" / "user@google[4].txt");
  WriteBytes(profile / kContent, ReadBytes(kReal / "iecache" / "Content.IE5-index.dat"));
  WriteBytes(profile / kHistory / "index.dat", ReadBytes(kReal / "iecache" / "History.IE5-index.dat"));
  WriteBytes(profile / kDaily, ReadBytes(kReal / "iecache" / "MSHist01-index.dat"));
  WriteBytes(profile / "Cookies" / "index.dat.txt",
             "Cookie:anna@google.de/\tanna@google[1].txt\n"
             "Cookie:anna@www.google.de/\tanna@google[2].txt\n"
             "Cookie:anna@ads.example/\tanna@ads[1].txt\n"
             "Cookie:anna@.tracker.example/\tanna@tracker[1].txt\n");
  for (const char* name : {"anna@google[1].txt", "anna@google[2].txt", "anna@ads[1].txt", "anna@tracker[1].txt"})
    WriteBytes(profile / "Cookies" / name, cookieFile);
  WriteBytes(source.Path() / "registry" / "user.reg", kKeepGoogle);
  std::string out;
  ASSERT_EQ(0, test::Run(std::string(TC_MKIMAGE) + " " + Quote(source.Str()) + " " + Quote(image.Str() + "/c"), &out)) << out;
  const fs::path anna = image.Path() / "c" / kProfile;
  const std::string args = "--image " + Quote((image.Path() / "c").string());

  int before = 0;
  const auto contentBefore = Export(anna / kContent, before);
  json scan = RunJson("scan " + args);
  EXPECT_EQ(4, PluginOf(scan, "IECookies")["traceCount"]);
  EXPECT_EQ(21 + 15, PluginOf(scan, "IETempInternetFiles")["traceCount"]);  // history has no files
  EXPECT_EQ(15 + 14, PluginOf(scan, "IEHistory")["traceCount"]);

  json clean = RunJson("clean --yes " + args);
  ASSERT_EQ(1u, clean["notCleaned"].size());
  EXPECT_EQ("IECookies", clean["notCleaned"][0]["id"]);
  EXPECT_EQ(2, clean["notCleaned"][0]["count"]);

  // Each cleaned index still opens in libmsiecf's tools and lists none of what went.
  int items = 0;
  EXPECT_EQ((std::multiset<std::string>{"Cookie:anna@google.de/", "Cookie:anna@www.google.de/"}),
            Export(anna / "Cookies" / "index.dat", items));
  EXPECT_EQ(2, items);
  EXPECT_TRUE(fs::exists(anna / "Cookies" / "anna@google[1].txt"));
  EXPECT_FALSE(fs::exists(anna / "Cookies" / "anna@ads[1].txt"));
  // What is left are the content index's 14 redirections, which are no walk entries.
  for (const auto& [index, redirections] : {std::pair{std::string(kContent), 14},
                                            std::pair{std::string(kHistory) + "index.dat", 0},
                                            std::pair{std::string(kDaily), 0}}) {
    SCOPED_TRACE(index);
    const auto left = Export(anna / index, items);
    EXPECT_EQ(redirections, items);
    for (const auto& location : left) EXPECT_EQ(1u, contentBefore.count(location)) << location;
    const std::string bytes = ReadBytes(anna / index);
    for (const char* gone : {"static-hp-neu.s-msn.com", "confirmation.aspx?id=40901", "Host: code.google.com"})
      EXPECT_EQ(std::string::npos, bytes.find(gone)) << gone;
  }
  json again = RunJson("scan " + args);
  EXPECT_EQ(2, PluginOf(again, "IECookies")["traceCount"]);
  EXPECT_EQ(0, PluginOf(again, "IEHistory")["traceCount"]);
}

}  // namespace
}  // namespace tc::test
