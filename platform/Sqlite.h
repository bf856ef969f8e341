// SQLite databases of applications (browser histories, cookie jars), opened by Windows path.
#pragma once
#include <memory>
#include <string>

#include "WinTypes.h"

namespace tc {

enum class SqlType : uint8_t { Null, Integer, Real, Text, Blob };

struct SqlValue {
  SqlType Type = SqlType::Null;
  int64_t Integer = 0;
  double Real = 0;
  std::string Bytes;  // Text as UTF-8, or the blob

  static SqlValue Int(int64_t v) { return {SqlType::Integer, v, 0, {}}; }
  static SqlValue Text(std::string v) { return {SqlType::Text, 0, 0, std::move(v)}; }
};
using SqlRow = std::vector<SqlValue>;

// A working copy of one database: statements change the copy only, Save writes it back.
class ISqliteDatabase {
 public:
  virtual ~ISqliteDatabase() = default;
  // Runs one statement with `params` bound to ?1, ?2, ... in order. Rows it yields are
  // appended to `rows` when given; `changes` gets the number of rows it changed.
  // ERROR_INVALID_DATA for a statement the database rejects (no such table, ...),
  // ERROR_FILE_CORRUPT when the database turns out damaged.
  virtual uint32_t Execute(const std::string& sql, const std::vector<SqlValue>& params = {},
                           std::vector<SqlRow>* rows = nullptr, int64_t* changes = nullptr) = 0;
  // Vacuums the copy (deleted rows were overwritten: secure_delete is on), checks it, and
  // writes it over the file: a new file beside it, flushed, renamed over the original; the
  // file's -wal and -journal are overwritten and removed first, as their pages hold the
  // old rows. The database is closed afterwards; a failure leaves the file as it was.
  virtual uint32_t Save() = 0;
  // SQLite's own words for the last failure.
  virtual String LastMessage() const = 0;
};

// Contract (every backend):
// - Open reads the file with its -wal and -journal (a hot journal is rolled back, a WAL
//   replayed, in the copy only) and never follows a link: a missing file is
//   ERROR_FILE_NOT_FOUND, a link or folder ERROR_ACCESS_DENIED, a file that is not a
//   database or is damaged ERROR_FILE_CORRUPT; nothing is changed on disk by Open.
// - Without a SQLite library every Open answers ERROR_NOT_SUPPORTED and Available is false.
class ISqlite {
 public:
  virtual ~ISqlite() = default;
  // False, with the reason, when this system has no SQLite library.
  virtual bool Available(String& why) = 0;
  virtual uint32_t Open(const String& path, std::unique_ptr<ISqliteDatabase>& db,
                        String& message) = 0;
};

}  // namespace tc
