// Toolbar and tool plug-ins: install detection, the special counts, IrfanView's ini and the logs.
#include "AppPluginFixture.h"
#include "plugins/TCP_Toolbars.h"
#include "plugins/TCP_Tools.h"

namespace tc {
namespace {

const String kIrfanView = u"C:\\Program Files\\IrfanView\\i_view32.ini";

class ToolbarsToolsTest : public AppPluginFixture {
 public:
  // A COM class registered with an in-process server, as an installed toolbar leaves it.
  void RegisterClass(const String& clsid, const String& name, bool server = true) {
    Str(HKEY_CLASSES_ROOT, u"CLSID\\" + clsid, u"", name);
    if (server) Str(HKEY_CLASSES_ROOT, u"CLSID\\" + clsid + u"\\InprocServer32", u"", u"x.dll");
  }
};

TEST_F(ToolbarsToolsTest, ToolbarsStartOnlyWhenInstalled) {
  const struct {
    const char16_t* helper;  // name of the class behind the browser helper object
    bool server;             // the classes have their in-process server registered
    bool gmxListed;          // the GMX class is in the browser's toolbar list
    bool msn;                // MSN's install folder is set
    std::string on;          // the toolbar whose plug-ins start active
  } cases[] = {{u"Google Toolbar Helper", true, false, false, "Google"},
               {u"Google Toolbar Helper", false, true, false, ""},
               {u"Other Helper", true, true, false, "GMX"},
               {u"", true, false, true, "MSN"}};
  for (const auto& c : cases) {
    Reset();
    Str(HKEY_LOCAL_MACHINE,
        u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\{AA58}",
        u"", u"");
    RegisterClass(u"{AA58}", c.helper, c.server);
    RegisterClass(u"{3B0E}", u"GMX Toolbar", c.server);
    if (c.gmxListed)
      Bin(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar", u"{3B0E}", {0});
    if (c.msn)
      Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Microsoft\\MSN Toolbar", u"InstallDir", u"C:\\MSN");
    Start();
    EXPECT_EQ(Plugin(u"GoogleToolbarHistory").Active, c.on == "Google") << c.on;
    EXPECT_EQ(Plugin(u"GMXToolbarLogindaten").Active, c.on == "GMX") << c.on;
    EXPECT_EQ(Plugin(u"MSNToolbarHistory").Active, c.on == "MSN") << c.on;
  }
}

TEST_F(ToolbarsToolsTest, EBayHistoryAsksForTheNoticeOnlyWhenItFindsSomething) {
  Start();
  EXPECT_EQ(Scan(u"EBayToolbarHistory"), 0);
  EXPECT_FALSE(Plugin(u"EBayToolbarHistory").HostNotice);
  Str(HKEY_CURRENT_USER, u"Software\\eBay\\eBayToolbar\\RecentSearches", u"1", u"Taschenlampe");
  EXPECT_EQ(Scan(u"EBayToolbarHistory"), 1);
  EXPECT_TRUE(Plugin(u"EBayToolbarHistory").HostNotice);
}

TEST_F(ToolbarsToolsTest, NeroReadsItsTwentyTwoListsInOrderZeroBased) {
  Start();
  StringList keys;
  for (int i = 0; i < Plugin(u"NeroMRU").GetTraceLocationCount(); ++i) {
    const auto& d = Plugin(u"NeroMRU").GetTraceLocation(i).As<TLD_Registry_NumberedNames>();
    keys.push_back(d.Key);
    Strs(HKEY_CURRENT_USER, d.Key, {{u"File1", u"C:\\a.nrg"}, {u"File3", u"C:\\b.nrg"}});
  }
  ASSERT_EQ(keys.size(), 22u);
  EXPECT_EQ(std::set<String>(keys.begin(), keys.end()).size(), 22u);
  EXPECT_EQ(Scan(u"NeroMRU"), 44);
  Plugin(u"NeroMRU").Fix();
  for (const String& key : keys) EXPECT_EQ(Names(key), (StringList{u"File0", u"File1"}));
}

TEST_F(ToolbarsToolsTest, IrfanViewEditsKeepEveryOtherLineAndTheEncoding) {
  const String ini =
      u"[Others]\r\nMRUD=kept\r\n[MRUD]\r\nFile0=C:\\Bilder\\Pass.jpg\r\n"
      u"File1=\r\n; Kommentar\r\nFile2=C:\\Bilder\\Ärztin.png\r\n"
      u"[OPEN]\r\nOpenDir=C:\\Bilder\r\nFilter=1\r\n";
  Bytes utf16{0xFF, 0xFE};
  for (uint8_t b : ToUtf16LE(ini)) utf16.push_back(b);
  File(kIrfanView, std::string(utf16.begin(), utf16.end()));
  Start();
  EXPECT_EQ(Scan(u"IrfanViewLastFiles"), 2);
  EXPECT_EQ(Scan(u"IrfanViewLastOpenDir"), 1);
  mem.FileFaults->FailNthChange(1);
  CleanAndFix({u"IrfanViewLastFiles"});
  EXPECT_EQ(mem.Files->Contents(kIrfanView), std::string(utf16.begin(), utf16.end()));
  mem.FileFaults->ClearFaults();
  CleanAndFix({u"IrfanViewLastFiles", u"IrfanViewLastOpenDir"});
  const Bytes left = ToUtf16LE(
      u"\uFEFF[Others]\r\nMRUD=kept\r\n[MRUD]\r\nFile1=\r\n; Kommentar\r\n"
      u"[OPEN]\r\nFilter=1\r\n");
  EXPECT_EQ(mem.Files->Contents(kIrfanView), std::string(left.begin(), left.end()));
}

}  // namespace
}  // namespace tc
