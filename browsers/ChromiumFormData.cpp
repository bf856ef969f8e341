#include "browsers/BrowserDatabase.h"
#include "browsers/ChromiumStores.h"

namespace tc {

namespace {

// Rows of one query on one database of the profile, as traces.
bool ScanRows(const String& file, const std::string& sql, bool isUrl, TChromiumTraces& traces,
              String& error) {
  TBrowserDatabase db;
  std::vector<StringList> rows;
  if (!db.Open(file) || (db.IsOpen() && !db.Query(sql, rows))) {
    error = db.Error();
    return false;
  }
  for (const auto& r : rows) traces.push_back({JoinTraceText(r.at(0), r.at(1)), file, isUrl});
  return true;
}

bool DeleteRows(const String& file, const StringList& tables, String& error) {
  TBrowserDatabase db;
  bool ok = db.Open(file);
  if (ok && db.IsOpen()) {
    for (const String& table : tables)
      if (ok && db.HasTable(table)) ok = db.Execute("DELETE FROM " + std::string(table.begin(), table.end()));
    ok = ok && db.Save();
  }
  if (!ok) error = db.Error();
  return ok;
}

}  // namespace

bool ScanChromiumFormData(const String& Profile, TChromiumTraces& Traces, String& Error) {
  return ScanRows(Profile + u"Web Data", "SELECT name, value FROM autofill", false, Traces, Error);
}

bool CleanChromiumFormData(const String& Profile, String& Error) {
  return DeleteRows(Profile + u"Web Data", {u"autofill", u"autofill_dates"}, Error);
}

bool ScanChromiumPasswords(const String& Profile, TChromiumTraces& Traces, String& Error) {
  bool ok = true;
  for (const char16_t* name : {u"Login Data", u"Login Data For Account"})
    ok = ScanRows(Profile + name, "SELECT origin_url, username_value FROM logins", true, Traces,
                  Error) && ok;
  return ok;
}

bool CleanChromiumPasswords(const String& Profile, String& Error) {
  bool ok = true;
  for (const char16_t* name : {u"Login Data", u"Login Data For Account"})
    ok = DeleteRows(Profile + name, {u"logins", u"password_notes", u"insecure_credentials", u"stats"},
                    Error) && ok;
  return ok;
}

}  // namespace tc
