#include "browsers/BrowserDatabase.h"

#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

String Text(const SqlValue& v) {
  switch (v.Type) {
    case SqlType::Integer: return FromUtf8(std::to_string(v.Integer));
    case SqlType::Real: return FromUtf8(std::to_string(v.Real));
    case SqlType::Text: return FromUtf8(v.Bytes);
    default: return {};
  }
}

String ErrorText(uint32_t rc) {
  switch (rc) {
    case ERROR_FILE_CORRUPT: return u"damaged or not a database";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: return u"in use by another program";
    case ERROR_NOT_SUPPORTED: return u"no SQLite on this system";
    default: return u"error " + FromUtf8(std::to_string(rc));
  }
}

}  // namespace

bool BrowserDatabasesAvailable(String& why) {
  const auto& sqlite = Services().Sqlite;
  if (!sqlite) {
    why = u"no SQLite on this system";
    return false;
  }
  return sqlite->Available(why);
}

String SizeText(uint64_t Bytes) {
  return Bytes < 10240 ? FromUtf8(std::to_string(Bytes) + " Bytes")
                       : FromUtf8(std::to_string((Bytes + 512) / 1024) + " KB");
}

String JoinTraceText(const String& First, const String& Second) {
  if (First.empty()) return Second;
  if (Second.empty()) return First;
  return First + u" | " + Second;
}

bool TBrowserDatabase::Fail(uint32_t rc, const String& what) {
  error_ = path_ + u": " + ErrorText(rc) + (what.empty() ? u"" : u" (" + what + u")");
  return false;
}

bool TBrowserDatabase::Open(const String& Path) {
  path_ = Path;
  error_.clear();
  db_.reset();
  FileInfo info;
  if (Services().Files->GetInfo(Path, info) != ERROR_SUCCESS) return true;
  if (!Services().Sqlite) return Fail(ERROR_NOT_SUPPORTED, {});
  String message;
  uint32_t rc = Services().Sqlite->Open(Path, db_, message);
  return rc == ERROR_SUCCESS || Fail(rc, message);
}

bool TBrowserDatabase::Query(const std::string& Sql, std::vector<StringList>& Rows,
                             const std::vector<SqlValue>& Params) {
  Rows.clear();
  if (!db_) return false;
  std::vector<SqlRow> rows;
  if (uint32_t rc = db_->Execute(Sql, Params, &rows)) return Fail(rc, db_->LastMessage());
  Rows.reserve(rows.size());
  for (const auto& r : rows) {
    StringList& out = Rows.emplace_back();
    for (const auto& v : r) out.push_back(Text(v));
  }
  return true;
}

bool TBrowserDatabase::Execute(const std::string& Sql, const std::vector<SqlValue>& Params) {
  if (!db_) return false;
  uint32_t rc = db_->Execute(Sql, Params);
  return rc == ERROR_SUCCESS || Fail(rc, db_->LastMessage());
}

StringList TBrowserDatabase::Tables() {
  std::vector<StringList> rows;
  Query("SELECT name FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite_%'", rows);
  StringList names;
  for (auto& r : rows) names.push_back(r.at(0));
  return names;
}

bool TBrowserDatabase::HasTable(const String& Table) {
  std::vector<StringList> rows;
  return Query("SELECT 1 FROM sqlite_master WHERE type='table' AND name=?1", rows,
               {SqlValue::Text(ToUtf8(Table))}) &&
         !rows.empty();
}

bool TBrowserDatabase::EmptyTables(const StringList& Keep) {
  for (const String& table : Tables()) {
    bool keep = false;
    for (const String& k : Keep) keep = keep || table == k;
    // Table names come from the file: quoted so no name can end the statement.
    std::string quoted = "\"";
    for (char c : ToUtf8(table)) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    if (!keep && !Execute("DELETE FROM " + quoted + "\"")) return false;
  }
  return true;
}

bool TBrowserDatabase::Save() {
  if (!db_) return false;
  uint32_t rc = db_->Save();
  String message = db_->LastMessage();
  db_.reset();
  return rc == ERROR_SUCCESS || Fail(rc, message);
}

}  // namespace tc
