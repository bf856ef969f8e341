// Rules files: what the reader keeps and leaves out, and entries as plug-ins on the
// in-memory Windows (wildcard folders, exclusions, whole keys, detection, refusals).
#include "AppPluginFixture.h"
#include "plugins/RulesCatalogue.h"

namespace tc {
namespace {

Bytes BytesOf(std::string_view s) { return Bytes(s.begin(), s.end()); }

TEST(RulesFileTest, GoodEntriesLoadAndBadOnesAreNamedByLine) {
  const struct {
    const char* text;
    std::vector<const char16_t*> names;  // entries kept
    const char* warning;                 // part of the only warning; "" for none
  } cases[] = {
      {"[A *]\nFileKey1=C:\\x|*.log\n[B]\nRegKey1=HKCU\\Software\\B\n", {u"A", u"B"}, ""},
      {"; comment\n\n[A]\nFileKey1=C:\\x|*.log|RECURSE\r\nDetect=HKLM\\Software\\A\n", {u"A"}, ""},
      {"[A]\nFileKye1=C:\\x|*\n[B]\nDefault=True\n", {u"B"}, "t:2: [A] skipped: unknown key"},
      {"[A]\nFileKey1=C:\\x\n[B]\n", {u"B"}, "t:2: [A] skipped: malformed file key"},
      {"[A]\nFileKey1=C:\\x|*|SOMETIMES\n", {}, "t:2:"},
      {"[A]\nRegKey1=HKXX\\Software\\A\n", {}, "malformed registry key"},
      {"[A]\nExcludeKey1=DIR|C:\\x\\|*\n", {}, "malformed exclusion"},
      {"[A]\nno equals sign\n", {}, "t:2: [A] skipped: malformed line"},
      {"stray=1\n[A]\n", {u"A"}, "t:1: line outside any entry"},
      {"[A\n[B]\n", {u"B"}, "t:1: malformed section line"},
      {"[A]\nLangSecRef=abc\n", {}, "malformed line"},
      {"[A]\nSpecialDetect=DET_NOTHING\n", {}, "unknown special detection"},
  };
  for (const auto& c : cases) {
    std::vector<TRulesEntry> entries;
    StringList warnings;
    ASSERT_TRUE(ParseRulesFile(u"t", BytesOf(c.text), entries, warnings)) << c.text;
    StringList names;
    for (const auto& e : entries) names.push_back(e.Name);
    EXPECT_EQ(names, StringList(c.names.begin(), c.names.end())) << c.text;
    if (!*c.warning) {
      EXPECT_TRUE(warnings.empty()) << c.text;
    } else {
      ASSERT_EQ(warnings.size(), 1u) << c.text;
      EXPECT_NE(ToUtf8(warnings[0]).find(c.warning), std::string::npos) << ToUtf8(warnings[0]);
    }
  }
}

TEST(RulesFileTest, TextIsUtf8Utf16OrAnsiAndAnythingElseIsRefused) {
  const std::string utf8 = "[Caf\xC3\xA9]\n";
  const std::string ansi = "[Caf\xE9]\n";
  std::string utf16 = "\xFF\xFE";
  for (char c : std::string("[Caf\xE9]\n")) utf16 += std::string{c, '\0'};
  for (const std::string& text : {utf8, "\xEF\xBB\xBF" + utf8, ansi, utf16}) {
    std::vector<TRulesEntry> entries;
    StringList warnings;
    ASSERT_TRUE(ParseRulesFile(u"t", BytesOf(text), entries, warnings));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].Name, u"Caf\u00e9");
  }
  std::vector<TRulesEntry> entries;
  StringList warnings;
  EXPECT_FALSE(ParseRulesFile(u"t", BytesOf(std::string("[A]\n\0\x01", 6)), entries, warnings));
}

TEST(RulesFileTest, IdsAndSections) {
  // W2_7_Zip and W2_Notepad__ are pinned by the rules file of the command's tests.
  EXPECT_EQ(TRulesCatalogue::IdOf(u"Caf\u00e9 Log"), u"W2_Caf__Log");
  const std::pair<int, const char16_t*> sections[] = {
      {3021, u"Anwendungen"}, {3022, u"Internet"}, {3029, u"Chromium-Browser"}, {0, u"Anwendungen"}};
  for (auto [number, caption] : sections) {
    TRulesEntry e;
    e.LangSecRef = number;
    EXPECT_EQ(TRulesCatalogue::SectionOf(e), caption) << number;
  }
  TRulesEntry e;
  e.LangSecRef = 3021;
  e.Section = u"Spiele";
  EXPECT_EQ(TRulesCatalogue::SectionOf(e), u"Spiele");
}

class RulesPluginTest : public AppPluginFixture {
 protected:
  std::unique_ptr<TRulesCatalogue> rules;
  StringList warnings;
  const String local = u"C:\\Users\\Tester\\AppData\\Local\\";

  void Load(std::string_view text) {
    Start();
    rules = std::make_unique<TRulesCatalogue>();
    ASSERT_TRUE(rules->Load(u"rules.ini", BytesOf(text), warnings));
    for (const auto& p : rules->Entries())
      p->OnScanTraceFound = [this](TTCPlugin* s, TTraceSourceType t, const TTraceSourceData& d,
                                   TTraceTargetType, TTraceFlags, const String&) {
        found.push_back({s->ID, t, d.Key, t == TST_FileSystem_File ? d.FileName : d.ValueName,
                         TTT_Unknown, 0, {}});
      };
  }
  void TearDown() override {
    rules.reset();
    AppPluginFixture::TearDown();
  }
};

TEST_F(RulesPluginTest, WildcardFoldersAndExclusionsOnFiles) {
  const String chrome = local + u"Google\\Chrome\\User Data\\";
  const String beta = local + u"Google\\Chrome Beta\\User Data\\";
  Files(chrome + u"Default\\", {u"a.log", u"keep.log", u"Prefs"});
  Files(chrome + u"Profile 1\\", {u"b.log"});
  Files(chrome + u"Profile 1\\Sub\\", {u"c.log"});  // not below: no RECURSE
  Files(beta + u"Default\\", {u"d.log", u"e.log"});
  Files(beta + u"Default\\Old\\", {u"f.log"});
  Load(R"([Chrome Logs *]
DetectFile=%LocalAppData%\Google\Chrome*
FileKey1=%LocalAppData%\Google\Chrome*\User Data\*|*.log
FileKey2=%LocalAppData%\Google\Chrome Beta\User Data\Default|*.log|RECURSE
ExcludeKey1=FILE|%LocalAppData%\Google\Chrome*\User Data\*\|keep.log
ExcludeKey2=PATH|%LocalAppData%\Google\Chrome Beta\User Data\Default\Old\|*.log
)");
  ASSERT_TRUE(warnings.empty()) << ToUtf8(warnings[0]);
  ASSERT_TRUE(Plugin(u"W2_Chrome_Logs").Active);
  EXPECT_EQ(Scan(u"W2_Chrome_Logs"), 4);  // a, b, d, e (d once though named twice)
  CleanAndFix({u"W2_Chrome_Logs"});
  for (const String& gone : {chrome + u"Default\\a.log", chrome + u"Profile 1\\b.log",
                             beta + u"Default\\d.log", beta + u"Default\\e.log"})
    EXPECT_FALSE(Exists(gone)) << ToUtf8(gone);
  for (const String& kept : {chrome + u"Default\\keep.log", chrome + u"Default\\Prefs",
                             chrome + u"Profile 1\\Sub\\c.log", beta + u"Default\\Old\\f.log"})
    EXPECT_TRUE(Exists(kept)) << ToUtf8(kept);
}

TEST_F(RulesPluginTest, RegistryKeysValuesAndKeptParts) {
  const HKEY cu = HKEY_CURRENT_USER;
  Strs(cu, u"Software\\App\\History", {{u"1", u"a"}, {u"2", u"b"}});
  Str(cu, u"Software\\App\\History\\Pinned", u"1", u"kept");
  Strs(cu, u"Software\\App", {{u"Last", u"x"}, {u"Lang", u"de"}});
  Str(HKEY_USERS, u".DEFAULT\\Software\\App", u"Last", u"y");
  Load(R"([App]
Detect=HKCU\Software\App
RegKey1=HKCU\Software\App\History
RegKey2=HKCU\Software\App|Last
RegKey3=HKU\.DEFAULT\Software\App|Last
RegKey4=HKCU\Software\App\History|1
ExcludeKey1=REG|HKCU\Software\App\History\Pinned
[Absent]
Detect=HKCU\Software\Absent
DetectFile=%AppData%\Absent*
RegKey1=HKCU\Software\App|Lang
)");
  ASSERT_TRUE(warnings.empty()) << ToUtf8(warnings[0]);
  EXPECT_FALSE(Plugin(u"W2_Absent").Active);
  // History's two values, Last twice; History\1 counts once, as part of its key.
  EXPECT_EQ(Scan(u"W2_App"), 4);
  auto [lost, gained] = CleanAndDiff({u"W2_App"});
  EXPECT_EQ(lost, (std::set<String>{u"HKCU\\Software\\App\\History[1]=a",
                                    u"HKCU\\Software\\App\\History[2]=b",
                                    u"HKCU\\Software\\App[Last]=x"}));
  EXPECT_TRUE(gained.empty());
  EXPECT_FALSE(mem.Registry->HasValue(HKEY_USERS, u".DEFAULT\\Software\\App", u"Last"));
  EXPECT_EQ(Scan(u"W2_App"), 0);
}

TEST_F(RulesPluginTest, AWildcardNeverTakesAProtectedFolderWhole) {
  File(kAppData + u"Settings.dat");
  File(local + u"Rare\\x.log");
  Load("[X]\nFileKey1=%UserProfile%\\AppData\\*|*.*|RECURSE\n");
  ASSERT_TRUE(warnings.empty());
  EXPECT_EQ(Scan(u"W2_X"), 0);  // Roaming and Local are roots of their own
  CleanAndFix({u"W2_X"});
  EXPECT_TRUE(Exists(kAppData + u"Settings.dat"));
  EXPECT_NE(Plugin(u"W2_X").Note.find(u"left alone: C:\\Users\\Tester\\AppData\\Roaming"),
            String::npos);
}

TEST_F(RulesPluginTest, EntriesThatReachTooFarAreRefusedWithTheirLine) {
  const struct {
    const char* key;
    bool refused;
  } cases[] = {
      {"FileKey1=%WinDir%|*.*|RECURSE", true},
      {"FileKey1=%WinDir%|*", true},
      {"FileKey1=%WinDir%|*.log", false},
      {"FileKey1=%SystemDrive%|*.*|RECURSE", true},
      {"FileKey1=C:\\|*.tmp|RECURSE", true},
      {"FileKey1=%UserProfile%|*.*|REMOVESELF", true},
      {"FileKey1=%UserProfile%\\*|*.*|RECURSE", true},
      {"FileKey1=C:\\Users|*|RECURSE", true},
      {"FileKey1=%ProgramFiles%|*.*|RECURSE", true},
      {"FileKey1=%ProgramFiles%\\App|*.*|RECURSE", false},
      {"FileKey1=%AppData%|*.*", true},
      {"FileKey1=%Temp%|*.*|RECURSE", false},
      {"FileKey1=%AppData%\\..\\..|*.*", true},
      {"FileKey1=App\\Logs|*.log", true},
      {"FileKey1=%Nowhere%\\Logs|*.log", true},
      {"RegKey1=HKCU\\Software", true},
      {"RegKey1=HKCU\\Software|Value", false},
      {"RegKey1=HKU\\.DEFAULT\\Software", true},
      {"RegKey1=HKCU\\Software\\App", false},
  };
  for (const auto& c : cases) {
    Reset();
    warnings.clear();
    Load("[X]\n" + std::string(c.key) + "\n");
    EXPECT_EQ(rules->Entries().empty(), c.refused) << c.key;
    if (c.refused) {
      ASSERT_EQ(warnings.size(), 1u) << c.key;
      EXPECT_EQ(ToUtf8(warnings[0]).rfind("rules.ini:2: [X] ", 0), 0u) << ToUtf8(warnings[0]);
    }
    rules.reset();
  }
}

}  // namespace
}  // namespace tc
