// The Mozilla profile store: cookie, Mork, password, form data and preference files, cache.
#include "plugins/AppPluginFixture.h"
#include "browsers/MorkReader.h"
#include "browsers/TC_MozillaBrowser.h"

namespace tc {
namespace {

using test::RealFile;

const String kProfile = u"C:\\Users\\Tester\\AppData\\Roaming\\Mozilla\\Firefox\\Profiles\\a.default\\";

std::string CurlCookies() {
  std::ifstream in(std::string(TC_SOURCE_DIR) + "/tests/browsers/data/curl-cookies.txt",
                   std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

TEST(CookieText, ReadAndWrittenBack) {
  const struct {
    const char* what;
    std::string in;
    size_t cookies;
    std::string out;  // "" = the input unchanged
  } cases[] = {
      {"comments, tabs in values, bad expiry, short line",
       "# Netscape HTTP Cookie File\r\n\r\n.a.com\tTRUE\t/\tFALSE\t99\tn\tv\tw\r\n# late\r\n"
       "b.com\tFALSE\t/p\tTRUE\tsoon\tm\tx\r\nshort\r\n",
       3,
       "# Netscape HTTP Cookie File\n\n.a.com\tTRUE\t/\tFALSE\t99\tn\tv\tw\n"
       "b.com\tFALSE\t/p\tTRUE\t0\tm\tx\nshort\tFALSE\t\tFALSE\t0\t\t\n"},
      {"8-bit values", "a\tFALSE\t/\tFALSE\t1\tn\t\x81\xe4\x9d\n", 1, ""},
      {"Mozilla 1.x", RealFile("mozilla-suite/cookies.txt"), 55, ""},
      {"Mozilla 2002", RealFile("mozilla-suite/cookies-2002.txt"), 5, ""},
      // curl writes its HttpOnly cookie as a "#HttpOnly_" line: at the head it is kept.
      {"curl", CurlCookies(), 2, ""},
  };
  for (const auto& c : cases) {
    if (c.in.empty()) continue;  // real file not available
    TMozillaCookieList list;
    ASSERT_TRUE(ParseCookieText(c.in, list)) << c.what;
    EXPECT_EQ(list.size(), c.cookies) << c.what;
    EXPECT_EQ(FormatCookieText(list), c.out.empty() ? c.in : c.out) << c.what;
  }
  TMozillaCookieList list;
  EXPECT_FALSE(ParseCookieText(std::string("a\tb\0c", 5), list));
}

class MozillaStoreTest : public AppPluginFixture {
 public:
  TMozillaBrowser ff{kProfile, MT_Firefox};
  TMozillaBrowser ns{kProfile, MT_MozillaNetscape};
  std::string Read(const String& name) { return mem.Files->Contents(kProfile + name); }
};

TEST_F(MozillaStoreTest, CookiesChangedAndRewritten) {
  EXPECT_FALSE(ff.EnumCookies());
  File(kProfile + u"cookies.txt", "# head\n.x.de\tTRUE\t/\tFALSE\t5\tA\t1\nY.de\tFALSE\t/\tFALSE\t5\tB\t2\n");
  ASSERT_TRUE(ff.EnumCookies());
  EXPECT_EQ(ff.GetCookie(u".x.de", u"A", u"ignored"), u"1");
  EXPECT_EQ(ff.GetCookieEntry(u".X.de", u"A", u"/"), nullptr);  // exact domain here
  EXPECT_TRUE(ff.CookieExists(u".X.DE", u"A"));                  // any case there
  EXPECT_FALSE(ff.CookieExists(u".x.de", u"a"));
  ff.SetCookie(u".x.de", false, u"/", u"A", u"changed");
  ff.SetCookie(u"z.de", true, u"", u"C", u"new");
  ff.SetCookie(u"z.de", true, u"", u"C", u"again");  // "" is not "/": a second entry
  ff.Cookies[1].Deleted = true;
  ASSERT_TRUE(ff.UpdateCookies());
  const int64_t expiry = (mem.Clock->Now() - 116444736000000000) / 10000000 + 63072000;
  const std::string e = std::to_string(expiry);
  EXPECT_EQ(Read(u"cookies.txt"), "# head\n.x.de\tFALSE\t/\tFALSE\t" + e + "\tA\tchanged\n" +
                                      "z.de\tTRUE\t/\tFALSE\t" + e + "\tC\tnew\n" +
                                      "z.de\tTRUE\t/\tFALSE\t" + e + "\tC\tagain\n");
}

TEST(MorkReader, Rows) {
  const std::string head = "// <!-- <mdb:mork:z v=\"1.4\"/> -->\n< <(a=c)> // (f=iso-8859-1)\n"
                           "(80=ns)(82=URL)(84=Date)>\n";
  using Rows = std::vector<std::pair<String, String>>;
  const struct {
    const char* what;
    TMorkKind kind;
    std::string file;
    Rows rows;
  } cases[] = {
      {"Firefox 2 history", TMorkKind::History, RealFile("mork/history.dat"),
       {{u"http://en-us.www.mozilla.com/en-US/firefox/2.0.0.12/whatsnew/", u"1205364946314923"}}},
      {"Firefox 2 form history", TMorkKind::FormHistory, RealFile("mork/formhistory.dat"),
       {{u"q", u"foo"}}},
      {"escapes, continued lines, a row without column 84", TMorkKind::History,
       head + "<(A1=http://a/\\)x\\\\y)(A2=12\\\n34)(a3=$00)>\n"
              "{1:^80 [1(^82^A1)(^84^a2)][2(^82^A1)][3(^82=A3)(^84^A1)(^85^zz)]}",
       {{u"http://a/)x\\y", u"1234"}, {u"$00", u"http://a/)x\\y"}}},
      {"form values: $00 escapes go, percent escapes decode", TMorkKind::FormHistory,
       head + "<(81=$00A$00B)(82=Gr$C3$BC$C3$9Fe)(83=a$2Bb\\$41)>[1(^83^81)(^82^82)][2(^83^83)(^82^zz)]",
       {{u"AB", u"Grüße"}, {u"a+b$41", u""}}},
      {"no header: the first dictionary is cut as one", TMorkKind::History,
       "<(1=u)(2=d)>[(^82^1)(^84^2)]", {{u"", u""}}},
  };
  for (const auto& c : cases) {
    if (c.file.empty()) continue;  // real file not available
    std::string data = c.file;
    EXPECT_EQ(ReadMorkRows(data, c.kind), c.rows) << c.what;
  }
}

// A locked history waits for the next start; a missing one schedules nothing.
TEST_F(MozillaStoreTest, HistoryInUseIsDeletedAtTheNextStart) {
  File(kProfile + u"history.dat", "<(1=u)(2=d)>[(^82^1)(^84^2)]");
  mem.FileFaults->LockFile(kProfile + u"history.dat");
  EXPECT_FALSE(ff.DeleteHistory());
  mem.FileFaults->UnlockFile(kProfile + u"history.dat");
  mem.Files->RemoveFile(kProfile + u"history.dat");
  EXPECT_FALSE(ff.DeleteHistory());
  StringList pending;
  mem.RebootDeleter->Pending(pending);
  EXPECT_EQ(pending, StringList{kProfile + u"history.dat"});
}

TEST_F(MozillaStoreTest, WalletFormDataNamedInPrefs) {
  File(kProfile + u"prefs.js", "user_pref(\"wallet.SchemaValueFileName\", \"123.w\");\n");
  File(kProfile + u"123.w",
       "W1.0\nemail\n~YW5uYUBleGFtcGxlLmRl\nmore\n\nsecret\nenciphered\n\nstadt\n~S8O2bG4=\n");
  ASSERT_TRUE(ns.EnumFormData());
  EXPECT_EQ(ns.FormData.size(), 2u);
  EXPECT_EQ(ns.FormData[0].Value, u"anna@example.de");
  EXPECT_EQ(ns.FormData[1].Value, u"Köln");
  EXPECT_TRUE(ns.DeleteFormData());
  EXPECT_FALSE(Exists(kProfile + u"123.w"));
}

TEST(SavedPasswordText, Blocks) {
  const std::string mozilla =
      "#2c\nnever.example\n.\nhttp://a\nuser\n~YW5uYQ==\n*pass\n~Z2VoZWlt\n.\nhttp://b\nx\n";
  const struct {
    const char* what;
    std::string in;
    TMozillaType type;
    String header, user, password;
    size_t entries;
    std::string rewritten;
  } cases[] = {
      {"Mozilla decodes, unclosed block dropped", mozilla, MT_MozillaNetscape,
       u"#2c\nnever.example\n", u"anna", u"geheim", 1,
       "#2c\nnever.example\n.\nhttp://a\nuser\n~YW5uYQ==\n*pass\n~Z2VoZWlt\n.\n"},
      {"Firefox keeps values coded", mozilla, MT_Firefox, u"#2c\nnever.example\n", u"", u"", 1,
       "#2c\nnever.example\n.\nhttp://a\nuser\n~YW5uYQ==\n*pass\n~Z2VoZWlt\n.\n"},
      {"no dot line: all header", "#2c\r\nreject.example\r\n", MT_Firefox,
       u"#2c\nreject.example\n", u"", u"", 0, "#2c\nreject.example\n.\n"},
  };
  for (const auto& c : cases) {
    TMozillaSavedPasswordList list;
    ASSERT_TRUE(ParseSavedPasswordText(c.in, c.type, list)) << c.what;
    EXPECT_EQ(list.Header, c.header) << c.what;
    ASSERT_EQ(list.size(), c.entries) << c.what;
    if (c.entries) {
      EXPECT_EQ(list[0].Host, u"http://a") << c.what;
      EXPECT_EQ(list[0].UserName, c.user) << c.what;
      EXPECT_EQ(list[0].Password, c.password) << c.what;
    }
    EXPECT_EQ(FormatSavedPasswordText(list), c.rewritten) << c.what;
  }
}

TEST(Prefs, StripThroughAndSettings) {
  const struct {
    String s, delimiter;
    bool found;
    String before, rest;
  } cases[] = {
      {u"a\\,b,c", u",", true, u"a\\,b", u"c"},
      {u"a\\\\,b", u",", true, u"a\\\\", u"b"},
      {u"x-->y", u"-->", true, u"x", u"y"},
      {u"abc", u";", false, u"", u"abc"},
  };
  for (const auto& c : cases) {
    String s = c.s, before = u"?";
    EXPECT_EQ(Parse_StripThrough(s, c.delimiter, before), c.found) << ToUtf8(c.s);
    EXPECT_EQ(before, c.before) << ToUtf8(c.s);
    EXPECT_EQ(s, c.rest) << ToUtf8(c.s);
  }
}

TEST_F(MozillaStoreTest, PrefsSettings) {
  TC_REAL_FILE(prefs, "mozilla-suite/prefs.js");
  File(kProfile + u"prefs.js", "user_pref(\"Signon.SignonFileName\", \"other.s\");\n" + prefs +
                                   "user_pref(\"x.paren\", \"a\\)b\");\n");
  const struct {
    String name, expected;
  } cases[] = {{u"signon.SignonFileName", u"70572827.s"},
               {u"wallet.SchemaValueFileName", u"70706990.w"},
               {u"wallet.captureForms", u"false"},
               {u"x.paren", u"a\\)b"},
               {u"no.such.setting", u"dflt"}};
  for (const auto& c : cases) {
    String value;
    ns.GetPrefsJsSetting(c.name, u"dflt", value);
    EXPECT_EQ(value, c.expected) << ToUtf8(c.name);
  }
}

TEST_F(MozillaStoreTest, CacheOfARealProfile) {
  // Firefox's block-file cache: four files and three sub-folders, listed flat.
  for (const char16_t* f : {u"_CACHE_MAP_", u"_CACHE_001_", u"_CACHE_002_", u"_CACHE_003_"})
    File(kProfile + u"Cache\\" + f, "12345");
  for (const char16_t* d : {u"3\\3D\\ED165d01", u"9\\36\\DD708d01", u"E\\1B\\DCD2Fd01"})
    File(kProfile + u"Cache\\" + d, "x");
  EXPECT_EQ(ff.GetCacheFileCount(), 7);
  EXPECT_EQ(ff.GetCacheSize(), 20);
  StringList failed;
  EXPECT_FALSE(ff.DeleteCache(failed));
  EXPECT_EQ(failed, (StringList{kProfile + u"Cache\\3", kProfile + u"Cache\\9", kProfile + u"Cache\\E"}));
  EXPECT_EQ(ff.GetCacheFileCount(), 3);
  // Without a Cache folder in the profile, the local application data holds it.
  TMozillaBrowser other(u"C:\\Profiles\\b.default", MT_Firefox);
  EXPECT_EQ(other.GetCachefileDirectory(), u"");
  File(u"C:\\Users\\Tester\\AppData\\Local\\Mozilla\\Firefox\\Profiles\\b.default\\Cache\\1");
  EXPECT_EQ(other.GetCacheFileCount(), 1);
}

}  // namespace
}  // namespace tc
