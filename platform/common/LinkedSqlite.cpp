#ifndef _WIN32
#include "platform/common/LinkedSqlite.h"

namespace tc {

const SqliteApi* LinkedSqlite() {
  static const SqliteApi api = {
      sqlite3_vfs_find,     sqlite3_vfs_register,  sqlite3_open_v2,     sqlite3_close_v2,
      sqlite3_prepare_v2,   sqlite3_step,          sqlite3_finalize,    sqlite3_bind_int64,
      sqlite3_bind_double,  sqlite3_bind_text,     sqlite3_bind_blob,   sqlite3_column_count,
      sqlite3_column_type,  sqlite3_column_int64,  sqlite3_column_double, sqlite3_column_blob,
      sqlite3_column_bytes, sqlite3_changes,       sqlite3_errmsg,      sqlite3_extended_errcode,
  };
  return &api;
}

}  // namespace tc
#endif
