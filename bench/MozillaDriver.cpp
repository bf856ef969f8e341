// tc_mozilla_driver: makes large Mozilla profile files and times the profile store on them
// through an offline image, so that mozilla.sh can set the Mork reader beside wc -l and the
// cookie rewrite beside grep and cp.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "bench/BenchImage.h"
#include "browsers/TC_MozillaBrowser.h"
#include "platform/helpers/TextCodec.h"

using namespace tc;

namespace {

int Usage() {
  std::fprintf(stderr,
               "usage: tc_mozilla_driver image DIR\n"
               "       tc_mozilla_driver mkhistory FILE MIB\n"
               "       tc_mozilla_driver mkcookies FILE LINES\n"
               "       tc_mozilla_driver history|cookies IMAGE WINPROFILE\n");
  return 1;
}

// A Firefox 2 history: the column dictionary, then per visit an atom block of address, time
// and UTF-16 title written with $00 escapes, and its row, until the file holds `mib` MiB.
int MakeHistory(const std::string& file, long mib) {
  std::ofstream out(file, std::ios::binary);
  out << "// <!-- <mdb:mork:z v=\"1.4\"/> -->\n< <(a=c)> // (f=iso-8859-1)\n"
         "  (8A=Typed)(8B=LastPageVisited)(8C=ByteOrder)\n"
         "  (80=ns:history:db:row:scope:history:all)\n"
         "  (81=ns:history:db:table:kind:history)(82=URL)(83=Referrer)\n"
         "  (84=LastVisitDate)(85=FirstVisitDate)(86=VisitCount)(87=Name)\n"
         "  (88=Hostname)(89=Hidden)>\n\n<(80=LE)>\n{1:^80 {(k^81:c)(s=9)[1(^8C=LE)]}\n";
  const long long target = static_cast<long long>(mib) << 20;
  char buf[512];
  for (long i = 0; out.tellp() < target; ++i) {
    const long a = 0x100 + 3 * i;
    std::snprintf(buf, sizeof buf,
                  "<(%lX=http://www.example%ld.de/pfad/seite-%ld.html?suche=wert\\)%ld)"
                  "(%lX=%lld)\n  (%lX=S$00e$00i$00t$00e$00 $00%ld$00)>\n",
                  a, i % 5000, i, i, a + 1, 1230000000000000LL + i, a + 2, i);
    out << buf;
    std::snprintf(buf, sizeof buf, "[%lX(^82^%lX)(^84^%lX)(^85^%lX)(^87^%lX)(^86=1)]\n", i + 2, a,
                  a + 1, a + 1, a + 2);
    out << buf;
  }
  out << "}\n";
  return out ? 0 : 2;
}

int MakeCookies(const std::string& file, long lines) {
  std::ofstream out(file, std::ios::binary);
  out << "# HTTP Cookie File\n# http://www.netscape.com/newsref/std/cookie_spec.html\n"
         "# This is a generated file!  Do not edit.\n\n";
  char buf[256];
  for (long i = 0; i < lines; ++i) {
    std::snprintf(buf, sizeof buf, ".host%ld.example.de\tTRUE\t/\tFALSE\t%ld\tname%ld\tv=%lx&t=%ld\n",
                  i % 997, 1300000000L + i, i, i * 2654435761L % 0xFFFFFFFFL, i);
    out << buf;
  }
  return out ? 0 : 2;
}

int Time(const std::string& what, const std::string& image, const String& profile) {
  bench::EngineOnImage engine(image);
  if (!engine.Ok()) {
    std::fprintf(stderr, "tc_mozilla_driver: %s\n", engine.Error().c_str());
    return 2;
  }
  TMozillaBrowser browser(profile, MT_Firefox);
  const auto start = std::chrono::steady_clock::now();
  size_t count = 0;
  bool ok;
  if (what == "history") {
    ok = browser.EnumHistory();
    count = browser.History.size();
  } else {
    ok = browser.EnumCookies() && browser.UpdateCookies();
    count = browser.Cookies.size();
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  if (!ok) {
    std::fprintf(stderr, "tc_mozilla_driver: %s failed\n", what.c_str());
    return 2;
  }
  std::printf("count=%zu seconds=%.6f\n", count, took.count());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return Usage();
  const std::string what = argv[1];
  if (what == "image" && argc == 3) {
    std::string error;
    if (bench::MakeImage(argv[2], error)) return 0;
    std::fprintf(stderr, "tc_mozilla_driver: %s\n", error.c_str());
    return 2;
  }
  if (argc != 4) return Usage();
  if (what == "mkhistory") return MakeHistory(argv[2], std::atol(argv[3]));
  if (what == "mkcookies") return MakeCookies(argv[2], std::atol(argv[3]));
  if (what == "history" || what == "cookies") return Time(what, argv[2], FromUtf8(argv[3]));
  return Usage();
}
