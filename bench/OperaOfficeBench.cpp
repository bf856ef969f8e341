// Opera's cookie file and LibreOffice's registrymodifications.xcu on an offline image: the
// stores' read and rewrite beside reading and rewriting the same bytes, at two sizes each.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

#include "bench/BenchImage.h"
#include "browsers/TC_OperaBrowser.h"
#include "platform/helpers/FileContents.h"
#include "plugins/TCP_OpenOffice.h"

namespace tc::bench {
namespace {

namespace fs = std::filesystem;
constexpr char kRoaming[] = "Users/Bench/AppData/Roaming/";
const String kOperaProfile = u"C:\\Users\\Bench\\AppData\\Roaming\\Opera\\Opera\\profile";
const String kXcu = u"C:\\Users\\Bench\\AppData\\Roaming\\LibreOffice\\4\\user\\registrymodifications.xcu";

std::string Rec(uint8_t tag, const std::string& payload) {
  return std::string(1, char(tag)) + char(payload.size() >> 8) + char(payload.size() & 0xFF) + payload;
}

// A cookies4.dat of `cookies` cookies, five per host, each with a value, two times and a flag.
std::string CookieFile(int cookies) {
  std::string out("\0\0\x10\0\0\0\x20\0\0\x01\0\x02", 12);
  out += Rec(0x01, Rec(0x1E, "example"));
  for (int i = 0; i < cookies; ++i) {
    if (i % 5 == 0) {
      if (i) out += "\x85\x84";
      out += Rec(0x01, Rec(0x1E, "site" + std::to_string(i / 5)));
    }
    const std::string time("\0\0\0\0\x65\x43\x21\x10", 8);
    out += Rec(0x03, Rec(0x10, "id" + std::to_string(i % 5)) +
                         Rec(0x11, "v=" + std::string(40, char('a' + i % 26))) + Rec(0x12, time) +
                         Rec(0x13, time) + "\xA0");
  }
  return out + "\x85\x84\x84";
}

// A registrymodifications.xcu of `items` items; every tenth is a recent document with a
// thumbnail and its order entry, the rest are settings.
std::string XcuFile(int items) {
  const std::string histories =
      "<item oor:path=\"/org.openoffice.Office.Histories/Histories/"
      "org.openoffice.Office.Histories:HistoryInfo['PickList']/";
  std::string out =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\">\n";
  for (int i = 0; i < items; ++i) {
    const std::string n = std::to_string(i);
    if (i % 10 == 0) {
      const std::string url = "file:///C:/Users/Bench/Documents/Brief%20" + n + ".odt";
      out += histories + "ItemList\"><node oor:name=\"" + url +
             "\" oor:op=\"replace\"><prop oor:name=\"Title\" oor:op=\"fuse\"><value>Brief " + n +
             "</value></prop><prop oor:name=\"Thumbnail\" oor:op=\"fuse\"><value>" +
             std::string(2000, 'Q') + "</value></prop></node></item>\n";
      out += histories + "OrderList\"><node oor:name=\"" + n +
             "\" oor:op=\"replace\"><prop oor:name=\"HistoryItemRef\" oor:op=\"fuse\"><value>" +
             url + "</value></prop></node></item>\n";
    } else {
      out += "<item oor:path=\"/org.openoffice.Office.Common/Misc\"><prop oor:name=\"Setting" + n +
             "\" oor:op=\"fuse\"><value>false</value></prop></item>\n";
    }
  }
  return out + "</oor:items>\n";
}

// An image whose file `host` holds `bytes`, rewritten before every iteration.
class Fixture {
 public:
  Fixture(benchmark::State& state, const std::string& host, std::string bytes)
      : bytes_(std::move(bytes)) {
    std::string error;
    if (!MakeImage(folder_.Path(), error)) {
      state.SkipWithError(error.c_str());
      return;
    }
    file_ = fs::path(folder_.Path()) / host;
    fs::create_directories(file_.parent_path());
    engine_ = std::make_unique<EngineOnImage>(folder_.Path());
    if (!engine_->Ok()) state.SkipWithError(engine_->Error().c_str());
    state.counters["MB"] = static_cast<double>(bytes_.size()) / 1e6;
  }
  bool Ok() const { return engine_ && engine_->Ok(); }
  void Refresh() { std::ofstream(file_, std::ios::binary | std::ios::trunc) << bytes_; }

 private:
  TempFolder folder_;
  std::string bytes_;
  fs::path file_;
  std::unique_ptr<EngineOnImage> engine_;
};

// Parse, mark every cookie but the first host's deleted, rewrite.
void OperaCookies(benchmark::State& state) {
  const int cookies = static_cast<int>(state.range(0));
  Fixture image(state, std::string(kRoaming) + "Opera/Opera/profile/cookies4.dat", CookieFile(cookies));
  if (!image.Ok()) return;
  for (auto _ : state) {
    state.PauseTiming();
    image.Refresh();
    state.ResumeTiming();
    TOperaBrowser browser(kOperaProfile);
    if (browser.EnumCookies() != cookies) return state.SkipWithError("the cookies were not read");
    for (size_t g = 1; g < browser.CookieHosts.size(); ++g)
      for (TOperaCookieEntry* e : browser.CookieHosts[g]->Entries) e->Deleted = true;
    browser.UpdateCookies();
  }
  state.SetItemsProcessed(state.iterations() * cookies);
}

// Scan, choose every recent document, clean.
void LibreOfficeList(benchmark::State& state) {
  const int items = static_cast<int>(state.range(0));
  Fixture image(state, std::string(kRoaming) + "LibreOffice/4/user/registrymodifications.xcu",
                XcuFile(items));
  if (!image.Ok()) return;
  TTCPLibreOfficeMRU plugin;
  for (auto _ : state) {
    state.PauseTiming();
    image.Refresh();
    state.ResumeTiming();
    plugin.Scan();
    if (plugin.TraceCount != (items + 9) / 10) return state.SkipWithError("the list was not read");
    StringList names;
    for (const auto& e : plugin.Entries) names.push_back(e->FileName);
    for (const auto& name : names) plugin.PrepareToClean(name);
    plugin.Clean();
  }
  state.SetItemsProcessed(state.iterations() * items);
}

// The floor for both: reading the file and writing it back all or nothing.
void ReadAndReplace(benchmark::State& state, const std::string& host, const String& path,
                    std::string bytes) {
  Fixture image(state, host, std::move(bytes));
  if (!image.Ok()) return;
  for (auto _ : state) {
    state.PauseTiming();
    image.Refresh();
    state.ResumeTiming();
    Bytes data;
    if (FileContents::Read(*Services().Files, path, data) != ERROR_SUCCESS ||
        FileContents::Replace(*Services().Files, path, data) != ERROR_SUCCESS)
      return state.SkipWithError("the file was not rewritten");
  }
}

void CookieFileBytes(benchmark::State& state) {
  ReadAndReplace(state, std::string(kRoaming) + "Opera/Opera/profile/cookies4.dat",
                 kOperaProfile + u"\\cookies4.dat", CookieFile(static_cast<int>(state.range(0))));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void XcuFileBytes(benchmark::State& state) {
  ReadAndReplace(state, std::string(kRoaming) + "LibreOffice/4/user/registrymodifications.xcu",
                 kXcu, XcuFile(static_cast<int>(state.range(0))));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(OperaCookies)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(CookieFileBytes)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(LibreOfficeList)->Arg(2600)->Arg(26000)->Unit(benchmark::kMillisecond);
BENCHMARK(XcuFileBytes)->Arg(2600)->Arg(26000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tc::bench
