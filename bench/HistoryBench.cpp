// A Chrome History of 100,000 visits (20,000 pages) on an offline image: the store's scan and
// clean, beside the sqlite3 command deleting the same rows with secure_delete and vacuuming.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>

#include "bench/BenchImage.h"
#include "browsers/ChromiumStores.h"

namespace tc::bench {
namespace {

namespace fs = std::filesystem;
constexpr char kProfileHost[] = "Users/Bench/AppData/Local/Google/Chrome/User Data/Default";
const String kProfile = u"C:\\Users\\Bench\\AppData\\Local\\Google\\Chrome\\User Data\\Default\\";
constexpr int kPages = 20000, kVisits = 100000;

// The History file every iteration starts from, made once.
const fs::path& Template() {
  static const fs::path path = [] {
    fs::path p = fs::temp_directory_path() / "tc-bench-History";
    fs::remove(p);
    sqlite3* db = nullptr;
    sqlite3_open(p.c_str(), &db);
    sqlite3_exec(db,
                 "CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);"
                 "INSERT INTO meta VALUES('version','70');"
                 "CREATE TABLE urls(id INTEGER PRIMARY KEY AUTOINCREMENT, url LONGVARCHAR, title "
                 "LONGVARCHAR, visit_count INTEGER DEFAULT 0, typed_count INTEGER DEFAULT 0, "
                 "last_visit_time INTEGER, hidden INTEGER DEFAULT 0);"
                 "CREATE INDEX urls_url_index ON urls (url);"
                 "CREATE TABLE visits(id INTEGER PRIMARY KEY AUTOINCREMENT, url INTEGER NOT NULL, "
                 "visit_time INTEGER NOT NULL, from_visit INTEGER, transition INTEGER, "
                 "segment_id INTEGER, visit_duration INTEGER);"
                 "CREATE INDEX visits_url_index ON visits (url);"
                 "CREATE TABLE keyword_search_terms(keyword_id INTEGER, url_id INTEGER, term "
                 "LONGVARCHAR);"
                 "CREATE TABLE segments(id INTEGER PRIMARY KEY, name VARCHAR, url_id INTEGER);"
                 "BEGIN;",
                 nullptr, nullptr, nullptr);
    for (int i = 1; i <= kPages; ++i) {
      std::string n = std::to_string(i);
      sqlite3_exec(db, ("INSERT INTO urls(url, title, visit_count) VALUES('https://site" + n +
                        ".example/page/" + n + "', 'Page " + n + " of a site', 5)")
                           .c_str(),
                   nullptr, nullptr, nullptr);
    }
    for (int i = 1; i <= kVisits; ++i)
      sqlite3_exec(db, ("INSERT INTO visits(url, visit_time, transition) VALUES(" +
                        std::to_string(i % kPages + 1) + ", " + std::to_string(13400000000000000 + i) +
                        ", 805306368)")
                           .c_str(),
                   nullptr, nullptr, nullptr);
    sqlite3_exec(db, "COMMIT;", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    return p;
  }();
  return path;
}

void ChromeHistoryScanAndClean(benchmark::State& state) {
  TempFolder folder;
  std::string error;
  if (!MakeImage(folder.Path(), error)) return state.SkipWithError(error.c_str());
  EngineOnImage engine(folder.Path());
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  const fs::path profile = fs::path(folder.Path()) / kProfileHost;
  fs::create_directories(profile);
  for (auto _ : state) {
    state.PauseTiming();
    fs::copy_file(Template(), profile / "History", fs::copy_options::overwrite_existing);
    state.ResumeTiming();
    TChromiumTraces traces;
    String failure;
    if (!ScanChromiumHistory(kProfile, traces, failure) || traces.size() != kPages ||
        !CleanChromiumHistory(kProfile, [](const String&) {}, failure))
      state.SkipWithError("the History was not scanned and cleaned");
  }
  state.SetItemsProcessed(state.iterations() * kVisits);
}

void Sqlite3CommandDeletesTheSameRows(benchmark::State& state) {
  TempFolder folder;
  const fs::path file = fs::path(folder.Path()) / "History";
  const std::string command =
      "sqlite3 '" + file.string() +
      "' 'PRAGMA secure_delete=ON; DELETE FROM urls; DELETE FROM visits; DELETE FROM "
      "keyword_search_terms; DELETE FROM segments; VACUUM;' >/dev/null";
  for (auto _ : state) {
    state.PauseTiming();
    fs::copy_file(Template(), file, fs::copy_options::overwrite_existing);
    state.ResumeTiming();
    if (std::system(command.c_str()) != 0) state.SkipWithError("sqlite3 failed (is it installed?)");
  }
  state.SetItemsProcessed(state.iterations() * kVisits);
}

BENCHMARK(ChromeHistoryScanAndClean)->Unit(benchmark::kMillisecond);
BENCHMARK(Sqlite3CommandDeletesTheSameRows)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tc::bench
