// The Internet Explorer cache walk on an offline image whose content and cookie indexes hold
// half the entries each: counting every cookie, deleting every cookie; beside libmsiecf
// reading the same indexes and a plain rewrite of the cookie index.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "bench/BenchImage.h"
#include "browsers/TC_InternetExplorer.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"
#include "platform/offline/IndexDat.h"

namespace tc::bench {
namespace {

namespace fs = std::filesystem;

const char kContent[] = "/Users/Bench/AppData/Local/Microsoft/Windows/Temporary Internet Files/Content.IE5/index.dat";
const char kCookies[] = "/Users/Bench/AppData/Roaming/Microsoft/Windows/Cookies/index.dat";
const char16_t kCookieIndex[] = u"C:\\Users\\Bench\\AppData\\Roaming\\Microsoft\\Windows\\Cookies\\index.dat";

std::string Bytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

bool WriteIndex(const std::string& path, const std::vector<IndexDatEntry>& entries) {
  tc::Bytes data;
  std::string error;
  if (!BuildIndexDat(entries, data, error)) return false;
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(data.data()), data.size());
  return true;
}

// One image per entry count: `entries` / 2 pages and as many cookies of distinct hosts.
const std::string& CacheImage(long entries) {
  static std::map<long, std::unique_ptr<TempFolder>> images;
  auto& slot = images[entries];
  if (slot) return slot->Path();
  slot = std::make_unique<TempFolder>();
  std::vector<IndexDatEntry> pages, cookies;
  for (long i = 0; i < entries / 2; ++i) {
    const String n = FromUtf8(std::to_string(i));
    pages.push_back({u"http://bench.example/p/" + n, u"AB12CD34", n + u"[1].htm", 1, 1024});
    cookies.push_back({u"Cookie:bench@h" + n + u".example/", u"", u"bench@h" + n + u"[1].txt",
                       0x00100001, 100});
  }
  std::string error;
  if (!MakeImage(slot->Path(), error) || !WriteIndex(slot->Path() + kContent, pages) ||
      !WriteIndex(slot->Path() + kCookies, cookies))
    std::fprintf(stderr, "bench: cannot make the cache image: %s\n", error.c_str());
  return slot->Path();
}

void Count(benchmark::State& state) {
  EngineOnImage engine(CacheImage(state.range(0)));
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  int cookies = 0;
  for (auto _ : state) benchmark::DoNotOptimize(cookies = EnumIECacheFiles(true, false, false));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["cookies"] = cookies;
}

// Baseline of the walk: libmsiecf reading both indexes from the disk.
void LibmsiecfRead(benchmark::State& state) {
  const std::string& image = CacheImage(state.range(0));
  size_t records = 0;
  for (auto _ : state) {
    records = 0;
    for (const char* index : {kContent, kCookies}) {
      std::string bytes = Bytes(image + index);
      IndexDat read;
      std::string error;
      ReadIndexDat(tc::Bytes(bytes.begin(), bytes.end()), read, error);
      records += read.Records.size();
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["records"] = records;
}

void DeleteCookies(benchmark::State& state) {
  const std::string& image = CacheImage(state.range(0));
  const std::string original = Bytes(image + kCookies);
  int deleted = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::ofstream(image + kCookies, std::ios::binary) << original;
    auto engine = std::make_unique<EngineOnImage>(image);
    state.ResumeTiming();
    deleted = EnumIECacheFiles(true, true, false);
    state.PauseTiming();
    engine.reset();
    state.ResumeTiming();
  }
  std::ofstream(image + kCookies, std::ios::binary) << original;
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["deleted"] = deleted;
}

// Baseline of the delete: reading the cookie index and writing it back all-or-nothing.
void RewriteCookieIndex(benchmark::State& state) {
  EngineOnImage engine(CacheImage(state.range(0)));
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  IFileSystem& files = *Services().Files;
  for (auto _ : state) {
    tc::Bytes data;
    FileContents::Read(files, kCookieIndex, data);
    FileContents::Replace(files, kCookieIndex, data);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(Count)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(LibmsiecfRead)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(DeleteCookies)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(RewriteCookieIndex)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tc::bench
