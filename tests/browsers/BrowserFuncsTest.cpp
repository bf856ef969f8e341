// Profile discovery and install checks of the Mozilla family, Opera, T-Online and AOL.
#include "plugins/AppPluginFixture.h"
#include "browsers/TC_BrowserFuncs.h"
#include "platform/helpers/TextCodec.h"

namespace tc {
namespace {

class BrowserFuncsTest : public AppPluginFixture {
 public:
  const String firefox = kAppData + u"Mozilla\\Firefox\\";

  static std::vector<std::pair<String, String>> Pairs(const TBrowserProfileList& list) {
    std::vector<std::pair<String, String>> out;
    for (const auto& p : list) out.emplace_back(p.Name, p.Path);
    return out;
  }
  // UTF-16LE text with its NUL characters, as the application registry stores strings.
  static std::string Wide(std::u16string_view s) {
    Bytes b = ToUtf16LE(s);
    return std::string(b.begin(), b.end());
  }
};

using Profiles = std::vector<std::pair<String, String>>;

// Firefox's own profiles.ini is read in the command test; here the odd entries.
TEST_F(BrowserFuncsTest, FirefoxProfilesIni) {
  File(firefox + u"profiles.ini",
       "[General]\r\nStartWithLastProfile=1\r\n"
       "[Profile1]\r\nName=work\r\nIsRelative=0\r\nPath=D:/Profiles/work\r\n"
       "[Odd]\r\nName=nopath\r\nIsRelative=1\r\n"
       "[Profile2]\r\nName=plain\r\nPath=Profiles/x.plain\r\n");
  TBrowserProfileList list{{u"kept", u"C:\\kept"}};
  GetFirefoxProfiles(list);
  EXPECT_EQ(Pairs(list), (Profiles{{u"kept", u"C:\\kept"}, {u"work", u"D:\\Profiles\\work"},
                                   {u"plain", u"Profiles\\x.plain"}}));
}

TEST_F(BrowserFuncsTest, Netscape8ProfilesIni) {
  const String ini = kAppData + u"Netscape\\NSB\\profiles.ini";
  File(ini,
       "[General]\r\nPath=ignored\r\n[Profile0]\r\nName=Anna\r\nIsRelative=1\r\n"
       "Path=Profiles/a.default\r\n[Bare]\r\nIsRelative=1\r\n");
  TBrowserProfileList list;
  GetNetscape8Profiles(list);
  // A section without Path is a profile too.
  EXPECT_EQ(Pairs(list), (Profiles{{u"Anna", kAppData + u"Netscape\\NSB\\Profiles\\a.default"},
                                   {u"", kAppData + u"Netscape\\NSB\\"}}));
}

TEST_F(BrowserFuncsTest, ApplicationRegistryIsSearchedAsSixteenBitText) {
  const String base = u"C:\\Users\\Tester\\AppData\\Roaming\\Mozilla\\Profiles\\";
  mem.Files->AddFolder(base + u"default\\ab12cd34.slt");
  mem.Files->AddFolder(base + u"work\\x.slt");
  const std::string nul(1, '\0');
  const struct {
    const char* what;
    std::string file;
    Profiles expected;
  } cases[] = {
      {"two 16-bit entries, one folder missing",
       "ADdv" + nul + nul + Wide(u"directory") + nul + nul + Wide(base + u"default\\ab12cd34.slt") +
           nul + nul + Wide(u"directory") + nul + nul + Wide(base + u"gone\\y.slt") + nul + nul +
           Wide(u"directory") + nul + nul + Wide(base + u"work\\x.slt") + nul + nul,
       {{u"default", base + u"default\\ab12cd34.slt"}, {u"work", base + u"work\\x.slt"}}},
      {"8-bit token", "ADdv" + nul + "directory" + nul + ToUtf8(base) + "default\\ab12cd34.slt" + nul,
       {}},
      {"16-bit token at an odd offset", "ADd" + Wide(u"directory") + nul + nul +
           Wide(base + u"default\\ab12cd34.slt") + nul + nul,
       {}},
  };
  for (const auto& c : cases) {
    mem.Files->RemoveFile(kAppData + u"Mozilla\\registry.dat");
    File(kAppData + u"Mozilla\\registry.dat", c.file);
    TBrowserProfileList list;
    GetNetscape_MozillaProfiles(list);
    EXPECT_EQ(Pairs(list), c.expected) << c.what;
  }
}

TEST_F(BrowserFuncsTest, MozillaProductsByKeyName) {
  const struct {
    const char* what;
    std::vector<std::pair<String, String>> keys;  // key name, PathToExe
    String firefox, mozilla, netscape7;
  } cases[] = {
      {"nothing installed", {}, u"", u"", u""},
      {"the later Firefox key wins, any other product is Mozilla",
       {{u"Mozilla Firefox 1.0", u"C:\\FF\\firefox.exe"},
        {u"Mozilla Firefox 1.5", u"C:\\FF\\firefox.exe"},
        {u"Netscape 7.2", u"C:\\NS\\netscp.exe"},
        {u"SeaMonkey", u"C:\\SM\\seamonkey.exe"}},
       u"Mozilla Firefox 1.5", u"SeaMonkey", u"Netscape 7.2"},
      {"a program that is gone does not count",
       {{u"Mozilla Firefox 1.0", u"C:\\FF\\gone.exe"}, {u"Mozilla 1.7", u"C:\\FF\\firefox.exe"}},
       u"", u"Mozilla 1.7", u""},
  };
  for (const auto& c : cases) {
    Reset();
    File(u"C:\\FF\\firefox.exe");
    File(u"C:\\NS\\netscp.exe");
    File(u"C:\\SM\\seamonkey.exe");
    for (const auto& [key, exe] : c.keys)
      Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Mozilla\\" + key + u"\\bin", u"PathToExe", exe);
    String ff = u"x", moz = u"x", ns = u"x";
    IsFirefoxMozillaNetscapeInstalled(ff, moz, ns);
    EXPECT_EQ(ff, c.firefox) << c.what;
    EXPECT_EQ(moz, c.mozilla) << c.what;
    EXPECT_EQ(ns, c.netscape7) << c.what;
  }
}

TEST_F(BrowserFuncsTest, InstallChecks) {
  File(u"C:\\T-Online\\Basis\\tonline.exe");
  File(u"C:\\AOL\\aol.exe");
  mem.Files->AddFolder(u"C:\\Opera");
  const String tonline = u"SOFTWARE\\TOnline\\T-Online_Software_5\\Basis-Software";
  const String aol = u"SOFTWARE\\America Online\\AOL\\CurrentVersion";
  const struct {
    const char* what;
    bool (*check)();
    HKEY root;
    String key, value, data;
    bool installed;
  } cases[] = {
      {"Netscape 8.1", IsNetscape8Installen, HKEY_LOCAL_MACHINE,
       u"SOFTWARE\\Netscape\\Netscape Browser", u"CurrentVersion", u"8.1", true},
      {"Netscape 9", IsNetscape8Installen, HKEY_LOCAL_MACHINE,
       u"SOFTWARE\\Netscape\\Netscape Browser", u"CurrentVersion", u"9.0 (8)", false},
      {"Opera folder", IsOperaInstalled, HKEY_CURRENT_USER, u"Software\\Opera Software",
       u"Last Directory3", u"C:\\Opera", true},
      {"Opera folder gone", IsOperaInstalled, HKEY_CURRENT_USER, u"Software\\Opera Software",
       u"Last Directory3", u"C:\\Gone", false},
      {"T-Online program", IsTOnline50Installed, HKEY_LOCAL_MACHINE, tonline, u"Exec",
       u"C:\\T-Online\\Basis\\tonline.exe", true},
      {"T-Online folder only", IsTOnline50Installed, HKEY_LOCAL_MACHINE, tonline, u"Exec",
       u"C:\\T-Online\\Basis", false},
      {"AOL program", IsAOLInstalled, HKEY_LOCAL_MACHINE, aol, u"AppPath", u"C:\\AOL\\aol.exe", true},
      {"AOL key without value", IsAOLInstalled, HKEY_LOCAL_MACHINE, aol, u"Other",
       u"C:\\AOL\\aol.exe", false},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(c.check()) << c.what << " before";
    Str(c.root, c.key, c.value, c.data);
    EXPECT_EQ(c.check(), c.installed) << c.what;
    mem.Registry->DeleteKeyTree(c.root, c.key, RegView::Default);
  }
}

TEST(HexStrings, BothWays) {
  const struct {
    String hex, text;
  } cases[] = {{u"41 42 4", u"AB"}, {u"4a6b", u"Jk"}, {u"", u""}};
  for (const auto& c : cases) EXPECT_EQ(HexToStr(c.hex), c.text) << ToUtf8(c.hex);
  EXPECT_EQ(StrToHex(u"AB\n"), u"41420A");
  EXPECT_EQ(StrToHex(u"\u20AC\u0101"), u"20AC101");  // above 255: unpadded beyond two digits
  EXPECT_THROW(HexToStr(u"4G"), std::invalid_argument);
}

}  // namespace
}  // namespace tc
