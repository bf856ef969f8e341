// Loading a rules file of 4,000 generated entries beside reading the same file's bytes and
// starting the package with its built-in plug-ins.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "engine/Traces.h"
#include "platform/Platform.h"
#include "platform/memory/MemoryPlatform.h"
#include "plugins/RulesCatalogue.h"

namespace tc {
namespace {

namespace fs = std::filesystem;

// Entries shaped like the community file's: detection, wildcard folders, keys, exclusions.
const fs::path& RulesFile() {
  static const fs::path path = [] {
    fs::path p = fs::temp_directory_path() / "tc-bench-rules.ini";
    std::ofstream out(p, std::ios::binary);
    for (int i = 0; i < 4000; ++i) {
      const std::string app = "App " + std::to_string(i);
      out << "[" << app << " *]\nLangSecRef=" << 3021 + i % 10 << "\n"
          << "Detect=HKCU\\Software\\" << app << "\n"
          << "DetectFile=%AppData%\\" << app << "*\nDefault=False\n"
          << "FileKey1=%AppData%\\" << app << "\\logs|*.log;*.txt\n"
          << "FileKey2=%LocalAppData%\\" << app << "\\*\\Cache|*.*|RECURSE\n"
          << "FileKey3=%ProgramFiles%\\" << app << "\\Temp|*.*|REMOVESELF\n"
          << "RegKey1=HKCU\\Software\\" << app << "\\Recent\n"
          << "RegKey2=HKCU\\Software\\" << app << "\\Settings|LastFolder\n"
          << "ExcludeKey1=FILE|%AppData%\\" << app << "\\logs\\|keep.log\n\n";
    }
    return p;
  }();
  return path;
}

Bytes ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void ReadRulesBytes(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ReadAll(RulesFile()).size());
  state.SetBytesProcessed(state.iterations() * int64_t(fs::file_size(RulesFile())));
}
BENCHMARK(ReadRulesBytes)->Unit(benchmark::kMillisecond);

// The reader alone: bytes to entries, nothing expanded or looked up.
void ParseRules4000(benchmark::State& state) {
  const Bytes bytes = ReadAll(RulesFile());
  for (auto _ : state) {
    std::vector<TRulesEntry> entries;
    StringList warnings;
    ParseRulesFile(u"bench.ini", bytes, entries, warnings);
    benchmark::DoNotOptimize(entries.size());
  }
  state.SetBytesProcessed(state.iterations() * int64_t(bytes.size()));
}
BENCHMARK(ParseRules4000)->Unit(benchmark::kMillisecond);

void LoadRules4000(benchmark::State& state) {
  SetServices(MakeMemoryPlatform());
  Initialize();
  for (auto _ : state) {
    TRulesCatalogue catalogue;
    StringList warnings;
    catalogue.Load(u"bench.ini", ReadAll(RulesFile()), warnings);
    if (catalogue.Entries().size() != 4000) state.SkipWithError("entries left out");
  }
  Finalize();
  SetServices(nullptr);
  state.SetBytesProcessed(state.iterations() * int64_t(fs::file_size(RulesFile())));
}
BENCHMARK(LoadRules4000)->Unit(benchmark::kMillisecond);

// What every run does anyway: the built-in plug-ins made and dropped.
void StartPackage(benchmark::State& state) {
  SetServices(MakeMemoryPlatform());
  for (auto _ : state) {
    Initialize();
    Finalize();
  }
  SetServices(nullptr);
}
BENCHMARK(StartPackage)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tc
