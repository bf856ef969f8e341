// What every backend's registry, file system and delete-at-next-start must do. Each backend
// instantiates the suite with a Traits type:
//
//   struct MyTraits {
//     static std::shared_ptr<Platform> Make();  // a fresh platform for one test
//     static String FolderBase();               // a folder on a fixed drive the suite may fill
//     static String KeyBase();                  // a HKEY_CURRENT_USER key the suite may fill
//     // Holds `path` in use so that writing, removing and renaming it fail with `code`
//     // (32 or 33); false when the backend cannot (the test is skipped).
//     static bool LockFile(Platform&, const String& path, uint32_t code);
//     static void UnlockAll(Platform&);
//     // Makes `link` a junction / directory link to `target`; false when it cannot.
//     static bool MakeFolderLink(Platform&, const String& link, const String& target);
//     // Makes `link` a second name (hard link) of the file `existing`; false when it cannot.
//     static bool MakeHardLink(Platform&, const String& link, const String& existing);
//     // Makes the event log `log` refuse this user, as the security log refuses most;
//     // false when the backend cannot.
//     static bool RefuseLog(Platform&, const String& log);
//   };
//   INSTANTIATE_TYPED_TEST_SUITE_P(My, ContractTest, MyTraits);
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <string>

#include "platform/Platform.h"
#include "platform/helpers/Orvishredderclass.h"
#include "platform/helpers/RegData.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"

namespace tc::contract {

inline bool InUse(uint32_t rc) {
  return rc == ERROR_SHARING_VIOLATION || rc == ERROR_LOCK_VIOLATION;
}

// Names whose upper-cased order differs from their lower-cased and from their raw order.
inline const StringList kUnorderedNames = {u"b.txt", u"_x", u"Ärger", u"A_b", u"Z", u"ab", u"a1"};
inline const StringList kUpperCasedOrder = {u"a1", u"ab", u"A_b", u"b.txt", u"Z", u"_x", u"Ärger"};

// A file of ../shared/realworld as bytes; empty when it is not there.
inline Bytes RealFile(const std::string& name) {
  std::ifstream in(std::string(TC_CONTRACT_REALWORLD_DIR) + "/" + name, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// One row of a table of calls and the code each must answer.
struct Call {
  const char* what;
  uint32_t expected;
  std::function<uint32_t()> call;
};

template <typename Traits>
class ContractTest : public ::testing::Test {
 protected:
  void SetUp() override {
    platform_ = Traits::Make();
    const String test = FromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name());
    folder_ = WinPath::Join(Traits::FolderBase(), test);
    key_ = Traits::KeyBase() + u"\\" + test;
    RemoveTree(folder_);
    Reg().DeleteKeyTree(kHKEY_CURRENT_USER, key_, RegView::Default);
    ASSERT_EQ(ERROR_SUCCESS, Files().MakeFolder(folder_));
    ASSERT_EQ(ERROR_SUCCESS, Reg().CreateKey(kHKEY_CURRENT_USER, key_, RegView::Default));
  }

  void TearDown() override {
    Traits::UnlockAll(*platform_);
    RemoveTree(folder_);
    Reg().DeleteKeyTree(kHKEY_CURRENT_USER, key_, RegView::Default);
  }

  IRegistry& Reg() { return *platform_->Registry; }
  IFileSystem& Files() { return *platform_->Files; }
  String Key(const String& sub) const { return sub.empty() ? key_ : key_ + u"\\" + sub; }
  String Path(const String& name) const { return WinPath::Join(folder_, name); }

  uint32_t Set(const String& key, const String& name, const RegValue& value) {
    return Reg().SetValue(kHKEY_CURRENT_USER, key, name, value, RegView::Default);
  }
  uint32_t MakeKey(const String& sub) { return Reg().CreateKey(kHKEY_CURRENT_USER, Key(sub), RegView::Default); }
  uint32_t KeyExists(const String& sub) { return Reg().KeyExists(kHKEY_CURRENT_USER, Key(sub), RegView::Default); }
  RegValue Get(const String& key, const String& name) {
    RegValue v;
    EXPECT_EQ(ERROR_SUCCESS, Reg().QueryValue(kHKEY_CURRENT_USER, key, name, v, RegView::Default)) << ToUtf8(name);
    return v;
  }
  StringList KeyNames(const String& key) {
    StringList names;
    EXPECT_EQ(ERROR_SUCCESS, Reg().EnumKeys(kHKEY_CURRENT_USER, key, names, RegView::Default));
    return names;
  }
  StringList ValueNames(const String& key) {
    std::vector<RegNamedValue> values;
    EXPECT_EQ(ERROR_SUCCESS, Reg().EnumValues(kHKEY_CURRENT_USER, key, values, RegView::Default));
    StringList names;
    for (const auto& v : values) names.push_back(v.Name);
    return names;
  }

  uint32_t Write(const String& path, std::string_view bytes) {
    std::unique_ptr<IFileHandle> f;
    if (uint32_t rc = Files().Open(path, OpenMode::CreateAlways, f)) return rc;
    return bytes.empty() ? ERROR_SUCCESS : f->Write(0, bytes.data(), bytes.size());
  }
  std::string Read(const String& path) {
    std::unique_ptr<IFileHandle> f;
    if (Files().Open(path, OpenMode::Read, f) != ERROR_SUCCESS) return "<missing>";
    uint64_t size = 0;
    f->GetSize(size);
    std::string data(size, '\0');
    size_t done = 0;
    f->Read(0, data.data(), data.size(), done);
    data.resize(done);
    return data;
  }
  StringList Listing(const String& folder) {
    std::vector<FileInfo> entries;
    EXPECT_EQ(ERROR_SUCCESS, Files().ListFolder(folder, entries));
    StringList names;
    for (const auto& e : entries) names.push_back(e.Name);
    return names;
  }
  bool Exists(const String& path) {
    FileInfo info;
    return Files().GetInfo(path, info) == ERROR_SUCCESS;
  }

  // Removes a tree without entering links.
  void RemoveTree(const String& folder) {
    std::vector<FileInfo> entries;
    Files().ListFolder(folder, entries);
    for (const auto& e : entries) {
      const String path = WinPath::Join(folder, e.Name);
      Files().SetAttributes(path, e.Attributes & ~FILE_ATTRIBUTE_READONLY);
      if (e.IsDirectory() && !e.IsReparsePoint()) {
        RemoveTree(path);
      } else if (Files().RemoveFile(path) != ERROR_SUCCESS) {
        Files().RemoveFolder(path);
      }
    }
    Files().RemoveFolder(folder);
  }

  std::shared_ptr<Platform> platform_;
  String folder_;
  String key_;
};

TYPED_TEST_SUITE_P(ContractTest);

// --- Registry -------------------------------------------------------------------------

TYPED_TEST_P(ContractTest, ValuesEnumerateInCreationOrder) {
  if constexpr (requires { TypeParam::KeepsValueOrder(); }) {
    if (!TypeParam::KeepsValueOrder()) GTEST_SKIP() << "this system sorts values by name";
  }
  const String k = this->Key(u"");
  for (const char16_t* name : {u"b", u"A", u"c", u"d"}) ASSERT_EQ(ERROR_SUCCESS, this->Set(k, name, RegData::Sz(name)));
  ASSERT_EQ(ERROR_SUCCESS, this->Set(k, u"a", RegData::Dword(7)));  // replaced in place
  ASSERT_EQ(ERROR_SUCCESS, this->Reg().DeleteValue(kHKEY_CURRENT_USER, k, u"b", RegView::Default));
  ASSERT_EQ(ERROR_SUCCESS, this->Set(k, u"b", RegData::Sz(u"again")));  // new, so last
  EXPECT_EQ((StringList{u"A", u"c", u"d", u"b"}), this->ValueNames(k));
  EXPECT_EQ(REG_DWORD, this->Get(k, u"A").Type);
}

TYPED_TEST_P(ContractTest, RegistryNamesIgnoreCaseKeepItAndSortUpperCased) {
  for (const String& name : kUnorderedNames)
    ASSERT_EQ(ERROR_SUCCESS, this->MakeKey(u"Order\\" + name));
  EXPECT_EQ(kUpperCasedOrder, this->KeyNames(this->Key(u"Order")));
  ASSERT_EQ(ERROR_SUCCESS, this->MakeKey(u"MixedCase\\Ärger"));
  EXPECT_EQ(ERROR_SUCCESS, this->KeyExists(u"MIXEDCASE\\ärger"));
  // Creating it again in other case neither duplicates nor renames it.
  ASSERT_EQ(ERROR_SUCCESS, this->MakeKey(u"mixedcase"));
  EXPECT_EQ((StringList{u"MixedCase", u"Order"}), this->KeyNames(this->Key(u"")));
  EXPECT_EQ((StringList{u"Ärger"}), this->KeyNames(this->Key(u"mixedCASE")));
  ASSERT_EQ(ERROR_SUCCESS, this->Set(this->Key(u""), u"ValueName", RegData::Sz(u"x")));
  ASSERT_EQ(ERROR_SUCCESS, this->Set(this->Key(u""), u"VALUENAME", RegData::Sz(u"y")));
  EXPECT_EQ((StringList{u"ValueName"}), this->ValueNames(this->Key(u"")));
  EXPECT_EQ(u"y", RegData::Text(this->Get(this->Key(u""), u"valuename")));
}

TYPED_TEST_P(ContractTest, ValueTypesRoundTripByteForByte) {
  const std::pair<const char16_t*, RegValue> cases[] = {
      {u"sz", RegData::Sz(u"Grüße")},
      {u"sz-empty", RegData::Sz(u"")},
      {u"sz-unterminated", RegValue{REG_SZ, {'a', 0, 'b', 0}}},
      {u"expand", RegData::ExpandSz(u"%SystemRoot%\\system32")},
      {u"multi", RegData::MultiSz({u"one", u"two"})},
      {u"multi-empty", RegData::MultiSz({})},
      {u"binary", RegData::Binary({0, 255, 0, 1, 2})},
      {u"binary-empty", RegData::Binary({})},
      {u"dword", RegData::Dword(0xDEADBEEF)},
      {u"qword", RegData::Qword(0x0123456789ABCDEFull)},
      {u"none", RegValue{REG_NONE, {1, 2, 3}}},
      {u"", RegData::Sz(u"default")},  // the key's default value
  };
  for (const auto& [name, value] : cases) ASSERT_EQ(ERROR_SUCCESS, this->Set(this->Key(u""), name, value));
  std::vector<RegNamedValue> listed;
  ASSERT_EQ(ERROR_SUCCESS, this->Reg().EnumValues(kHKEY_CURRENT_USER, this->Key(u""), listed, RegView::Default));
  ASSERT_EQ(std::size(cases), listed.size());
  for (const auto& [name, value] : cases) {
    SCOPED_TRACE(ToUtf8(name));
    RegValue read = this->Get(this->Key(u""), name);
    // Found by name: the order of the listing is ValuesEnumerateInCreationOrder's business.
    auto it = std::find_if(listed.begin(), listed.end(), [&](const RegNamedValue& v) { return v.Name == name; });
    ASSERT_NE(listed.end(), it);
    for (const RegValue* got : {&read, &it->Value}) {
      EXPECT_EQ(value.Type, got->Type);
      EXPECT_EQ(value.Data, got->Data);
    }
  }
}

TYPED_TEST_P(ContractTest, MissingRegistryItemsAnswerTheirErrorCodes) {
  auto& reg = this->Reg();
  const HKEY cu = kHKEY_CURRENT_USER;
  const RegView dv = RegView::Default;
  const String here = this->Key(u"");
  const String gone = this->Key(u"Missing");
  StringList names;
  std::vector<RegNamedValue> values;
  RegValue v;
  const Call cases[] = {
      {"KeyExists of a missing key", ERROR_FILE_NOT_FOUND, [&] { return reg.KeyExists(cu, gone, dv); }},
      {"EnumKeys of a missing key", ERROR_FILE_NOT_FOUND, [&] { return reg.EnumKeys(cu, gone, names, dv); }},
      {"EnumValues of a missing key", ERROR_FILE_NOT_FOUND,
       [&] { return reg.EnumValues(cu, gone, values, dv); }},
      {"QueryValue in a missing key", ERROR_FILE_NOT_FOUND,
       [&] { return reg.QueryValue(cu, gone, u"x", v, dv); }},
      {"QueryValue of a missing value", ERROR_FILE_NOT_FOUND,
       [&] { return reg.QueryValue(cu, here, u"x", v, dv); }},
      {"SetValue in a missing key", ERROR_FILE_NOT_FOUND,
       [&] { return reg.SetValue(cu, gone, u"x", RegData::Sz(u"x"), dv); }},
      {"DeleteValue of a missing value", ERROR_FILE_NOT_FOUND,
       [&] { return reg.DeleteValue(cu, here, u"x", dv); }},
      {"DeleteValue in a missing key", ERROR_FILE_NOT_FOUND,
       [&] { return reg.DeleteValue(cu, gone, u"x", dv); }},
      {"DeleteKeyTree of a missing key", ERROR_FILE_NOT_FOUND,
       [&] { return reg.DeleteKeyTree(cu, gone, dv); }},
      {"DeleteKeyTree below a missing key", ERROR_FILE_NOT_FOUND,
       [&] { return reg.DeleteKeyTree(cu, gone + u"\\Deeper", dv); }},
      {"DeleteKeyTree of the root", ERROR_ACCESS_DENIED, [&] { return reg.DeleteKeyTree(cu, u"", dv); }},
      {"a root the backend does not have", ERROR_INVALID_HANDLE,
       [&] { return reg.KeyExists(0x80000009u, u"Software", dv); }},
  };
  for (const Call& c : cases) EXPECT_EQ(c.expected, c.call()) << c.what;
  EXPECT_TRUE(names.empty());
  EXPECT_TRUE(values.empty());
}

TYPED_TEST_P(ContractTest, DeleteKeyTreeRemovesTheKeyAndAllBelowIt) {
  for (const char16_t* k : {u"Tree\\A\\Deep\\Deeper", u"Tree\\B", u"Tree2", u"TreeX\\Kept"}) {
    ASSERT_EQ(ERROR_SUCCESS, this->MakeKey(k));
    ASSERT_EQ(ERROR_SUCCESS, this->Set(this->Key(k), u"v", RegData::Sz(k)));
  }
  ASSERT_EQ(ERROR_SUCCESS, this->Reg().DeleteKeyTree(kHKEY_CURRENT_USER, this->Key(u"tree"), RegView::Default));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, this->KeyExists(u"Tree\\A\\Deep"));
  EXPECT_EQ((StringList{u"Tree2", u"TreeX"}), this->KeyNames(this->Key(u"")));
  EXPECT_EQ((StringList{u"v"}), this->ValueNames(this->Key(u"TreeX\\Kept")));
}

// --- File system ----------------------------------------------------------------------

TYPED_TEST_P(ContractTest, ListFolderIsAscendingByUpperCasedNameAndAWalkMayRemoveAsItReads) {
  for (size_t i = 0; i < kUnorderedNames.size(); ++i)
    ASSERT_EQ(ERROR_SUCCESS, i % 2 ? this->Files().MakeFolder(this->Path(kUnorderedNames[i]))
                                   : this->Write(this->Path(kUnorderedNames[i]), "x"));
  EXPECT_EQ(kUpperCasedOrder, this->Listing(this->folder_));
  std::vector<FileInfo> entries;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().ListFolder(this->folder_, entries));
  for (const FileInfo& e : entries) {
    const bool folder = e.Name == u"_x" || e.Name == u"A_b" || e.Name == u"ab";
    EXPECT_EQ(folder, e.IsDirectory()) << ToUtf8(e.Name);
    EXPECT_EQ(folder ? e.Size : 1u, e.Size) << ToUtf8(e.Name);
  }
  // A walk of the same folder may remove files while it reads it.
  int seen = 0;
  EXPECT_EQ(ERROR_SUCCESS, this->Files().VisitFolderNames(this->folder_, ListDetail::Kinds,
                                                          [&](FileInfo&) { return ++seen < 2; }));
  EXPECT_EQ(2, seen);  // false stops the walk
  std::multiset<String> visited, folders;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().VisitFolderNames(
                               this->folder_, ListDetail::Kinds, [&](FileInfo& e) {
                                 visited.insert(e.Name);
                                 if (e.IsDirectory()) folders.insert(e.Name);
                                 else EXPECT_EQ(ERROR_SUCCESS, this->Files().RemoveFile(this->Path(e.Name)));
                                 return true;
                               }));
  EXPECT_EQ(std::multiset<String>(kUnorderedNames.begin(), kUnorderedNames.end()), visited);
  const StringList left = this->Listing(this->folder_);
  EXPECT_EQ(folders, std::multiset<String>(left.begin(), left.end()));
}

TYPED_TEST_P(ContractTest, PathsIgnoreCaseAndNamesKeepIt) {
  ASSERT_EQ(ERROR_SUCCESS, this->Files().MakeFolder(this->Path(u"Mixed")));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"Mixed\\File.TXT"), "content"));
  FileInfo info;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().GetInfo(this->Path(u"MIXED\\file.txt"), info));
  EXPECT_EQ(u"File.TXT", info.Name);
  EXPECT_EQ(7u, info.Size);
  EXPECT_EQ("content", this->Read(this->Path(u"mixed\\FILE.TXT")));
  // Writing through another spelling keeps the stored name.
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"mixed\\file.txt"), "new"));
  EXPECT_EQ((StringList{u"File.TXT"}), this->Listing(this->Path(u"mIxEd")));
}

TYPED_TEST_P(ContractTest, MissingFilesAndFoldersAnswerTheirErrorCodes) {
  auto& fs = this->Files();
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"file.txt"), "x"));
  const String missing = this->Path(u"missing.txt");
  const String noDir = this->Path(u"NoDir\\x.txt");
  std::vector<FileInfo> entries;
  FileInfo info;
  std::unique_ptr<IFileHandle> f;
  const Call cases[] = {
      {"GetInfo of a missing file", ERROR_FILE_NOT_FOUND, [&] { return fs.GetInfo(missing, info); }},
      {"GetInfo in a missing folder", ERROR_PATH_NOT_FOUND, [&] { return fs.GetInfo(noDir, info); }},
      {"ListFolder of a missing folder", ERROR_PATH_NOT_FOUND,
       [&] { return fs.ListFolder(this->Path(u"NoDir"), entries); }},
      {"ListFolder of a file", ERROR_PATH_NOT_FOUND,
       [&] { return fs.ListFolder(this->Path(u"file.txt"), entries); }},
      {"Open for reading of a missing file", ERROR_FILE_NOT_FOUND,
       [&] { return fs.Open(missing, OpenMode::Read, f); }},
      {"Open for writing of a missing file", ERROR_FILE_NOT_FOUND,
       [&] { return fs.Open(missing, OpenMode::ReadWrite, f); }},
      {"Create in a missing folder", ERROR_PATH_NOT_FOUND,
       [&] { return fs.Open(noDir, OpenMode::CreateAlways, f); }},
      {"CreateNew of an existing file", ERROR_FILE_EXISTS,
       [&] { return fs.Open(this->Path(u"file.txt"), OpenMode::CreateNew, f); }},
      {"RemoveFile of a missing file", ERROR_FILE_NOT_FOUND, [&] { return fs.RemoveFile(missing); }},
      {"RemoveFile in a missing folder", ERROR_PATH_NOT_FOUND, [&] { return fs.RemoveFile(noDir); }},
      {"RemoveFolder of a missing folder", ERROR_FILE_NOT_FOUND,
       [&] { return fs.RemoveFolder(this->Path(u"NoDir")); }},
      {"Rename of a missing file", ERROR_FILE_NOT_FOUND,
       [&] { return fs.Rename(missing, this->Path(u"y.txt")); }},
      {"Rename into a missing folder", ERROR_PATH_NOT_FOUND,
       [&] { return fs.Rename(this->Path(u"file.txt"), noDir); }},
      {"SetAttributes of a missing file", ERROR_FILE_NOT_FOUND,
       [&] { return fs.SetAttributes(missing, FILE_ATTRIBUTE_HIDDEN); }},
  };
  for (const Call& c : cases) EXPECT_EQ(c.expected, c.call()) << c.what;
  EXPECT_TRUE(entries.empty());
  EXPECT_EQ(nullptr, f);
}

TYPED_TEST_P(ContractTest, PositionalReadWriteFlushAndTruncate) {
  const String path = this->Path(u"io.bin");
  {
    std::unique_ptr<IFileHandle> f;
    ASSERT_EQ(ERROR_SUCCESS, this->Files().Open(path, OpenMode::CreateNew, f));
    ASSERT_EQ(ERROR_SUCCESS, f->Write(0, "hello", 5));
    ASSERT_EQ(ERROR_SUCCESS, f->Write(10, "world", 5));  // the gap reads as zeros
    uint64_t size = 0;
    ASSERT_EQ(ERROR_SUCCESS, f->GetSize(size));
    EXPECT_EQ(15u, size);
    char buf[8] = {};
    size_t done = 0;
    ASSERT_EQ(ERROR_SUCCESS, f->Read(3, buf, 4, done));
    EXPECT_EQ(std::string("lo\0\0", 4), std::string(buf, done));
    ASSERT_EQ(ERROR_SUCCESS, f->Read(13, buf, 8, done));
    EXPECT_EQ("ld", std::string(buf, done));
    ASSERT_EQ(ERROR_SUCCESS, f->Read(15, buf, 8, done));
    EXPECT_EQ(0u, done);
    ASSERT_EQ(ERROR_SUCCESS, f->SetSize(4));
    ASSERT_EQ(ERROR_SUCCESS, f->SetSize(6));
    ASSERT_EQ(ERROR_SUCCESS, f->Flush());
  }
  EXPECT_EQ(std::string("hell\0\0", 6), this->Read(path));
  FileInfo info;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().GetInfo(path, info));
  EXPECT_EQ(6u, info.Size);

  std::unique_ptr<IFileHandle> reader;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().Open(path, OpenMode::Read, reader));
  EXPECT_EQ(ERROR_ACCESS_DENIED, reader->Write(0, "x", 1));
  EXPECT_EQ(ERROR_ACCESS_DENIED, reader->SetSize(0));
  reader.reset();

  std::unique_ptr<IFileHandle> rw;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().Open(path, OpenMode::ReadWrite, rw));  // not truncated
  ASSERT_EQ(ERROR_SUCCESS, rw->Write(0, "J", 1));
  rw.reset();
  EXPECT_EQ(std::string("Jell\0\0", 6), this->Read(path));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(path, ""));  // CreateAlways truncates
  EXPECT_EQ("", this->Read(path));
}

TYPED_TEST_P(ContractTest, RenameMovesReplacesAndChangesCase) {
  auto& fs = this->Files();
  ASSERT_EQ(ERROR_SUCCESS, fs.MakeFolder(this->Path(u"Sub\\Inner")));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"a.txt"), "A"));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"b.txt"), "B"));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"Sub\\Inner\\c.txt"), "C"));

  ASSERT_EQ(ERROR_SUCCESS, fs.Rename(this->Path(u"a.txt"), this->Path(u"b.txt")));  // replaces
  EXPECT_EQ("A", this->Read(this->Path(u"b.txt")));
  EXPECT_FALSE(this->Exists(this->Path(u"a.txt")));

  ASSERT_EQ(ERROR_SUCCESS, fs.Rename(this->Path(u"b.txt"), this->Path(u"B.TXT")));  // case only
  ASSERT_EQ(ERROR_SUCCESS, fs.Rename(this->Path(u"B.TXT"), this->Path(u"Sub\\moved.txt")));
  ASSERT_EQ(ERROR_SUCCESS, fs.Rename(this->Path(u"Sub"), this->Path(u"Renamed")));
  EXPECT_EQ((StringList{u"Renamed"}), this->Listing(this->folder_));
  EXPECT_EQ((StringList{u"Inner", u"moved.txt"}), this->Listing(this->Path(u"Renamed")));
  EXPECT_EQ("C", this->Read(this->Path(u"Renamed\\Inner\\c.txt")));

  ASSERT_EQ(ERROR_SUCCESS, fs.Rename(this->Path(u"Renamed\\moved.txt"), this->Path(u"Renamed\\MOVED.txt")));
  EXPECT_EQ((StringList{u"Inner", u"MOVED.txt"}), this->Listing(this->Path(u"Renamed")));
}

TYPED_TEST_P(ContractTest, FoldersAreMadeWithParentsAndRemovedOnlyWhenEmpty) {
  auto& fs = this->Files();
  ASSERT_EQ(ERROR_SUCCESS, fs.MakeFolder(this->Path(u"One\\Two\\Three")));
  EXPECT_EQ(ERROR_SUCCESS, fs.MakeFolder(this->Path(u"one\\two")));  // exists: fine
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"One\\file"), "x"));
  EXPECT_EQ(ERROR_ALREADY_EXISTS, fs.MakeFolder(this->Path(u"One\\file")));
  EXPECT_EQ(ERROR_DIR_NOT_EMPTY, fs.RemoveFolder(this->Path(u"One\\Two")));
  EXPECT_EQ(ERROR_ACCESS_DENIED, fs.RemoveFile(this->Path(u"One\\Two")));  // not a file
  EXPECT_EQ(ERROR_SUCCESS, fs.RemoveFolder(this->Path(u"One\\Two\\Three")));
  EXPECT_EQ(ERROR_SUCCESS, fs.RemoveFolder(this->Path(u"One\\Two")));
  EXPECT_EQ((StringList{u"file"}), this->Listing(this->Path(u"One")));
}

TYPED_TEST_P(ContractTest, ReadOnlyFilesRefuseWritingAndRemoval) {
  auto& fs = this->Files();
  const String path = this->Path(u"ro.txt");
  ASSERT_EQ(ERROR_SUCCESS, this->Write(path, "keep"));
  ASSERT_EQ(ERROR_SUCCESS, fs.SetAttributes(path, FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
  FileInfo info;
  ASSERT_EQ(ERROR_SUCCESS, fs.GetInfo(path, info));
  EXPECT_EQ(FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN,
            info.Attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_DIRECTORY));
  std::unique_ptr<IFileHandle> f;
  EXPECT_EQ(ERROR_ACCESS_DENIED, fs.Open(path, OpenMode::ReadWrite, f));
  EXPECT_EQ(ERROR_ACCESS_DENIED, fs.RemoveFile(path));
  EXPECT_EQ("keep", this->Read(path));
  ASSERT_EQ(ERROR_SUCCESS, fs.SetAttributes(path, FILE_ATTRIBUTE_NORMAL));
  ASSERT_EQ(ERROR_SUCCESS, fs.GetInfo(path, info));
  EXPECT_EQ(0u, info.Attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
  EXPECT_EQ(ERROR_SUCCESS, fs.RemoveFile(path));
}

TYPED_TEST_P(ContractTest, FilesInUseRefuseWritingRemovalAndRenaming) {
  auto& fs = this->Files();
  for (uint32_t code : {ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION}) {
    SCOPED_TRACE(code);
    const String path = this->Path(u"busy.dat");
    ASSERT_EQ(ERROR_SUCCESS, this->Write(path, "busy"));
    if (!TypeParam::LockFile(*this->platform_, path, code)) GTEST_SKIP() << "cannot hold a file";
    std::unique_ptr<IFileHandle> f;
    EXPECT_PRED1(InUse, fs.Open(path, OpenMode::ReadWrite, f));
    EXPECT_PRED1(InUse, fs.Open(path, OpenMode::CreateAlways, f));
    EXPECT_PRED1(InUse, fs.RemoveFile(path));
    EXPECT_PRED1(InUse, fs.Rename(path, this->Path(u"other.dat")));
    TypeParam::UnlockAll(*this->platform_);
    EXPECT_EQ("busy", this->Read(path));
    EXPECT_EQ(ERROR_SUCCESS, fs.RemoveFile(path));
  }
}

TYPED_TEST_P(ContractTest, ReparsePointsAreReportedButNeverFollowed) {
  auto& fs = this->Files();
  ASSERT_EQ(ERROR_SUCCESS, fs.MakeFolder(this->Path(u"Target")));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(this->Path(u"Target\\inside.txt"), "precious"));
  const String link = this->Path(u"Link");
  if (!TypeParam::MakeFolderLink(*this->platform_, link, this->Path(u"Target"))) {
    GTEST_SKIP() << "cannot make links";
  }
  std::vector<FileInfo> entries;
  ASSERT_EQ(ERROR_SUCCESS, fs.ListFolder(this->folder_, entries));
  ASSERT_EQ(2u, entries.size());
  EXPECT_EQ(u"Link", entries[0].Name);
  EXPECT_TRUE(entries[0].IsReparsePoint());
  FileInfo info;
  ASSERT_EQ(ERROR_SUCCESS, fs.GetInfo(link, info));
  EXPECT_TRUE(info.IsReparsePoint());

  // Nothing behind the link is reachable through it.
  std::vector<FileInfo> behind;
  uint32_t rc = fs.ListFolder(link, behind);
  EXPECT_TRUE(rc != ERROR_SUCCESS || behind.empty());
  EXPECT_NE(ERROR_SUCCESS, fs.GetInfo(link + u"\\inside.txt", info));

  EXPECT_EQ(ERROR_SUCCESS, fs.RemoveFile(link));
  EXPECT_FALSE(this->Exists(link));
  EXPECT_EQ("precious", this->Read(this->Path(u"Target\\inside.txt")));
}

// What one name holds may be another's: shredding a shared file removes only its name.
TYPED_TEST_P(ContractTest, HardLinkedFilesLoseOnlyTheShreddedName) {
  const String first = this->Path(u"first.txt"), second = this->Path(u"second.txt");
  ASSERT_EQ(ERROR_SUCCESS, this->Write(first, "shared content"));
  if (!TypeParam::MakeHardLink(*this->platform_, second, first)) GTEST_SKIP() << "no hard links";
  FileInfo info;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().GetInfo(second, info));
  EXPECT_EQ(2u, info.Links);
  SetServices(this->platform_);
  TOrviShredderClass job;
  job.Files = {second};
  EXPECT_TRUE(job.ExecuteShredder());
  SetServices(nullptr);
  ASSERT_EQ(1u, job.Results.size());
  EXPECT_TRUE(job.Results[0].Shared);
  EXPECT_FALSE(this->Exists(second));
  EXPECT_EQ("shared content", this->Read(first));
  ASSERT_EQ(ERROR_SUCCESS, this->Files().GetInfo(first, info));
  EXPECT_EQ(1u, info.Links);
}

TYPED_TEST_P(ContractTest, VolumeFactsOfAWrittenFile) {
  const String path = this->Path(u"dated.txt");
  ASSERT_EQ(ERROR_SUCCESS, this->Write(path, "x"));
  EXPECT_EQ(kDriveFixed, this->Files().DriveType(path));
  FileInfo info;
  ASSERT_EQ(ERROR_SUCCESS, this->Files().GetInfo(path, info));
  constexpr int64_t kYear2000 = 125911584000000000LL;
  constexpr int64_t kYear2100 = 157469184000000000LL;
  EXPECT_GT(info.LastWriteTime, kYear2000);
  EXPECT_LT(info.LastWriteTime, kYear2100);
  EXPECT_FALSE(info.IsDirectory());
  EXPECT_FALSE(info.IsReparsePoint());
}

// --- Event logs ---------------------------------------------------------------------------

// The plug-ins take the logs by position: a log the user may not open keeps its place.
TYPED_TEST_P(ContractTest, EventLogsKeepTheirPlacesWhenOneRefusesTheUser) {
  IEventLogs& logs = *this->platform_->EventLogs;
  StringList names;
  if (logs.ListLogs(names) == ERROR_NOT_SUPPORTED) GTEST_SKIP() << "no event logs";
  if (!TypeParam::RefuseLog(*this->platform_, u"Security")) GTEST_SKIP() << "cannot refuse";
  IEventLogs& refusing = *this->platform_->EventLogs;
  ASSERT_EQ(ERROR_SUCCESS, refusing.ListLogs(names));
  ASSERT_GE(names.size(), 3u);
  EXPECT_EQ((StringList{u"Application", u"Security", u"System"}),
            StringList(names.begin(), names.begin() + 3));
  uint32_t count = 0;
  EXPECT_EQ(ERROR_ACCESS_DENIED, refusing.CountRecords(u"Security", count));
  EXPECT_EQ(ERROR_ACCESS_DENIED, refusing.ClearLog(u"Security"));
  EXPECT_EQ(ERROR_SUCCESS, refusing.CountRecords(u"Application", count));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, refusing.CountRecords(u"NoSuchLog", count));
}

// --- Delete at next start ----------------------------------------------------------------

TYPED_TEST_P(ContractTest, DeleteAtNextStartAppendsToPendingFileRenameOperations) {
  auto& reg = this->Reg();
  const HKEY lm = kHKEY_LOCAL_MACHINE;
  const String sm = u"SYSTEM\\CurrentControlSet\\Control\\Session Manager";
  const String valueName = u"PendingFileRenameOperations";
  RegValue before;
  const bool had = reg.QueryValue(lm, sm, valueName, before, RegView::Native) == ERROR_SUCCESS;
  StringList expected, pending;
  ASSERT_EQ(ERROR_SUCCESS, this->platform_->RebootDeleter->Pending(expected));
  const String first = this->Path(u"first.tmp"), second = this->Path(u"second.tmp");
  for (const String& file : {first, second}) {
    ASSERT_EQ(ERROR_SUCCESS, this->Write(file, "x"));
    ASSERT_EQ(ERROR_SUCCESS, this->platform_->RebootDeleter->Schedule(file));
    expected.push_back(file);
  }
  ASSERT_EQ(ERROR_SUCCESS, this->platform_->RebootDeleter->Pending(pending));
  EXPECT_EQ(expected, pending);
  RegValue after;
  ASSERT_EQ(ERROR_SUCCESS, reg.QueryValue(lm, sm, valueName, after, RegView::Native));
  EXPECT_EQ(REG_MULTI_SZ, after.Type);
  // Each entry is "\??\" + path and an empty target; one more NUL ends the list.
  Bytes tail = RegData::JoinStrings({u"\\??\\" + first, u"", u"\\??\\" + second, u""});
  tail.insert(tail.end(), {0, 0});
  ASSERT_GE(after.Data.size(), tail.size());
  EXPECT_TRUE(std::equal(tail.begin(), tail.end(), after.Data.end() - tail.size()));
  if (had) {
    // What was there stays in front, byte for byte, less its list terminator.
    Bytes head(before.Data.begin(), before.Data.end() - 2);
    EXPECT_TRUE(std::equal(head.begin(), head.end(), after.Data.begin()));
    reg.SetValue(lm, sm, valueName, before, RegView::Native);
  } else {
    EXPECT_EQ(tail, after.Data);
    reg.DeleteValue(lm, sm, valueName, RegView::Native);
  }
}

// --- Shell folders, shell items and jump list files ---------------------------------------

TYPED_TEST_P(ContractTest, KnownFoldersAreTheShellFoldersOfOldAndUnknownIdsAreMissing) {
  IShell& shell = *this->platform_->Shell;
  const std::pair<const char16_t*, int> cases[] = {
      {u"{AE50C081-EBD2-438A-8655-8A092E34987A}", kCSIDL_RECENT},
      {u"{f1b32785-6fba-4fcf-9d55-7b8e7f157091}", kCSIDL_LOCAL_APPDATA},
      {u"{F38BF404-1D43-42F2-9305-67DE0B28FC23}", kCSIDL_WINDOWS},
      {u"{3EB685DB-65F9-4CF6-A03A-E3EF65729F3D}", kCSIDL_APPDATA},
  };
  for (const auto& [id, csidl] : cases) {
    String known, special;
    ASSERT_EQ(ERROR_SUCCESS, shell.GetSpecialFolder(csidl, special)) << ToUtf8(id);
    ASSERT_EQ(ERROR_SUCCESS, shell.GetKnownFolder(id, known)) << ToUtf8(id);
    EXPECT_TRUE(SameText(special, known)) << ToUtf8(known) << " / " << ToUtf8(special);
  }
  String path = u"x";
  EXPECT_EQ(ERROR_FILE_NOT_FOUND,
            shell.GetKnownFolder(u"{00000000-0000-0000-0000-000000000001}", path));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, shell.GetKnownFolder(u"Recent", path));
}

TYPED_TEST_P(ContractTest, ShellItemListsAreNamedItemByItem) {
  // My Computer, drive C: and the file entry of "ash.png" from a real open/save list.
  Bytes list = {0x14, 0x00, 0x1f, 0x50, 0xe0, 0x4f, 0xd0, 0x20, 0xea, 0x3a, 0x69, 0x10, 0xa2,
                0xd8, 0x08, 0x00, 0x2b, 0x30, 0x30, 0x9d, 0x19, 0x00, 0x2f, 'C',  ':',  '\\'};
  list.resize(list.size() + 19, 0);
  const Bytes file = {
      0x56, 0x00, 0x32, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80, 0x00, 0x61,
      0x73, 0x68, 0x2e, 0x70, 0x6e, 0x67, 0x00, 0x40, 0x00, 0x09, 0x00, 0x04, 0x00, 0xef, 0xbe,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x2e, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x61, 0x00, 0x73, 0x00, 0x68, 0x00, 0x2e,
      0x00, 0x70, 0x00, 0x6e, 0x00, 0x67, 0x00, 0x00, 0x00, 0x16, 0x00};
  list.insert(list.end(), file.begin(), file.end());
  list.insert(list.end(), {0, 0});
  IShellItems& items = *this->platform_->ShellItems;
  StringList names;
  ASSERT_EQ(ERROR_SUCCESS, items.ItemNames(list, names));
  ASSERT_EQ(3u, names.size());
  EXPECT_FALSE(names[0].empty());
  EXPECT_EQ(u"C:\\", names[1]);
  EXPECT_EQ(u"ash.png", names[2]);

  const Bytes cutShort(list.begin(), list.begin() + 40);
  const Bytes tooSmall = {0x02, 0x00, 0x00, 0x00};
  for (const Bytes* bad : {&cutShort, &tooSmall}) {
    EXPECT_EQ(ERROR_INVALID_DATA, items.ItemNames(*bad, names));
    EXPECT_TRUE(names.empty());
  }
}

TYPED_TEST_P(ContractTest, JumpListStreamsAndLinkTargetsAreRead) {
  const Bytes jumpList = RealFile("windows/jumplist/1b4dd67f29cb1962.automaticDestinations-ms");
  const Bytes link = RealFile("windows/lnk/NeroInfoTool.lnk");
  if (jumpList.empty() || link.empty()) GTEST_SKIP() << "../shared/realworld is not there";
  IJumpListFiles& reader = *this->platform_->JumpLists;
  std::vector<NamedStream> streams;
  ASSERT_EQ(ERROR_SUCCESS, reader.ReadStreams(jumpList, streams));
  StringList names;
  for (const auto& s : streams) names.push_back(s.Name);
  std::sort(names.begin(), names.end());
  EXPECT_EQ((StringList{u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"DestList"}), names);
  for (const auto& s : streams) {
    if (s.Name == u"DestList") {
      EXPECT_EQ(1500u, s.Data.size());
      continue;
    }
    String target;
    EXPECT_EQ(ERROR_SUCCESS, reader.ReadLink(s.Data, target)) << ToUtf8(s.Name);
    EXPECT_FALSE(target.empty()) << ToUtf8(s.Name);
  }
  String target;
  ASSERT_EQ(ERROR_SUCCESS, reader.ReadLink(link, target));
  EXPECT_EQ(u"C:\\Program Files (x86)\\Nero\\Nero 9\\Nero InfoTool\\InfoTool.exe", target);
  EXPECT_EQ(ERROR_INVALID_DATA, reader.ReadStreams(link, streams));
  EXPECT_EQ(ERROR_INVALID_DATA, reader.ReadLink(Bytes(link.begin() + 4, link.end()), target));
}

REGISTER_TYPED_TEST_SUITE_P(ContractTest, KnownFoldersAreTheShellFoldersOfOldAndUnknownIdsAreMissing,
                            ShellItemListsAreNamedItemByItem, JumpListStreamsAndLinkTargetsAreRead, ValuesEnumerateInCreationOrder,
                            RegistryNamesIgnoreCaseKeepItAndSortUpperCased,
                            ValueTypesRoundTripByteForByte,
                            MissingRegistryItemsAnswerTheirErrorCodes,
                            DeleteKeyTreeRemovesTheKeyAndAllBelowIt,
                            ListFolderIsAscendingByUpperCasedNameAndAWalkMayRemoveAsItReads,
                            PathsIgnoreCaseAndNamesKeepIt,
                            MissingFilesAndFoldersAnswerTheirErrorCodes,
                            PositionalReadWriteFlushAndTruncate, RenameMovesReplacesAndChangesCase,
                            FoldersAreMadeWithParentsAndRemovedOnlyWhenEmpty,
                            ReadOnlyFilesRefuseWritingAndRemoval,
                            FilesInUseRefuseWritingRemovalAndRenaming,
                            ReparsePointsAreReportedButNeverFollowed,
                            HardLinkedFilesLoseOnlyTheShreddedName, VolumeFactsOfAWrittenFile,
                            EventLogsKeepTheirPlacesWhenOneRefusesTheUser,
                            DeleteAtNextStartAppendsToPendingFileRenameOperations);

}  // namespace tc::contract
