// Databases over any file system: each is read into memory with its -wal and -journal,
// worked on there by SQLite, and written back all at once.
#pragma once
#include <memory>

#include "platform/FileSystem.h"
#include "platform/Sqlite.h"
#include "platform/common/SqliteApi.h"

namespace tc {

class SqliteFiles : public ISqlite {
 public:
  // `api` null: this system has no SQLite; `why` says so.
  SqliteFiles(std::shared_ptr<IFileSystem> files, const SqliteApi* api, String why = {})
      : files_(std::move(files)), api_(api), why_(std::move(why)) {}

  bool Available(String& why) override;
  uint32_t Open(const String& path, std::unique_ptr<ISqliteDatabase>& db,
                String& message) override;

 private:
  std::shared_ptr<IFileSystem> files_;
  const SqliteApi* api_;
  String why_;
};

// The Windows error code for an SQLite result code.
uint32_t SqliteError(int rc);

}  // namespace tc
