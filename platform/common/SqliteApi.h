// The SQLite functions the database service calls, as a table: linked in on Linux, taken
// from the Windows copy of SQLite at run time on Windows.
#pragma once
#include <sqlite3.h>

namespace tc {

struct SqliteApi {
  decltype(&::sqlite3_vfs_find) vfs_find;
  decltype(&::sqlite3_vfs_register) vfs_register;
  decltype(&::sqlite3_open_v2) open_v2;
  decltype(&::sqlite3_close_v2) close_v2;
  decltype(&::sqlite3_prepare_v2) prepare_v2;
  decltype(&::sqlite3_step) step;
  decltype(&::sqlite3_finalize) finalize;
  decltype(&::sqlite3_bind_int64) bind_int64;
  decltype(&::sqlite3_bind_double) bind_double;
  decltype(&::sqlite3_bind_text) bind_text;
  decltype(&::sqlite3_bind_blob) bind_blob;
  decltype(&::sqlite3_column_count) column_count;
  decltype(&::sqlite3_column_type) column_type;
  decltype(&::sqlite3_column_int64) column_int64;
  decltype(&::sqlite3_column_double) column_double;
  decltype(&::sqlite3_column_blob) column_blob;
  decltype(&::sqlite3_column_bytes) column_bytes;
  decltype(&::sqlite3_changes) changes;
  decltype(&::sqlite3_errmsg) errmsg;
  decltype(&::sqlite3_extended_errcode) extended_errcode;
};

}  // namespace tc
