// tc_engine_driver: runs the engine's generic scan or clean of one file location on an
// offline image and prints what it counted, how long it took and its peak memory, so that
// compare.sh can set it beside find and shred.
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/BenchImage.h"
#include "platform/helpers/TextCodec.h"

using namespace tc;

namespace {

int Usage() {
  std::fprintf(stderr,
               "usage: tc_engine_driver image DIR\n"
               "       tc_engine_driver tree DIR FOLDERS FILES BYTES\n"
               "       tc_engine_driver count IMAGE WINFOLDER\n"
               "       tc_engine_driver clean IMAGE WINFOLDER recursive|flat [zeros|dod]\n");
  return 1;
}

long PeakKiB() {
  rusage ru{};
  getrusage(RUSAGE_SELF, &ru);
  return ru.ru_maxrss;
}

int Run(const std::string& what, const std::string& image, const String& folder,
        bool recursive, TDeleteMethod method) {
  bench::EngineOnImage engine(image);
  if (!engine.Ok()) {
    std::fprintf(stderr, "tc_engine_driver: %s\n", engine.Error().c_str());
    return 2;
  }
  auto plugin = bench::FilesPlugin(folder, u"*", recursive);
  plugin->ShredMethod = method;
  plugin->ShredRecurrence = 1;
  auto start = std::chrono::steady_clock::now();
  if (what == "count") plugin->Scan();
  else plugin->Clean();
  std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  std::printf("count=%d seconds=%.6f maxrss_kib=%ld\n", plugin->TraceCount, took.count(),
              PeakKiB());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return Usage();
  std::string what = argv[1];
  if (what == "image" && argc == 3) {
    std::string error;
    if (bench::MakeImage(argv[2], error)) return 0;
    std::fprintf(stderr, "tc_engine_driver: %s\n", error.c_str());
    return 2;
  }
  if (what == "tree" && argc == 6) {
    long n = bench::MakeTree(argv[2], std::atoi(argv[3]), std::atoi(argv[4]),
                             std::strtoul(argv[5], nullptr, 10));
    std::printf("files=%ld\n", n);
    return 0;
  }
  if (what == "count" && argc == 4) return Run(what, argv[2], FromUtf8(argv[3]), true, {});
  if (what == "clean" && (argc == 5 || argc == 6)) {
    std::string mode = argv[4];
    if (mode != "recursive" && mode != "flat") return Usage();
    TDeleteMethod method = TDeleteMethod::dmZeros;
    if (argc == 6 && !TOrviShredderClass::MethodFromName(FromUtf8(argv[5]), method))
      return Usage();
    return Run(what, argv[2], FromUtf8(argv[3]), mode == "recursive", method);
  }
  return Usage();
}
