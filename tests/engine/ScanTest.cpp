// The generic scan over every location type.
#include <gtest/gtest.h>

#include "EngineFixture.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/RegData.h"
#include "platform/helpers/TextCodec.h"

namespace tc {
namespace {

const String kKey = u"Software\\Test\\List";

class ScanTest : public EngineFixture {
 protected:
  TestPlugin plugin{u"TTCPScan"};
  std::vector<FoundTrace> found;

  // Scans `p` with its reports recorded in `found`; its trace count.
  int ScanCount(TTCPlugin& p) {
    found.clear();
    p.OnScanTraceFound = Recorder(found);
    p.Scan();
    return p.TraceCount;
  }
  int ScanCount() { return ScanCount(plugin); }
};

TEST_F(ScanTest, PresenceDecidesDeactivation) {
  // A missing key deactivates; an existing empty key keeps the plug-in active.
  plugin.AddTraceLocation(TLT_Registry_AllValues,
                          new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey, 0), TTT_Unknown, 0);
  EXPECT_EQ(ScanCount(), 0);
  EXPECT_FALSE(plugin.Active);

  plugin.Active = true;
  Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey, RegView::Default);
  EXPECT_EQ(ScanCount(), 0);
  EXPECT_TRUE(plugin.Active);

  TestPlugin keeps(u"TTCPKeeps");
  keeps.DeactivateIfAbsent = false;
  keeps.AddTraceLocation(TLT_Registry_AllKeys, new TLD_Registry_AllKeys(HKEY_CURRENT_USER, u"No\\Such", 0),
                         TTT_Unknown, 0);
  keeps.Scan();
  EXPECT_TRUE(keeps.Active);

  TestPlugin empty(u"TTCPEmpty");  // no locations: never deactivates
  empty.Scan();
  EXPECT_TRUE(empty.Active);

  TestPlugin multi(u"TTCPMulti");  // a multi-string location counts as present even when missing
  multi.AddTraceLocation(TLT_Registry_StringValue,
                         new TLD_Registry_StringValue(HKEY_CURRENT_USER, u"No\\Key", u"V", u"", LO_MultiString),
                         TTT_Unknown, 0);
  EXPECT_EQ(ScanCount(multi), 0);
  EXPECT_TRUE(multi.Active);
}

TEST_F(ScanTest, AllValuesSkipsBlankDataUnlessAskedAndReportsNothingSingly) {
  SetString(kKey, u"a", u"x");
  SetString(kKey, u"b", u" \t");
  SetDWord(kKey, u"c", 0);
  plugin.AddTraceLocation(TLT_Registry_AllValues,
                          new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey, 0), TTT_FileName, 0);
  EXPECT_EQ(ScanCount(), 2);  // "0" of the number is text, the blank string is not
  EXPECT_TRUE(found.empty());  // no UserAssist decoding happened in this scan

  TestPlugin all(u"TTCPAll");
  all.AddTraceLocation(TLT_Registry_AllValues,
                       new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey, LO_CountEmptyValues),
                       TTT_FileName, 0);
  EXPECT_EQ(ScanCount(all), 3);
}

TEST_F(ScanTest, NumberedNamesNeedPrefixNumberAndData) {
  const std::pair<const char16_t*, const char16_t*> values[] = {
      {u"File1", u"x"},    {u"File2", u"  "},  {u"file12", u"y"}, {u"File0", u"z"},
      {u"FileX", u"w"},    {u"Files", u"v"},   {u"File-1", u"u"}, {u"Other3", u"t"}};
  for (const auto& [name, data] : values) SetString(kKey, name, data);
  plugin.AddTraceLocation(TLT_Registry_NumberedNames,
                          new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, u"File", 0),
                          TTT_FileName, 6);
  EXPECT_EQ(ScanCount(), 3);
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[0].source.ValueName, u"File1");
  EXPECT_EQ(found[0].type, TST_Registry_Value);
  EXPECT_EQ(found[0].flags, 6);
  EXPECT_EQ(found[1].data, u"y");
  EXPECT_EQ(found[2].source.ValueName, u"File0");
}

TEST_F(ScanTest, NumberedKeysReportTheLocationKeysValueOfTheSameName) {
  Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey + u"\\Item1", RegView::Default);
  Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey + u"\\Item2", RegView::Default);
  Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey + u"\\Misc", RegView::Default);
  SetString(kKey, u"Item2", u"second");
  plugin.AddTraceLocation(TLT_Registry_NumberedKeys,
                          new TLD_Registry_NumberedKeys(HKEY_CURRENT_USER, kKey, u"Item", 0),
                          TTT_Unknown, 0);
  EXPECT_EQ(ScanCount(), 2);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].type, TST_Registry_Value);
  EXPECT_EQ(found[0].data, u"");
  EXPECT_EQ(found[1].data, u"second");
}

TEST_F(ScanTest, StringValuesCountItems) {
  const struct {
    const char* name;
    RegValue value;
    const char16_t* separator;
    uint32_t options;
    int traces;
  } cases[] = {
      {"separated", RegData::Sz(u"a;b;c"), u";", 0, 3},
      {"single", RegData::Sz(u"a;b;c"), u"", 0, 1},
      {"empty", RegData::Sz(u""), u";", 0, 0},
      {"multi", RegData::MultiSz({u"one", u"two"}), u"", LO_MultiString, 2},
      {"binary_text", RegData::Binary({'a', 0, ',', 0, 'b', 0, 0, 0, 7}), u",", LO_BinaryText, 2},
  };
  for (const auto& c : cases) {
    TestPlugin p(u"TTCPValue");
    Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey, RegView::Default);
    Services().Registry->SetValue(HKEY_CURRENT_USER, kKey, u"V", c.value, RegView::Default);
    p.AddTraceLocation(TLT_Registry_StringValue,
                       new TLD_Registry_StringValue(HKEY_CURRENT_USER, kKey, u"V", c.separator, c.options),
                       TTT_Unknown, 0);
    p.Scan();
    EXPECT_EQ(p.TraceCount, c.traces) << c.name;
    EXPECT_TRUE(p.Active) << c.name;
  }
}

TEST_F(ScanTest, MRUListsCountEveryValueButTheirOrderValues) {
  SetString(kKey, u"a", u"first");
  SetString(kKey, u"b", u"second");
  SetString(kKey, u"MRUList", u"ba");
  SetString(kKey + u"\\Sub", u"a", u"nested");
  SetString(kKey + u"\\Sub", u"mrulist", u"a");
  plugin.AddTraceLocation(TLT_Registry_MRUList, new TLD_Registry_MRUList(HKEY_CURRENT_USER, kKey, 0),
                          TTT_FileName, 0);
  EXPECT_EQ(ScanCount(), 3);
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[2].source.Key, kKey + u"\\Sub");
  EXPECT_EQ(found[2].data, u"nested");

  const String ex = u"Software\\Test\\Ex";
  SetBinary(ex, u"0", {'x', 0, 0, 0});
  SetBinary(ex, u"MRUListEx", {0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
  SetBinary(ex, u"ViewStream", {1, 2});
  TestPlugin p(u"TTCPEx");
  p.AddTraceLocation(TLT_Registry_MRUListEx, new TLD_Registry_MRUListEx(HKEY_CURRENT_USER, ex, 0),
                     TTT_FileName, 0);
  EXPECT_EQ(ScanCount(p), 1);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].data, u"x");  // binary holding UTF-16 text reads as that text
}

TEST_F(ScanTest, FileLocations) {
  const String dir = u"C:\\Temp\\Scan";
  WriteFile(dir + u"\\desktop.ini", "x");
  TestPlugin onlyIni(u"TTCPIni");
  onlyIni.AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(dir, u"*.*", u"", 0),
                           TTT_Unknown, 0);
  EXPECT_EQ(ScanCount(onlyIni), 0);
  EXPECT_TRUE(onlyIni.Active);  // the folder exists

  WriteFile(dir + u"\\a.log", "data");
  WriteFile(dir + u"\\empty.log", "");
  WriteFile(dir + u"\\keep.txt", "data");
  WriteFile(dir + u"\\Sub\\deep.log", "data");
  WriteFile(dir + u"\\Sub\\More\\deeper.log", "data");
  // Links are traces by their own names, never ways in; a pipe is no trace.
  auto mem = MemoryOf(platform_);
  WriteFile(u"C:\\Outside\\hidden.log", "data");
  mem.Files->AddLink(dir + u"\\file-link.log", u"C:\\Outside\\hidden.log", false);
  mem.Files->AddLink(dir + u"\\Sub\\Junction.log", u"C:\\Outside", true);
  mem.Files->AddDevice(dir + u"\\pipe.log");

  struct Case {
    const char* name;
    String folder;
    uint32_t options;
    int traces;
    size_t reported;
  };
  const Case cases[] = {
      {"flat", dir + u"\\", 0, 3, 3},
      {"non_empty_only", dir + u"\\", LO_NonEmptyFilesOnly, 1, 1},
      {"recursive", dir, LO_Recursive, 6, 0},
      {"recursive_contains_bit", dir, LO_Recursive | 0x100, 6, 0},
  };
  for (const auto& c : cases) {
    TestPlugin p(u"TTCPFiles");
    p.AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(c.folder, u"*.log", u"", c.options),
                       TTT_Unknown, 0);
    EXPECT_EQ(ScanCount(p), c.traces) << c.name;
    EXPECT_EQ(found.size(), c.reported) << c.name;
  }

  // The reported name is the folder as given followed directly by the file name.
  TestPlugin bare(u"TTCPBare");
  bare.AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(dir, u"a.log", u"", 0),
                        TTT_Unknown, 0);
  ASSERT_EQ(ScanCount(bare), 1);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].source.FileName, dir + u"a.log");
  EXPECT_EQ(found[0].source.RootKey, kNoRootKey);
  EXPECT_EQ(found[0].type, TST_FileSystem_File);
}

TEST_F(ScanTest, UserAssistNamesDecodeAndGateTheOtherLocations) {
  const String ua = u"Software\\Test\\UserAssist\\Count";
  // ROT13 of "UEME_RUNPATH:C:\x\y.exe", "UEME_RUNPIDL:%csidl2%\Programs\z.lnk", "UEME_CTLSESSION"
  SetBinary(ua, u"HRZR_EHACNGU:P:\\k\\l.rkr", {1, 0, 0, 0});
  SetBinary(ua, u"HRZR_EHACVQY:%pfvqy2%\\Cebtenzf\\m.yax", {1, 0, 0, 0});
  SetBinary(ua, u"HRZR_PGYFRFFVBA", {1, 0, 0, 0});
  SetString(kKey, u"after", u"reported");

  plugin.AddTraceLocation(TLT_Registry_AllValues,
                          new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey, 0), TTT_FileName, 0);
  plugin.AddTraceLocation(TLT_Registry_AllValues,
                          new TLD_Registry_AllValues(HKEY_CURRENT_USER, ua, LO_CountEmptyValues),
                          TTT_UserAssist, 0);
  plugin.AddTraceLocation(TLT_Registry_AllValues,
                          new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey, 0), TTT_FileName, 0);
  EXPECT_EQ(ScanCount(), 5);
  // The first location ran before any decoding and reported nothing; the last one ran after
  // a decoding that yielded nothing (the session name), so it reports nothing either.
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].data, u"C:\\x\\y.exe");
  EXPECT_EQ(found[0].flags, 0);
  EXPECT_EQ(found[1].data, u"Programs\\z.lnk");
  EXPECT_EQ(found[1].flags, FlagOf(TF_StartMenu_SubFolder));
}

TEST_F(ScanTest, UserAssistDecodingTable) {
  struct Case {
    const char16_t* decoded;
    const char16_t* path;
    TTraceFlags flags;
  };
  const Case cases[] = {
      {u"UEME_RUNPATH:Q:\\x.exe", u"", 0},  // not on a fixed drive
      {u"UEME_RUNPIDL:%CSIDL2%\\Zubehör\\a.lnk", u"Zubehör\\a.lnk", FlagOf(TF_StartMenu_SubFolder)},
      {u"UEME_RUNPIDL:%csidl5%\\a.lnk", u"", 0},
      {u"ueme_runpath:C:\\x.exe", u"", 0},
      {u"UEME_UITOOLBAR", u"", 0},
  };
  for (const auto& c : cases) {
    String name = c.decoded;
    for (auto& ch : name) {  // ROT13 is its own inverse
      if (ch >= u'a' && ch <= u'z') ch = u'a' + (ch - u'a' + 13) % 26;
      else if (ch >= u'A' && ch <= u'Z') ch = u'A' + (ch - u'A' + 13) % 26;
    }
    TTraceFlags flags = 0xFF;
    EXPECT_EQ(DecodeUserAssistName(name, flags), String(c.path)) << ToUtf8(c.decoded);
    EXPECT_EQ(flags, c.flags) << ToUtf8(c.decoded);
  }
}

TEST(MaskTest, AStarThenTextMatchesTheNamesEndWhateverItsCase) {
  struct Case {
    const char16_t* mask;
    const char16_t* name;
    bool match;
  };
  const Case cases[] = {
      {u"*.jpg", u"Bild.JPG", true},   {u"*.jpg", u"jpg", false},
      {u"*.jpg", u".jpg", true},       {u"*.jpeg", u"a.jpg", false},
      {u"*.jpg", u"a.jpg.txt", false}, {u"*ä.txt", u"GRÄ.TXT", true},
      {u"*.", u"a.", true},            {u"*.", u"a", false},
      {u"*.t?t", u"a.TXT", true},      {u"a*.log", u"A.log", true},
  };
  for (const auto& c : cases) {
    TWildcardMatcher m;
    m.AddSearchMask(c.mask, 0);
    EXPECT_EQ(c.match, m.Match(c.name)) << ToUtf8(c.mask) << " " << ToUtf8(c.name);
  }
}

}  // namespace
}  // namespace tc
