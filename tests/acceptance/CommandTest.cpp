#include "CommandSupport.h"
#include "tests/support/RealWorld.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace tc {
namespace {

using namespace test;

constexpr char kUserReg[] = R"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Console]
"QuickEdit"=dword:00000001

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Applets\Wordpad\Recent File List]
"File1"="C:\\Users\\Anna\\Documents\\Geheim.rtf"
"File2"="  "
"File4"="C:\\Users\\Anna\\Documents\\Brief.rtf"

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Applets\Wordpad\Options]
"PageSize"=dword:00000001

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Applets\Paint\Recent File List]
"File1"="C:\\Bilder\\Ausweis.png"
"File3"="C:\\Bilder\\Urlaub.jpg"

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\RunMRU]
"a"="cmd\\1"
"b"="\\\\server\\share\\1"
"MRUList"="ba"
)";

TEST(CommandTest, ScanAndCleanAGeneratedImage) {
  TempDir dir;
  fs::path image = dir.Path() / "image";
  MakeImage(image, kUserReg);
  fs::path ntuser = image / "Users" / "Anna" / "NTUSER.DAT";

  json scan = RunJson("scan --traces --image " + Quote(image.string()));
  EXPECT_EQ(2, PluginOf(scan, "WordPad")["traceCount"]);  // the blank "File2" is no trace
  EXPECT_EQ(2, PluginOf(scan, "MSPaint")["traceCount"]);
  EXPECT_EQ(2, PluginOf(scan, "StartMenuRun")["traceCount"]);
  const json& runTraces = PluginOf(scan, "StartMenuRun")["traces"];
  ASSERT_EQ(2u, runTraces.size());
  EXPECT_EQ("cmd", runTraces[0]["data"]) << "shown without the \\1 Windows appends";
  EXPECT_EQ("registry-value", runTraces[0]["source"]);
  // Options may come before the command; --plugins switches the others off even with --all.
  json only = RunJson("--plugins WordPad --all --image " + Quote(image.string()) + " scan");
  EXPECT_EQ(2, PluginOf(only, "WordPad")["traceCount"]);
  EXPECT_FALSE(PluginOf(only, "MSPaint")["active"]);

  // Only WordPad and RunMRU: Paint keeps its list, renumbered by nobody.
  json clean = RunJson("clean --image " + Quote(image.string()) +
                       " --plugins WordPad,StartMenuRun --yes");
  EXPECT_EQ(0, PluginOf(clean, "WordPad")["remaining"]);
  EXPECT_EQ(0, PluginOf(clean, "StartMenuRun")["remaining"]);
  EXPECT_EQ(2u, clean["plugins"].size()) << "only the plug-ins that ran";
  EXPECT_EQ(false, clean["rebootRequired"]);
  EXPECT_TRUE(clean["notCleaned"].is_array());

  json again = RunJson("scan --traces --image " + Quote(image.string()));
  EXPECT_EQ(0, PluginOf(again, "WordPad")["traceCount"]);
  EXPECT_EQ(0, PluginOf(again, "StartMenuRun")["traceCount"]);
  const json& paint = PluginOf(again, "MSPaint")["traces"];
  ASSERT_EQ(2u, paint.size());
  EXPECT_EQ("File1", paint[0]["valueName"]);
  EXPECT_EQ("File3", paint[1]["valueName"]);

  if (!test::HaveTool("reglookup")) GTEST_SKIP() << "reglookup is not installed";
  std::string out;
  EXPECT_EQ(0, test::Run("reglookup-recover " + Quote(ntuser.string()), &out));
  EXPECT_EQ(std::string::npos, out.find("Geheim")) << out;
  EXPECT_EQ(0,
            test::Run("printf 'cd Console\\nlsval\\n' | hivexsh " + Quote(ntuser.string()), &out));
  EXPECT_NE(std::string::npos, out.find("\"QuickEdit\"=dword:00000001")) << out;
}

TEST(CommandTest, CleanTheRealWindows10HiveKeepsEverythingThatIsNoTrace) {
  TC_SKIP_WITHOUT_REALWORLD();
  if (!test::HaveTool("reglookup")) GTEST_SKIP() << "reglookup is not installed";
  TempDir dir;
  fs::path image = dir.Path() / "image";
  fs::path ntuser = image / "Users" / "Greendale" / "NTUSER.DAT";
  test::CopyRealHive("NTUSER-win10.DAT", ntuser);
  const std::set<std::string> before = Listing(ntuser);

  json scan = RunJson("scan --traces --all --image " + Quote(image.string()));
  EXPECT_EQ(6, PluginOf(scan, "RecentDocs")["traceCount"]);  // three items, and by extension
  EXPECT_EQ(0, PluginOf(scan, "StartMenuRun")["traceCount"]);  // present but empty
  EXPECT_TRUE(PluginOf(scan, "StartMenuRun")["active"]);
  EXPECT_FALSE(PluginOf(scan, "QuickTimeRecentMovies")["active"]) << "absent: switched off";
  EXPECT_TRUE(PluginOf(scan, "WordPad")["active"]) << "part of Windows: stays on";
  int total = 0;
  std::set<std::string> cleanedIds;
  for (const auto& p : scan["plugins"]) {
    total += p["traceCount"].get<int>();
    if (p["traceCount"].get<int>() > 0) cleanedIds.insert(p["id"]);
  }
  ASSERT_GT(total, 3);

  json clean = RunJson("clean --yes --image " + Quote(image.string()));
  for (const auto& p : clean["plugins"]) {
    if (cleanedIds.count(p["id"]) == 0) continue;
    EXPECT_TRUE(p["cleaned"]) << p["id"];
    EXPECT_EQ(0, p["remaining"]) << p["id"];
  }

  // Every line of the listing that was not one of the traces is still there.
  const std::set<std::string> after = Listing(ntuser);
  const std::string explorer = "/Software/Microsoft/Windows/CurrentVersion/Explorer/";
  auto isTrace = [&](const std::string& line) {
    for (const char* key : {"RecentDocs", "ComDlg32/OpenSavePidlMRU", "ComDlg32/LastVisitedPidlMRU",
                            "ComDlg32/CIDSizeMRU", "ComDlg32/FirstFolder", "UserAssist/", "RunMRU"})
      if (line.rfind(explorer + key, 0) == 0) return true;
    for (const char* key : {"/Software/Microsoft/Internet Explorer/TypedURLs",  // and ...Time
                            "/Software/Microsoft/Windows NT/CurrentVersion/AppCompatFlags/Compatibility Assistant/Store/"})
      if (line.rfind(key, 0) == 0 && line.find(",KEY,") == std::string::npos) return true;
    return false;
  };
  size_t kept = 0;
  for (const auto& line : before) {
    if (isTrace(line)) continue;
    EXPECT_EQ(1u, after.count(line)) << "lost: " << line;
    ++kept;
  }
  EXPECT_GT(kept, 1500u);
  for (const auto& line : after)
    EXPECT_TRUE(before.count(line) || isTrace(line)) << "new: " << line;
  std::string out;
  EXPECT_EQ(0, test::Run("printf 'cd Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\"
                         "Explorer\\\\RecentDocs\\nlsval\\nls\\n' | hivexsh " +
                             Quote(ntuser.string()), &out));
  EXPECT_EQ("", out);
  EXPECT_EQ(0, Tracecleaner("scan --image " + Quote(image.string()), out));
  EXPECT_NE(std::string::npos, out.find("Found 0 traces")) << out;
}

TEST(CommandTest, RefusedHivesExitWithCode2AndStayAsTheyWere) {
  TC_SKIP_WITHOUT_REALWORLD();
  struct Case {
    const char* name;
    std::string (*make)();
    const char* reason;
  };
  const Case cases[] = {
      {"truncated", [] {
         return test::ReadBytes(fs::path(TC_REALWORLD_DIR) / "hives/NTUSER-win10.DAT")
             .substr(0, 300000);
       }, "truncated"},
      {"Windows 9x", [] {
         return test::ReadBytes(fs::path(TC_REALWORLD_DIR) / "hives/USER-win9x.DAT");
       }, "Windows 95/98/Me"},
      {"logs pending", [] {
         std::string b = test::ReadBytes(fs::path(TC_REALWORLD_DIR) / "hives/NTUSER-win10.DAT");
         b[4] = char(b[4] + 1);  // primary sequence number ahead of the secondary
         return b;
       }, "unapplied transaction logs"},
  };
  for (const auto& c : cases) {
    TempDir dir;
    fs::path ntuser = dir.Path() / "Users" / "Anna" / "NTUSER.DAT";
    test::WriteBytes(ntuser, c.make());
    const std::string before = test::ReadBytes(ntuser);
    for (const char* command : {"scan", "clean --yes"}) {
      std::string out;
      EXPECT_EQ(2, Tracecleaner(std::string(command) + " --image " + Quote(dir.Str()), out))
          << c.name;
      EXPECT_NE(std::string::npos, out.find(ntuser.string())) << c.name << ": " << out;
      EXPECT_NE(std::string::npos, out.find(c.reason)) << c.name << ": " << out;
    }
    EXPECT_EQ(before, test::ReadBytes(ntuser)) << c.name;
  }
}

}  // namespace
}  // namespace tc
