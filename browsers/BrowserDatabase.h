// A browser's SQLite file as its stores use it: opened through the platform's database
// service, read as text rows, emptied table by table and saved.
#pragma once
#include <memory>

#include "platform/Sqlite.h"

namespace tc {

class TBrowserDatabase {
 public:
  // True with IsOpen false when the file is missing; false with Error set when it cannot be
  // read (no SQLite here, damaged, in use).
  bool Open(const String& Path);
  bool IsOpen() const { return db_ != nullptr; }
  const String& Error() const { return error_; }
  // Forgets a failure that a fallback query answered.
  void ClearError() { error_.clear(); }
  const String& Path() const { return path_; }

  // Rows of a query as text (numbers rendered in decimal); false with Error set.
  bool Query(const std::string& Sql, std::vector<StringList>& Rows,
             const std::vector<SqlValue>& Params = {});
  bool Execute(const std::string& Sql, const std::vector<SqlValue>& Params = {});
  bool HasTable(const String& Table);
  StringList Tables();
  // Deletes every row of every table but those named in Keep.
  bool EmptyTables(const StringList& Keep);
  // Vacuums and writes the file back; the database is closed afterwards.
  bool Save();

 private:
  bool Fail(uint32_t rc, const String& what);

  std::unique_ptr<ISqliteDatabase> db_;
  String path_;
  String error_;
};

// One trace of a browser store, as the preview shows it.
struct TBrowserTrace {
  String Text;         // what a person recognises: "title | url", "host | name", ...
  String File;         // the file that holds it
  bool IsUrl = false;  // Text is or ends in an address
};
using TBrowserTraces = std::vector<TBrowserTrace>;

// Whether this system can read SQLite files at all; `why` says why not.
bool BrowserDatabasesAvailable(String& why);
// "679 Bytes", "12 KB": a cached file's size as the preview shows it.
String SizeText(uint64_t Bytes);
// "title | url", or the one that is not empty.
String JoinTraceText(const String& First, const String& Second);

}  // namespace tc
