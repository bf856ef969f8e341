#include <unordered_set>

#include "browsers/FirefoxStores.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

const char kVisited[] =
    "(SELECT place_id FROM moz_historyvisits) OR visit_count > 0 OR last_visit_date IS NOT NULL";
// Places something besides history still points at.
const char kNeeded[] =
    "(SELECT fk FROM moz_bookmarks WHERE fk IS NOT NULL UNION SELECT place_id FROM moz_keywords "
    "UNION SELECT place_id FROM moz_annos)";

bool Fails(TBrowserDatabase& db, String& error) {
  error = db.Error();
  return false;
}

// Icons of pages that are gone; favicons.sqlite keeps those of bookmarks.
bool DropFavicons(const String& path, const std::unordered_set<String>& gone, String& error) {
  TBrowserDatabase db;
  std::vector<StringList> rows;
  if (!db.Open(path)) return Fails(db, error);
  if (!db.IsOpen() || !db.HasTable(u"moz_pages_w_icons")) return true;
  if (!db.Query("SELECT id, page_url FROM moz_pages_w_icons", rows)) return Fails(db, error);
  std::string ids;
  for (const auto& r : rows)
    if (gone.count(r.at(1))) ids += (ids.empty() ? "" : ",") + ToUtf8(r.at(0));
  bool ok = db.Execute("DELETE FROM moz_icons_to_pages WHERE page_id IN (" + ids + ")") &&
            db.Execute("DELETE FROM moz_pages_w_icons WHERE id IN (" + ids + ")") &&
            db.Execute("DELETE FROM moz_icons WHERE id NOT IN (SELECT icon_id FROM "
                       "moz_icons_to_pages) AND root = 0") &&
            db.Save();
  return ok || Fails(db, error);
}

}  // namespace

bool ScanFirefoxPlaces(const String& Profile, TBrowserTraces& Traces, String& Error) {
  TBrowserDatabase db;
  std::vector<StringList> rows;
  const String file = Profile + u"places.sqlite";
  if (!db.Open(file)) return Fails(db, Error);
  if (!db.IsOpen()) return true;
  if (!db.Query(std::string("SELECT url, title FROM moz_places WHERE id IN ") + kVisited +
                    " ORDER BY id",
                rows))
    return Fails(db, Error);
  for (const auto& r : rows) Traces.push_back({JoinTraceText(r.at(1), r.at(0)), file, true});
  return true;
}

bool CleanFirefoxPlaces(const String& Profile, String& Error) {
  TBrowserDatabase db;
  std::vector<StringList> rows;
  if (!db.Open(Profile + u"places.sqlite")) return Fails(db, Error);
  if (!db.IsOpen()) return true;
  std::unordered_set<String> gone;
  bool ok = db.Query(std::string("SELECT url FROM moz_places WHERE id NOT IN ") + kNeeded, rows);
  for (auto& r : rows) gone.insert(std::move(r.at(0)));
  for (const char* sql :
       {"DELETE FROM moz_annos WHERE anno_attribute_id IN (SELECT id FROM moz_anno_attributes "
        "WHERE name LIKE 'downloads/%')",
        "DELETE FROM moz_historyvisits", "DELETE FROM moz_inputhistory"})
    ok = ok && db.Execute(sql);
  for (const char16_t* t : {u"moz_historyvisits_extra", u"moz_places_metadata",
                          u"moz_places_metadata_search_queries", u"moz_places_extra"})
    ok = ok && (!db.HasTable(t) || db.Execute("DELETE FROM " + ToUtf8(String(t))));
  ok = ok &&
       db.Execute(std::string("DELETE FROM moz_places WHERE id NOT IN ") + kNeeded) &&
       db.Execute("UPDATE moz_places SET visit_count = 0, last_visit_date = NULL, frecency = 0 "
                  "WHERE visit_count > 0 OR last_visit_date IS NOT NULL") &&
       db.Execute("DELETE FROM moz_origins WHERE id NOT IN (SELECT origin_id FROM moz_places)") &&
       db.Save();
  if (!ok) return Fails(db, Error);
  return DropFavicons(Profile + u"favicons.sqlite", gone, Error);
}

}  // namespace tc
