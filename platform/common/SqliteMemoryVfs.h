// An SQLite file system in memory: the database service puts a database file and its -wal
// and -journal here, lets SQLite work on the copies, and takes the result back.
#pragma once
#include <string>

#include "platform/common/SqliteApi.h"

namespace tc {

namespace SqliteMemoryVfs {
// Registers the file system with `api` (once per library); returns its name for open_v2.
const char* Register(const SqliteApi& api);
void Put(const std::string& name, std::string data);
// False when SQLite holds no file of that name (it deleted a journal, say).
bool Get(const std::string& name, std::string& data);
void Drop(const std::string& name);
}  // namespace SqliteMemoryVfs

}  // namespace tc
