#include <unordered_set>

#include "browsers/BrowserDatabase.h"
#include "browsers/ChromiumStores.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

// Databases beside History that only hold what browsing left behind.
const char16_t* const kHistoryCompanions[] = {u"Top Sites", u"Shortcuts",
                                              u"Network Action Predictor"};
const char16_t* const kHistoryFiles[] = {u"Visited Links", u"History Provider Cache"};

bool EmptyDatabase(const String& path, String& error) {
  TBrowserDatabase db;
  bool ok = db.Open(path) && (!db.IsOpen() || (db.EmptyTables({u"meta"}) && db.Save()));
  if (!ok) error = db.Error();
  return ok;
}

// Icon mappings of the removed pages go, and icons no page uses any more.
bool DropFavicons(const String& path, const std::unordered_set<String>& pages, String& error) {
  TBrowserDatabase db;
  std::vector<StringList> rows;
  bool ok = db.Open(path);
  if (ok && db.IsOpen() && db.HasTable(u"icon_mapping")) {
    ok = db.Query("SELECT id, page_url FROM icon_mapping", rows);
    std::string ids;
    for (const auto& r : rows)
      if (pages.count(r.at(1))) ids += (ids.empty() ? "" : ",") + ToUtf8(r.at(0));
    ok = ok && db.Execute("DELETE FROM icon_mapping WHERE id IN (" + ids + ")") &&
         db.Execute("DELETE FROM favicon_bitmaps WHERE icon_id NOT IN "
                    "(SELECT icon_id FROM icon_mapping)") &&
         db.Execute("DELETE FROM favicons WHERE id NOT IN (SELECT icon_id FROM icon_mapping)") &&
         db.Save();
  }
  if (!ok) error = db.Error();
  return ok;
}

}  // namespace

bool ScanChromiumHistory(const String& Profile, TChromiumTraces& Traces, String& Error) {
  TBrowserDatabase db;
  const String file = Profile + u"History";
  if (!db.Open(file)) {
    Error = db.Error();
    return false;
  }
  if (!db.IsOpen()) return true;
  std::vector<StringList> rows;
  if (db.Query("SELECT url, title FROM urls ORDER BY id", rows))
    for (const auto& r : rows) Traces.push_back({JoinTraceText(r.at(1), r.at(0)), file, true});
  if (db.HasTable(u"downloads") &&
      (db.Query("SELECT target_path, tab_url FROM downloads ORDER BY id", rows) ||
       (db.ClearError(), db.Query("SELECT full_path, url FROM downloads ORDER BY id", rows))))
    for (const auto& r : rows) Traces.push_back({JoinTraceText(r.at(0), r.at(1)), file, true});
  if (db.HasTable(u"keyword_search_terms") &&
      db.Query("SELECT term FROM keyword_search_terms", rows))
    for (const auto& r : rows) Traces.push_back({r.at(0), file, false});
  if (!db.Error().empty()) Error = db.Error();
  return db.Error().empty();
}

bool CleanChromiumHistory(const String& Profile, const std::function<void(const String&)>& Shred,
                          String& Error) {
  std::unordered_set<String> pages;
  TBrowserDatabase db;
  std::vector<StringList> rows;
  bool ok = db.Open(Profile + u"History");
  if (ok && db.IsOpen()) {
    if (db.HasTable(u"urls") && db.Query("SELECT url FROM urls", rows))
      for (auto& r : rows) pages.insert(std::move(r.at(0)));
    ok = db.EmptyTables({u"meta"}) && db.Save();
  }
  if (!ok) Error = db.Error();
  for (const char16_t* name : kHistoryCompanions) ok = EmptyDatabase(Profile + name, Error) && ok;
  ok = DropFavicons(Profile + u"Favicons", pages, Error) && ok;
  for (const char16_t* name : kHistoryFiles)
    if (OrviFileExists(Profile + name)) Shred(Profile + name);
  return ok;
}

}  // namespace tc
