#include "browsers/FirefoxStores.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

String HostOf(const String& host) {
  return !host.empty() && host[0] == u'.' ? host.substr(1) : host;
}

// Rows of one query on one database of the profile, as traces.
bool ScanRows(const String& file, const std::string& sql, bool isUrl, TBrowserTraces& traces,
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

}  // namespace

bool ScanFirefoxCookies(const String& Profile, TBrowserTraces& Traces, String& Error) {
  TBrowserTraces found;
  if (!ScanRows(Profile + u"cookies.sqlite", "SELECT host, name FROM moz_cookies ORDER BY id",
                false, found, Error))
    return false;
  for (auto& t : found) Traces.push_back({HostOf(t.Text), t.File, false});
  return true;
}

bool CleanFirefoxCookies(const String& Profile, const std::function<bool(const String&)>& Keep,
                         int& Kept, String& Error) {
  TBrowserDatabase db;
  std::vector<StringList> hosts;
  bool ok = db.Open(Profile + u"cookies.sqlite");
  if (ok && db.IsOpen()) {
    ok = db.Query("SELECT host, count(*) FROM moz_cookies GROUP BY host", hosts);
    for (const auto& h : hosts) {
      if (!ok) break;
      if (Keep(HostOf(h.at(0))))
        Kept += std::stoi(ToUtf8(h.at(1)));
      else
        ok = db.Execute("DELETE FROM moz_cookies WHERE host = ?1", {SqlValue::Text(ToUtf8(h.at(0)))});
    }
    ok = ok && db.Save();
  }
  if (!ok) Error = db.Error();
  return ok;
}

bool ScanFirefoxFormHistory(const String& Profile, TBrowserTraces& Traces, String& Error) {
  return ScanRows(Profile + u"formhistory.sqlite",
                  "SELECT fieldname, value FROM moz_formhistory ORDER BY id", false, Traces, Error);
}

bool CleanFirefoxFormHistory(const String& Profile, String& Error) {
  TBrowserDatabase db;
  bool ok = db.Open(Profile + u"formhistory.sqlite");
  if (ok && db.IsOpen())
    ok = db.EmptyTables({u"moz_deleted_formhistory", u"moz_meta"}) && db.Save();
  if (!ok) Error = db.Error();
  return ok;
}

}  // namespace tc
