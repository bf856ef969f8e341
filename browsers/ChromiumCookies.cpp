#include "browsers/BrowserDatabase.h"
#include "browsers/ChromiumStores.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

String HostOf(const String& hostKey) {
  return !hostKey.empty() && hostKey[0] == u'.' ? hostKey.substr(1) : hostKey;
}

}  // namespace

StringList ChromiumCookieFiles(const String& Profile) {
  return {Profile + u"Network\\Cookies", Profile + u"Cookies"};
}

bool ScanChromiumCookies(const String& Profile, TChromiumTraces& Traces, String& Error) {
  bool ok = true;
  for (const String& file : ChromiumCookieFiles(Profile)) {
    TBrowserDatabase db;
    std::vector<StringList> rows;
    if (db.Open(file) && (!db.IsOpen() || db.Query("SELECT host_key, name FROM cookies", rows))) {
      for (const auto& r : rows) Traces.push_back({JoinTraceText(HostOf(r.at(0)), r.at(1)), file});
    } else {
      Error = db.Error();
      ok = false;
    }
  }
  return ok;
}

bool CleanChromiumCookies(const String& Profile, const std::function<bool(const String&)>& Keep,
                          int& Kept, String& Error) {
  bool ok = true;
  for (const String& file : ChromiumCookieFiles(Profile)) {
    TBrowserDatabase db;
    std::vector<StringList> hosts;
    bool done = db.Open(file);
    if (done && db.IsOpen()) {
      done = db.Query("SELECT host_key, count(*) FROM cookies GROUP BY host_key", hosts);
      for (const auto& h : hosts) {
        if (!done) break;
        if (Keep(HostOf(h.at(0))))
          Kept += std::stoi(ToUtf8(h.at(1)));
        else
          done = db.Execute("DELETE FROM cookies WHERE host_key = ?1", {SqlValue::Text(ToUtf8(h.at(0)))});
      }
      done = done && db.Save();
    }
    if (!done) {
      Error = db.Error();
      ok = false;
    }
  }
  return ok;
}

}  // namespace tc
