// Player plug-ins: Winamp's settings file, QuickTime, RealPlayer and Media Player lists.
#include "AppPluginFixture.h"
#include "plugins/TCP_Player.h"

namespace tc {
namespace {

const String kWinamp = u"C:\\Program Files\\Winamp\\";

class PlayerTest : public AppPluginFixture {};

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

  EXPECT_EQ(Scan(u"WinampRecentURLs"), 16);
  EXPECT_EQ(Scan(u"WinampRecentFolder"), 1);
  EXPECT_EQ(Scan(u"WinampDefaultPlaylist"), 1);
  CleanAndFix({u"WinampRecentURLs", u"WinampRecentFolder", u"WinampDefaultPlaylist"});
  for (int n = 1; n <= 20; ++n)
    EXPECT_EQ(GetPPString(u"Winamp", u"RecentURL" + FromUtf8(std::to_string(n)), u"-", file),
              n <= 16 ? u"" : u"http://radio.example/" + FromUtf8(std::to_string(n)))
        << n;
  EXPECT_EQ(GetPPString(u"Winamp", u"cwd", u"-", file), u"");
  EXPECT_EQ(GetPPString(u"Winamp", u"volume", u"-", file), u"200");
  EXPECT_EQ(GetPPString(u"Other", u"RecentURL1", u"-", file), u"kept");
  EXPECT_EQ(mem.Files->Names(kWinamp), (StringList{u"winamp.exe", u"Winamp.ini"}));
  EXPECT_EQ(Scan(u"WinampRecentURLs"), 0);
}

TEST_F(PlayerTest, RegistryListsAndRealPlayerFiles) {
  const String qt = u"SOFTWARE\\Apple Computer, Inc.\\QuickTime\\Recent Movies";
  Str(HKEY_LOCAL_MACHINE, qt, u"1", u"C:\\Filme\\a.mov");
  Strs(HKEY_CURRENT_USER, qt, {{u"1", u"C:\\Filme\\b.mov"}, {u"2", u"C:\\Filme\\c.mov"}});
  const String prefs = u"Software\\RealNetworks\\RealPlayer\\6.0\\Preferences";
  Str(HKEY_CURRENT_USER, prefs + u"\\MostRecentClips1", u"", u"http://media.example/1.rm");
  Str(HKEY_CURRENT_USER, prefs + u"\\MostRecentClips2", u"", u"C:\\Musik\\2.ra");
  Str(HKEY_CURRENT_USER, prefs + u"\\Volume", u"", u"80");
  const String real = kAppData + u"Real\\RealPlayer\\";
  Files(real, {u"cookies.txt", u"urls.ini", u"prefs.xml", u"History\\h1.rpl"});
  const String wmp = u"Software\\Microsoft\\MediaPlayer\\Player\\RecentFileList";
  Strs(HKEY_CURRENT_USER, wmp,
       {{u"File0", u"C:\\x.wma"}, {u"File1", u"C:\\y.wma"}, {u"File2", u"C:\\z.wma"}});
  Start();

  EXPECT_EQ(Scan(u"QuickTimeRecentMovies"), 3);
  EXPECT_EQ(Scan(u"RealPlayerRecentFiles"), 2 + 2 + 1);
  EXPECT_EQ(Scan(u"WMPlayerRecentFiles"), 3);
  EXPECT_EQ(FoundNames(), (StringList{u"File0", u"File1", u"File2"}));

  auto [lost, gained] =
      CleanAndDiff({u"QuickTimeRecentMovies", u"RealPlayerRecentFiles", u"WMPlayerRecentFiles"});
  EXPECT_EQ(lost.size(), 3u + 4u + 3u);  // QuickTime values, RealPlayer keys and their data, WMP
  EXPECT_TRUE(gained.empty());
  EXPECT_EQ(mem.Registry->KeyNames(HKEY_CURRENT_USER, prefs), StringList{u"Volume"});
  EXPECT_EQ(mem.Files->Names(real), (StringList{u"History", u"prefs.xml"}));
  EXPECT_TRUE(mem.Files->Names(real + u"History").empty());
}

}  // namespace
}  // namespace tc
