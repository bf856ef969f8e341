// The firewall-log scan (lines of "zalog.txt" counted through the offline volume) beside a
// plain read of the same file that counts its line ends.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "bench/BenchImage.h"
#include "plugins/TCP_Tools.h"

namespace tc::bench {
namespace {

constexpr long kLines = 500000;  // about 40 MB, a log left to grow for a year

const std::string& LogImage() {
  static TempFolder folder;
  static bool made = [] {
    std::string error;
    if (!MakeImage(folder.Path(), error)) return false;
    std::filesystem::create_directories(folder.Path() + "/Windows/Internet Logs");
    std::ofstream log(folder.Path() + "/Windows/Internet Logs/ZALog.txt", std::ios::binary);
    for (long i = 0; i < kLines; ++i)
      log << "FWIN,2005/01/02,10:00:01 +1:00 GMT,10.0.0.5:1034,10.0.0.1:80,TCP (flags:S)\r\n";
    return bool(log);
  }();
  if (!made) std::fprintf(stderr, "bench: cannot make the log image\n");
  return folder.Path();
}

void ZoneAlarmLogScan(benchmark::State& state) {
  EngineOnImage engine(LogImage());
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  TTCPZoneAlarmProLogs plugin;
  for (auto _ : state) {
    plugin.Scan();
    benchmark::DoNotOptimize(plugin.TraceCount);
  }
  state.counters["traces"] = plugin.TraceCount;
}
BENCHMARK(ZoneAlarmLogScan)->Unit(benchmark::kMillisecond);

// Baseline: read(2) in the same block size, memchr for line ends.
void PlainLineCount(benchmark::State& state) {
  const std::string path = LogImage() + "/Windows/Internet Logs/ZALog.txt";
  std::vector<char> block(65536);
  long lines = 0;
  for (auto _ : state) {
    int fd = open(path.c_str(), O_RDONLY);
    lines = 0;
    for (ssize_t n; (n = read(fd, block.data(), block.size())) > 0;)
      for (const char *p = block.data(), *end = p + n; (p = static_cast<const char*>(
                                                            std::memchr(p, '\n', end - p)));
           ++p)
        ++lines;
    close(fd);
    benchmark::DoNotOptimize(lines);
  }
  state.counters["traces"] = lines;
}
BENCHMARK(PlainLineCount)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tc::bench
