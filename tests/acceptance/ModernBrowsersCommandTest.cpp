// Profiles written by a real Chromium and a real Firefox, at their Windows places in an
// offline image, scanned and cleaned through the command.
#include <sqlite3.h>

#include <map>

#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

const fs::path kProfiles = fs::path(TC_REALWORLD_DIR) / "profiles";
const fs::path kChrome = "Users/Anna/AppData/Local/Google/Chrome/User Data";
const fs::path kFirefoxRoaming = "Users/Anna/AppData/Roaming/Mozilla/Firefox";
const fs::path kFirefoxLocal = "Users/Anna/AppData/Local/Mozilla/Firefox";
const fs::path kPlaces = kFirefoxRoaming / "Profiles/k7x2m9qa.default-release/places.sqlite";

// Firefox installed; the keep-lists keep localhost's cookies in Chrome's Default profile and
// in Firefox's profile.
const char* kReg =
    "Windows Registry Editor Version 5.00\r\n\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Mozilla\\Mozilla Firefox 153.7.0 ESR\\bin]\r\n"
    "\"PathToExe\"=\"C:\\\\Program Files\\\\Mozilla Firefox\\\\firefox.exe\"\r\n\r\n"
    "[HKEY_CURRENT_USER\\Software\\TraceCleaner\\Cookies\\Chrome]\r\n"
    "\"C:\\\\Users\\\\Anna\\\\AppData\\\\Local\\\\Google\\\\Chrome\\\\User Data\\\\Default\\\\-"
    "localhost\"=dword:00000000\r\n\r\n"
    "[HKEY_CURRENT_USER\\Software\\TraceCleaner\\Cookies\\Firefox]\r\n"
    "\"C:\\\\Users\\\\Anna\\\\AppData\\\\Roaming\\\\Mozilla\\\\Firefox\\\\Profiles\\\\"
    "k7x2m9qa.default-release-localhost\"=dword:00000000\r\n";

void CopyWritable(const fs::path& from, const fs::path& to) {
  fs::create_directories(to);
  fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  for (const auto& e : fs::recursive_directory_iterator(to))
    fs::permissions(e.path(), fs::perms::owner_write, fs::perm_options::add);
}

// The first column of each row of a query, as text.
std::vector<std::string> Column(const fs::path& db, const std::string& sql) {
  std::vector<std::string> out;
  sqlite3* h = nullptr;
  if (sqlite3_open_v2(db.c_str(), &h, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(h, sql.c_str(), -1, &st, nullptr) == SQLITE_OK)
      while (sqlite3_step(st) == SQLITE_ROW) {
        const unsigned char* t = sqlite3_column_text(st, 0);
        out.push_back(t ? reinterpret_cast<const char*>(t) : "");
      }
    sqlite3_finalize(st);
  }
  sqlite3_close(h);
  return out;
}

std::string AllBytes(const fs::path& folder) {
  std::string all;
  for (const auto& e : fs::recursive_directory_iterator(folder))
    if (e.is_regular_file()) all += ReadBytes(e.path());
  return all;
}

TEST(ModernBrowsersCommandTest, RealChromeAndFirefoxProfilesScannedAndCleaned) {
  if (!fs::is_directory(kProfiles / "chromium-156")) GTEST_SKIP() << "no real browser profiles";
  TempDir dir;
  const fs::path c = dir.Path() / "image";
  MakeImage(c, kReg);
  WriteBytes(c / "Program Files/Mozilla Firefox/firefox.exe", "MZ");
  CopyWritable(kProfiles / "chromium-156", c / kChrome);
  CopyWritable(kProfiles / "firefox-esr-153/Roaming", c / kFirefoxRoaming);
  CopyWritable(kProfiles / "firefox-esr-153/Local", c / kFirefoxLocal);
  const std::string preferences = ReadBytes(c / kChrome / "Default/Preferences");
  const std::string prefsJs = ReadBytes(c / kFirefoxRoaming / "Profiles/k7x2m9qa.default-release/prefs.js");
  const auto bookmarks = Column(c / kPlaces, "SELECT id || fk || title FROM moz_bookmarks");

  const std::map<std::string, int> counts = {
      {"ChromeHistory", 9},  {"ChromeCookies", 11}, {"ChromeFormData", 2}, {"ChromeCache", 13},
      {"FirefoxHistory", 5}, {"FirefoxCookies", 7}, {"FirefoxCache", 9}};
  json scan = RunJson("scan --image " + Quote(c.string()));
  for (const auto& [id, n] : counts) EXPECT_EQ(PluginOf(scan, id)["traceCount"], n) << id;
  std::string traces;
  ASSERT_EQ(0, Tracecleaner("scan --traces --image " + Quote(c.string()), traces));
  for (const char* url : {"http://127.0.0.1:8081/news", "http://localhost:8082/shop",
                          "http://127.0.0.1:8081/docs", "localhost | tracker"})
    EXPECT_NE(std::string::npos, traces.find(url)) << url;

  std::string plugins;
  for (const auto& [id, n] : counts) plugins += (plugins.empty() ? "" : ",") + id;
  json clean = RunJson("clean --yes --image " + Quote(c.string()) + " --plugins " + plugins);
  for (const auto& [id, n] : counts)
    EXPECT_EQ(PluginOf(clean, id)["remaining"], id == "ChromeCookies" ? 5 : id == "FirefoxCookies" ? 3 : 0) << id;

  const fs::path chrome = c / kChrome, ffProfile = c / kPlaces.parent_path();
  const std::pair<fs::path, const char*> empty[] = {
      {chrome / "Default/History", "SELECT count(*) FROM urls"},
      {chrome / "Default/History", "SELECT count(*) FROM visits"},
      {chrome / "Profile 1/History", "SELECT count(*) FROM urls"},
      {chrome / "Profile 1/Network/Cookies", "SELECT count(*) FROM cookies"},
      {chrome / "Default/Web Data", "SELECT count(*) FROM autofill"},
      {chrome / "Default/Network/Cookies", "SELECT count(*) FROM cookies WHERE host_key <> 'localhost'"},
      {ffProfile / "places.sqlite", "SELECT count(*) FROM moz_historyvisits"},
      {ffProfile / "cookies.sqlite", "SELECT count(*) FROM moz_cookies WHERE host <> 'localhost'"}};
  for (const auto& [db, sql] : empty) EXPECT_EQ(Column(db, sql), std::vector<std::string>{"0"}) << db << sql;
  for (const fs::path& db : {chrome / "Default/History", chrome / "Default/Network/Cookies",
                             chrome / "Default/Web Data", chrome / "Default/Favicons",
                             chrome / "Default/Top Sites", ffProfile / "places.sqlite",
                             ffProfile / "cookies.sqlite", ffProfile / "favicons.sqlite"})
    EXPECT_EQ(Column(db, "PRAGMA integrity_check"), std::vector<std::string>{"ok"}) << db;

  EXPECT_EQ(bookmarks, Column(c / kPlaces, "SELECT id || fk || title FROM moz_bookmarks"));
  EXPECT_EQ(Column(c / kPlaces, "SELECT count(*) FROM moz_places"), std::vector<std::string>{"4"});
  EXPECT_EQ(preferences, ReadBytes(c / kChrome / "Default/Preferences"));
  EXPECT_EQ(prefsJs, ReadBytes(ffProfile / "prefs.js"));
  const std::string all = AllBytes(c / "Users/Anna/AppData");
  for (const char* url : {"http://127.0.0.1:8081/", "http://localhost:8082/", "tax return",
                          "http://127.0.0.1:8081/work"})
    EXPECT_EQ(std::string::npos, all.find(url)) << url;
}

}  // namespace
}  // namespace tc
