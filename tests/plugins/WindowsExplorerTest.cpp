// Explorer and shell-dialog MRU lists: where they are found, what is reported, what a clean
// removes and what Fix repairs.
#include <functional>

#include "AppPluginFixture.h"
#include "plugins/TCP_WindowsExplorer.h"

namespace tc {
namespace {

const String kE = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const String kOpenSave = kE + u"ComDlg32\\OpenSaveMRU";
const String kLastVisited = kE + u"ComDlg32\\LastVisitedMRU";
const String kRun = kE + u"RunMRU";
const String kRecentDocs = kE + u"RecentDocs";
const String kNetDrives = kE + u"Map Network Drive MRU";
const String kUserAssist =
    kE + u"UserAssist\\{75048700-EF1F-11D0-9888-006097DEACF9}\\Count";
const String kBars =
    u"Software\\Microsoft\\Internet Explorer\\Explorer Bars\\{C4EE31F3-4768-11D2-BE5C-00A0C9A83DA1}\\";
const String kACMru = u"Software\\Microsoft\\Search Assistant\\ACMru\\";

constexpr TTraceFlags kDelFix = 6;

String K(const String& key) { return u"HKCU\\" + key; }
String V(const String& key, const String& name, const String& data) {
  return u"HKCU\\" + key + u"[" + name + u"]=" + data;
}

class WindowsExplorerTest : public AppPluginFixture {
 public:
  // UTF-16 text with its terminator followed by some shell-item bytes, as the binary
  // entries of the recent lists hold it.
  static Bytes TextItem(const String& text) {
    Bytes b = ToUtf16LE(text);
    b.insert(b.end(), {0, 0, 0x14, 0x00, 0x1F, 0x50, 0xE0, 0x4F});
    return b;
  }
  static String Rot13(String s) {
    for (auto& c : s) {
      if (c >= u'a' && c <= u'z') c = u'a' + (c - u'a' + 13) % 26;
      else if (c >= u'A' && c <= u'Z') c = u'A' + (c - u'A' + 13) % 26;
    }
    return s;
  }
};

TEST_F(WindowsExplorerTest, CatalogueInStartupOrder) {
  Start();
  ExpectCatalogue(
      {{u"ComDlgOpenSave", u"Datei öffnen-/speichern-Dialoge",
        u"Liste der zuletzt geöffneten und gespeicherten Dateien", 5002},
       {u"ComDlgLastVisited", u"Datei öffnen-/speichern-Dialoge",
        u"Liste der zuletzt verwendeten Ordner", 5002},
       {u"StartMenuRun", u"Windows-Explorer",
        u"Liste der zuletzt geöffneten Anwendungen, Dateien und Webseiten", 5000},
       {u"RecentDocs", u"Windows-Explorer", u"Liste der zuletzt verwendeten Dokumente", 5000},
       {u"SearchFiles", u"Windows-Suche", u"Liste der zuletzt gesuchten Dateinamen", 5001},
       {u"SearchText", u"Windows-Suche",
        u"Liste der zuletzt innerhalb von Dateien gesuchten Begriffe", 5001},
       {u"NetworkDrives", u"Windows-Explorer", u"Liste der zuletzt verbundenen Netzlaufwerke",
        5000},
       {u"RecentApps", u"Windows-Explorer",
        u"Liste der häufig verwendeten Anwendungen im Startmenü", 5000}},
      rsTCPSection_Windows,
      {u"ComDlgOpenSave", u"ComDlgLastVisited", u"StartMenuRun", u"RecentDocs", u"SearchFiles",
       u"SearchText", u"NetworkDrives", u"RecentApps"});
  EXPECT_EQ(Plugin(u"StartMenuRun").Description.substr(0, 30),
            u"Der Befehl \"Ausführen\" im Star");
}

TEST_F(WindowsExplorerTest, TracesFoundReportedAndCleaned) {
  struct Case {
    const char16_t* id;
    std::function<void(WindowsExplorerTest&)> seed;
    int count;
    StringList reported;  // value names, in report order
    TTraceTargetType target;
    TTraceFlags flags;
    std::set<String> lost;  // what the clean takes from the hives
    std::set<String> gained;
  } cases[] = {
      {u"ComDlgOpenSave",
       [](WindowsExplorerTest& t) {
         t.Str(HKEY_CURRENT_USER, kOpenSave, u"a", u"C:\\Briefe\\bank.doc");
         t.Str(HKEY_CURRENT_USER, kOpenSave, u"b", u"C:\\Bilder\\x.jpg");
         t.Str(HKEY_CURRENT_USER, kOpenSave, u"MRUList", u"ba");
         t.Str(HKEY_CURRENT_USER, kOpenSave + u"\\doc", u"a", u"C:\\Briefe\\bank.doc");
         t.Str(HKEY_CURRENT_USER, kOpenSave + u"\\doc", u"MRUList", u"a");
       },
       3, {u"a", u"b", u"a"}, TTT_FileOrFolderName, kDelFix,
       {V(kOpenSave, u"a", u"C:\\Briefe\\bank.doc"), V(kOpenSave, u"b", u"C:\\Bilder\\x.jpg"),
        V(kOpenSave, u"MRUList", u"ba"), K(kOpenSave + u"\\doc"),
        V(kOpenSave + u"\\doc", u"a", u"C:\\Briefe\\bank.doc"),
        V(kOpenSave + u"\\doc", u"MRUList", u"a")},
       {V(kOpenSave, u"MRUList", u"")}},
      {u"ComDlgLastVisited",
       [](WindowsExplorerTest& t) {
         t.Bin(HKEY_CURRENT_USER, kLastVisited, u"a", TextItem(u"notepad.exe"));
         t.Str(HKEY_CURRENT_USER, kLastVisited, u"MRUList", u"a");
       },
       1, {u"a"}, TTT_Unknown, kDelFix,
       {V(kLastVisited, u"a", u"notepad.exe"), V(kLastVisited, u"MRUList", u"a")},
       {V(kLastVisited, u"MRUList", u"")}},
      {u"StartMenuRun",
       [](WindowsExplorerTest& t) {
         t.Str(HKEY_CURRENT_USER, kRun, u"a", u"regedit\\1");
         t.Str(HKEY_CURRENT_USER, kRun, u"b", u"\\\\server\\geheim\\1");
         t.Str(HKEY_CURRENT_USER, kRun, u"MRUList", u"ba");
       },
       2, {u"a", u"b"}, TTT_RunCMD, kDelFix | FlagOf(TF_Consider_Dropping_Last_Directory),
       {V(kRun, u"a", u"regedit\\1"), V(kRun, u"b", u"\\\\server\\geheim\\1"),
        V(kRun, u"MRUList", u"ba")},
       {V(kRun, u"MRUList", u"")}},
      {u"RecentDocs",
       [](WindowsExplorerTest& t) {
         t.Bin(HKEY_CURRENT_USER, kRecentDocs, u"0", TextItem(u"bank.doc"));
         t.Bin(HKEY_CURRENT_USER, kRecentDocs, u"1", TextItem(u"x.jpg"));
         t.Bin(HKEY_CURRENT_USER, kRecentDocs, u"MRUListEx", {1, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255});
         t.Bin(HKEY_CURRENT_USER, kRecentDocs, u"ViewStream", {1, 2, 3});
         t.Bin(HKEY_CURRENT_USER, kRecentDocs + u"\\.doc", u"0", TextItem(u"bank.doc"));
         t.Bin(HKEY_CURRENT_USER, kRecentDocs + u"\\.doc", u"MRUListEx", {0, 0, 0, 0, 255, 255, 255, 255});
       },
       3, {u"0", u"1", u"0"}, TTT_Unknown, 0,
       {V(kRecentDocs, u"0", u"bank.doc"), V(kRecentDocs, u"1", u"x.jpg"),
        V(kRecentDocs, u"MRUListEx", u"01 00 00 00 00 00 00 00 FF FF FF FF"),
        V(kRecentDocs, u"ViewStream", u"01 02 03"), K(kRecentDocs + u"\\.doc"),
        V(kRecentDocs + u"\\.doc", u"0", u"bank.doc"),
        V(kRecentDocs + u"\\.doc", u"MRUListEx", u"00 00 00 00 FF FF FF FF")},
       {}},
      // Both the explorer bar and the newer search assistant count into one plug-in; an
      // empty entry is no trace but goes with the list.
      {u"SearchFiles",
       [](WindowsExplorerTest& t) {
         t.Str(HKEY_CURRENT_USER, kBars + u"FilesNamedMRU", u"000", u"*.doc");
         t.Str(HKEY_CURRENT_USER, kBars + u"FilesNamedMRU", u"001", u"");
         t.Str(HKEY_CURRENT_USER, kACMru + u"5603", u"000", u"bewerbung");
         t.Str(HKEY_CURRENT_USER, kACMru + u"5603", u"001", u"gehalt*");
         t.Str(HKEY_CURRENT_USER, kACMru + u"5603", u"Info", u"bleibt");
       },
       3, {u"000", u"000", u"001"}, TTT_Unknown, 0,
       {V(kBars + u"FilesNamedMRU", u"000", u"*.doc"), V(kBars + u"FilesNamedMRU", u"001", u""),
        V(kACMru + u"5603", u"000", u"bewerbung"), V(kACMru + u"5603", u"001", u"gehalt*")},
       {}},
      {u"SearchText",
       [](WindowsExplorerTest& t) {
         t.Str(HKEY_CURRENT_USER, kACMru + u"5604", u"000", u"Kontonummer");
         t.Str(HKEY_CURRENT_USER, kACMru + u"5603", u"000", u"nicht meins");
       },
       1, {u"000"}, TTT_Unknown, 0, {V(kACMru + u"5604", u"000", u"Kontonummer")}, {}},
      {u"NetworkDrives",
       [](WindowsExplorerTest& t) {
         t.Str(HKEY_CURRENT_USER, kNetDrives, u"a", u"\\\\nas\\privat");
         t.Str(HKEY_CURRENT_USER, kNetDrives, u"MRUList", u"a");
       },
       1, {u"a"}, TTT_Unknown, 0,
       {V(kNetDrives, u"a", u"\\\\nas\\privat"), V(kNetDrives, u"MRUList", u"a")},
       {V(kNetDrives, u"MRUList", u"")}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.id));
    Reset();
    Str(HKEY_CURRENT_USER, kE + u"Advanced", u"Hidden", u"1");  // a neighbour that stays
    c.seed(*this);
    Start();
    EXPECT_EQ(Scan(c.id), c.count);
    EXPECT_EQ(FoundNames(), c.reported);
    for (const auto& f : found) {
      EXPECT_EQ(f.Type, TST_Registry_Value);
      EXPECT_EQ(f.Target, c.target);
      EXPECT_EQ(f.Flags, c.flags);
    }
    auto [lost, gained] = CleanAndDiff({c.id});
    EXPECT_EQ(lost, c.lost);
    EXPECT_EQ(gained, c.gained);
    EXPECT_EQ(Scan(c.id), 0);
  }
}

TEST_F(WindowsExplorerTest, RecentAppsReportsDecodedProgramsAndNotifiesTheShell) {
  const Bytes stats(16, 7);
  Bin(HKEY_CURRENT_USER, kUserAssist, Rot13(u"UEME_RUNPATH:C:\\Windows\\notepad.exe"), stats);
  Bin(HKEY_CURRENT_USER, kUserAssist, Rot13(u"UEME_CTLSESSION"), stats);
  Bin(HKEY_CURRENT_USER, kUserAssist, Rot13(u"UEME_RUNPIDL:%csidl2%\\Programs\\Wordpad.lnk"),
      stats);
  Str(HKEY_CURRENT_USER, kE + u"UserAssist\\Settings", u"NoLog", u"0");
  Start();

  EXPECT_EQ(Scan(u"RecentApps"), 3);  // the session counter counts, unreported
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].Data, u"C:\\Windows\\notepad.exe");
  EXPECT_EQ(found[0].Flags, FlagOf(TF_Deletable_Per_Item));
  EXPECT_EQ(found[1].Data, u"Programs\\Wordpad.lnk");
  EXPECT_EQ(found[1].Flags, FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_StartMenu_SubFolder));
  EXPECT_EQ(found[1].Target, TTT_UserAssist);

  CleanAndFix({u"RecentApps"});
  EXPECT_TRUE(Names(kUserAssist).empty());
  EXPECT_TRUE(mem.Registry->HasKey(HKEY_CURRENT_USER, kUserAssist));
  EXPECT_EQ(mem.Registry->GetString(HKEY_CURRENT_USER, kE + u"UserAssist\\Settings", u"NoLog"),
            u"0");
  ASSERT_EQ(mem.Shell->Notifications().size(), 1u);
  EXPECT_EQ(mem.Shell->Notifications()[0].EventId, 0x08000000);
  EXPECT_EQ(mem.Shell->Notifications()[0].Flags, 0u);
  EXPECT_EQ(mem.Shell->Notifications()[0].Path, u"");
}

// The lists belong to the system: absent, they stay switched on. Both clean follow-ups
// run whether or not anything was removed.
TEST_F(WindowsExplorerTest, EmptyMachineKeepsEveryListActiveAndRunsTheFollowUps) {
  Start();
  for (const char16_t* id :
       {u"ComDlgOpenSave", u"ComDlgLastVisited", u"StartMenuRun", u"RecentDocs", u"SearchFiles",
        u"SearchText", u"NetworkDrives", u"RecentApps", u"WordPad", u"MSPaint", u"Regedit",
        u"TermSrvClient", u"MovieMakerMRU"}) {
    EXPECT_EQ(Scan(id), 0) << ToUtf8(id);
    EXPECT_TRUE(Plugin(id).Active) << ToUtf8(id);
  }
  EXPECT_FALSE(Plugin(u"StartMenuRun").HostNotice);
  CleanAndFix({u"StartMenuRun"});
  EXPECT_TRUE(Plugin(u"StartMenuRun").HostNotice);
  CleanAndFix({u"RecentApps"});
  EXPECT_EQ(mem.Shell->Notifications().size(), 1u);
  EXPECT_FALSE(Plugin(u"RecentApps").HostNotice);
}

}  // namespace
}  // namespace tc
