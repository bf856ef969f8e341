// The SQLite library this program is linked with (not on Windows, which brings its own).
#pragma once
#include "platform/common/SqliteApi.h"

namespace tc {

const SqliteApi* LinkedSqlite();

}  // namespace tc
