#include "platform/common/SqliteFiles.h"

#include <atomic>

#include "platform/common/SqliteMemoryVfs.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

const char16_t* const kSideFiles[] = {u"-wal", u"-journal"};

bool IsPlainFile(IFileSystem& files, const String& path) {
  FileInfo info;
  return files.GetInfo(path, info) == ERROR_SUCCESS && !info.IsDirectory() &&
         !info.IsReparsePoint();
}

// Overwrites a file with zeros and empties it, so its old pages are gone before removal.
uint32_t Scrub(IFileSystem& files, const String& path) {
  std::unique_ptr<IFileHandle> file;
  uint32_t rc = files.Open(path, OpenMode::ReadWrite, file);
  if (rc != ERROR_SUCCESS) return rc;
  uint64_t size = 0;
  rc = file->GetSize(size);
  const std::string zeros(64 * 1024, '\0');
  for (uint64_t at = 0; rc == ERROR_SUCCESS && at < size; at += zeros.size())
    rc = file->Write(at, zeros.data(), size_t(std::min<uint64_t>(zeros.size(), size - at)));
  if (rc == ERROR_SUCCESS) rc = file->Flush();
  if (rc == ERROR_SUCCESS) rc = file->SetSize(0);
  file.reset();
  return rc == ERROR_SUCCESS ? files.RemoveFile(path) : rc;
}

class Database : public ISqliteDatabase {
 public:
  Database(std::shared_ptr<IFileSystem> files, const SqliteApi& api, String path, std::string name)
      : files_(std::move(files)), api_(api), path_(std::move(path)), name_(std::move(name)) {}
  ~Database() override { Close(); }

  uint32_t Connect() {
    const char* vfs = SqliteMemoryVfs::Register(api_);
    int rc = api_.open_v2(name_.c_str(), &db_, SQLITE_OPEN_READWRITE, vfs);
    if (rc != SQLITE_OK) return Fail(rc);
    // Exclusive: a WAL needs no shared memory then; nothing else sees these copies.
    for (const char* pragma : {"PRAGMA locking_mode=EXCLUSIVE", "PRAGMA secure_delete=ON",
                               "PRAGMA temp_store=MEMORY", "SELECT count(*) FROM sqlite_master"})
      if (uint32_t err = Execute(pragma)) return err;
    return ERROR_SUCCESS;
  }

  uint32_t Execute(const std::string& sql, const std::vector<SqlValue>& params = {},
                   std::vector<SqlRow>* rows = nullptr, int64_t* changes = nullptr) override {
    if (!db_) return ERROR_INVALID_HANDLE;
    sqlite3_stmt* stmt = nullptr;
    int rc = api_.prepare_v2(db_, sql.c_str(), int(sql.size()), &stmt, nullptr);
    if (rc != SQLITE_OK) return Fail(rc);
    for (size_t i = 0; i < params.size() && rc == SQLITE_OK; ++i) {
      const SqlValue& p = params[i];
      const int at = int(i + 1);
      switch (p.Type) {
        case SqlType::Integer: rc = api_.bind_int64(stmt, at, p.Integer); break;
        case SqlType::Real: rc = api_.bind_double(stmt, at, p.Real); break;
        case SqlType::Text:
          rc = api_.bind_text(stmt, at, p.Bytes.data(), int(p.Bytes.size()), SQLITE_TRANSIENT);
          break;
        case SqlType::Blob:
          rc = api_.bind_blob(stmt, at, p.Bytes.data(), int(p.Bytes.size()), SQLITE_TRANSIENT);
          break;
        case SqlType::Null: break;
      }
    }
    while (rc == SQLITE_OK || rc == SQLITE_ROW) {
      rc = api_.step(stmt);
      if (rc == SQLITE_ROW && rows) rows->push_back(Row(stmt));
    }
    api_.finalize(stmt);
    if (rc != SQLITE_DONE) return Fail(rc);
    if (changes) *changes = api_.changes(db_);
    return ERROR_SUCCESS;
  }

  uint32_t Save() override {
    if (!db_) return ERROR_INVALID_HANDLE;
    std::vector<SqlRow> check;
    for (const char* step : {"VACUUM", "PRAGMA wal_checkpoint(TRUNCATE)"})
      if (uint32_t err = Execute(step)) return err;
    if (uint32_t err = Execute("PRAGMA quick_check", {}, &check)) return err;
    if (check.size() != 1 || check[0].empty() || check[0][0].Bytes != "ok") {
      message_ = u"the database fails its check after the change; left as it was";
      return ERROR_FILE_CORRUPT;
    }
    api_.close_v2(db_);  // folds the WAL into the main copy
    db_ = nullptr;
    std::string data;
    SqliteMemoryVfs::Get(name_, data);
    uint32_t rc = WriteBack(Bytes(data.begin(), data.end()));
    Close();
    return rc;
  }

  String LastMessage() const override { return message_; }

 private:
  SqlRow Row(sqlite3_stmt* stmt) {
    SqlRow row(size_t(api_.column_count(stmt)));
    for (size_t c = 0; c < row.size(); ++c) {
      SqlValue& v = row[c];
      const int col = int(c);
      switch (api_.column_type(stmt, col)) {
        case SQLITE_INTEGER: v = SqlValue::Int(api_.column_int64(stmt, col)); break;
        case SQLITE_FLOAT: v.Type = SqlType::Real; v.Real = api_.column_double(stmt, col); break;
        case SQLITE_NULL: break;
        default: {
          v.Type = api_.column_type(stmt, col) == SQLITE_TEXT ? SqlType::Text : SqlType::Blob;
          const void* p = api_.column_blob(stmt, col);
          if (p) v.Bytes.assign(static_cast<const char*>(p), size_t(api_.column_bytes(stmt, col)));
        }
      }
    }
    return row;
  }

  uint32_t Fail(int rc) {
    message_ = db_ ? FromUtf8(api_.errmsg(db_)) : u"out of memory";
    if (db_ && (rc & 0xFF) == SQLITE_ERROR) rc = api_.extended_errcode(db_);
    return SqliteError(rc);
  }

  // New file beside, flushed; side files checked, then scrubbed; renamed over the original.
  uint32_t WriteBack(const Bytes& data) {
    IFileSystem& fs = *files_;
    StringList sides;
    for (const char16_t* suffix : kSideFiles) {
      if (!IsPlainFile(fs, path_ + suffix)) continue;
      std::unique_ptr<IFileHandle> probe;  // in use: the application still has them open
      if (uint32_t rc = fs.Open(path_ + suffix, OpenMode::ReadWrite, probe)) return rc;
      sides.push_back(path_ + suffix);
    }
    String temp;
    uint32_t rc;
    {
      std::unique_ptr<IFileHandle> file;
      rc = FileContents::CreateTemp(fs, path_, temp, file);
      if (rc != ERROR_SUCCESS) return rc;
      if (!data.empty()) rc = file->Write(0, data.data(), data.size());
      if (rc == ERROR_SUCCESS) rc = file->Flush();
    }
    for (const String& side : sides)
      if (rc == ERROR_SUCCESS) rc = Scrub(fs, side);
    if (rc == ERROR_SUCCESS) rc = fs.Rename(temp, path_);
    if (rc != ERROR_SUCCESS) fs.RemoveFile(temp);
    return rc;
  }

  void Close() {
    if (db_) api_.close_v2(db_);
    db_ = nullptr;
    for (const std::string& n : {name_, name_ + "-wal", name_ + "-journal"})
      SqliteMemoryVfs::Drop(n);
  }

  std::shared_ptr<IFileSystem> files_;
  const SqliteApi& api_;
  String path_;
  std::string name_;
  sqlite3* db_ = nullptr;
  String message_;
};

}  // namespace

uint32_t SqliteError(int rc) {
  switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE: return ERROR_SUCCESS;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: return ERROR_FILE_CORRUPT;
    case SQLITE_NOMEM: return ERROR_NOT_ENOUGH_MEMORY;
    case SQLITE_FULL: return ERROR_DISK_FULL;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return ERROR_LOCK_VIOLATION;
    case SQLITE_CANTOPEN: return ERROR_CANTOPEN;
    case SQLITE_IOERR: return ERROR_CANTREAD;
    default: return ERROR_INVALID_DATA;
  }
}

bool SqliteFiles::Available(String& why) {
  why = api_ ? String() : why_;
  return api_ != nullptr;
}

uint32_t SqliteFiles::Open(const String& path, std::unique_ptr<ISqliteDatabase>& db,
                           String& message) {
  db.reset();
  message.clear();
  if (!api_) {
    message = why_;
    return ERROR_NOT_SUPPORTED;
  }
  FileInfo info;
  if (uint32_t rc = files_->GetInfo(path, info)) return rc;
  if (info.IsDirectory() || info.IsReparsePoint()) return ERROR_ACCESS_DENIED;
  static std::atomic<unsigned> opened{0};
  const std::string name = "/tc" + std::to_string(++opened) + "/db";
  auto opening = std::make_unique<Database>(files_, *api_, path, name);  // drops the copies
  for (const char16_t* suffix : {u"", u"-wal", u"-journal"}) {
    const String file = path + suffix;
    if (*suffix && !IsPlainFile(*files_, file)) continue;
    Bytes data;
    if (uint32_t rc = FileContents::Read(*files_, file, data)) return rc;
    SqliteMemoryVfs::Put(name + ToUtf8(suffix), std::string(data.begin(), data.end()));
  }
  if (uint32_t rc = opening->Connect()) {
    message = opening->LastMessage();
    return rc;
  }
  db = std::move(opening);
  return ERROR_SUCCESS;
}

}  // namespace tc
