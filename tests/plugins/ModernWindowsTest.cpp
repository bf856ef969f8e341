// The Windows 7 to 11 plug-ins on the in-memory Windows: jump lists kept when pinned, caches
// in use, shell bags in both hives, and the readers' previews (typing times among them).
#ifndef _WIN32
#include <sqlite3.h>
#endif

#include "AppPluginFixture.h"
#include "platform/helpers/JumpLists.h"
#include "plugins/TCP_MSOffice2013.h"
#include "plugins/TCP_ModernWindowsExplorer.h"
#include "plugins/TCP_ModernWindowsFiles.h"
#include "plugins/TCP_ModernWindowsTraces.h"

namespace tc {
namespace {

const String kRecent = u"C:\\Users\\Tester\\AppData\\Roaming\\Microsoft\\Windows\\Recent\\";
const String kAutomatic = kRecent + u"AutomaticDestinations\\";

// My Computer, drive C: and the file entry of "ash.png", as an open/save list keeps them.
Bytes AshItems() {
  Bytes list = {0x14, 0x00, 0x1f, 0x50, 0xe0, 0x4f, 0xd0, 0x20, 0xea, 0x3a, 0x69, 0x10, 0xa2,
                0xd8, 0x08, 0x00, 0x2b, 0x30, 0x30, 0x9d, 0x19, 0x00, 0x2f, 'C',  ':',  '\\'};
  list.resize(20 + 25, 0);
  const Bytes file = {0x1a, 0x00, 0x32, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0x80, 0x00,
                      'a',  's',  'h',  '.',  'p', 'n', 'g', 0, 0, 0, 0, 0};
  list.insert(list.end(), file.begin(), file.end());
  list.insert(list.end(), {0, 0});
  return list;
}

using ModernWindowsTest = AppPluginFixture;

TEST_F(ModernWindowsTest, JumpListsWithPinnedEntriesAreKept) {
  TC_REAL_FILE(real, "windows/jumplist/1b4dd67f29cb1962.automaticDestinations-ms");
  std::string pinned = real;
  const size_t pin = pinned.find(std::string("\xff\xff\xff\xff\x19\x00\x43\x00", 8));
  ASSERT_NE(std::string::npos, pin);
  pinned.replace(pin, 4, std::string(4, '\0'));  // the first entry's pin position: 0
  File(kAutomatic + u"1b4dd67f29cb1962.automaticDestinations-ms", real);
  File(kAutomatic + u"aaaaaaaaaaaaaaaa.automaticDestinations-ms", pinned);
  File(kAutomatic + u"bbbbbbbbbbbbbbbb.automaticDestinations-ms", "not a compound file");
  File(kRecent + u"CustomDestinations\\cccccccccccccccc.customDestinations-ms",
       "\x02\0\0\0" + real.substr(0, 16));
  Start();

  EXPECT_EQ(7 + 7 + 1 + 1, Scan(u"JumpLists"));
  int marked = 0;
  for (const auto& f : found) {
    EXPECT_FALSE(f.Data.empty() && f.Name.find(u"1b4dd") != String::npos);
    marked += f.Data.find(u"angeheftet") != String::npos;
  }
  EXPECT_EQ(1, marked);
  EXPECT_TRUE(SameText(u"C:\\Users\\bperry\\Downloads", found[0].Data)) << ToUtf8(found[0].Data);

  CleanAndFix({u"JumpLists"});
  EXPECT_EQ((StringList{u"aaaaaaaaaaaaaaaa.automaticDestinations-ms"}),
            mem.Files->Names(kAutomatic));
  EXPECT_EQ(7, Plugins->CountNotCleanedTraces(&Plugin(u"JumpLists")));
  EXPECT_NE(String::npos, Plugin(u"JumpLists").Note.find(u"aaaaaaaaaaaaaaaa")) << "says why";
  EXPECT_TRUE(mem.Files->Names(kRecent + u"CustomDestinations").empty());
}

TEST_F(ModernWindowsTest, ThumbnailCachesInUseGoAtTheNextStart) {
  const String explorer = u"C:\\Users\\Tester\\AppData\\Local\\Microsoft\\Windows\\Explorer\\";
  Files(explorer, {u"thumbcache_96.db", u"iconcache_32.db", u"ExplorerStartupLog.etl"});
  mem.FileFaults->LockFile(explorer + u"thumbcache_96.db", ERROR_SHARING_VIOLATION);
  Start();
  EXPECT_EQ(2, Scan(u"ThumbnailCache"));
  CleanAndFix({u"ThumbnailCache"});
  EXPECT_TRUE(Plugin(u"ThumbnailCache").RebootRequired);
  EXPECT_EQ((StringList{u"ExplorerStartupLog.etl", u"thumbcache_96.db"}), mem.Files->Names(explorer));
  StringList pending;
  mem.RebootDeleter->Pending(pending);
  EXPECT_EQ((StringList{explorer + u"thumbcache_96.db"}), pending);
}

TEST_F(ModernWindowsTest, ShellBagsShowTheirFoldersAndGoFromBothHives) {
  const String user = u"Software\\Microsoft\\Windows\\Shell\\";
  const String classes = u"Software\\Classes\\Local Settings\\Software\\Microsoft\\Windows\\Shell\\";
  const Bytes items = AshItems();
  auto item = [&](size_t from, size_t to) {
    Bytes b(items.begin() + long(from), items.begin() + long(to));
    b.insert(b.end(), {0, 0});
    return b;
  };
  Bin(HKEY_CURRENT_USER, user + u"BagMRU", u"0", item(0, 20));
  Bin(HKEY_CURRENT_USER, user + u"BagMRU\\0", u"0", item(20, 45));
  Bin(HKEY_CURRENT_USER, user + u"BagMRU\\0\\0", u"0", item(45, items.size() - 2));
  Bin(HKEY_CURRENT_USER, user + u"BagMRU\\0", u"MRUListEx", {0, 0, 0, 0, 0xff, 0xff, 0xff, 0xff});
  Bin(HKEY_CURRENT_USER, classes + u"BagMRU", u"0", {1, 0, 0});  // no item list: still a trace
  Str(HKEY_CURRENT_USER, classes + u"Bags\\1\\Shell", u"Mode", u"4");
  Str(HKEY_CURRENT_USER, user + u"Associations", u"Kept", u"yes");
  Start();
  EXPECT_FALSE(Plugin(u"ExplorerShellBags").Active) << "off unless chosen";
  EXPECT_EQ(4, Scan(u"ExplorerShellBags"));
  EXPECT_EQ((StringList{u"0", u"0", u"0", u"0"}), FoundNames());
  EXPECT_EQ(u"C:\\", found[1].Data);
  EXPECT_EQ(u"C:\\ash.png", found[2].Data);

  const auto changes = CleanAndDiff({u"ExplorerShellBags"});
  for (const String& line : changes.lost) EXPECT_NE(String::npos, line.find(u"\\Bag")) << ToUtf8(line);
  EXPECT_TRUE(changes.gained.empty());
  EXPECT_EQ((StringList{u"Kept"}), Names(user + u"Associations"));
  EXPECT_FALSE(KeyExist(HKEY_CURRENT_USER, classes + u"Bags", RO_None));
}

TEST_F(ModernWindowsTest, PreviewsOfListValues) {
  Start();
  auto text = [](const String& s) {
    Bytes b = ToUtf16LE(s);
    b.insert(b.end(), {0, 0});
    return b;
  };
  Bytes lastVisited = text(u"chrome.exe");
  const Bytes items = AshItems();
  lastVisited.insert(lastVisited.end(), items.begin(), items.end());
  const String comDlg = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\ComDlg32\\";
  struct Case {
    String key;
    Bytes data;
    String shown;
  } cases[] = {
      {comDlg + u"OpenSavePidlMRU\\png", items, u"ash.png"},
      {comDlg + u"LastVisitedPidlMRU", lastVisited, u"chrome.exe: ash.png"},
      {comDlg + u"CIDSizeMRU", text(u"iexplore.exe"), u"iexplore.exe"},
      {comDlg + u"OpenSavePidlMRU\\*", {5, 0, 1}, u""},  // cut short: nothing to show
  };
  for (const auto& c : cases) EXPECT_EQ(c.shown, ComDlgValueName(c.key, c.data)) << ToUtf8(c.key);
  EXPECT_EQ(u"plain", OfficeMRUPath(u"plain"));  // the prefixed form: ModernWindowsTest.Office2013*

  std::vector<DestListEntry> entries;
  Bytes destList(32, 0);
  destList[0] = 4;  // a Windows 10 list of one entry whose path runs past the end
  destList[4] = 1;
  destList.resize(32 + 130, 0);
  destList[32 + 128] = 10;
  EXPECT_FALSE(ParseDestList(destList, entries));
  destList.resize(32 + 130 + 20 + 4, 0);
  ASSERT_TRUE(ParseDestList(destList, entries));
  EXPECT_TRUE(entries[0].Pinned);  // pin position 0, not -1
  destList[0] = 2;
  EXPECT_FALSE(ParseDestList(destList, entries));
}

// Typing times of Internet Explorer at the ends of their range.
TEST_F(ModernWindowsTest, FileTimeText) {
  auto le = [](uint64_t n) {
    Bytes b;
    for (int i = 0; i < 8; ++i) b.push_back(uint8_t(n >> (8 * i)));
    return b;
  };
  const struct {
    Bytes data;
    const char* text;
  } cases[] = {
      {le(0x01D21EED89794BBBULL), "2016-10-05 09:47:50"},
      {le(1), "1601-01-01 00:00:00"},
      {le(265046774400ULL * 10000000 - 1), "9999-12-31 23:59:59"},
      {le(265046774400ULL * 10000000), ""},  // year 10000 is no time Windows writes
      {le(~0ULL), ""},
      {le(0), ""},
      {Bytes{1, 2, 3, 4}, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(c.text, ToUtf8(FileTimeText(c.data)));
}

#ifndef _WIN32
// A Timeline database made by SQLite itself, as the bytes of its file.
std::string TimelineDatabase(const char* sql) {
  sqlite3* db = nullptr;
  sqlite3_open(":memory:", &db);
  sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
  sqlite3_int64 size = 0;
  unsigned char* data = sqlite3_serialize(db, "main", &size, 0);
  std::string bytes(reinterpret_cast<char*>(data), size_t(size));
  sqlite3_free(data);
  sqlite3_close(db);
  return bytes;
}

TEST_F(ModernWindowsTest, TimelineCountsActivitiesAndDeletesTheDatabases) {
  const String cdp = u"C:\\Users\\Tester\\AppData\\Local\\ConnectedDevicesPlatform\\";
  File(cdp + u"L.Tester\\ActivitiesCache.db",
       TimelineDatabase("CREATE TABLE Activity(Id BLOB, AppActivityId TEXT, Payload BLOB);"
                        "INSERT INTO Activity VALUES (1, 'ECB32AF3-1440', "
                        "'{\"displayText\":\"Bericht.docx\",\"type\":\"x\"}');"
                        "INSERT INTO Activity VALUES (2, 'Edge-42', NULL);"));
  File(cdp + u"L.Tester\\ActivitiesCache.db-wal", "");
  File(cdp + u"AAD.1234\\ActivitiesCache.db", "not a database");
  File(cdp + u"AAD.1234\\Settings.dat", "kept");
  Start();
  EXPECT_EQ(3, Scan(u"WindowsTimeline"));
  EXPECT_EQ(u"Bericht.docx", FoundData()[1]);
  EXPECT_EQ(u"Edge-42", FoundData()[2]);
  CleanAndFix({u"WindowsTimeline"});
  EXPECT_TRUE(mem.Files->Names(cdp + u"L.Tester").empty());
  EXPECT_EQ((StringList{u"Settings.dat"}), mem.Files->Names(cdp + u"AAD.1234"));
}
#endif

}  // namespace
}  // namespace tc
