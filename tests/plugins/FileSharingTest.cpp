// File-sharing plug-ins: client discovery, counts, cleaning.
#include "AppPluginFixture.h"
#include "plugins/TCP_FileSharing.h"

namespace tc {
namespace {

const String kEMule = u"C:\\Program Files\\eMule\\";

class FileSharingTest : public AppPluginFixture {
 public:
  void InstallEMule() {
    File(kEMule + u"emule.exe");
    Str(HKEY_CURRENT_USER, u"Software\\Classes\\ed2k\\shell\\open\\command", u"",
        u"\"" + kEMule + u"emule.exe\" \"%1\"");
  }
  static Bytes Utf16File(std::u16string_view text) {
    Bytes b{0xFF, 0xFE};
    Bytes t = ToUtf16LE(text);
    b.insert(b.end(), t.begin(), t.end());
    return b;
  }
};

TEST_F(FileSharingTest, ClientFoldersAreFound) {
  const String ed2k = u"Software\\Classes\\ed2k\\shell\\open\\command";
  struct Value {
    HKEY root;
    String key, name, data;
  };
  const struct {
    const char* what;
    String program;  // the file that exists
    std::vector<Value> values;
    String emule, edonkey;
  } cases[] = {
      {"quoted per-user link handler", kEMule + u"emule.exe",
       {{HKEY_CURRENT_USER, ed2k, u"", u"\"" + kEMule + u"emule.exe\" \"%1\""}}, kEMule, u""},
      {"unquoted machine link handler", kEMule + u"emule.exe",
       {{HKEY_LOCAL_MACHINE, u"SOFTWARE\\Classes\\ed2k\\shell\\open\\command", u"",
         kEMule + u"emule.exe \"%1\""}},
       kEMule, u""},
      {"handler of another client, uninstall location", u"C:\\Apps\\eMule\\emule.exe",
       {{HKEY_CURRENT_USER, ed2k, u"", u"C:\\P2P\\other.exe \"%1\""},
        {HKEY_LOCAL_MACHINE, kUninstall + u"eMule", u"InstallLocation", u"C:\\Apps\\eMule"}},
       u"C:\\Apps\\eMule\\", u""},
      {"uninstall program only", u"C:\\Apps\\eMule\\emule.exe",
       {{HKEY_LOCAL_MACHINE, kUninstall + u"eMule Plus", u"UninstallString",
         u"\"C:\\Apps\\eMule\\Uninstall.exe\""}},
       u"C:\\Apps\\eMule\\", u""},
      {"removable drive is not trusted", u"E:\\eMule\\emule.exe",
       {{HKEY_LOCAL_MACHINE, kUninstall + u"eMule", u"InstallLocation", u"E:\\eMule\\"}}, u"", u""},
      {"eDonkey by its uninstall entry", u"C:\\eDonkey2000\\edonkey2000.exe",
       {{HKEY_LOCAL_MACHINE, kUninstall + u"eDonkey2000", u"InstallLocation",
         u"C:\\eDonkey2000\\"}},
       u"", u"C:\\eDonkey2000\\"},
  };
  for (const auto& c : cases) {
    Reset();  // each machine also has a removable drive and another client's program
    mem.Files->AddDrive(u'E', kDriveRemovable);
    File(c.program);
    File(u"C:\\P2P\\other.exe");
    for (const auto& v : c.values) Str(v.root, v.key, v.name, v.data);
    Start();
    EXPECT_EQ(EMuleFolder, c.emule) << c.what;
    EXPECT_EQ(EDonkeyFolder, c.edonkey) << c.what;
    EXPECT_EQ(Plugin(u"EMuleStatistics").Active, !c.emule.empty()) << c.what;
  }
}

TEST_F(FileSharingTest, KnownMetCountsOnePerQuarterKilobyteAtLeastOne) {
  const std::pair<int64_t, int> cases[] = {{0, 1}, {249, 1}, {250, 1}, {499, 1}, {500, 2}, {1000, 4}};
  for (auto [size, count] : cases) EXPECT_EQ(KnownMetTraceCount(size), count) << size;
}

TEST_F(FileSharingTest, SearchStringsCountNonBlankLines) {
  auto ansi = [](std::string_view s) { return Bytes(s.begin(), s.end()); };
  const std::pair<Bytes, int> cases[] = {
      {ansi(""), 0},
      {ansi("  \r\n\t\r\n"), 0},
      {ansi("a\nb\rc\r\nd"), 4},
      {Utf16File(u"x\r\ny\r\n"), 2},
      {Utf16File(u"\r\n \r\n"), 0},
      {ansi("\xEF\xBB\xBF\xC3\xA4\n\n"), 1},
      {Bytes{0xFF, 0xFE, 'a'}, 0},  // a lone byte after the mark is no character
  };
  for (size_t i = 0; i < std::size(cases); ++i)
    EXPECT_EQ(CountSearchStringLines(cases[i].first), cases[i].second) << "case " << i;
}

TEST_F(FileSharingTest, KazaaLiteFlagChoosesTheDownloadDatabasePlugin) {
  // Without Kazaa both are off, as Catalogue.txt lists them.
  const struct {
    const char16_t* databaseDir;
    bool kazaa, lite;
  } cases[] = {{u"C:\\Program Files\\Kazaa\\db", true, false},
               {u"C:\\Program Files\\Kazaa Lite K++\\DB", false, true}};
  for (const auto& c : cases) {
    Reset();
    Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Kazaa\\LocalContent", u"DatabaseDir", c.databaseDir);
    Start();
    EXPECT_EQ(Plugin(u"KazaaDownloadDB").Active, c.kazaa) << ToUtf8(c.databaseDir);
    EXPECT_EQ(Plugin(u"KazaaLiteDownloadDB").Active, c.lite) << ToUtf8(c.databaseDir);
  }
}

// One machine with every client: eMule by its link handler; eDonkey, WinMX, BitTorrent++ and
// WarezP2P (a quoted command) by their uninstall entries; Kazaa by its content folders; Ares
// and Azureus by their keys.
TEST_F(FileSharingTest, EveryClientsTracesAreCountedAndRemovedLeavingTheRest) {
  const HKEY cu = HKEY_CURRENT_USER, lm = HKEY_LOCAL_MACHINE;
  InstallEMule();
  Files(kEMule, {u"downloads.txt", u"downloads.txt.bak", u"config\\statistics.ini",
                 u"config\\preferences.ini", u"Incoming\\film.avi"});
  File(kEMule + u"config\\known.met", std::string(600, '\x0e'));
  ASSERT_EQ(mem.Files->AddFile(kEMule + u"config\\AC_SearchStrings.dat",
                               Utf16File(u"alpha\r\n\r\n  \r\nbeta\r\n")),
            ERROR_SUCCESS);
  const String donkey = u"C:\\eDonkey2000\\";
  Files(donkey, {u"edonkey2000.exe", u"known.met.bak"});
  File(donkey + u"known.met", std::string(100, 'k'));
  Str(lm, kUninstall + u"eDonkey2000", u"InstallLocation", donkey);
  const String kazaa = u"C:\\Kazaa\\", search = u"Software\\Kazaa\\Search";
  Strs(lm, u"SOFTWARE\\Kazaa\\LocalContent",
       {{u"DatabaseDir", u"C:\\Kazaa\\db"}, {u"DownloadDir", u"C:\\Kazaa\\My Shared Folder"}});
  Files(kazaa, {u"db\\data256.dbb", u"db\\desktop.ini", u"My Shared Folder\\mix.kpl",
                u"My Shared Folder\\song.mp3"});
  Strs(cu, search, {{u"1", u"first"}, {u"2", u"second"}, {u"3", u""}, {u"LastSearch", u"kept"}});
  const String ares = u"Software\\Ares\\Search.History\\gen.gen";
  Strs(cu, ares, {{u"6D7573696B", u"x"}, {u"66696C6D", u""}});
  Str(cu, u"Software\\Ares", u"Stats.Uploads", u"12");
  const String warez = u"C:\\Program Files\\Warez\\";
  Str(lm, kUninstall + u"Warez P2P Client", u"UninstallString", u"\"" + warez + u"uninstall.exe\"");
  Files(warez, {u"uninstall.exe", u"Data\\history.dat", u"Data\\shares.txt"});
  Str(cu, u"Software\\Warez\\Search.History\\gen.gen", u"a", u"b");
  const String winmx = u"C:\\Program Files\\WinMX\\";
  const String bittorrent = u"C:\\Program Files\\BitTorrent++\\";
  Str(lm, kUninstall + u"WinMX", u"UninstallString", winmx + u"uninst.exe");
  Files(winmx, {u"WinMX.exe", u"chat.log", u"transfer.log"});
  Str(lm, kUninstall + u"BitTorrent++", u"UninstallString",
      u"\"" + bittorrent + u"uninst.exe\" /S");
  Files(bittorrent, {u"History\\1.txt", u"History\\2.txt"});
  Str(cu, u"Software\\Azureus", u"", u"C:\\Program Files\\Azureus");
  mem.Files->AddFolder(u"C:\\Program Files\\Azureus");
  Files(kAppData + u"Azureus\\", {u"azureus.statistics", u"azureus.config"});
  Start();

  const std::pair<const char16_t*, int> counts[] = {
      {u"EMuleDownloadMRU", 2 + 2}, {u"EMuleSearchMRU", 2}, {u"EMuleStatistics", 1},
      {u"EDonkey2000DownloadMRU", 1 + 1}, {u"KazaaSearchMRU", 2}, {u"KazaaDownloadDB", 1},
      {u"KazaaPlaylists", 1}, {u"AresSearchlist", 2}, {u"WarezP2PSearchlist", 1},
      {u"WarezP2PVerlauf", 1}, {u"WinMXLogfiles", 2}, {u"BitTorrentHistory", 2},
      {u"AzureusStatistics", 1}};
  for (auto [id, n] : counts) {
    EXPECT_TRUE(Plugin(id).Active) << ToUtf8(id);
    EXPECT_EQ(Scan(id), n) << ToUtf8(id);
  }
  Scan(u"EMuleDownloadMRU");
  EXPECT_EQ(FoundNames(), (StringList{kEMule + u"downloads.txt", kEMule + u"downloads.txt.bak"}));
  Scan(u"AzureusStatistics");
  EXPECT_EQ(FoundNames(), StringList{kAppData + u"Azureus\\azureus.statistics"});

  auto [lost, gained] = CleanAndDiff(
      {u"EMuleDownloadMRU", u"EMuleSearchMRU", u"EMuleStatistics", u"EDonkey2000DownloadMRU",
       u"KazaaSearchMRU", u"KazaaDownloadDB", u"KazaaPlaylists", u"AresSearchlist",
       u"WarezP2PSearchlist", u"WarezP2PVerlauf", u"WinMXLogfiles", u"BitTorrentHistory",
       u"AzureusStatistics"});
  for (auto [id, n] : counts) EXPECT_EQ(Scan(id), 0) << ToUtf8(id);
  EXPECT_EQ(lost, (std::set<String>{
                      u"HKCU\\" + search + u"[1]=first", u"HKCU\\" + search + u"[2]=second",
                      u"HKCU\\" + search + u"[3]=", u"HKCU\\" + ares + u"[6D7573696B]=x",
                      u"HKCU\\" + ares + u"[66696C6D]=",
                      u"HKCU\\Software\\Warez\\Search.History\\gen.gen[a]=b"}));
  EXPECT_TRUE(gained.empty());
  EXPECT_EQ(mem.Files->Names(kEMule), (StringList{u"config", u"emule.exe", u"Incoming"}));
  EXPECT_EQ(mem.Files->Names(kEMule + u"config"), StringList{u"preferences.ini"});
  EXPECT_TRUE(Exists(kEMule + u"Incoming\\film.avi"));
  EXPECT_EQ(mem.Files->Names(donkey), StringList{u"edonkey2000.exe"});
  EXPECT_EQ(mem.Files->Names(kazaa + u"db"), StringList{u"desktop.ini"});
  EXPECT_EQ(mem.Files->Names(kazaa + u"My Shared Folder"), StringList{u"song.mp3"});
  EXPECT_EQ(mem.Files->Names(warez + u"Data"), StringList{u"shares.txt"});
  EXPECT_EQ(mem.Files->Names(winmx), StringList{u"WinMX.exe"});
  EXPECT_TRUE(mem.Files->Names(bittorrent + u"History").empty());
  EXPECT_EQ(mem.Files->Names(kAppData + u"Azureus"), StringList{u"azureus.config"});
}

}  // namespace
}  // namespace tc
