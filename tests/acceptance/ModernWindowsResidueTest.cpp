// What a registry reader still found in the real hives after the list plug-ins had cleaned
// them: typing times, compatibility records, program names, Office places and trusted
// documents, StreamMRU, consoles, network shares, the last link Office followed. Counted,
// cleaned, and checked with reglookup and hivexsh.
#include "CommandSupport.h"
#include "tests/support/RealWorld.h"

namespace tc {
namespace {

using namespace test;

const char* const kIds[] = {"IETypedURLsTime",     "CompatibilityAssistant", "ShellMuiCache",
                            "ExplorerStreamMRU",   "MSOffice2007Places",
                            "MSOfficeTrustedDocuments", "ExplorerMountPoints", "MMCRecentFiles",
                            "MSOfficeHyperlink"};

bool StartsWith(const std::string& s, const std::string& prefix) { return s.rfind(prefix, 0) == 0; }

// A value line of reglookup's listing that one of the plug-ins counts as a trace.
bool IsResidue(const std::string& line) {
  if (line.find(",KEY,") != std::string::npos) {  // a share's key, not the keys below it
    const size_t share = line.find("/MountPoints2/##");
    return share != std::string::npos && line.find('/', share + 14) > line.find(',');
  }
  const std::string name = line.substr(line.rfind('/', line.find(',')) + 1);
  auto under = [&](const char* key) { return line.find(key) != std::string::npos; };
  if (under("/Shell/MuiCache/") || under("/ShellNoRoam/MUICache/"))
    return name[0] != '@' && !StartsWith(name, "LangID,");
  if (under("/Explorer/StreamMRU/")) return !StartsWith(name, "MRUListEx,");
  return StartsWith(line, "/Software/Microsoft/Internet Explorer/TypedURLsTime/url") ||
         under("/Compatibility Assistant/Store/") || under("/Compatibility Assistant/Persisted/") ||
         under("/Place MRU/Item ") || under("/Trusted Documents/TrustRecords/") ||
         under("/Microsoft Management Console/Recent File List/File") ||
         under("/Common/Internet/UseRWHlinkNavigation,SZ,");
}

TEST(ModernWindowsResidueTest, RealHivesCountedCleanedAndStillReadable) {
  TC_SKIP_WITHOUT_REALWORLD();
  if (!HaveTool("reglookup") || !HaveTool("hivexsh")) GTEST_SKIP() << "reglookup or hivexsh missing";
  struct Case {
    const char* hive;
    const char* usrClass;
    int counts[9];  // in the order of kIds
    std::string shown;
  };
  const Case cases[] = {
      {"NTUSER-win7.DAT", "", {0, 7, 0, 2, 2, 3, 2, 2, 1}, "Earthforce SA-26 Thunderbolt Star Fury.docx"},
      {"NTUSER-win10.DAT", "UsrClass-win10.dat", {5, 1, 2, 0, 0, 0, 0, 0, 0}, "url1: 2016-10-05 09:47:50"},
      {"NTUSER-xp.DAT", "", {0, 0, 4, 0, 0, 0, 0, 0, 0}, "C:\\Program Files\\Java\\jre6\\bin\\jucheck.exe"},
  };
  std::string ids;
  for (const char* id : kIds) ids += std::string(ids.empty() ? "" : ",") + id;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hive);
    TempDir dir;
    const fs::path profile = dir.Path() / "Users" / "Anna";
    std::vector<fs::path> hives{profile / "NTUSER.DAT"};
    CopyRealHive(c.hive, hives[0]);
    if (*c.usrClass) {
      hives.push_back(profile / "AppData/Local/Microsoft/Windows/UsrClass.dat");
      CopyRealHive(c.usrClass, hives[1]);
    }
    std::vector<std::set<std::string>> before;
    size_t listed = 0;
    for (const auto& hive : hives) {
      before.push_back(Listing(hive));
      for (const auto& line : before.back()) listed += IsResidue(line);
    }

    const std::string image = Quote(dir.Path().string());
    json scan = RunJson("scan --traces --plugins " + ids + " --image " + image);
    int total = 0;
    std::string shown;
    for (size_t i = 0; i < std::size(kIds); ++i) {
      const json& p = PluginOf(scan, kIds[i]);
      EXPECT_EQ(c.counts[i], p["traceCount"]) << kIds[i];
      total += c.counts[i];
      for (const auto& t : p["traces"]) shown += t["data"].get<std::string>() + "\n";
    }
    EXPECT_EQ(size_t(total), listed) << "the plug-ins and reglookup disagree";
    EXPECT_NE(std::string::npos, shown.find(c.shown)) << shown;

    json clean = RunJson("clean --yes --plugins " + ids + " --image " + image);
    for (size_t i = 0; i < std::size(kIds); ++i)
      if (c.counts[i]) {
        EXPECT_EQ(0, PluginOf(clean, kIds[i])["remaining"]) << kIds[i];
      }
    for (size_t h = 0; h < hives.size(); ++h) {
      std::string out;
      EXPECT_EQ(0, test::Run("printf 'ls\\n' | hivexsh " + Quote(hives[h].string()), &out)) << out;
      const std::set<std::string> after = Listing(hives[h]);
      for (const auto& line : before[h]) {
        const bool gone = IsResidue(line) || line.find("/StreamMRU/MRUListEx,") != std::string::npos ||
                          line.find("/MountPoints2/##") != std::string::npos;
        EXPECT_TRUE(gone || after.count(line)) << "lost: " << line;
      }
      for (const auto& line : after) {
        EXPECT_FALSE(IsResidue(line)) << line;
        const bool emptiedOrder = line.find("/StreamMRU/MRUListEx,BINARY,%FF%FF%FF%FF,") != std::string::npos;
        EXPECT_TRUE(before[h].count(line) || emptiedOrder) << "new: " << line;
      }
    }
  }
}

}  // namespace
}  // namespace tc
