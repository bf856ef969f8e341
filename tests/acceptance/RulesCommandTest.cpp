// Rules files on the command: entries of our own rules file in the community format clean
// 7-Zip, Notepad++ and OBS Studio traces of an offline image and nothing else.
#include "CommandSupport.h"

namespace tc::test {
namespace {

const std::string kRules = std::string(TC_SOURCE_DIR) + "/tests/acceptance/data/rules.ini";
const std::string kIds = "--plugins W2_7_Zip,W2_Notepad__,W2_OBS_Studio ";

const char kRegistry[] = R"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\7-Zip\Compression]
"ArcHistory"=hex:61,00,3a,00,00,00
"Level"=dword:00000005

[HKEY_CURRENT_USER\Software\7-Zip\Extraction]
"PathHistory"=hex:62,00,00,00

[HKEY_CURRENT_USER\Software\7-Zip\FM]
"FolderHistory"=hex:63,00,00,00
"PanelPath0"="C:\\Users\\Anna\\Documents"
"Lang"="-"
)";

// Files of the image below Anna's roaming folder: traces first, then what must stay.
const char* const kTraces[] = {
    "Notepad++/session.log", "Notepad++/plugins/Temp/a.tmp", "Notepad++/plugins/Temp/sub/b.tmp",
    "obs-studio/logs/2026-01-01 10-00-00.txt", "obs-studio/plugin_config/obs-browser/Cookies",
    "obs-studio/plugin_config/obs-browser/Cache/data_1"};
const char* const kKept[] = {
    "Notepad++/config.xml", "Notepad++/stylers.xml", "Notepad++/plugins/Config/a.ini",
    "obs-studio/logs/crash.json", "obs-studio/basic/scenes/Untitled.json",
    "obs-studio/plugin_config/obs-browser/LocalPrefs.json"};

class RulesCommandTest : public ::testing::Test {
 protected:
  TempDir dir;
  fs::path image = dir.Path() / "image";
  fs::path roaming = image / "Users" / "Anna" / "AppData" / "Roaming";

  void SetUp() override {
    TempDir source;
    const fs::path tree = source.Path() / "tree" / "Users" / "Anna";
    WriteBytes(tree / "Documents" / "Brief.rtf", "x");
    for (const char* f : kTraces) WriteBytes(tree / "AppData" / "Roaming" / f, "trace");
    for (const char* f : kKept) WriteBytes(tree / "AppData" / "Roaming" / f, "kept");
    WriteBytes(source.Path() / "registry" / "user.reg", kRegistry);
    std::string out;
    ASSERT_EQ(0, test::Run(std::string(TC_MKIMAGE) + " " + Quote(source.Str()) + " " +
                         Quote(image.string()), &out)) << out;
  }
  std::string Args() const { return "--image " + Quote(image.string()) + " --rules " + Quote(kRules) + " "; }
};

TEST_F(RulesCommandTest, EntriesCountAndRemoveExactlyTheirFilesAndValues) {
  json scan = RunJson(Args() + kIds + "--traces scan");
  EXPECT_EQ(PluginOf(scan, "W2_7_Zip")["traceCount"], 4);
  EXPECT_EQ(PluginOf(scan, "W2_Notepad__")["traceCount"], 3);
  EXPECT_EQ(PluginOf(scan, "W2_OBS_Studio")["traceCount"], 3);
  EXPECT_EQ(PluginOf(scan, "W2_OBS_Studio")["section"], "Multimedia");
  const auto before = Listing(image / "Users" / "Anna" / "NTUSER.DAT");

  std::string out;  // an entry's warning comes before it cleans
  ASSERT_EQ(0, Tracecleaner(Args() + "--plugins W2_Notepad__ --yes clean 2>&1", out)) << out;
  EXPECT_LT(out.find("warning: W2_Notepad__ (Notepad++): Close Notepad++ first"),
            out.find("Traces before")) << out;
  json clean = RunJson(Args() + kIds + "--yes clean");
  EXPECT_TRUE(clean["failures"].empty()) << clean.dump();
  for (const char* f : kTraces) EXPECT_FALSE(fs::exists(roaming / f)) << f;
  for (const char* f : kKept) EXPECT_TRUE(fs::exists(roaming / f)) << f;
  // REMOVESELF takes the emptied temp folder with it; RECURSE leaves its folders.
  EXPECT_FALSE(fs::exists(roaming / "Notepad++/plugins/Temp"));
  EXPECT_TRUE(fs::exists(roaming / "obs-studio/plugin_config/obs-browser/Cache"));

  std::set<std::string> lost;
  const auto after = Listing(image / "Users" / "Anna" / "NTUSER.DAT");
  for (const auto& line : before)
    if (!after.count(line)) lost.insert(line.substr(0, line.find(',')));
  EXPECT_EQ(lost, (std::set<std::string>{"/Software/7-Zip/Compression/ArcHistory",
                                         "/Software/7-Zip/Extraction/PathHistory",
                                         "/Software/7-Zip/FM/FolderHistory",
                                         "/Software/7-Zip/FM/PanelPath0"}));
  json again = RunJson(Args() + kIds + "scan");
  for (const char* id : {"W2_7_Zip", "W2_Notepad__", "W2_OBS_Studio"})
    EXPECT_EQ(PluginOf(again, id)["traceCount"], 0) << id;
}

TEST_F(RulesCommandTest, BadEntriesAreLeftOutWithTheirFileAndLine) {
  json list = RunJson(Args() + "list");
  std::string warnings = list["warnings"].dump();
  for (const char* where : {"rules.ini:35: [Whole Windows] refused", "rules.ini:39: [Typo]",
                            "rules.ini:43: [Unknown Variable]"})
    EXPECT_NE(warnings.find(where), std::string::npos) << where << " in " << warnings;
  for (const auto& p : list["plugins"])
    EXPECT_EQ(p["id"].get<std::string>().find("W2_W"), std::string::npos) << p["id"];
  EXPECT_EQ(PluginOf(list, "W2_7_Zip")["active"], true);
}

TEST_F(RulesCommandTest, WithoutTheOptionTheConfigurationFoldersFileIsRead) {
  const fs::path config = dir.Path() / "config";
  fs::create_directories(config / "tracecleaner");
  fs::copy_file(kRules, config / "tracecleaner" / "winapp2.ini");
  std::string out;
  const std::string list = std::string(" ") + TC_TRACECLEANER + " --image " +
                           Quote(image.string()) + " list </dev/null 2>&1";
  ASSERT_EQ(0, test::Run("XDG_CONFIG_HOME=" + Quote(config.string()) + list, &out));
  EXPECT_NE(out.find("W2_OBS_Studio"), std::string::npos) << out;
  ASSERT_EQ(0, test::Run("XDG_CONFIG_HOME=" + Quote(dir.Path().string()) + list, &out));
  EXPECT_EQ(out.find("W2_"), std::string::npos) << out;
}

TEST_F(RulesCommandTest, AFileThatIsNoTextOrMissingIsRefused) {
  const fs::path binary = dir.Path() / "winapp2.ini";
  WriteBytes(binary, std::string("[A]\nFileKey1=C:\\x|*\n") + std::string(3, '\0'));
  std::string out;
  EXPECT_EQ(2, Tracecleaner("--image " + Quote(image.string()) + " --rules " +
                                Quote(binary.string()) + " list 2>&1", out)) << out;
  EXPECT_NE(out.find("not a text file"), std::string::npos) << out;
  EXPECT_EQ(2, Tracecleaner("--image " + Quote(image.string()) + " --rules " +
                                Quote((dir.Path() / "none.ini").string()) + " list 2>&1", out));
}

}  // namespace
}  // namespace tc::test
