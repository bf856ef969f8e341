// SecureDeleteFiles with one pass of zeros and with DoD (three passes), on files of an
// offline image (real writes and flushes) and of the memory platform (the shredder's own
// cost).
#include <benchmark/benchmark.h>

#include <cstdio>

#include "bench/BenchImage.h"
#include "platform/helpers/TextCodec.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc::bench {
namespace {

constexpr int kFiles = 8;

// The names MakeTree gives the files of one folder.
StringList JobFiles(const String& folder) {
  StringList files;
  char name[16];
  for (int i = 0; i < kFiles; ++i) {
    std::snprintf(name, sizeof name, "\\f_%06x", i);
    files.push_back(folder + FromUtf8(name));
  }
  return files;
}

void RunJobs(benchmark::State& state, TDeleteMethod method, const std::function<void()>& refill,
             const StringList& files) {
  BenchPlugin plugin;
  plugin.ShredMethod = method;
  for (auto _ : state) {
    state.PauseTiming();
    refill();
    state.ResumeTiming();
    if (!plugin.SecureDeleteFiles(files)) state.SkipWithError("a file was not shredded");
  }
  int64_t bytes = state.range(0) * kFiles * TOrviShredderClass::PassCount(method);
  state.SetBytesProcessed(state.iterations() * bytes);
  state.SetItemsProcessed(state.iterations() * kFiles);
}

void OnImage(benchmark::State& state, TDeleteMethod method) {
  TempFolder folder;
  std::string error;
  if (!MakeImage(folder.Path(), error)) return state.SkipWithError(error.c_str());
  EngineOnImage engine(folder.Path());
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  const std::string host = folder.Path() + "/" + kCacheHostPath;
  const size_t size = static_cast<size_t>(state.range(0));
  RunJobs(state, method, [&] { MakeTree(host, 0, kFiles, size); }, JobFiles(kCacheFolder));
}

void InMemory(benchmark::State& state, TDeleteMethod method) {
  MemoryWindows mem = MakeMemoryWindows();
  SetServices(mem.Platform);
  const StringList files = JobFiles(kCacheFolder);
  const std::string content(static_cast<size_t>(state.range(0)), 'x');
  RunJobs(state, method, [&] { for (const auto& f : files) mem.Files->AddFile(f, content); },
          files);
  SetServices(nullptr);
}

BENCHMARK_CAPTURE(OnImage, Zeros, TDeleteMethod::dmZeros)
    ->Arg(4 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OnImage, DoD, TDeleteMethod::dmDoD5220)
    ->Arg(4 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(InMemory, Zeros, TDeleteMethod::dmZeros)
    ->Arg(4 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(InMemory, DoD, TDeleteMethod::dmDoD5220)
    ->Arg(4 << 10)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tc::bench
