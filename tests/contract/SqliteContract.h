// What every backend's database service must do; instantiated beside ContractTest with the
// same Traits:  INSTANTIATE_TYPED_TEST_SUITE_P(My, SqliteContractTest, MyTraits);
#pragma once
#include "ContractSuite.h"
#ifndef _WIN32
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#endif

namespace tc::contract {

// A database "t(x)" whose row "kept" is checkpointed and whose row `walText` lives only in
// its -wal, made with the linked library; empty where there is none (Windows).
inline std::pair<std::string, std::string> DatabaseWithWal(const std::string& walText) {
#ifdef _WIN32
  (void)walText;
  return {};
#else
  namespace fs = std::filesystem;
  const fs::path dir = fs::temp_directory_path() / ("tc-wal-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  const std::string db = (dir / "w.db").string();
  fs::remove(db);
  sqlite3* h = nullptr;
  sqlite3_open(db.c_str(), &h);
  sqlite3_exec(h, "PRAGMA journal_mode=WAL; CREATE TABLE t(x); INSERT INTO t VALUES('kept');"
               "PRAGMA wal_checkpoint(TRUNCATE);", nullptr, nullptr, nullptr);
  sqlite3_exec(h, ("INSERT INTO t VALUES('" + walText + "')").c_str(), nullptr, nullptr, nullptr);
  auto slurp = [](const std::string& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  std::pair<std::string, std::string> files{slurp(db), slurp(db + "-wal")};
  sqlite3_close(h);
  fs::remove_all(dir);
  return files;
#endif
}

template <typename Traits>
class SqliteContractTest : public ContractTest<Traits> {
 protected:
  void SetUp() override {
    ContractTest<Traits>::SetUp();
    String why;
    if (!this->platform_->Sqlite->Available(why)) {
      std::unique_ptr<ISqliteDatabase> db;
      String message;
      EXPECT_EQ(ERROR_NOT_SUPPORTED, Sql().Open(this->Path(u"x"), db, message));
      GTEST_SKIP() << ToUtf8(why);
    }
  }
  ISqlite& Sql() { return *this->platform_->Sqlite; }
  uint32_t Open(const String& path, std::unique_ptr<ISqliteDatabase>& db) {
    String message;
    return Sql().Open(path, db, message);
  }
  // A saved database at `path` holding t(x) with the rows given.
  void MakeDatabase(const String& path, const std::vector<std::string>& rows) {
    ASSERT_EQ(ERROR_SUCCESS, this->Write(path, ""));
    std::unique_ptr<ISqliteDatabase> db;
    ASSERT_EQ(ERROR_SUCCESS, Open(path, db));
    ASSERT_EQ(ERROR_SUCCESS, db->Execute("CREATE TABLE t(x)"));
    for (const auto& r : rows)
      ASSERT_EQ(ERROR_SUCCESS, db->Execute("INSERT INTO t VALUES(?1)", {SqlValue::Text(r)}));
    ASSERT_EQ(ERROR_SUCCESS, db->Save());
  }
  std::vector<std::string> Rows(const String& path) {
    std::unique_ptr<ISqliteDatabase> db;
    std::vector<SqlRow> rows;
    EXPECT_EQ(ERROR_SUCCESS, Open(path, db));
    if (db) {
      EXPECT_EQ(ERROR_SUCCESS, db->Execute("SELECT x FROM t ORDER BY rowid", {}, &rows));
    }
    std::vector<std::string> texts;
    for (const auto& r : rows) texts.push_back(r.at(0).Bytes);
    return texts;
  }
};

TYPED_TEST_SUITE_P(SqliteContractTest);

TYPED_TEST_P(SqliteContractTest, DeletedRowsLeaveNoTextInTheFileAndOnlySaveWrites) {
  const String path = this->Path(u"History");
  this->MakeDatabase(path, {"http://keep.example/", "http://secret.example/page"});
  const std::string before = this->Read(path);
  std::unique_ptr<ISqliteDatabase> db;
  ASSERT_EQ(ERROR_SUCCESS, this->Open(path, db));
  int64_t changes = 0;
  ASSERT_EQ(ERROR_SUCCESS, db->Execute("DELETE FROM t WHERE x LIKE ?1",
                                       {SqlValue::Text("%secret%")}, nullptr, &changes));
  EXPECT_EQ(1, changes);
  EXPECT_EQ(before, this->Read(path)) << "a change reaches the file only through Save";
  ASSERT_EQ(ERROR_SUCCESS, db->Save());
  const std::string after = this->Read(path);
  EXPECT_EQ(std::string::npos, after.find("secret.example"));
  EXPECT_EQ(std::vector<std::string>{"http://keep.example/"}, this->Rows(path));
  EXPECT_EQ((StringList{u"History"}), this->Listing(this->folder_)) << "no copy left beside";
}

TYPED_TEST_P(SqliteContractTest, AWalIsReadAndItsPagesScrubbedOnSave) {
  auto [main, wal] = DatabaseWithWal("only-in-the-wal");
  if (wal.empty()) GTEST_SKIP() << "no linked SQLite to make a WAL with";
  const String path = this->Path(u"places.sqlite");
  ASSERT_EQ(ERROR_SUCCESS, this->Write(path, main));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(path + u"-wal", wal));
  ASSERT_EQ(ERROR_SUCCESS, this->Write(path + u"-journal", "stale only-in-the-wal page"));
  EXPECT_EQ((std::vector<std::string>{"kept", "only-in-the-wal"}), this->Rows(path));
  std::unique_ptr<ISqliteDatabase> db;
  ASSERT_EQ(ERROR_SUCCESS, this->Open(path, db));
  ASSERT_EQ(ERROR_SUCCESS, db->Execute("DELETE FROM t WHERE x <> 'kept'"));
  ASSERT_EQ(ERROR_SUCCESS, db->Save());
  EXPECT_EQ((StringList{u"places.sqlite"}), this->Listing(this->folder_));
  EXPECT_EQ(std::string::npos, this->Read(path).find("only-in-the-wal"));
  EXPECT_EQ(std::vector<std::string>{"kept"}, this->Rows(path));
  std::vector<SqlRow> mode;
  ASSERT_EQ(ERROR_SUCCESS, this->Open(path, db));
  ASSERT_EQ(ERROR_SUCCESS, db->Execute("PRAGMA journal_mode", {}, &mode));
  EXPECT_EQ("wal", mode.at(0).at(0).Bytes) << "the application's journal mode stays";
}

TYPED_TEST_P(SqliteContractTest, FilesThatAreNoDatabasesAreReportedAndLeftAlone) {
  const String good = this->Path(u"good");
  this->MakeDatabase(good, {std::string(3000, 'a'), std::string(3000, 'b')});
  const std::string whole = this->Read(good);
  struct Case {
    const char16_t* name;
    std::string bytes;  // written unless empty
    uint32_t expected;
  } cases[] = {
      {u"missing", "", ERROR_FILE_NOT_FOUND},
      {u"text", std::string(600, 'x'), ERROR_FILE_CORRUPT},
      {u"bad-header", "SQLite format 3" + std::string(1, '\0') + std::string(2000, '\xFF'),
       ERROR_FILE_CORRUPT},
  };
  for (const auto& c : cases) {
    const String path = this->Path(c.name);
    if (!c.bytes.empty()) {
      ASSERT_EQ(ERROR_SUCCESS, this->Write(path, c.bytes));
    }
    std::unique_ptr<ISqliteDatabase> db;
    String message;
    EXPECT_EQ(c.expected, this->Sql().Open(path, db, message)) << ToUtf8(c.name);
    EXPECT_FALSE(db);
    if (!c.bytes.empty()) {
      EXPECT_EQ(c.bytes, this->Read(path)) << ToUtf8(c.name);
    }
  }
  std::unique_ptr<ISqliteDatabase> none;
  EXPECT_EQ(ERROR_ACCESS_DENIED, this->Open(this->folder_, none)) << "a folder";
  // A database cut short opens, but its lost pages are found and nothing is written.
  const String cut = this->Path(u"cut");
  ASSERT_EQ(ERROR_SUCCESS, this->Write(cut, whole.substr(0, whole.size() / 2)));
  std::unique_ptr<ISqliteDatabase> db;
  std::vector<SqlRow> rows;
  uint32_t rc = this->Open(cut, db);
  if (rc == ERROR_SUCCESS) rc = db->Execute("DELETE FROM t", {}, &rows);
  if (rc == ERROR_SUCCESS) rc = db->Save();
  EXPECT_EQ(ERROR_FILE_CORRUPT, rc);
  EXPECT_EQ(whole.substr(0, whole.size() / 2), this->Read(cut));
}

TYPED_TEST_P(SqliteContractTest, ASideFileInUseStopsTheSaveBeforeAnythingChanges) {
  const String path = this->Path(u"Cookies");
  this->MakeDatabase(path, {"session=1"});
  ASSERT_EQ(ERROR_SUCCESS, this->Write(path + u"-journal", ""));
  const std::string before = this->Read(path);
  std::unique_ptr<ISqliteDatabase> db;
  ASSERT_EQ(ERROR_SUCCESS, this->Open(path, db));
  ASSERT_EQ(ERROR_SUCCESS, db->Execute("DELETE FROM t"));
  if (!TypeParam::LockFile(*this->platform_, path + u"-journal", ERROR_SHARING_VIOLATION))
    GTEST_SKIP() << "this backend cannot hold a file";
  EXPECT_TRUE(InUse(db->Save()));
  TypeParam::UnlockAll(*this->platform_);
  EXPECT_EQ(before, this->Read(path));
  EXPECT_EQ((StringList{u"Cookies", u"Cookies-journal"}), this->Listing(this->folder_));
}

REGISTER_TYPED_TEST_SUITE_P(SqliteContractTest, DeletedRowsLeaveNoTextInTheFileAndOnlySaveWrites,
                            AWalIsReadAndItsPagesScrubbedOnSave,
                            FilesThatAreNoDatabasesAreReportedAndLeftAlone,
                            ASideFileInUseStopsTheSaveBeforeAnythingChanges);

}  // namespace tc::contract
