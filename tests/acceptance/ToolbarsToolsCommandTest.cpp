// Toolbar and tool plug-ins through the command on a copy of the demo image: scan and clean.
#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

TEST(ToolbarsToolsCommandTest, ScanAndCleanOnAnImage) {
  if (!HaveTool("reglookup")) GTEST_SKIP() << "reglookup is not installed";
  TempDir dir;
  const fs::path c = DemoCopy(dir);
  const fs::path pf = c / "Program Files";
  const fs::path temp = c / "Users/Demo/AppData/Local/Temp/Babylon";

  // Google skips its empty value where GMX counts it; ACDSee's text splits at NUL; "cMax"
  // is no numbered key; of the Nero lists only Nero 10 SoundTrax holds File0 and File2.
  const std::map<std::string, int> counts = {
      {"GoogleToolbarHistory", 2},  {"GMXToolbarHistory", 2},
      {"GMXToolbarLogindaten", 2},  {"EBayToolbarHistory", 2},
      {"EBayToolbarLogfile", 1},    {"MSNToolbarHistory", 3},
      {"ACDSeeFolderHistory", 2},   {"ACDSeeSearchHistory", 1},
      {"AcrobatReaderHistory", 2},  {"DAPLastDownloads", 3},
      {"DAPTempfiles", 1},          {"DAPLogfiles", 1},
      {"GetRightLastDownloads", 4}, {"GetRightLastCookies", 1},
      {"IrfanViewLastFiles", 2},    {"IrfanViewLastOpenDir", 1},
      {"BabylonWordlist", 2},       {"BabylonLogfile", 3},
      {"BabylonTempfiles", 1},      {"DivXPlayerMRU", 1},
      {"ZoneAlarmProLogs", 2},      {"NeroMRU", 2}};
  json scan = RunJson("scan --image " + Quote(c.string()));
  std::string ids;
  for (const auto& [id, n] : counts) {
    EXPECT_EQ(PluginOf(scan, id)["traceCount"], n) << id;
    ids += (ids.empty() ? "" : ",") + id;
  }

  const fs::path ntuser = c / "Users/Demo/NTUSER.DAT";
  const fs::path software = c / "Windows/System32/config/SOFTWARE";
  const auto userBefore = Listing(ntuser, true), machineBefore = Listing(software, true);
  json clean = RunJson("clean --yes --image " + Quote(c.string()) + " --plugins " + ids);
  for (const auto& [id, n] : counts) EXPECT_EQ(PluginOf(clean, id)["remaining"], 0) << id;

  // What the clean may change: the traces' values and keys, and GetRight's emptied order.
  auto isTrace = [](const std::string& line) {
    for (const char* key :
         {"/Software/Google/NavClient/1.1/History/", "/Software/GMX/GMX Toolbar/Historycombo1/",
          "/Software/GMX/GMX Toolbar/Login/", "/Software/eBay/eBayToolbar/History/",
          "/Software/eBay/eBayToolbar/RecentSearches/",
          "/Software/Microsoft/MSN Toolbar/SearchStrings,", "/Software/ACD Systems/ACDSee/70/Hist",
          "/Software/Adobe/Acrobat Reader/7.0/AVGeneral/cRecentFiles/c1",
          "/Software/Adobe/Acrobat Reader/7.0/AVGeneral/cRecentFiles/c2",
          "/Software/Headlight/GetRight/MRU/", "/Software/Headlight/GetRight/TypedURLs/",
          "/Software/Babylon/Babylon Client/History/",
          "/Software/Nero/Nero 10/Nero SoundTrax/Recent File List/File",
          "/SpeedBit/Download Accelerator/FileList/"})
      if (line.rfind(key, 0) == 0) return true;
    return false;
  };
  EXPECT_EQ(ReadBytes(pf / "IrfanView/i_view32.ini"), "[MRUD]\r\n[OPEN]\r\nFilter=1\r\n");
  for (const fs::path& kept :
       {pf / "DAP/History/_lasthist.dat", pf / "GetRight/getright.exe", pf / "DAP/DAP.exe"})
    EXPECT_TRUE(fs::exists(kept)) << kept;
  for (const fs::path& gone : {c / "Windows/Internet Logs/ZALog.txt", pf / "Babylon/log_file.txt",
                               temp / "gloss.tmp", pf / "DivX/DivX Player/DivXPlayer2.dbf"})
    EXPECT_FALSE(fs::exists(gone)) << gone;
  for (const auto& [hive, before] :
       {std::pair{ntuser, userBefore}, std::pair{software, machineBefore}}) {
    const auto after = Listing(hive, true);
    for (const auto& line : before)
      EXPECT_TRUE(after.count(line) || isTrace(line)) << "lost: " << line;
    for (const auto& line : after)
      EXPECT_TRUE(before.count(line) || isTrace(line)) << "new: " << line;
  }
  EXPECT_TRUE(Listing(ntuser, true).count("/Software/Headlight/GetRight/MRU/MRUList,SZ,,"));
}

}  // namespace
}  // namespace tc
