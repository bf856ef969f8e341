// Archiver plug-ins: WinRAR, WinZip, PowerArchiver's language keys and WinAce.
#include "AppPluginFixture.h"
#include "plugins/TCP_Archiver.h"

namespace tc {
namespace {

// Passes everything on; counts probes of PowerArchiver keys, and can drop a key once its
// last value is deleted, as a backend that prunes emptied keys would.
class ProbingRegistry : public IRegistry {
 public:
  explicit ProbingRegistry(std::shared_ptr<IRegistry> inner) : inner_(std::move(inner)) {}
  int powerArchiverProbes = 0;
  bool dropEmptiedKeys = false;

  uint32_t KeyExists(HKEY r, const String& k, RegView v) override {
    if (SameText(k.substr(0, 22), u"Software\\PowerArchiver")) ++powerArchiverProbes;
    return inner_->KeyExists(r, k, v);
  }
  uint32_t CreateKey(HKEY r, const String& k, RegView v) override { return inner_->CreateKey(r, k, v); }
  uint32_t EnumKeys(HKEY r, const String& k, StringList& n, RegView v) override {
    return inner_->EnumKeys(r, k, n, v);
  }
  uint32_t EnumValues(HKEY r, const String& k, std::vector<RegNamedValue>& n, RegView v) override {
    return inner_->EnumValues(r, k, n, v);
  }
  uint32_t QueryValue(HKEY r, const String& k, const String& n, RegValue& val, RegView v) override {
    return inner_->QueryValue(r, k, n, val, v);
  }
  uint32_t SetValue(HKEY r, const String& k, const String& n, const RegValue& val, RegView v) override {
    return inner_->SetValue(r, k, n, val, v);
  }
  uint32_t DeleteValue(HKEY r, const String& k, const String& n, RegView v) override {
    uint32_t rc = inner_->DeleteValue(r, k, n, v);
    std::vector<RegNamedValue> rest;
    StringList subs;
    if (dropEmptiedKeys && inner_->EnumValues(r, k, rest, v) == ERROR_SUCCESS && rest.empty() &&
        inner_->EnumKeys(r, k, subs, v) == ERROR_SUCCESS && subs.empty())
      inner_->DeleteKeyTree(r, k, v);
    return rc;
  }
  uint32_t DeleteKeyTree(HKEY r, const String& k, RegView v) override { return inner_->DeleteKeyTree(r, k, v); }
  uint32_t Flush() override { return inner_->Flush(); }

 private:
  std::shared_ptr<IRegistry> inner_;
};

class ArchiverTest : public AppPluginFixture {
 public:
  std::shared_ptr<ProbingRegistry> Probe() {
    auto probe = std::make_shared<ProbingRegistry>(mem.Platform->Registry);
    mem.Platform->Registry = probe;
    return probe;
  }
};

const String kWinRAR = u"Software\\WinRAR\\";

TEST_F(ArchiverTest, CatalogueAndWinRARAbsent) {
  Start();
  ExpectCatalogue(
      {{u"WinRARRecentArchives", u"WinRAR", u"Liste der zuletzt geöffneten Archive", 7000},
       {u"WinRARRecentFolders", u"WinRAR", u"Liste der zuletzt verwendeten Ordner", 7000},
       {u"WinRARCreatedArchives", u"WinRAR", u"Namen der zuletzt erstellten Archive", 7000},
       {u"WinZipRecentArchives", u"WinZip", u"Liste der zuletzt verwendeten Archive", 7001},
       {u"WinZipTargetFolders", u"WinZip", u"Liste der Ordner, in die zuletzt Dateien entpackt wurden", 7001},
       {u"PowerArcRecentArchives", u"PowerArchiver 9", u"Liste der zuletzt verwendeten Archive", 7002},
       {u"PowerArcRecentFolders", u"PowerArchiver 9", u"Liste der zuletzt verwendeten Ordner", 7002},
       {u"WinAceLastOpenArchives", u"WinAce", u"Liste der zuletzt verwendeten Archive", 7003}},
      rsTCPSection_Archiver);
  for (const char16_t* id : {u"WinRARRecentArchives", u"WinRARRecentFolders", u"WinRARCreatedArchives",
                             u"WinZipRecentArchives", u"WinZipTargetFolders", u"WinAceLastOpenArchives"}) {
    EXPECT_FALSE(Plugin(id).Active) << ToUtf8(id);
    EXPECT_FALSE(Plugin(id).DeactivateIfAbsent) << ToUtf8(id);
  }
  EXPECT_TRUE(Plugin(u"PowerArcRecentArchives").Active);
}

TEST_F(ArchiverTest, WinRARAndWinZipListsAreRemovedAndTheRestKept) {
  for (const char16_t* n : {u"0", u"1", u"2"}) Str(HKEY_CURRENT_USER, kWinRAR + u"ArcHistory", n, u"C:\\a.rar");
  Str(HKEY_CURRENT_USER, kWinRAR + u"DialogEditHistory\\ExtrPath", u"0", u"C:\\Entpackt");
  Str(HKEY_CURRENT_USER, kWinRAR + u"DialogEditHistory\\ExtrPath", u"1", u"D:\\Temp");
  Str(HKEY_CURRENT_USER, kWinRAR + u"DialogEditHistory\\ArcName", u"0", u"backup.rar");
  Str(HKEY_CURRENT_USER, kWinRAR + u"General", u"LastFolder", u"C:\\Downloads");
  Str(HKEY_CURRENT_USER, kWinRAR + u"General", u"Toolbar", u"kept");
  const String winzip = u"Software\\Nico Mak Computing\\WinZip\\";
  for (const char16_t* n : {u"filemenu1", u"filemenu2", u"filemenu3"})
    Str(HKEY_CURRENT_USER, winzip + u"filemenu", n, u"C:\\b.zip");
  Str(HKEY_CURRENT_USER, winzip + u"extract", u"extract1", u"C:\\Ziel");
  Str(HKEY_CURRENT_USER, winzip + u"WinIni", u"Wizard", u"0");
  Start();

  const std::pair<const char16_t*, int> counts[] = {
      {u"WinRARRecentArchives", 3}, {u"WinRARRecentFolders", 3}, {u"WinRARCreatedArchives", 1},
      {u"WinZipRecentArchives", 3}, {u"WinZipTargetFolders", 1}};
  auto before = Snapshot();
  for (auto [id, n] : counts) {
    EXPECT_TRUE(Plugin(id).Active) << ToUtf8(id);
    EXPECT_EQ(ScanCount(id), n) << ToUtf8(id);
    CleanAndFix(id);
    EXPECT_EQ(ScanCount(id), 0) << ToUtf8(id);
  }
  auto [lost, gained] = Diff(before, Snapshot());
  EXPECT_EQ(lost.size(), 3u + 3u + 1u + 3u + 1u);
  for (const auto& l : lost) EXPECT_EQ(l.find(u"kept"), String::npos) << ToUtf8(l);
  EXPECT_TRUE(gained.empty());
}

TEST_F(ArchiverTest, WinRARHistoryKeyIsPutBackWhenTheCleanTookItAway) {
  const struct {
    bool hadKey;
    bool keyAfter;
  } cases[] = {{true, true}, {false, false}};
  for (const auto& c : cases) {
    Reset();
    Str(HKEY_CURRENT_USER, kWinRAR + u"General", u"Toolbar", u"x");
    if (c.hadKey) Str(HKEY_CURRENT_USER, kWinRAR + u"ArcHistory", u"0", u"C:\\a.rar");
    auto probe = Probe();
    probe->dropEmptiedKeys = true;
    Start();
    CleanAndFix(u"WinRARRecentArchives");
    EXPECT_EQ(mem.Registry->HasKey(HKEY_CURRENT_USER, kWinRAR + u"ArcHistory"), c.keyAfter);
    if (c.keyAfter) {
      EXPECT_EQ(mem.Registry->ValueNames(HKEY_CURRENT_USER, kWinRAR + u"ArcHistory"), StringList{u""});
      EXPECT_EQ(ScanCount(u"WinRARRecentArchives"), 0);  // the repair adds no entry
    }
  }
}

TEST_F(ArchiverTest, PowerArchiverKeyIsWorkedOutAfreshForEachLocation) {
  const struct {
    std::vector<const char16_t*> keys;
    const char16_t* expected;
    int probes;  // six locations, each trying the keys anew
  } cases[] = {{{u"PowerArchiver"}, u"Software\\PowerArchiver", 6 * 1},
               {{u"PowerArchiverFR"}, u"Software\\PowerArchiverFR", 6 * 3},
               {{u"PowerArchiverRU", u"PowerArchiverPL"}, u"Software\\PowerArchiverPL", 6 * 5},
               {{}, u"", 6 * 9}};
  for (const auto& c : cases) {
    Reset();
    for (const char16_t* k : c.keys) mem.Registry->CreateKey(HKEY_CURRENT_USER, String(u"Software\\") + k, RegView::Default);
    auto probe = Probe();
    Start();
    EXPECT_EQ(probe->powerArchiverProbes, c.probes) << ToUtf8(c.expected);
    EXPECT_EQ(PowerArchiverKey(), String(c.expected));
  }
}

TEST_F(ArchiverTest, PowerArchiverListsUnderTheFrenchKeyAreEmptied) {
  const String files = u"Software\\PowerArchiverFR\\Files";
  Str(HKEY_CURRENT_USER, files, u"Active_File1", u"C:\\a.zip");
  Str(HKEY_CURRENT_USER, files, u"Active_File2", u"C:\\b.7z");
  Str(HKEY_CURRENT_USER, files, u"Extract1", u"C:\\Ziel");
  Str(HKEY_CURRENT_USER, files, u"SelDir1", u"C:\\Quelle");
  for (const char16_t* n : {u"Last open dir", u"Last add dir", u"Add from folder"})
    Str(HKEY_CURRENT_USER, files, n, u"C:\\Ordner");
  Str(HKEY_CURRENT_USER, files, u"Language", u"FR");
  Start();
  EXPECT_EQ(ScanCount(u"PowerArcRecentArchives"), 2);
  EXPECT_EQ(ScanCount(u"PowerArcRecentFolders"), 1 + 1 + 3);
  CleanAndFix(u"PowerArcRecentArchives");
  CleanAndFix(u"PowerArcRecentFolders");
  for (const auto& name : mem.Registry->ValueNames(HKEY_CURRENT_USER, files))
    EXPECT_EQ(mem.Registry->GetString(HKEY_CURRENT_USER, files, name), name == u"Language" ? u"FR" : u"")
        << ToUtf8(name);
  EXPECT_EQ(mem.Registry->ValueNames(HKEY_CURRENT_USER, files).size(), 8u);  // emptied, not deleted
}

TEST_F(ArchiverTest, WinAceIsActiveWhenItsRecordedPathExists) {
  const struct {
    const char16_t* path;
    bool fileThere, active;
    int locations;
  } cases[] = {{u"", false, false, 0},
               {u"C:\\Program Files\\WinAce\\winace.exe", true, true, 2},
               {u"C:\\Program Files\\WinAce\\winace.exe", false, false, 2}};
  for (const auto& c : cases) {
    Reset();
    if (*c.path) Str(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce", u"Path", c.path);
    if (c.fileThere) File(c.path);
    Str(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce\\2.0\\Favorites", u"H1", u"C:\\a.ace");
    Str(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce\\2.0\\MRU Items", u"F1", u"C:\\b.ace");
    Str(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce\\2.0\\MRU Items", u"F2", u"C:\\c.ace");
    Start();
    EXPECT_EQ(Plugin(u"WinAceLastOpenArchives").Active, c.active) << ToUtf8(c.path);
    EXPECT_EQ(Plugin(u"WinAceLastOpenArchives").GetTraceLocationCount(), c.locations);
    EXPECT_EQ(ScanCount(u"WinAceLastOpenArchives"), c.locations ? 3 : 0);
  }
}

}  // namespace
}  // namespace tc
