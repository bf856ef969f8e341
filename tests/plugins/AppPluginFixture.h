// A fresh in-memory Windows, seeded before the package starts (the application plug-ins
// look for their clients while they are created), and helpers to scan, clean and compare.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>

#include "engine/Orvitracecleaner.h"
#include "engine/TC_BasePlugin.h"
#include "engine/TC_Common.h"
#include "engine/Traces.h"
#include "platform/Orvihelper.h"
#include "platform/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/TextCodec.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {

// One row of a unit's catalogue: what the host shows for a plug-in.
struct CatalogueRow {
  const char16_t* ID;
  const char16_t* AppCaption;
  const char16_t* Caption;
  int Icon;
};

struct ReportedTrace {
  String PluginID;
  TTraceSourceType Type;
  TTraceSourceData Source;
  String Data;
};

class AppPluginFixture : public ::testing::Test {
 public:
  MemoryWindows mem = MakeMemoryWindows();
  std::vector<ReportedTrace> reported;

  void SetUp() override {
    StopWorking = false;
    SetServices(mem.Platform);
  }
  void TearDown() override {
    if (started_) Finalize();
    SetServices(nullptr);
  }
  // A new machine for the next case of a table (the package stopped first).
  void Reset() {
    if (started_) Finalize();
    started_ = false;
    mem = MakeMemoryWindows();
    SetServices(mem.Platform);
    reported.clear();
  }
  // Starts the package on what the test seeded so far.
  void Start() {
    Initialize();
    started_ = true;
    for (TTCPlugin* p : *Plugins)
      p->OnScanTraceFound = [this](TTCPlugin* s, TTraceSourceType t, const TTraceSourceData& d,
                                   TTraceTargetType, TTraceFlags, const String& data) {
        reported.push_back({s->ID, t, d, data});
      };
  }

  static TTCPlugin& Plugin(const String& id) {
    TTCPlugin* p = nullptr;
    if (!GetPluginByID(id, p)) throw std::runtime_error("no plug-in " + ToUtf8(id));
    return *p;
  }
  int ScanCount(const String& id) {
    reported.clear();
    Plugin(id).Scan();
    return Plugin(id).TraceCount;
  }
  // The host's clean cycle for one plug-in, then the fix of every active plug-in.
  void CleanAndFix(const String& id) {
    TOrviMRU host;
    ASSERT_TRUE(host.CleanPlugin(Plugin(id), {}));
    Plugin(id).Fix();
  }
  // Reported file names or registry value names of the last scan, in order.
  StringList ReportedNames() const {
    StringList out;
    for (const auto& r : reported)
      out.push_back(r.Type == TST_FileSystem_File ? r.Source.FileName : r.Source.ValueName);
    return out;
  }
  // IDs of the plug-ins in Plugins whose IDs are in `ids`, in list order.
  static StringList OrderOf(const StringList& ids) {
    StringList out;
    for (TTCPlugin* p : *Plugins)
      if (std::find(ids.begin(), ids.end(), p->ID) != ids.end()) out.push_back(p->ID);
    return out;
  }

  void Str(HKEY root, const String& key, const String& name, const String& text) {
    ASSERT_EQ(mem.Registry->PutString(root, key, name, text), ERROR_SUCCESS);
  }
  void File(const String& path, std::string_view content = "x") {
    ASSERT_EQ(mem.Files->AddFile(path, content), ERROR_SUCCESS);
  }
  bool Exists(const String& path) { return mem.Files->Exists(path); }

  // Every key and value of both user and machine hives, as "root\key" and
  // "root\key[name]=data" lines.
  std::set<String> Snapshot() {
    std::set<String> out;
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) Walk(root, u"", out);
    return out;
  }
  // What `before` lost to reach `after`, and what `after` gained.
  static std::pair<std::set<String>, std::set<String>> Diff(const std::set<String>& before,
                                                            const std::set<String>& after) {
    std::set<String> lost, gained;
    for (const auto& s : before)
      if (!after.count(s)) lost.insert(s);
    for (const auto& s : after)
      if (!before.count(s)) gained.insert(s);
    return {lost, gained};
  }

  static const String kUninstall;
  static const String kAppData;

 private:
  void Walk(HKEY root, const String& key, std::set<String>& out) {
    String prefix = (root == HKEY_CURRENT_USER ? u"HKCU\\" : u"HKLM\\") + key;
    out.insert(prefix);
    std::vector<RegNamedValue> values;
    mem.Registry->EnumValues(root, key, values, RegView::Default);
    for (const auto& v : values) out.insert(prefix + u"[" + v.Name + u"]=" + RegValueToText(v.Value));
    StringList subs;
    mem.Registry->EnumKeys(root, key, subs, RegView::Default);
    for (const auto& s : subs) Walk(root, key.empty() ? s : key + u"\\" + s, out);
  }
  bool started_ = false;
};

inline const String AppPluginFixture::kUninstall =
    u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
inline const String AppPluginFixture::kAppData = u"C:\\Users\\Tester\\AppData\\Roaming\\";

// Checks a unit's plug-ins against its catalogue: order, section, captions, icon.
inline void ExpectCatalogue(const std::vector<CatalogueRow>& rows, const String& section) {
  StringList ids, expected;
  for (const auto& r : rows) ids.push_back(r.ID);
  for (TTCPlugin* p : *Plugins)
    if (std::find(ids.begin(), ids.end(), p->ID) != ids.end()) expected.push_back(p->ID);
  EXPECT_EQ(expected, ids) << "creation order";
  for (const auto& r : rows) {
    TTCPlugin* p = nullptr;
    ASSERT_TRUE(GetPluginByID(r.ID, p)) << ToUtf8(r.ID);
    EXPECT_EQ(p->Section, section) << ToUtf8(r.ID);
    EXPECT_EQ(p->AppCaption, String(r.AppCaption)) << ToUtf8(r.ID);
    EXPECT_EQ(p->Caption, String(r.Caption)) << ToUtf8(r.ID);
    EXPECT_EQ(p->IconFile, FileNameByID(r.Icon, 27)) << ToUtf8(r.ID);
    EXPECT_FALSE(p->Description.empty()) << ToUtf8(r.ID);
  }
}

}  // namespace tc
