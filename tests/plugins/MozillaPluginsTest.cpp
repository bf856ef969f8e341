// Firefox, Netscape 6/7 and Netscape 8 plug-ins: discovery at start-up, counts, cleaning.
#include "AppPluginFixture.h"
#include "engine/CookieKeepLists.h"
#include "platform/helpers/Stringhelper.h"
#include "plugins/TCP_Firefox.h"

namespace tc {
namespace {

const String kMozilla = AppPluginFixture::kAppData + u"Mozilla\\";
const String kFirefox = kMozilla + u"Firefox\\";
const String kHome = kFirefox + u"Profiles\\a.home\\";
const String kWork = u"D:\\Firefox\\work\\";
const std::string kHistory = "< <(a=c)>(82=URL)(84=Date)>\n<(1=http://a/)(2=1)(3=http://b/)>"
                             "[1(^82^1)(^84^2)][2(^82^3)(^84^2)]";
const std::string kForms = "< <(a=c)>(82=Value)(83=Name)>\n<(1=q$00)(2=x$00)>[1(^83^1)(^82^2)]";
const std::string kSignons = "#2c\nnever.example\n.\nhttp://a\nuser\n~YQ==\n*pass\n~Yg==\n.\n";

class MozillaPluginsTest : public AppPluginFixture {
 public:
  void InstallFirefox() {
    File(u"C:\\Program Files\\Mozilla Firefox\\firefox.exe");
    Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Mozilla\\Mozilla Firefox 2.0\\bin", u"PathToExe",
        u"C:\\Program Files\\Mozilla Firefox\\firefox.exe");
    mem.Files->AddDrive(u'D', kDriveFixed);
    File(kFirefox + u"profiles.ini",
         "[General]\r\nStartWithLastProfile=1\r\n\r\n[Profile0]\r\nName=home\r\nIsRelative=1\r\n"
         "Path=Profiles/a.home\r\n\r\n[Profile1]\r\nName=work\r\nIsRelative=0\r\n"
         "Path=D:/Firefox/work\r\n");
    for (const String& p : {kHome, kWork}) {
      File(p + u"history.dat", kHistory);
      File(p + u"formhistory.dat", kForms);
      File(p + u"signons.txt", kSignons);
      File(p + u"prefs.js", "user_pref(\"browser.startup.page\", 1);\n");
    }
    File(kHome + u"cookies.txt", "# HTTP Cookie File\n.a.de\tTRUE\t/\tFALSE\t9\tn\tv\n"
                                 "a.de\tFALSE\t/\tFALSE\t9\tm\tw\n");
    File(kWork + u"cookies.txt", "b.de\tFALSE\t/\tFALSE\t9\tn\tv\n");
  }
  // A Mozilla application registry naming the given profile folders as 16-bit text.
  void Netscape7Profiles(const StringList& folders) {
    File(u"C:\\Netscape\\netscp.exe");
    Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Mozilla\\Netscape 7.1\\bin", u"PathToExe",
        u"C:\\Netscape\\netscp.exe");
    std::string reg = "ADdv";
    for (const auto& f : folders) {
      mem.Files->AddFolder(f);
      for (char16_t c : u"directory" + String(1, 0) + f + String(1, 0)) reg += {char(c & 0xFF), char(c >> 8)};
    }
    File(kMozilla + u"registry.dat", reg);
  }
  std::string Contents(const String& path) { return mem.Files->Contents(path); }
  static StringList Captions(const String& app) {
    StringList out;
    for (TTCPlugin* p : *Plugins)
      if (p->AppCaption == app) out.push_back(p->ID + u": " + p->Caption);
    return out;
  }
};

TEST_F(MozillaPluginsTest, FirefoxNotInstalled) {
  InstallFirefox();
  mem.Registry->DeleteKeyTree(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Mozilla", RegView::Default);
  Start();
  EXPECT_TRUE(FirefoxProfiles.empty());
  EXPECT_FALSE(Plugin(u"FirefoxHistory").Active);
  EXPECT_EQ(Scan(u"FirefoxHistory"), 0);
  EXPECT_EQ(Scan(u"FirefoxCookies"), 3);  // its own scan reads the profiles afresh
}

TEST_F(MozillaPluginsTest, FirefoxCookieKeepList) {
  InstallFirefox();
  Start();
  ICookieKeepList* list = FindCookieKeepList(u"Firefox");
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->SetKept(u"a.de", true), ERROR_SUCCESS);
  std::vector<TCookieHostInfo> hosts;
  String error;
  ASSERT_TRUE(list->Hosts(hosts, error));
  std::vector<std::tuple<String, String, int, bool>> got;
  for (const auto& h : hosts) got.emplace_back(h.Host, h.Profile, h.Count, h.Kept);
  EXPECT_EQ(got, (std::vector<std::tuple<String, String, int, bool>>{
                     {u"a.de", u"home", 2, true}, {u"b.de", u"work", 1, false}}));
  EXPECT_FALSE(GetProductRegSetting(u"Cookies\\Firefox", ExcludeTrailingPathDelimiter(kHome) + u"-a.de",
                                    true, 0));
}

TEST_F(MozillaPluginsTest, Netscape7CaptionsNameTheProfilesWhenThereAreSeveral) {
  const String base = kMozilla + u"Profiles\\";
  Netscape7Profiles({base + u"default\\ab.slt"});
  Start();
  for (const String& c : Captions(u"Netscape Navigator 6 & 7"))
    EXPECT_EQ(c.find(u"Profil"), String::npos) << ToUtf8(c);
  EXPECT_TRUE(Plugin(u"NetscapeCookies").Active);

  Reset();
  Netscape7Profiles({base + u"Anna\\a.slt", base + u"Ben\\b.slt"});
  Start();
  const StringList captions = Captions(u"Netscape Navigator 6 & 7");
  ASSERT_EQ(captions.size(), 10u);
  for (size_t i = 0; i < captions.size(); ++i)
    EXPECT_TRUE(captions[i].ends_with(i < 5 ? u" in Profil \"Anna\"" : u" in Profil \"Ben\""))
        << ToUtf8(captions[i]);
  // This unit writes "Internet-Dateien" where the others write "Internetdateien".
  EXPECT_EQ(captions[0], u"Netscapecache: Temporäre Internet-Dateien in Profil \"Anna\"");
}

TEST_F(MozillaPluginsTest, Netscape7ProfileCleaned) {
  const String p = kMozilla + u"Profiles\\default\\ab.slt\\";
  Netscape7Profiles({ExcludeTrailingPathDelimiter(p)});
  File(p + u"prefs.js", "user_pref(\"signon.SignonFileName\", \"1.s\");\n"
                        "user_pref(\"wallet.SchemaValueFileName\", \"2.w\");\n");
  const std::string cookies = "# head\nx.de\tFALSE\t/\tFALSE\t9\tn\tv\n# late\ny.de\tFALSE\t/\tFALSE\t9\tm\tw\n";
  File(p + u"cookies.txt", cookies);
  File(p + u"history.dat", kHistory);
  File(p + u"1.s", kSignons);
  File(p + u"2.w", "W\nfield\n~dmFsdWU=\n");
  Files(p + u"Cache\\", {u"_CACHE_MAP_", u"_CACHE_001_", u"12AB34d01"});
  Start();
  const struct {
    const char16_t* id;
    int count;
  } counts[] = {{u"Netscapecache", 3}, {u"NetscapeCookies", 2}, {u"NetscapeHistory", 2},
                {u"NetscapeFormdata", 1}, {u"NetscapePasswords", 1}};
  for (const auto& c : counts) EXPECT_EQ(Scan(c.id), c.count) << ToUtf8(c.id);
  mem.FileFaults->LockFile(p + u"Cache\\_CACHE_MAP_");
  CleanAndFix({u"Netscapecache", u"NetscapeCookies", u"NetscapeHistory", u"NetscapeFormdata",
               u"NetscapePasswords"});
  EXPECT_EQ(mem.Files->Names(p + u"Cache"), StringList{u"_CACHE_MAP_"});
  EXPECT_TRUE(Plugin(u"Netscapecache").RebootRequired);
  // No cookie group is ever filled: every cookie stays, only the late comment goes.
  EXPECT_EQ(Contents(p + u"cookies.txt"),
            "# head\nx.de\tFALSE\t/\tFALSE\t9\tn\tv\ny.de\tFALSE\t/\tFALSE\t9\tm\tw\n");
  EXPECT_EQ(Contents(p + u"history.dat"), "");
  EXPECT_FALSE(Exists(p + u"2.w"));
  EXPECT_EQ(Contents(p + u"1.s"), "#2c\nnever.example\n.\n");
}

TEST_F(MozillaPluginsTest, Netscape8FormDataAndHistory) {
  const String p = kAppData + u"Netscape\\NSB\\Profiles\\x.default\\";
  Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Netscape\\Netscape Browser", u"CurrentVersion", u"8.1.3");
  File(kAppData + u"Netscape\\NSB\\profiles.ini",
       "[General]\r\n[Profile0]\r\nName=x\r\nIsRelative=1\r\nPath=Profiles/x.default\r\n");
  File(p + u"datacards\\card1.txt", "name=Anna\nstreet=Weg 1\n");  // three parts by LF
  File(p + u"datacards\\card2.txt", "");
  File(p + u"datacards\\locked.txt", "a");
  Start();
  EXPECT_TRUE(Plugin(u"Netscape8Formdata").Active);
  EXPECT_EQ(Scan(u"Netscape8Formdata"), 4);
  mem.FileFaults->LockFile(p + u"datacards\\locked.txt", ERROR_LOCK_VIOLATION);
  CleanAndFix({u"Netscape8Formdata", u"Netscape8History"});
  EXPECT_EQ(mem.Files->Names(p + u"datacards"), StringList{u"locked.txt"});
  EXPECT_TRUE(Plugin(u"Netscape8Formdata").RebootRequired);
  EXPECT_FALSE(Plugin(u"Netscape8History").RebootRequired);  // no history: nothing waits
}

}  // namespace
}  // namespace tc
