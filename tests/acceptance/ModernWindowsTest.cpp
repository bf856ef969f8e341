// The traces of Windows 7 and 10 in real user hives: what the scan counts and shows, and
// what the clean leaves in both hives.
#include "CommandSupport.h"
#include "tests/support/RealWorld.h"

namespace tc {
namespace {

using namespace test;

const std::string kExplorer = "/Software/Microsoft/Windows/CurrentVersion/Explorer/";
const char* const kListIds[] = {"ExplorerUserAssist", "ComDlgPidlMRU", "ExplorerSearchTerms",
                                "ExplorerTypedPaths"};
const std::string kLists = "ExplorerUserAssist,ComDlgPidlMRU,ExplorerSearchTerms,ExplorerTypedPaths";

// An image of one profile made of the real hives: NTUSER.DAT, and UsrClass.dat if named.
fs::path RealImage(const TempDir& dir, const std::string& ntuser, const std::string& usrClass) {
  const fs::path profile = dir.Path() / "Users" / "Anna";
  CopyRealHive(ntuser, profile / "NTUSER.DAT");
  if (!usrClass.empty())
    CopyRealHive(usrClass, profile / "AppData/Local/Microsoft/Windows/UsrClass.dat");
  return dir.Path();
}

bool InAList(const std::string& line) {
  for (const char* key : {"UserAssist/", "ComDlg32/", "WordWheelQuery", "TypedPaths"})
    if (line.rfind(kExplorer + key, 0) == 0) return true;
  return false;
}

TEST(ModernWindowsTest, ScanCountsTheListsOfWindows7And10) {
  TC_SKIP_WITHOUT_REALWORLD();
  struct Case {
    const char* hive;
    int counts[4];  // in the order of kLists
    std::string shown;  // in the preview of ComDlgPidlMRU, else of ExplorerUserAssist
  };
  const Case cases[] = {
      {"NTUSER-win7.DAT", {92, 48, 2, 1}, "C:\\Program Files"},
      {"NTUSER-win10.DAT", {15, 7, 0, 0}, "ash.png"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hive);
    TempDir dir;
    const fs::path image = RealImage(dir, c.hive, "");
    json scan = RunJson("scan --traces --plugins " + kLists + " --image " + Quote(image.string()));
    for (size_t i = 0; i < 4; ++i)
      EXPECT_EQ(c.counts[i], PluginOf(scan, kListIds[i])["traceCount"]) << kListIds[i];
    std::string shown;
    for (const char* id : {"ComDlgPidlMRU", "ExplorerUserAssist"})
      for (const auto& t : PluginOf(scan, id)["traces"]) shown += t["data"].get<std::string>() + "\n";
    EXPECT_NE(std::string::npos, shown.find(c.shown)) << shown;
    EXPECT_EQ(std::string::npos, shown.find("HRZR_")) << "a ROT13 name shown undecoded";
  }
}

TEST(ModernWindowsTest, CleanEmptiesTheListsRemovesTheBagsAndKeepsTheRest) {
  TC_SKIP_WITHOUT_REALWORLD();
  if (!HaveTool("reglookup") || !HaveTool("hivexsh")) GTEST_SKIP() << "reglookup or hivexsh missing";
  TempDir dir;
  const fs::path image = RealImage(dir, "NTUSER-win10.DAT", "UsrClass-win10.dat");
  const fs::path ntuser = image / "Users/Anna/NTUSER.DAT";
  const fs::path usrClass = image / "Users/Anna/AppData/Local/Microsoft/Windows/UsrClass.dat";
  const std::set<std::string> classesBefore = Listing(usrClass);

  json clean = RunJson("clean --yes --plugins " + kLists + ",ExplorerShellBags --image " +
                       Quote(image.string()));
  for (const char* id : {"ExplorerUserAssist", "ComDlgPidlMRU", "ExplorerShellBags"}) {
    EXPECT_GT(PluginOf(clean, id)["traceCount"], 0) << id;
    EXPECT_EQ(0, PluginOf(clean, id)["remaining"]) << id;
  }

  for (const fs::path& hive : {ntuser, usrClass}) {  // reglookup reads them in Listing
    std::string out;
    EXPECT_EQ(0, test::Run("printf 'ls\\n' | hivexsh " + Quote(hive.string()), &out)) << out;
  }
  const std::set<std::string> userAfter = Listing(ntuser), classesAfter = Listing(usrClass);
  for (const auto& line : userAfter) {
    if (!InAList(line) || line.find(",KEY,") != std::string::npos) continue;
    // Only the order values stay, emptied, and the UserAssist keys' version numbers.
    const bool order = line.find("/MRUListEx,BINARY,%FF%FF%FF%FF,") != std::string::npos;
    EXPECT_TRUE(order || line.find("/Version,DWORD,") != std::string::npos) << line;
  }
  for (const auto* listing : {&userAfter, &classesAfter})
    for (const auto& line : *listing)
      EXPECT_EQ(std::string::npos, line.find("/BagMRU")) << line;
  // The user's file classes in UsrClass.dat outlive the bags removed beside them.
  size_t kept = 0;
  for (const auto& line : classesBefore)
    kept += line.find("/Shell/Bag") == std::string::npos && classesAfter.count(line);
  EXPECT_GT(kept, 7000u);
}

TEST(ModernWindowsTest, Office2013ListsShowTheirPathsAndKeepTheirSettings) {
  TempDir dir;
  const fs::path image = dir.Path() / "image";
  const std::string word = "[HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\16.0\\Word\\";
  MakeImage(image, "Windows Registry Editor Version 5.00\n\n" + word + "File MRU]\n"
                   "\"Max Display\"=dword:00000032\n"
                   "\"Item 1\"=\"[F00000000][T01D3A1B2C3D4E5F6][O00000000]*C:\\\\Users\\\\Anna\\\\Bericht.docx\"\n"
                   "\"Item 2\"=\"[F00000000][T01D3A1B2C3D4E5F7][O00000000]*C:\\\\Geheim.docx\"\n\n" +
                   word + "User MRU\\ADAL_1234\\Place MRU]\n"
                   "\"Item 1\"=\"[F00000000][T01D3A1B2C3D4E5F8][O00000000]*C:\\\\Users\\\\Anna\\\\Projekte\\\\\"\n");
  json scan = RunJson("scan --traces --plugins MSOffice2013Recent --image " + Quote(image.string()));
  const json& office = PluginOf(scan, "MSOffice2013Recent");
  EXPECT_EQ(3, office["traceCount"]);
  std::set<std::string> paths;
  for (const auto& t : office["traces"]) paths.insert(t["data"]);
  EXPECT_EQ((std::set<std::string>{"C:\\Users\\Anna\\Bericht.docx", "C:\\Geheim.docx",
                                   "C:\\Users\\Anna\\Projekte\\"}),
            paths);

  RunJson("clean --yes --plugins MSOffice2013Recent --image " + Quote(image.string()));
  std::string out;
  EXPECT_EQ(0, test::Run("printf 'cd Software\\\\Microsoft\\\\Office\\\\16.0\\\\Word\\\\File MRU\\nlsval\\n' | "
                   "hivexsh " + Quote((image / "Users/Anna/NTUSER.DAT").string()), &out));
  EXPECT_EQ("\"Max Display\"=dword:00000032\n", out);
}

}  // namespace
}  // namespace tc
