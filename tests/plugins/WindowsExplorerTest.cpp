// Explorer and shell-dialog MRU lists: where they are found, what is reported and what a
// clean leaves.
#include "AppPluginFixture.h"
#include "platform/helpers/RegData.h"
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

TEST_F(WindowsExplorerTest, TracesFoundReportedAndCleaned) {
  auto Sz = [](const char16_t* text) { return RegData::Sz(text); };
  auto Item = [](const char16_t* text) { return RegData::Binary(TextItem(text)); };
  const Bytes ex10 = {1, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255}, ex0 = {0, 0, 0, 0, 255, 255, 255, 255};
  struct Value {
    String key, name;
    RegValue value;
  };
  struct Case {
    const char16_t* id;
    std::vector<Value> seed;  // HKEY_CURRENT_USER, in this order
    int count;
    StringList reported;  // value names, in report order
    TTraceTargetType target;
    TTraceFlags flags;  // kDelFix: removed item by item, order value repaired by Fix
    std::set<String> left;  // what the seeded keys hold after the clean
  } cases[] = {
      {u"ComDlgOpenSave",
       {{kOpenSave, u"a", Sz(u"C:\\Briefe\\bank.doc")}, {kOpenSave, u"b", Sz(u"C:\\Bilder\\x.jpg")},
        {kOpenSave, u"MRUList", Sz(u"ba")}, {kOpenSave + u"\\doc", u"a", Sz(u"C:\\Briefe\\bank.doc")},
        {kOpenSave + u"\\doc", u"MRUList", Sz(u"a")}},
       3, {u"a", u"b", u"a"}, TTT_FileOrFolderName, kDelFix,
       {K(kOpenSave), V(kOpenSave, u"MRUList", u"")}},
      {u"ComDlgLastVisited",
       {{kLastVisited, u"a", Item(u"notepad.exe")}, {kLastVisited, u"MRUList", Sz(u"a")}},
       1, {u"a"}, TTT_Unknown, kDelFix, {K(kLastVisited), V(kLastVisited, u"MRUList", u"")}},
      {u"StartMenuRun",
       {{kRun, u"a", Sz(u"regedit\\1")}, {kRun, u"b", Sz(u"\\\\server\\geheim\\1")},
        {kRun, u"MRUList", Sz(u"ba")}},
       2, {u"a", u"b"}, TTT_RunCMD, kDelFix | FlagOf(TF_Consider_Dropping_Last_Directory),
       {K(kRun), V(kRun, u"MRUList", u"")}},
      // Everything in the key and below it goes, the view settings too.
      {u"RecentDocs",
       {{kRecentDocs, u"0", Item(u"bank.doc")}, {kRecentDocs, u"1", Item(u"x.jpg")},
        {kRecentDocs, u"MRUListEx", RegData::Binary(ex10)},
        {kRecentDocs, u"ViewStream", RegData::Binary({1, 2, 3})},
        {kRecentDocs + u"\\.doc", u"0", Item(u"bank.doc")},
        {kRecentDocs + u"\\.doc", u"MRUListEx", RegData::Binary(ex0)}},
       3, {u"0", u"1", u"0"}, TTT_Unknown, 0, {K(kRecentDocs)}},
      // Both the explorer bar and the newer search assistant count into one plug-in; an
      // empty entry is no trace but goes with the list.
      {u"SearchFiles",
       {{kBars + u"FilesNamedMRU", u"000", Sz(u"*.doc")}, {kBars + u"FilesNamedMRU", u"001", Sz(u"")},
        {kACMru + u"5603", u"000", Sz(u"bewerbung")}, {kACMru + u"5603", u"001", Sz(u"gehalt*")},
        {kACMru + u"5603", u"Info", Sz(u"bleibt")}},
       3, {u"000", u"000", u"001"}, TTT_Unknown, 0,
       {K(kBars + u"FilesNamedMRU"), K(kACMru + u"5603"), V(kACMru + u"5603", u"Info", u"bleibt")}},
      {u"SearchText",
       {{kACMru + u"5604", u"000", Sz(u"Kontonummer")}, {kACMru + u"5603", u"000", Sz(u"nicht meins")}},
       1, {u"000"}, TTT_Unknown, 0,
       {K(kACMru + u"5604"), K(kACMru + u"5603"), V(kACMru + u"5603", u"000", u"nicht meins")}},
      {u"NetworkDrives",
       {{kNetDrives, u"a", Sz(u"\\\\nas\\privat")}, {kNetDrives, u"MRUList", Sz(u"a")}},
       1, {u"a"}, TTT_Unknown, 0, {K(kNetDrives), V(kNetDrives, u"MRUList", u"")}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.id));
    Reset();
    Str(HKEY_CURRENT_USER, kE + u"Advanced", u"Hidden", u"1");  // a neighbour that stays
    for (const auto& v : c.seed) mem.Registry->Put(HKEY_CURRENT_USER, v.key, v.name, v.value);
    auto seeded = [&](const String& line) {  // a line of a seeded key or below it
      for (const auto& v : c.seed) {
        const String k = K(v.key);
        if (line.rfind(k, 0) == 0 && (line.size() == k.size() || line[k.size()] == u'[' ||
                                      line[k.size()] == u'\\'))
          return true;
      }
      return false;
    };
    Start();
    EXPECT_EQ(Scan(c.id), c.count);
    EXPECT_EQ(FoundNames(), c.reported);
    for (const auto& f : found) {
      EXPECT_EQ(f.Type, TST_Registry_Value);
      EXPECT_EQ(f.Target, c.target);
      EXPECT_EQ(f.Flags, c.flags);
    }
    auto [lost, gained] = CleanAndDiff({c.id});
    std::set<String> left;
    for (const auto& line : Snapshot())
      if (seeded(line)) left.insert(line);
    EXPECT_EQ(left, c.left);
    for (const auto& line : lost) EXPECT_TRUE(seeded(line)) << "lost " << ToUtf8(line);
    for (const auto& line : gained) EXPECT_TRUE(seeded(line)) << "gained " << ToUtf8(line);
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
