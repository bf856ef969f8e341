// The generic scan of a file location over a real folder tree of an offline image,
// recursive (counting) and not (reporting each file).
#include <benchmark/benchmark.h>

#include "bench/BenchImage.h"

namespace tc::bench {
namespace {

constexpr int kFolders = 10, kFilesPerFolder = 1000;

// One image with a cache tree of kFolders x kFilesPerFolder small files, kept for the run.
const std::string& TreeImage() {
  static TempFolder folder;
  static bool made = [] {
    std::string error;
    if (!MakeImage(folder.Path(), error)) return false;
    return MakeTree(folder.Path() + "/" + kCacheHostPath, kFolders, kFilesPerFolder, 16) ==
           long(kFolders) * kFilesPerFolder;
  }();
  if (!made) std::fprintf(stderr, "bench: cannot make the tree image\n");
  return folder.Path();
}

void RecursiveCount(benchmark::State& state) {
  EngineOnImage engine(TreeImage());
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  auto plugin = FilesPlugin(kCacheFolder, state.range(0) ? u"*.tmp;*.dat;f_*" : u"*", true);
  for (auto _ : state) {
    plugin->Scan();
    benchmark::DoNotOptimize(plugin->TraceCount);
  }
  state.SetItemsProcessed(state.iterations() * kFolders * kFilesPerFolder);
  state.counters["traces"] = plugin->TraceCount;
}
BENCHMARK(RecursiveCount)->ArgName("masks")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// One folder of the tree, each file reported to the host as the scan finds it.
void FlatReport(benchmark::State& state) {
  EngineOnImage engine(TreeImage());
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  auto plugin = FilesPlugin(String(kCacheFolder) + u"\\00\\", u"*", false);
  size_t reported = 0;
  plugin->OnScanTraceFound = [&](TTCPlugin*, TTraceSourceType, const TTraceSourceData& s,
                                 TTraceTargetType, TTraceFlags, const String&) {
    reported += s.FileName.size();
  };
  for (auto _ : state) {
    plugin->Scan();
    benchmark::DoNotOptimize(reported);
  }
  state.SetItemsProcessed(state.iterations() * kFilesPerFolder);
  state.counters["traces"] = plugin->TraceCount;
}
BENCHMARK(FlatReport)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tc::bench
