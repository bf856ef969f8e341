// The generic cleaner, the fixer and the cleaning-folder classification.
#include <gtest/gtest.h>

#include <algorithm>

#include "EngineFixture.h"
#include "platform/Orviregistry.h"
#include "platform/Shell.h"
#include "platform/Stringhelper.h"

namespace tc {
namespace {

const String kKey = u"Software\\Test\\List";

class CleanTest : public EngineFixture {
 protected:
  StringList ValueNames(const String& key) {
    StringList names;
    EnumRegValueNames(HKEY_CURRENT_USER, key, names, RO_None);
    return names;
  }
};

TEST_F(CleanTest, StringListOptionEmptiesOnlyWhenItIsExactlyTheOption) {
  for (uint32_t options : {LO_StringList, LO_StringList | 0x100u}) {
    SetString(kKey, u"a", u"text");
    SetDWord(kKey, u"n", 5);
    TestPlugin p(u"TTCPClean");
    p.AddTraceLocation(TLT_Registry_AllValues,
                       new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey, options), TTT_Unknown, 0);
    p.TraceCount = 9;
    p.Clean();
    EXPECT_EQ(p.TraceCount, 0);
    if (options == LO_StringList) {
      EXPECT_EQ(ValueNames(kKey), (StringList{u"a", u"n"}));
      EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, kKey, u"a", u"?", RO_None), u"");
      EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, kKey, u"n", u"?", RO_None), u"5");
    } else {
      EXPECT_TRUE(ValueNames(kKey).empty());
    }
  }
}

TEST_F(CleanTest, EmptyRegValueByType) {
  struct Case {
    uint32_t type;
    Bytes before;
    Bytes after;
  };
  const Case cases[] = {
      {REG_SZ, StringBytes(u"abc"), StringBytes(u"")},
      {REG_MULTI_SZ, MultiBytes({u"a", u"b"}), Bytes{0, 0}},
      {REG_BINARY, Bytes{1, 2, 3}, Bytes{}},
      {REG_EXPAND_SZ, StringBytes(u"%TEMP%"), StringBytes(u"%TEMP%")},
      {REG_DWORD, Bytes{5, 0, 0, 0}, Bytes{5, 0, 0, 0}},
      {REG_QWORD, Bytes{1, 0, 0, 0, 0, 0, 0, 0}, Bytes{1, 0, 0, 0, 0, 0, 0, 0}},
  };
  TestPlugin p(u"TTCPEmpty");
  for (const auto& c : cases) {
    Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey, RegView::Default);
    Services().Registry->SetValue(HKEY_CURRENT_USER, kKey, u"v", RegValue{c.type, c.before},
                                  RegView::Default);
    p.Cleaning_EmptyRegValue(HKEY_CURRENT_USER, kKey, u"v");
    RegValue v;
    ASSERT_EQ(Services().Registry->QueryValue(HKEY_CURRENT_USER, kKey, u"v", v, RegView::Default),
              ERROR_SUCCESS);
    EXPECT_EQ(v.Type, c.type);
    EXPECT_EQ(v.Data, c.after) << "type " << c.type;
  }
  p.Cleaning_EmptyRegValue(HKEY_CURRENT_USER, kKey, u"missing");  // nothing to do, no error
}

TEST_F(CleanTest, MRUListKeepsAnEmptyOrderValueAndMRUListExKeepsNothing) {
  SetString(kKey, u"a", u"x");
  SetString(kKey, u"MRUList", u"a");
  SetString(kKey + u"\\Sub", u"b", u"y");
  SetString(u"Software\\Test\\Other", u"keep", u"me");
  TestPlugin p(u"TTCPMru");
  p.AddTraceLocation(TLT_Registry_MRUList, new TLD_Registry_MRUList(HKEY_CURRENT_USER, kKey, 0),
                     TTT_Unknown, 0);
  p.Clean();
  EXPECT_EQ(ValueNames(kKey), StringList{u"MRUList"});
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, kKey, u"MRUList", u"?", RO_None), u"");
  EXPECT_FALSE(KeyExist(HKEY_CURRENT_USER, kKey + u"\\Sub", RO_None));
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, u"Software\\Test\\Other", u"keep", u"", RO_None),
            u"me");

  const String ex = u"Software\\Test\\Ex";
  SetBinary(ex, u"0", {1});
  SetBinary(ex, u"MRUListEx", {0, 0, 0, 0});
  SetBinary(ex, u"ViewStream", {1});
  TestPlugin q(u"TTCPMruEx");
  q.AddTraceLocation(TLT_Registry_MRUListEx, new TLD_Registry_MRUListEx(HKEY_CURRENT_USER, ex, 0),
                     TTT_Unknown, 0);
  q.Clean();
  EXPECT_TRUE(ValueNames(ex).empty());
  EXPECT_TRUE(KeyExist(HKEY_CURRENT_USER, ex, RO_None));
}

TEST_F(CleanTest, NumberedNamesAndKeysGoEvenWithEmptyData) {
  SetString(kKey, u"File1", u"a");
  SetString(kKey, u"File2", u"");
  SetString(kKey, u"FileX", u"b");
  SetString(kKey, u"Settings", u"c");
  Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey + u"\\Item3", RegView::Default);
  Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey + u"\\Misc", RegView::Default);
  TestPlugin p(u"TTCPNum");
  p.AddTraceLocation(TLT_Registry_NumberedNames,
                     new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, u"File", 0), TTT_FileName, 6);
  p.AddTraceLocation(TLT_Registry_NumberedKeys,
                     new TLD_Registry_NumberedKeys(HKEY_CURRENT_USER, kKey, u"Item", 0), TTT_Unknown, 0);
  p.Clean();
  EXPECT_EQ(ValueNames(kKey), (StringList{u"FileX", u"Settings"}));
  StringList keys;
  EnumRegKeysEx(HKEY_CURRENT_USER, kKey, keys, RO_None);
  EXPECT_EQ(keys, StringList{u"Misc"});
}

TEST_F(CleanTest, StringValueIsShreddedBeforeDeletion) {
  SetString(kKey, u"Recent", u"hello");
  SetString(kKey, u"Empty", u"");
  RecordRegistryWrites();
  TestPlugin p(u"TTCPShredValue");
  p.AddTraceLocation(TLT_Registry_StringValue,
                     new TLD_Registry_StringValue(HKEY_CURRENT_USER, kKey, u"Recent", u"", 0),
                     TTT_Unknown, 0);
  p.AddTraceLocation(TLT_Registry_StringValue,
                     new TLD_Registry_StringValue(HKEY_CURRENT_USER, kKey, u"Empty", u"", 0),
                     TTT_Unknown, 0);
  p.Clean();
  StringList expected(10, u"Recent=00000");
  expected.push_back(u"delete Recent");
  EXPECT_EQ(RegistryWrites(), expected);  // the empty value is left alone by the cleaner
  EXPECT_EQ(ValueNames(kKey), StringList{u"Empty"});
}

TEST_F(CleanTest, FixRenumbersNumberedNames) {
  struct Case {
    const char16_t* prefix;
    StringList before;
    TTraceFlags flags;
    StringList after;  // sorted
  };
  const Case cases[] = {
      {u"File", {u"File2", u"File5", u"File9"}, 6, {u"File1", u"File2", u"File3"}},
      {u"File", {u"File1", u"File3"}, 6, {u"File1", u"File2"}},
      {u"File", {u"FILE1"}, 6, {u"FILE1"}},
      {u"MRU", {u"MRU3"}, 6 | FlagOf(TF_Zero_Based), {u"MRU0"}},
      {u"File", {u"File0", u"File4"}, 6, {u"File0", u"File1"}},  // 0 lies below the start
      {u"File", {u"File1", u"File01"}, 6, {u"File01", u"File1"}},
  };
  for (const auto& c : cases) {
    DeleteRegKey(HKEY_CURRENT_USER, kKey, RO_None);
    for (const auto& n : c.before) SetString(kKey, n, u"data " + n);
    TestPlugin p(u"TTCPFix");
    p.AddTraceLocation(TLT_Registry_NumberedNames,
                       new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, c.prefix, 0),
                       TTT_FileName, c.flags);
    p.Fix();
    StringList after = ValueNames(kKey);
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, c.after) << ToUtf8(c.before[0]);
  }
  // Data travel with their names.
  DeleteRegKey(HKEY_CURRENT_USER, kKey, RO_None);
  SetString(kKey, u"File3", u"three");
  TestPlugin p(u"TTCPFixData");
  p.AddTraceLocation(TLT_Registry_NumberedNames,
                     new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, u"File", 0), TTT_FileName, 6);
  p.Fix();
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, kKey, u"File1", u"", RO_None), u"three");
}

TEST_F(CleanTest, FixOnlyTouchesLocationsThatAskForIt) {
  SetString(kKey, u"File2", u"x");
  TestPlugin p(u"TTCPNoFix");
  p.AddTraceLocation(TLT_Registry_NumberedNames,
                     new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, u"File", 0),
                     TTT_FileName, FlagOf(TF_Deletable_Per_Item));
  p.Fix();
  EXPECT_EQ(ValueNames(kKey), StringList{u"File2"});
}

TEST_F(CleanTest, FixRepairsMRUListOrderStrings) {
  SetString(kKey, u"a", u"1");
  SetString(kKey, u"c", u"3");
  SetString(kKey, u"MRUList", u"cbaab");
  SetString(kKey + u"\\Sub", u"MRUList", u"");
  SetString(kKey + u"\\Two", u"x", u"1");
  SetString(kKey + u"\\Two", u"MRUList", u"yx");
  TestPlugin p(u"TTCPFixMru");
  p.AddTraceLocation(TLT_Registry_MRUList, new TLD_Registry_MRUList(HKEY_CURRENT_USER, kKey, 0),
                     TTT_Unknown, FlagOf(TF_Needs_Fix_After_Cleaning));
  p.Fix();
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, kKey, u"MRUList", u"", RO_None), u"caa");
  EXPECT_EQ(GetRegStringValueDef(HKEY_CURRENT_USER, kKey + u"\\Two", u"MRUList", u"", RO_None), u"x");
}

TEST_F(CleanTest, FileLocationsCleanRecursivelyOnlyForTheExactOption) {
  const String dir = u"C:\\Temp\\Clean";
  auto populate = [&] {
    WriteFile(dir + u"\\a.log", "1");
    WriteFile(dir + u"\\desktop.ini", "2");
    WriteFile(dir + u"\\b.txt", "3");
    WriteFile(dir + u"\\Sub\\c.log", "4");
  };
  struct Case {
    uint32_t options;
    bool subFileGone;
  };
  for (const Case& c : {Case{LO_Recursive, true}, Case{LO_Recursive | 0x100, false}, Case{0, false}}) {
    populate();
    TestPlugin p(u"TTCPCleanFiles");
    p.AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(dir, u"*.log;*.ini", u"", c.options),
                       TTT_Unknown, 0);
    p.Clean();
    EXPECT_FALSE(FileExists(dir + u"\\a.log"));
    EXPECT_TRUE(FileExists(dir + u"\\desktop.ini"));
    EXPECT_TRUE(FileExists(dir + u"\\b.txt"));
    EXPECT_EQ(!FileExists(dir + u"\\Sub\\c.log"), c.subFileGone) << c.options;
    EXPECT_TRUE(DirExists(dir + u"\\Sub"));  // folders are never removed
  }
}

TEST_F(CleanTest, CleaningFolderClassification) {
  String win = ExcludeTrailingPathDelimiter(GetWinDir());
  String appData = ExcludeTrailingPathDelimiter(GetAppDataDir());
  ASSERT_FALSE(win.empty());
  TestPlugin p(u"TTCPFolder");
  struct Case {
    String folder;
    String own;
    uint8_t kind;
  };
  const Case cases[] = {
      {win + u"\\Temp", u"", 2},        // its parent is the Windows folder
      {u"D:\\", u"", 2},                // a drive root
      {u"C:\\Data", u"", 2},            // parent is the root
      {appData + u"\\Vendor\\Cache", u"", 1},
      {appData + u"\\Vendor\\Cache", u"vendor", 0},
      {appData + u"\\Prog", u"", 2},    // parent is the application-data folder
  };
  for (const auto& c : cases) {
    p.OwnFolder = c.own;
    EXPECT_EQ(p.ScanForSystemfolder(c.folder), c.kind) << ToUtf8(c.folder);
  }
  p.OwnFolder.clear();
  p.SetNewCleaningfolder(u"D:\\");
  EXPECT_EQ(p.CleaningFolder, u"D:\\");
  EXPECT_EQ(p.CleaningFolderKind, 2);
  p.SetNewCleaningfolder(appData + u"\\Vendor\\Cache\\");
  EXPECT_EQ(p.CleaningFolder, appData + u"\\Vendor\\Cache");
  EXPECT_EQ(p.CleaningFolderKind, 1);
}

}  // namespace
}  // namespace tc
