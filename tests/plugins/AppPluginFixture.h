// A fresh in-memory Windows, seeded before the package starts (the plug-ins look for their
// clients while they are created), and helpers to seed, scan, clean and compare.
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
#include "platform/FaultInjection.h"
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

// One reported trace; Name is the file name of a file, else the registry value name.
struct FoundTrace {
  String PluginID;
  TTraceSourceType Type;
  String Key;
  String Name;
  TTraceTargetType Target;
  TTraceFlags Flags;
  String Data;
};

// Passes everything on and notes the keys asked about. It can answer "no such key" for a
// root itself, and drop a key once its last value is deleted, as a pruning backend would.
class SpyRegistry : public FaultyRegistry {
 public:
  using FaultyRegistry::FaultyRegistry;
  StringList asked;
  HKEY missingRoot = 0;
  bool dropEmptiedKeys = false;

  uint32_t KeyExists(HKEY root, const String& key, RegView view) override {
    asked.push_back(key);
    if (root == missingRoot && key.empty()) return ERROR_FILE_NOT_FOUND;
    return FaultyRegistry::KeyExists(root, key, view);
  }
  uint32_t DeleteValue(HKEY root, const String& key, const String& name, RegView view) override {
    uint32_t rc = FaultyRegistry::DeleteValue(root, key, name, view);
    std::vector<RegNamedValue> rest;
    StringList subs;
    if (dropEmptiedKeys && Inner()->EnumValues(root, key, rest, view) == ERROR_SUCCESS &&
        rest.empty() && Inner()->EnumKeys(root, key, subs, view) == ERROR_SUCCESS && subs.empty())
      Inner()->DeleteKeyTree(root, key, view);
    return rc;
  }
};

class AppPluginFixture : public ::testing::Test {
 public:
  static inline const String kUninstall =
      u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
  static inline const String kAppData = u"C:\\Users\\Tester\\AppData\\Roaming\\";

  MemoryWindows mem = MakeMemoryWindows();
  std::vector<FoundTrace> found;

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
    found.clear();
  }
  // Starts the package on what the test seeded so far.
  void Start() {
    Initialize();
    started_ = true;
    for (TTCPlugin* p : *Plugins)
      p->OnScanTraceFound = [this](TTCPlugin* s, TTraceSourceType t, const TTraceSourceData& d,
                                   TTraceTargetType target, TTraceFlags flags,
                                   const String& data) {
        found.push_back({s->ID, t, d.Key, t == TST_FileSystem_File ? d.FileName : d.ValueName,
                         target, flags, data});
      };
  }
  // Puts a registry wrapper that notes what is asked in front of the machine's registry.
  std::shared_ptr<SpyRegistry> Spy() {
    auto spy = std::make_shared<SpyRegistry>(mem.Platform->Registry);
    mem.Platform->Registry = spy;
    return spy;
  }

  static TTCPlugin& Plugin(const String& id) {
    TTCPlugin* p = nullptr;
    if (!GetPluginByID(id, p)) throw std::runtime_error("no plug-in " + ToUtf8(id));
    return *p;
  }
  int Scan(const String& id) {
    found.clear();
    Plugin(id).Scan();
    return Plugin(id).TraceCount;
  }
  // The host's clean cycle for each plug-in, each followed by its fix.
  void CleanAndFix(std::initializer_list<String> ids) {
    for (const String& id : ids) {
      TOrviMRU host;
      ASSERT_TRUE(host.CleanPlugin(Plugin(id), {}));
      Plugin(id).Fix();
    }
  }
  // Names of the traces the last scan reported, in order.
  StringList FoundNames() const {
    StringList out;
    for (const auto& f : found) out.push_back(f.Name);
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
  // String values of one key, in this order.
  void Strs(HKEY root, const String& key,
            std::initializer_list<std::pair<const char16_t*, const char16_t*>> values) {
    for (auto [name, text] : values) Str(root, key, name, text);
  }
  void Bin(HKEY root, const String& key, const String& name, const Bytes& data) {
    ASSERT_EQ(mem.Registry->PutBinary(root, key, name, data), ERROR_SUCCESS);
  }
  void File(const String& path, std::string_view content = "x") {
    ASSERT_EQ(mem.Files->AddFile(path, content), ERROR_SUCCESS);
  }
  // Files of one folder with the same content.
  void Files(const String& folder, std::initializer_list<const char16_t*> names) {
    for (const char16_t* name : names) File(folder + name);
  }
  bool Exists(const String& path) { return mem.Files->Exists(path); }
  StringList Names(const String& key) { return mem.Registry->ValueNames(HKEY_CURRENT_USER, key); }

  // Every key and value of both user and machine hives, as "root\key" and
  // "root\key[name]=data" lines.
  std::set<String> Snapshot() {
    std::set<String> out;
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) Walk(root, u"", out);
    return out;
  }
  struct Changes {
    std::set<String> lost, gained;
  };
  // Cleans and fixes the plug-ins: what the hives lost, and what they gained.
  Changes CleanAndDiff(std::initializer_list<String> ids) {
    const std::set<String> before = Snapshot();
    CleanAndFix(ids);
    const std::set<String> after = Snapshot();
    Changes c;
    std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                        std::inserter(c.lost, c.lost.end()));
    std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                        std::inserter(c.gained, c.gained.end()));
    return c;
  }

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

// Checks a unit's plug-ins on a bare machine against its catalogue: creation order, section,
// captions, icon and a description; only those in `active` are switched on.
inline void ExpectCatalogue(const std::vector<CatalogueRow>& rows, const String& section,
                            const StringList& active) {
  StringList ids;
  for (const auto& r : rows) ids.push_back(r.ID);
  EXPECT_EQ(AppPluginFixture::OrderOf(ids), ids) << "creation order";
  for (const auto& r : rows) {
    SCOPED_TRACE(ToUtf8(r.ID));
    TTCPlugin* p = nullptr;
    ASSERT_TRUE(GetPluginByID(r.ID, p));
    EXPECT_EQ(p->Section, section);
    EXPECT_EQ(p->AppCaption, String(r.AppCaption));
    EXPECT_EQ(p->Caption, String(r.Caption));
    EXPECT_EQ(p->IconFile, FileNameByID(r.Icon, 27));
    EXPECT_FALSE(p->Description.empty());
    EXPECT_EQ(p->Active, std::find(active.begin(), active.end(), r.ID) != active.end());
  }
}

}  // namespace tc
