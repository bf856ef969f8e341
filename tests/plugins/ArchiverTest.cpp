// Archiver plug-ins: WinRAR, WinZip, PowerArchiver's language keys and WinAce.
#include "AppPluginFixture.h"
#include "plugins/TCP_Archiver.h"

namespace tc {
namespace {

const String kWinRAR = u"Software\\WinRAR\\";

class ArchiverTest : public AppPluginFixture {};

TEST_F(ArchiverTest, WinRARAndWinZipListsAreRemovedAndTheRestKept) {
  const HKEY cu = HKEY_CURRENT_USER;
  Strs(cu, kWinRAR + u"ArcHistory", {{u"0", u"C:\\a.rar"}, {u"1", u"C:\\b.rar"}, {u"2", u"C:\\c"}});
  Strs(cu, kWinRAR + u"DialogEditHistory\\ExtrPath", {{u"0", u"C:\\Ziel"}, {u"1", u"D:\\Temp"}});
  Str(cu, kWinRAR + u"DialogEditHistory\\ArcName", u"0", u"backup.rar");
  Strs(cu, kWinRAR + u"General", {{u"LastFolder", u"C:\\Downloads"}, {u"Toolbar", u"kept"}});
  const String winzip = u"Software\\Nico Mak Computing\\WinZip\\";
  Strs(cu, winzip + u"filemenu",
       {{u"filemenu1", u"C:\\b.zip"}, {u"filemenu2", u"C:\\c.zip"}, {u"filemenu3", u"C:\\d.zip"}});
  Str(cu, winzip + u"extract", u"extract1", u"C:\\Ziel");
  Str(cu, winzip + u"WinIni", u"Wizard", u"0");
  Start();

  const std::pair<const char16_t*, int> counts[] = {
      {u"WinRARRecentArchives", 3}, {u"WinRARRecentFolders", 3}, {u"WinRARCreatedArchives", 1},
      {u"WinZipRecentArchives", 3}, {u"WinZipTargetFolders", 1}};
  for (auto [id, n] : counts) {
    EXPECT_TRUE(Plugin(id).Active) << ToUtf8(id);
    EXPECT_EQ(Scan(id), n) << ToUtf8(id);
  }
  auto [lost, gained] = CleanAndDiff({u"WinRARRecentArchives", u"WinRARRecentFolders",
                                      u"WinRARCreatedArchives", u"WinZipRecentArchives",
                                      u"WinZipTargetFolders"});
  for (auto [id, n] : counts) EXPECT_EQ(Scan(id), 0) << ToUtf8(id);
  EXPECT_TRUE(mem.Registry->HasKey(cu, kWinRAR + u"ArcHistory"));  // WinRAR expects it
  EXPECT_EQ(lost.size(), 3u + 3u + 1u + 3u + 1u);
  for (const auto& l : lost) EXPECT_EQ(l.find(u"kept"), String::npos) << ToUtf8(l);
  EXPECT_TRUE(gained.empty());
}

TEST_F(ArchiverTest, PowerArchiverKeyIsWorkedOutAfreshForEachLocation) {
  const struct {
    std::vector<const char16_t*> keys;
    const char16_t* expected;
  } cases[] = {{{u"PowerArchiver"}, u"Software\\PowerArchiver"},
               {{u"PowerArchiverFR"}, u"Software\\PowerArchiverFR"},
               {{u"PowerArchiverRU", u"PowerArchiverPL"}, u"Software\\PowerArchiverPL"},
               {{}, u""}};
  for (const auto& c : cases) {
    Reset();
    for (const char16_t* k : c.keys) mem.Registry->CreateKey(HKEY_CURRENT_USER, String(u"Software\\") + k, RegView::Default);
    Start();
    EXPECT_EQ(PowerArchiverKey(), String(c.expected));
  }
}

TEST_F(ArchiverTest, PowerArchiverListsUnderTheFrenchKeyAreEmptied) {
  const String files = u"Software\\PowerArchiverFR\\Files";
  Strs(HKEY_CURRENT_USER, files,
       {{u"Active_File1", u"C:\\a.zip"}, {u"Active_File2", u"C:\\b.7z"}, {u"Extract1", u"C:\\Ziel"},
        {u"SelDir1", u"C:\\Quelle"}, {u"Last open dir", u"C:\\Ordner"},
        {u"Last add dir", u"C:\\Ordner"}, {u"Add from folder", u"C:\\O"}, {u"Language", u"FR"}});
  Start();
  EXPECT_EQ(Scan(u"PowerArcRecentArchives"), 2);
  EXPECT_EQ(Scan(u"PowerArcRecentFolders"), 1 + 1 + 3);
  CleanAndFix({u"PowerArcRecentArchives", u"PowerArcRecentFolders"});
  for (const auto& name : Names(files))
    EXPECT_EQ(mem.Registry->GetString(HKEY_CURRENT_USER, files, name), name == u"Language" ? u"FR" : u"")
        << ToUtf8(name);
  EXPECT_EQ(Names(files).size(), 8u);  // emptied, not deleted
}

TEST_F(ArchiverTest, WinAceIsActiveWhenItsRecordedPathExists) {
  const String exe = u"C:\\Program Files\\WinAce\\winace.exe";
  const struct {
    bool recorded, fileThere, active;
  } cases[] = {{false, false, false}, {true, true, true}, {true, false, false}};
  for (const auto& c : cases) {
    Reset();
    if (c.recorded) Str(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce", u"Path", exe);
    if (c.fileThere) File(exe);
    Str(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce\\2.0\\Favorites", u"H1", u"C:\\a.ace");
    Strs(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce\\2.0\\MRU Items",
         {{u"F1", u"C:\\b.ace"}, {u"F2", u"C:\\c.ace"}});
    Start();
    EXPECT_EQ(Plugin(u"WinAceLastOpenArchives").Active, c.active) << c.recorded << c.fileThere;
    EXPECT_EQ(Scan(u"WinAceLastOpenArchives"), c.recorded ? 3 : 0);
  }
}

}  // namespace
}  // namespace tc
