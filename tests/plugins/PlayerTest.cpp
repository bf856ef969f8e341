// Player plug-ins: Winamp's settings file, QuickTime, RealPlayer and Media Player lists.
#include "AppPluginFixture.h"
#include "plugins/TCP_Player.h"

namespace tc {
namespace {

const String kWinamp = u"C:\\Program Files\\Winamp\\";

class PlayerTest : public AppPluginFixture {};

TEST_F(PlayerTest, CatalogueAndStartFlags) {
  Start();
  ExpectCatalogue(
      {{u"QuickTimeRecentMovies", u"QuickTime", u"Liste der zuletzt abgespielte Videos", 3000},
       {u"RealPlayerRecentFiles", u"RealPlayer",
        u"Liste der zuletzt abgespielten Medien und gespeicherte Cookies", 3002},
       {u"WinampRecentURLs", u"Winamp", u"Liste der zuletzt abgespielten Radio- und Videostreams", 3001},
       {u"WinampDefaultPlaylist", u"Winamp", u"Standard-Wiedergabeliste", 3001},
       {u"WinampRecentFolder", u"Winamp", u"Zuletzt verwendeter Ordner", 3001},
       {u"WMPlayerRecentFiles", u"Windows Media Player", u"Liste der zuletzt geöffneten Medien", 3003}},
      rsTCPSection_Player);
  const std::tuple<const char16_t*, bool, bool> rows[] = {
      {u"QuickTimeRecentMovies", true, true}, {u"RealPlayerRecentFiles", true, true},
      {u"WinampRecentURLs", false, true},     {u"WinampDefaultPlaylist", false, true},
      {u"WinampRecentFolder", false, true},   {u"WMPlayerRecentFiles", true, false}};
  for (auto [id, active, deactivate] : rows) {
    EXPECT_EQ(Plugin(id).Active, active) << ToUtf8(id);
    EXPECT_EQ(Plugin(id).DeactivateIfAbsent, deactivate) << ToUtf8(id);
  }
}

TEST_F(PlayerTest, WinampFolderNeedsItsIniFile) {
  const struct {
    const char16_t* configured;  // default value of Software\Winamp
    const char16_t* iniIn;       // folder that holds Winamp.ini
    const char16_t* expected;
  } cases[] = {{u"", u"C:\\Program Files\\Winamp", u"C:\\Program Files\\Winamp\\"},
               {u"C:\\Apps\\Winamp", u"C:\\Apps\\Winamp", u"C:\\Apps\\Winamp\\"},
               {u"C:\\Apps\\Winamp\\", u"C:\\Program Files\\Winamp", u""},
               {u"", u"", u""}};
  for (const auto& c : cases) {
    Reset();
    if (*c.configured) Str(HKEY_CURRENT_USER, u"Software\\Winamp", u"", c.configured);
    if (*c.iniIn) File(String(c.iniIn) + u"\\Winamp.ini", "[Winamp]\r\n");
    Start();
    EXPECT_EQ(WinampFolder, String(c.expected)) << ToUtf8(c.configured) << " / " << ToUtf8(c.iniIn);
  }
}

TEST_F(PlayerTest, WinampClearsOnlyTheFirstSixteenRecentURLs) {
  std::string ini = "[Winamp]\r\nvolume=200\r\ncwd=C:\\Musik\r\n";
  for (int n = 1; n <= 20; ++n)
    ini += "RecentURL" + std::to_string(n) + "=http://radio.example/" + std::to_string(n) + "\r\n";
  ini += "[Other]\r\nRecentURL1=kept\r\n";
  File(kWinamp + u"Winamp.ini", ini);
  File(kWinamp + u"winamp.m3u", "#EXTM3U\r\n");
  File(kWinamp + u"winamp.exe");
  Start();
  const String file = kWinamp + u"Winamp.ini";

  EXPECT_EQ(ScanCount(u"WinampRecentURLs"), 16);
  EXPECT_EQ(ScanCount(u"WinampRecentFolder"), 1);
  EXPECT_EQ(ScanCount(u"WinampDefaultPlaylist"), 1);
  for (const char16_t* id : {u"WinampRecentURLs", u"WinampRecentFolder", u"WinampDefaultPlaylist"})
    CleanAndFix(id);
  for (int n = 1; n <= 20; ++n)
    EXPECT_EQ(GetPPString(u"Winamp", u"RecentURL" + FromUtf8(std::to_string(n)), u"-", file),
              n <= 16 ? u"" : u"http://radio.example/" + FromUtf8(std::to_string(n)))
        << n;
  EXPECT_EQ(GetPPString(u"Winamp", u"cwd", u"-", file), u"");
  EXPECT_EQ(GetPPString(u"Winamp", u"volume", u"-", file), u"200");
  EXPECT_EQ(GetPPString(u"Other", u"RecentURL1", u"-", file), u"kept");
  EXPECT_EQ(mem.Files->Names(kWinamp), (StringList{u"winamp.exe", u"Winamp.ini"}));
  EXPECT_EQ(ScanCount(u"WinampRecentURLs"), 0);
}

TEST_F(PlayerTest, RegistryListsAndRealPlayerFiles) {
  const String qt = u"SOFTWARE\\Apple Computer, Inc.\\QuickTime\\Recent Movies";
  Str(HKEY_LOCAL_MACHINE, qt, u"1", u"C:\\Filme\\a.mov");
  Str(HKEY_CURRENT_USER, qt, u"1", u"C:\\Filme\\b.mov");
  Str(HKEY_CURRENT_USER, qt, u"2", u"C:\\Filme\\c.mov");
  const String prefs = u"Software\\RealNetworks\\RealPlayer\\6.0\\Preferences";
  Str(HKEY_CURRENT_USER, prefs + u"\\MostRecentClips1", u"", u"http://media.example/1.rm");
  Str(HKEY_CURRENT_USER, prefs + u"\\MostRecentClips2", u"", u"C:\\Musik\\2.ra");
  Str(HKEY_CURRENT_USER, prefs + u"\\Volume", u"", u"80");
  const String real = kAppData + u"Real\\RealPlayer\\";
  for (const char16_t* f : {u"cookies.txt", u"urls.ini", u"prefs.xml", u"History\\h1.rpl"}) File(real + f);
  const String wmp = u"Software\\Microsoft\\MediaPlayer\\Player\\RecentFileList";
  for (const char16_t* n : {u"File0", u"File1", u"File2"}) Str(HKEY_CURRENT_USER, wmp, n, u"C:\\x.wma");
  Start();

  EXPECT_EQ(ScanCount(u"QuickTimeRecentMovies"), 3);
  EXPECT_EQ(ScanCount(u"RealPlayerRecentFiles"), 2 + 2 + 1);
  EXPECT_EQ(ScanCount(u"WMPlayerRecentFiles"), 3);
  EXPECT_EQ(ReportedNames(), (StringList{u"File0", u"File1", u"File2"}));

  auto before = Snapshot();
  for (const char16_t* id : {u"QuickTimeRecentMovies", u"RealPlayerRecentFiles", u"WMPlayerRecentFiles"})
    CleanAndFix(id);
  auto [lost, gained] = Diff(before, Snapshot());
  EXPECT_EQ(lost.size(), 3u + 4u + 3u);  // QuickTime values, RealPlayer keys and their data, WMP
  EXPECT_TRUE(gained.empty());
  EXPECT_EQ(mem.Registry->KeyNames(HKEY_CURRENT_USER, prefs), StringList{u"Volume"});
  EXPECT_EQ(mem.Files->Names(real), (StringList{u"History", u"prefs.xml"}));
  EXPECT_TRUE(mem.Files->Names(real + u"History").empty());
}

}  // namespace
}  // namespace tc
