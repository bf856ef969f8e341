// The SQLite that Windows 10 and later ship (winsqlite3.dll), loaded at run time.
#pragma once
#include "platform/common/SqliteApi.h"
#include "platform/WinTypes.h"

namespace tc {

// The library's functions, or null with `why` set where Windows has none (older Windows,
// Wine). Loaded once per process and kept.
const SqliteApi* WinSqlite(String& why);

}  // namespace tc
