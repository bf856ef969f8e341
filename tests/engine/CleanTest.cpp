// The generic cleaner, the fixer and the cleaning-folder classification.
#include <gtest/gtest.h>

#include <algorithm>

#include "EngineFixture.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/RegData.h"
#include "platform/Shell.h"
#include "platform/helpers/Stringhelper.h"

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
  const std::pair<RegValue, Bytes> cases[] = {  // before, and the data after
      {RegData::Sz(u"abc"), RegData::Sz(u"").Data},
      {RegData::MultiSz({u"a", u"b"}), Bytes{0, 0}},
      {RegData::Binary({1, 2, 3}), Bytes{}},
      {RegData::ExpandSz(u"%TEMP%"), RegData::ExpandSz(u"%TEMP%").Data},
      {RegData::Dword(5), RegData::Dword(5).Data},
      {RegData::Qword(1), RegData::Qword(1).Data},
  };
  TestPlugin p(u"TTCPEmpty");
  for (const auto& [before, after] : cases) {
    Services().Registry->CreateKey(HKEY_CURRENT_USER, kKey, RegView::Default);
    Services().Registry->SetValue(HKEY_CURRENT_USER, kKey, u"v", before, RegView::Default);
    p.Cleaning_EmptyRegValue(HKEY_CURRENT_USER, kKey, u"v");
    RegValue v;
    ASSERT_EQ(Services().Registry->QueryValue(HKEY_CURRENT_USER, kKey, u"v", v, RegView::Default),
              ERROR_SUCCESS);
    EXPECT_EQ(v.Type, before.Type);
    EXPECT_EQ(v.Data, after) << "type " << before.Type;
  }
  p.Cleaning_EmptyRegValue(HKEY_CURRENT_USER, kKey, u"missing");  // nothing to do, no error
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

TEST_F(CleanTest, FixRenumbersNumberedNamesAndTheirDataTravelWithThem) {
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
      {u"File", {u"File2"}, FlagOf(TF_Deletable_Per_Item), {u"File2"}},  // asks for no fix
  };
  for (const auto& c : cases) {
    DeleteRegKey(HKEY_CURRENT_USER, kKey, RO_None);
    StringList data;
    for (const auto& n : c.before) {
      SetString(kKey, n, u"data " + n);
      data.push_back(u"data " + n);
    }
    TestPlugin p(u"TTCPFix");
    p.AddTraceLocation(TLT_Registry_NumberedNames,
                       new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, c.prefix, 0),
                       TTT_FileName, c.flags);
    p.Fix();
    StringList after = ValueNames(kKey), moved;
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, c.after) << ToUtf8(c.before[0]);
    for (const auto& n : after) moved.push_back(GetRegStringValueDef(HKEY_CURRENT_USER, kKey, n, u"", RO_None));
    std::sort(data.begin(), data.end());
    EXPECT_EQ(moved, data) << ToUtf8(c.before[0]);
  }
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
  auto mem = MemoryOf(platform_);
  mem.Files->AddDevice(dir + u"\\pipe.log");
  WriteFile(u"C:\\Outside\\kept.log", "precious");
  auto populate = [&] {
    WriteFile(dir + u"\\a.log", "1");
    WriteFile(dir + u"\\desktop.ini", "2");
    WriteFile(dir + u"\\b.txt", "3");
    WriteFile(dir + u"\\Sub\\c.log", "4");
    mem.Files->AddLink(dir + u"\\Folder-link.log", u"C:\\Outside", true);
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
    EXPECT_FALSE(mem.Files->Exists(dir + u"\\Folder-link.log"));  // the link, not its target
    EXPECT_EQ(mem.Files->Contents(u"C:\\Outside\\kept.log"), "precious");
    EXPECT_TRUE(mem.Files->Exists(dir + u"\\pipe.log"));
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
