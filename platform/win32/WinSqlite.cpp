#include "platform/win32/WinSqlite.h"

#include <windows.h>

namespace tc {

namespace {

template <class Fn>
bool Take(HMODULE module, const char* name, Fn& fn) {
  fn = reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(module, name)));
  return fn != nullptr;
}

struct Loaded {
  SqliteApi api{};
  bool ok = false;
  String why;
};

Loaded Load() {
  Loaded l;
  HMODULE m = LoadLibraryExW(L"winsqlite3.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (!m) m = LoadLibraryW(L"winsqlite3.dll");  // systems without the search flag
  if (!m) {
    l.why = u"this Windows has no winsqlite3.dll (Windows 10 and later ship it)";
    return l;
  }
  SqliteApi& a = l.api;
  l.ok = Take(m, "sqlite3_vfs_find", a.vfs_find) && Take(m, "sqlite3_vfs_register", a.vfs_register) &&
         Take(m, "sqlite3_open_v2", a.open_v2) && Take(m, "sqlite3_close_v2", a.close_v2) &&
         Take(m, "sqlite3_prepare_v2", a.prepare_v2) && Take(m, "sqlite3_step", a.step) &&
         Take(m, "sqlite3_finalize", a.finalize) && Take(m, "sqlite3_bind_int64", a.bind_int64) &&
         Take(m, "sqlite3_bind_double", a.bind_double) &&
         Take(m, "sqlite3_bind_text", a.bind_text) && Take(m, "sqlite3_bind_blob", a.bind_blob) &&
         Take(m, "sqlite3_column_count", a.column_count) &&
         Take(m, "sqlite3_column_type", a.column_type) &&
         Take(m, "sqlite3_column_int64", a.column_int64) &&
         Take(m, "sqlite3_column_double", a.column_double) &&
         Take(m, "sqlite3_column_blob", a.column_blob) &&
         Take(m, "sqlite3_column_bytes", a.column_bytes) && Take(m, "sqlite3_changes", a.changes) &&
         Take(m, "sqlite3_errmsg", a.errmsg) &&
         Take(m, "sqlite3_extended_errcode", a.extended_errcode);
  if (!l.ok) l.why = u"winsqlite3.dll lacks functions this program needs";
  return l;
}

}  // namespace

const SqliteApi* WinSqlite(String& why) {
  static const Loaded loaded = Load();
  why = loaded.why;
  return loaded.ok ? &loaded.api : nullptr;
}

}  // namespace tc
