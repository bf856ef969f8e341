// Internet Explorer and T-Online plug-ins: typed addresses, cookies, history, Protected
// Storage, temporary internet files.
#include "AppPluginFixture.h"
#include "browsers/TC_InternetExplorer.h"
#include "plugins/TCP_InternetExplorer.h"
#include "plugins/TCP_TOnline.h"

namespace tc {
namespace {

const String kCookies = u"C:\\Users\\Tester\\AppData\\Roaming\\Microsoft\\Windows\\Cookies\\";
const String kTypedUrls = u"Software\\Microsoft\\Internet Explorer\\TypedURLs";
const Guid kForm{0xe161255a, 0x37c3, 0x11d2, {0xbc, 0xaa, 0x00, 0xc0, 0x4f, 0xd9, 0x29, 0xdb}};
const Guid kOldLogin{0x5e7e8100, 0x9138, 0x11d1, {0x94, 0x5a, 0x00, 0xc0, 0x4f, 0xc3, 0x08, 0xff}};

Bytes Wide(std::u16string_view text) { return ToUtf16LE(text); }

class InternetExplorerTest : public AppPluginFixture {
 public:
  // Two cookies of a kept host, one other cookie and two temporary files.
  void SeedCache() {
    for (const char16_t* url : {u"Cookie:tester@kept.test/", u"Cookie:tester@www.kept.test/"})
      mem.UrlCache->Add({url, kCookies + u"tester@kept[1].txt", kCOOKIE_CACHE_ENTRY, 1});
    mem.UrlCache->Add({u"Cookie:tester@ads.test/", kCookies + u"tester@ads[1].txt", 0, 1});
    mem.UrlCache->Add({u"http://alpha.test/", u"C:\\Temp\\index[1].htm", 0, 1});
    mem.UrlCache->Add({u"http://alpha.test/a.png", u"C:\\Temp\\a[1].png", 0, 1});
    ASSERT_EQ(0u, mem.Platform->ProductSettings->WriteBool(kIECookieSection, u"kept.test", false));
  }
  size_t CacheSize() { return mem.UrlCache->Entries().size(); }
  int NotCleaned(const String& id) { return Plugins->CountNotCleanedTraces(&Plugin(id)); }
  void Item(const Guid& type, const Guid& subtype, const String& name, Bytes data = {1}) {
    mem.ProtectedStorage->AddItem(type, subtype, name, std::move(data));
  }
};

// T-Online is there when its registered program is.
TEST_F(InternetExplorerTest, TOnlineIsFoundByItsRegisteredProgram) {
  Str(HKEY_LOCAL_MACHINE, u"SOFTWARE\\TOnline\\T-Online_Software_5\\Basis-Software", u"Exec",
      u"C:\\Programme\\T-Online\\browser.exe");
  File(u"C:\\Programme\\T-Online\\browser.exe");
  Start();
  EXPECT_TRUE(Plugin(u"TOnlineCache").Active && Plugin(u"TOnlineCookies").Active);
}

TEST_F(InternetExplorerTest, TypedAddressesAreRunCommandsRemovedAndRenumbered) {
  Strs(HKEY_CURRENT_USER, kTypedUrls,
       {{u"url1", u"http://bank.test/"}, {u"url2", u"http://mail.test/"}, {u"url3", u"ftp://x.test/"}});
  Start();
  EXPECT_EQ(3, Scan(u"IETypedURLs"));
  EXPECT_EQ(TTT_RunCMD, found[0].Target);
  CleanAndFix({u"IETypedURLs"});
  EXPECT_TRUE(Names(kTypedUrls).empty());
}

TEST_F(InternetExplorerTest, CookiesAndTemporaryFilesOfBothBrowsers) {
  struct Case {
    const char16_t* id;
    int scanned;
    StringList left;    // source URLs left after the clean
    int notCleaned;
  } cases[] = {
      {u"IECookies", 3,
       {u"Cookie:tester@kept.test/", u"Cookie:tester@www.kept.test/", u"http://alpha.test/",
        u"http://alpha.test/a.png"},
       2},
      {u"IETempInternetFiles", 2,
       {u"Cookie:tester@kept.test/", u"Cookie:tester@www.kept.test/", u"Cookie:tester@ads.test/"},
       0},
      // T-Online's cache plug-in counts temporary files but cleans the cookies.
      {u"TOnlineCache", 2,
       {u"Cookie:tester@kept.test/", u"Cookie:tester@www.kept.test/", u"http://alpha.test/",
        u"http://alpha.test/a.png"},
       0},
      // Its cookie plug-in keeps the same cookies but says nothing about them.
      {u"TOnlineCookies", 3,
       {u"Cookie:tester@kept.test/", u"Cookie:tester@www.kept.test/", u"http://alpha.test/",
        u"http://alpha.test/a.png"},
       0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.id));
    Reset();
    SeedCache();
    Start();
    EXPECT_EQ(c.scanned, Scan(c.id));
    CleanAndFix({c.id});
    StringList left;
    for (const auto& e : mem.UrlCache->Entries()) left.push_back(e.SourceUrlName);
    EXPECT_EQ(c.left, left);
    EXPECT_EQ(c.notCleaned, NotCleaned(c.id));
  }
}

TEST_F(InternetExplorerTest, HistoryTakesTopLevelPagesOnly) {
  for (int kind : {0, 1, 2, 3, 4})
    mem.UrlHistory->Add({u"http://kind" + String(1, u'0' + kind) + u".test/", u"", kind});
  Start();
  EXPECT_EQ(2, Scan(u"IEHistory"));
  CleanAndFix({u"IEHistory"});
  StringList left;
  for (const auto& e : mem.UrlHistory->Entries()) left.push_back(e.Url);
  EXPECT_EQ((StringList{u"http://kind0.test/", u"http://kind1.test/", u"http://kind4.test/"}), left);
}

TEST_F(InternetExplorerTest, ProtectedStorageIsSplitByTheAddressPrefix) {
  Item(kForm, kForm, u"Suche:StringData", Wide(std::u16string(u"eins\0\0\0zwei\0\0\0drei", 17)));
  Item(kForm, kForm, u"Suche:StringIndex");
  Item(kForm, kForm, u"Name:STRINGDATA", Wide(std::u16string(u"Anna\0", 5)));
  Item(kForm, kForm, u"Kommentar");
  Item(kForm, kForm, u"HTTPS://bank.test/login:StringIndex");
  Item(kForm, kForm, u"http://mail.test/:StringData");
  Item(kForm, kForm, u"http://mail.test/:StringIndex");
  Item(kOldLogin, Guid{}, u"ftp://alt.test/");
  Item(kOldLogin, Guid{}, u"alt2");
  Start();
  EXPECT_EQ(4, Scan(u"IEAutoComplete"));  // three fields and one
  EXPECT_EQ(3, Scan(u"IESavedPasswords"));  // two older log-ins, one ":StringData" log-in
  CleanAndFix({u"IEAutoComplete"});
  EXPECT_EQ((StringList{u"Kommentar", u"HTTPS://bank.test/login:StringIndex",
                        u"http://mail.test/:StringData", u"http://mail.test/:StringIndex"}),
            mem.ProtectedStorage->Items(kForm, kForm));
  CleanAndFix({u"IESavedPasswords"});
  EXPECT_EQ((StringList{u"Kommentar"}), mem.ProtectedStorage->Items(kForm, kForm));
  EXPECT_TRUE(mem.ProtectedStorage->Items(kOldLogin, Guid{}).empty());
}

TEST_F(InternetExplorerTest, NoProtectedStorageSwitchesBothPluginsOff) {
  const std::pair<const char*, std::function<void(InternetExplorerTest&)>> cases[] = {
      {"no pstorec.dll", [](InternetExplorerTest& t) { t.mem.ProtectedStorage->SetOpenError(ERROR_MOD_NOT_FOUND); }},
      {"no item types", [](InternetExplorerTest&) {}},
  };
  for (const auto& [what, setUp] : cases) {
    SCOPED_TRACE(what);
    Reset();
    setUp(*this);
    Start();
    for (const char16_t* id : {u"IEAutoComplete", u"IESavedPasswords"}) {
      EXPECT_EQ(0, Scan(id));
      EXPECT_FALSE(Plugin(id).Active);
    }
  }
}

TEST_F(InternetExplorerTest, FormFieldsAreCountedAfterTheSingleByteRoundTrip) {
  const std::pair<std::u16string, int> cases[] = {
      {std::u16string(u"a\0\0\0\0\0\0b", 8), 3},  // two runs, an empty field between
      {std::u16string(u"a\0b\0\0c", 6), 1},       // lone NULs only vanish
      {u"\u0416\u0436", 1},                        // no single-byte form: '?' still counts
      {u"", 0},
  };
  for (const auto& [text, fields] : cases) EXPECT_EQ(fields, CountAutoCompleteFields(Wide(text)));
  Bytes odd = Wide(u"ab");
  odd.push_back('x');
  EXPECT_EQ(1, CountAutoCompleteFields(odd));
}

}  // namespace
}  // namespace tc
