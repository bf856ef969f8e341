// The registry scans over one big key: numbered names, MRU list and all values, on the
// memory platform and on a hive file of an offline image.
#include <benchmark/benchmark.h>
#include <hivex.h>

#include <filesystem>
#include <map>

#include "bench/BenchImage.h"
#include "platform/helpers/RegData.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/memory/MemoryPlatform.h"
#include "platform/offline/OfflineImage.h"

namespace tc::bench {
namespace {

constexpr char16_t kKey[] = u"Software\\Bench\\Big";

// Value i of the big key: a numbered name with a file name as data; the first is the order
// string of an MRU list.
String ValueName(long i) { return i == 0 ? String(u"MRUList") : String(u"File") += IntToStr(i); }
String ValueData(long i) {
  return (String(u"C:\\Users\\Bench\\Documents\\Report ") += IntToStr(i)) += u".docx";
}

std::shared_ptr<Platform> MemoryWithKey(long values) {
  MemoryWindows mem = MakeMemoryWindows();
  for (long i = 0; i < values; ++i)
    mem.Registry->PutString(HKEY_CURRENT_USER, kKey, ValueName(i), ValueData(i));
  return mem.Platform;
}

// Writes the key straight through hivex: one set-values call instead of one per value.
bool WriteHiveKey(const std::string& hivePath, long values) {
  hive_h* h = hivex_open(hivePath.c_str(), HIVEX_OPEN_WRITE);
  if (!h) return false;
  hive_node_h node = hivex_root(h);
  for (const char* part : {"Software", "Bench", "Big"}) node = hivex_node_add_child(h, node, part);
  std::vector<std::string> names(values);
  std::vector<Bytes> datas(values);
  std::vector<hive_set_value> set(values);
  for (long i = 0; i < values; ++i) {
    names[i] = ToUtf8(ValueName(i));
    datas[i] = ToUtf16LE(ValueData(i));
    datas[i].insert(datas[i].end(), {0, 0});
    set[i] = {names[i].data(), hive_t_REG_SZ, datas[i].size(),
              reinterpret_cast<char*>(datas[i].data())};
  }
  bool ok = node && hivex_node_set_values(h, node, set.size(), set.data(), 0) == 0 &&
            hivex_commit(h, nullptr, 0) == 0;
  hivex_close(h);
  return ok;
}

// One image per key size, made on first use and kept for the whole run.
const std::string& HiveImage(long values) {
  static std::map<long, std::unique_ptr<TempFolder>> images;
  auto& slot = images[values];
  if (!slot) {
    slot = std::make_unique<TempFolder>();
    std::string error;
    if (!MakeImage(slot->Path(), error) ||
        !WriteHiveKey(slot->Path() + "/Users/Bench/NTUSER.DAT", values))
      std::fprintf(stderr, "bench: cannot make the hive image: %s\n", error.c_str());
  }
  return slot->Path();
}

const std::shared_ptr<Platform>& MemoryPlatformWith(long values) {
  static std::map<long, std::shared_ptr<Platform>> platforms;
  auto& slot = platforms[values];
  if (!slot) slot = MemoryWithKey(values);
  return slot;
}

enum class Kind { NumberedNames, MRUList, AllValues };

std::unique_ptr<BenchPlugin> RegistryPlugin(Kind kind) {
  auto p = std::make_unique<BenchPlugin>();
  switch (kind) {
    case Kind::NumberedNames:
      p->AddTraceLocation(TLT_Registry_NumberedNames,
                          new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, u"File", 0),
                          TTT_FileName, 0);
      break;
    case Kind::MRUList:
      p->AddTraceLocation(TLT_Registry_MRUList,
                          new TLD_Registry_MRUList(HKEY_CURRENT_USER, kKey, 0), TTT_FileName, 0);
      break;
    case Kind::AllValues:
      p->AddTraceLocation(TLT_Registry_AllValues,
                          new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey, 0), TTT_FileName,
                          0);
      break;
  }
  // A host that lists every trace: the event is part of the cost.
  p->OnScanTraceFound = [](TTCPlugin*, TTraceSourceType, const TTraceSourceData& s,
                           TTraceTargetType, TTraceFlags, const String& d) {
    benchmark::DoNotOptimize(s.ValueName.size() + d.size());
  };
  return p;
}

void ScanKey(benchmark::State& state, Kind kind) {
  auto plugin = RegistryPlugin(kind);
  for (auto _ : state) {
    plugin->Scan();
    benchmark::DoNotOptimize(plugin->TraceCount);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["traces"] = plugin->TraceCount;
}

void Memory(benchmark::State& state, Kind kind) {
  SetServices(MemoryPlatformWith(state.range(0)));
  ScanKey(state, kind);
  SetServices(nullptr);
}

// The hive loaded once: the scan reads the key's values from the hive's cache.
void HiveWarm(benchmark::State& state, Kind kind) {
  EngineOnImage engine(HiveImage(state.range(0)));
  if (!engine.Ok()) return state.SkipWithError(engine.Error().c_str());
  ScanKey(state, kind);
}

// Every scan on a freshly opened image: the key's values are read out of the hive file.
void HiveCold(benchmark::State& state, Kind kind) {
  const std::string& image = HiveImage(state.range(0));
  auto plugin = RegistryPlugin(kind);
  for (auto _ : state) {
    state.PauseTiming();
    auto engine = std::make_unique<EngineOnImage>(image);
    state.ResumeTiming();
    plugin->Scan();
    benchmark::DoNotOptimize(plugin->TraceCount);
    state.PauseTiming();
    engine.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["traces"] = plugin->TraceCount;
}

#define TC_REG_BENCH(backend, kind)                                                    \
  BENCHMARK_CAPTURE(backend, kind, Kind::kind)                                         \
      ->Arg(10000)                                                                     \
      ->Arg(100000)                                                                    \
      ->Unit(benchmark::kMillisecond)
TC_REG_BENCH(Memory, NumberedNames);
TC_REG_BENCH(Memory, MRUList);
TC_REG_BENCH(Memory, AllValues);
TC_REG_BENCH(HiveWarm, NumberedNames);
TC_REG_BENCH(HiveWarm, MRUList);
TC_REG_BENCH(HiveWarm, AllValues);
TC_REG_BENCH(HiveCold, NumberedNames);
TC_REG_BENCH(HiveCold, MRUList);
TC_REG_BENCH(HiveCold, AllValues);

}  // namespace
}  // namespace tc::bench
