// What the command reports: traces it left with their reasons, the work done before a hive
// could not be written, the preview of every trace, Ctrl+C, and runs that leave nothing behind.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

const fs::path kSecureTemp = "Users/Demo/AppData/Local/Microsoft/Outlook/SecureTemp";

// Makes a file or folder unchangeable for the test's life: the immutable flag where the test
// may set it, a read-only folder where the permission bits still bind (not as root).
class Blocker {
 public:
  explicit Blocker(fs::path path) : path_(std::move(path)) {
    if (test::Run("chattr +i " + Quote(path_.string()) + " 2>/dev/null") == 0) {
      how_ = "immutable";
    } else if (geteuid() != 0) {
      fs::path folder = fs::is_directory(path_) ? path_ : path_.parent_path();
      chmod(folder.c_str(), 0555);
      how_ = "access denied";
    }
  }
  ~Blocker() {
    if (how_ == "immutable") test::Run("chattr -i " + Quote(path_.string()));
    else chmod((fs::is_directory(path_) ? path_ : path_.parent_path()).c_str(), 0755);
  }
  // The reason the command should give, "" when the test cannot block anything here.
  const std::string& Reason() const { return how_; }

 private:
  fs::path path_;
  std::string how_;
};

TEST(HostReportsTest, ATraceTheCleanCouldNotRemoveIsNamedWithItsReason) {
  TempDir dir;
  const fs::path image = DemoCopy(dir);
  Blocker block(image / kSecureTemp / "Rechnung April.pdf");
  if (block.Reason().empty()) GTEST_SKIP() << "neither chattr nor permission bits bind here";
  const std::string args = "clean --plugins OutlookSecurityFiles --yes --image " + Quote(image.string());
  std::string out;
  EXPECT_EQ(3, Tracecleaner(args + " 2>&1", out)) << out;
  EXPECT_NE(out.find("not removed: C:\\Users\\Demo\\AppData\\Local\\Microsoft\\Outlook\\SecureTemp\\"
                     "Rechnung April.pdf"), std::string::npos) << out;
  EXPECT_NE(out.find(block.Reason()), std::string::npos) << out;

  json doc = RunJson(args, 3);
  ASSERT_EQ(1u, doc["failures"].size()) << doc.dump(1);
  const json& f = doc["failures"][0];
  EXPECT_EQ("OutlookSecurityFiles", f["id"]);
  EXPECT_NE(f["location"].get<std::string>().find("Rechnung April.pdf"), std::string::npos);
  EXPECT_NE(f["reason"].get<std::string>().find(block.Reason()), std::string::npos) << f;
  EXPECT_FALSE(f["scheduled"]);
  const json& p = PluginOf(doc, "OutlookSecurityFiles");
  EXPECT_EQ("failed", p["outcome"]);
  EXPECT_FALSE(p["cleaned"]) << "never cleaned with a trace remaining";
  EXPECT_EQ(1, p["left"]);
}

TEST(HostReportsTest, AHiveThatCannotBeWrittenReportsWhatWasAlreadyDone) {
  TempDir dir;
  for (bool asJson : {false, true}) {
    SCOPED_TRACE(asJson ? "json" : "text");
    const fs::path image = DemoCopy(dir, asJson ? "json" : "text");
    const std::string args = "clean --plugins WinRARRecentArchives,OutlookSecurityGlyphs --yes "
                             "--image " + Quote(image.string());
    Blocker block(image / "Users/Demo");
    if (block.Reason().empty()) GTEST_SKIP() << "neither chattr nor permission bits bind here";
    if (!asJson) {
      std::string out;
      EXPECT_EQ(2, Tracecleaner(args + " 2>&1", out)) << out;
      EXPECT_NE(out.find("removed C:\\Users\\Demo\\AppData\\Local\\Microsoft\\Outlook\\SecureTemp\\"
                         "Logo.jpg"), std::string::npos) << out;
      EXPECT_NE(out.find("not removed: HKEY_CURRENT_USER\\Software\\WinRAR\\ArcHistory : 0"),
                std::string::npos) << out;
      EXPECT_NE(out.find("NTUSER.DAT"), std::string::npos) << out;
    } else {
      json doc = RunJson(args, 2);
      EXPECT_EQ(json::array({"C:\\Users\\Demo\\AppData\\Local\\Microsoft\\Outlook\\SecureTemp\\Logo.jpg"}),
                PluginOf(doc, "OutlookSecurityGlyphs")["removedFileNames"]);
      EXPECT_EQ("skipped", PluginOf(doc, "WinRARRecentArchives")["outcome"]);
      int winrar = 0;
      for (const auto& f : doc["failures"]) winrar += f["id"] == "WinRARRecentArchives";
      EXPECT_EQ(2, winrar) << doc["failures"].dump(1);
      EXPECT_NE(doc["fatal"]["message"].get<std::string>().find("NTUSER.DAT"), std::string::npos);
    }
    EXPECT_FALSE(fs::exists(image / kSecureTemp / "Logo.jpg"));
  }
}

TEST(HostReportsTest, ThePreviewNamesEveryTraceReadably) {
  TempDir dir;
  const fs::path image = DemoCopy(dir);
  // Two names that are not UTF-8 and would print alike if their bytes were replaced.
  WriteBytes(image / kSecureTemp / "a\xff.pdf", "12345");
  WriteBytes(image / kSecureTemp / "a\xfe.pdf", "123");
  json scan = RunJson("scan --traces --image " + Quote(image.string()));
  std::set<std::string> locations;
  for (const auto& p : scan["plugins"]) {
    for (const auto& t : p["traces"]) locations.insert(t["location"].get<std::string>());
    EXPECT_EQ(p["traceCount"], p["traces"].size()) << p["id"] << " has traces without a line";
  }
  const std::string temp = "C:\\Users\\Demo\\AppData\\Local\\Microsoft\\Outlook\\SecureTemp\\";
  for (const std::string& name : {temp + "a\\x{FF}.pdf", temp + "a\\x{FE}.pdf",
                                  std::string("C:\\pagefile.sys")})
    EXPECT_EQ(1u, locations.count(name)) << name;
  bool decoded = false;
  for (const auto& l : locations) decoded = decoded || l.find("UEME_RUNPATH:C:\\Windows\\notepad.exe") != std::string::npos;
  EXPECT_TRUE(decoded) << "UserAssist names are shown decoded";
  for (const auto& t : PluginOf(scan, "OutlookSecurityFiles")["traces"])
    if (t["location"] == temp + "a\\x{FF}.pdf") {
      EXPECT_EQ(5, t["size"]);
    }

  // The clean works on the raw names.
  RunJson("clean --yes --plugins OutlookSecurityFiles --image " + Quote(image.string()));
  EXPECT_FALSE(fs::exists(image / kSecureTemp / "a\xff.pdf"));
  EXPECT_FALSE(fs::exists(image / kSecureTemp / "a\xfe.pdf"));
}

TEST(HostReportsTest, CtrlCStopsTheCleanAfterTheFileAtHand) {
  TempDir dir;
  const fs::path image = DemoCopy(dir);
  constexpr int kFiles = 20000;
  const std::string block(4096, 'x');
  for (int i = 0; i < kFiles; ++i)
    std::ofstream(image / kSecureTemp / ("f" + std::to_string(i) + ".bin")) << block;
  const fs::path out = dir.Path() / "out.json";
  const std::string command = std::string(TC_TRACECLEANER) +
                              " clean --json --yes --method gutmann --plugins OutlookSecurityFiles "
                              "--image " + Quote(image.string()) + " >" + Quote(out.string());
  // A background job of a script ignores SIGINT until the command installs its handler.
  const int code = test::Run("sh -c " + Quote(command + " & p=$!; sleep 1; kill -INT $p; wait $p"));
  EXPECT_EQ(130, code);
  json doc = json::parse(ReadBytes(out), nullptr, false);
  ASSERT_FALSE(doc.is_discarded()) << ReadBytes(out);
  EXPECT_TRUE(doc["stopped"]);
  int left = 0;
  for (const auto& e : fs::directory_iterator(image / kSecureTemp)) left += e.path().extension() == ".bin";
  EXPECT_GT(left, kFiles / 2) << "most files are still there";
  EXPECT_EQ(kFiles - left, doc["totals"]["removedFiles"]) << "the count of removed ones is true";
}

// They work on a fresh copy of the demo image, say so, and leave neither the demo nor a copy
// changed behind.
TEST(HostReportsTest, RunsWithoutAnImageLeaveNoCopyBehind) {
  TempDir temp;
  const fs::path demoHive = fs::path(TC_DEMO_IMAGE_DIR) / "Users" / "Demo" / "NTUSER.DAT";
  const std::string demoBefore = ReadBytes(demoHive);
  const std::string env = "TMPDIR=" + Quote(temp.Str()) + " ";
  const char* runs[] = {"list", "--version", "scan --plugins NoSuch", "scan --plugins WordPad",
                        "sweep", "clean --yes", "clean", "cookies"};
  for (int i = 0; i < 50; ++i) {
    std::string out;
    const int code = test::Run(env + TC_TRACECLEANER + " " + runs[i % std::size(runs)] + " </dev/null", &out);
    if (i == 5) {
      EXPECT_EQ(0, code) << out;
      EXPECT_NE(std::string::npos, out.find("fresh copy of the demo image")) << out;
    }
  }
  EXPECT_EQ(demoBefore, ReadBytes(demoHive));
  // Stopped with Ctrl+C, too.
  test::Run("sh -c " + Quote(env + TC_TRACECLEANER + " scan >/dev/null & p=$!; sleep 0.2; kill -INT $p; wait $p"));
  std::vector<std::string> left;
  for (const auto& e : fs::directory_iterator(temp.Path())) left.push_back(e.path().string());
  EXPECT_TRUE(left.empty()) << left.front();
}

TEST(HostReportsTest, UsageErrorsAndRefusalsExitWith1InOneLine) {
  struct Case {
    const char* args;
    const char* says;
  };
  const Case cases[] = {
      {"", "a command is needed"},
      {"sweep", "sweep"},
      {"scan --passes 3", "--passes"},
      {"scan --drive D", "LETTER=DIR"},
      {"scan --plugins WordPad,NoSuchPlugin", "NoSuchPlugin"},
      {"clean", "add --yes"},
      {"scan --image ''", "--image needs a folder"},
      {"scan --image /x --drive D=/a --drive d=/b", "given twice"},
      {"scan --plugins ' , '", "at least one ID"},
      {"scan --plugins wordpadd", "did you mean WordPad"},
      {"scan --sections Nowhere", "unknown section"},
      {"keep example.com", "needs --browser"},
      {"keep example.com --browser lynx", "unknown browser lynx"},
      {"unkeep example.com --browser ie", "without --image would write into a copy"},
  };
  for (const auto& c : cases) {
    std::string out;
    EXPECT_EQ(1, Tracecleaner(std::string(c.args) + " 2>&1", out)) << c.args;
    EXPECT_NE(out.find(c.says), std::string::npos) << c.args << ": " << out;
    EXPECT_NE(out.find("see tracecleaner --help"), std::string::npos) << c.args << ": " << out;
    EXPECT_EQ(1, std::count(out.begin(), out.end(), '\n')) << c.args << ": " << out;
    json doc = RunJson(c.args, 1);
    EXPECT_EQ("usage", doc["error"]["kind"]) << c.args;
  }
  std::string out;
  ASSERT_EQ(0, Tracecleaner("--version", out));
  EXPECT_NE(out.find("commit "), std::string::npos) << out;
}

}  // namespace
}  // namespace tc
