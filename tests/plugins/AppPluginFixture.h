// A fresh in-memory Windows, seeded before the package starts (the plug-ins look for their
// clients while they are created), and helpers to seed, scan, clean and compare.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

#include "engine/Orvitracecleaner.h"
#include "engine/TC_BasePlugin.h"
#include "engine/TC_Common.h"
#include "engine/Traces.h"
#include "platform/common/FaultInjection.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {
namespace test {

// The bytes of a file under the shared real-world folder; empty when it is absent.
inline std::string RealFile(const std::string& relative) {
  std::ifstream in(std::string(TC_REALWORLD_DIR) + "/" + relative, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

}  // namespace test

// Loads a real file into `var`, or skips the test with the reason.
#define TC_REAL_FILE(var, relative)                                                  \
  const std::string var = ::tc::test::RealFile(relative);                            \
  if (var.empty()) GTEST_SKIP() << "real file " << (relative) << " is not available"

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
  // Names, or data, of the traces the last scan reported, in order.
  StringList FoundNames() const {
    StringList out;
    for (const auto& f : found) out.push_back(f.Name);
    return out;
  }
  StringList FoundData() const {
    StringList out;
    for (const auto& f : found) out.push_back(f.Data);
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
  // Every file below the real-world folder `relative`, below the Windows `folder`; false
  // when the shared folder is absent.
  bool CopyReal(const std::string& relative, const String& folder) {
    namespace fs = std::filesystem;
    const fs::path root = fs::path(TC_REALWORLD_DIR) / relative;
    if (!fs::is_directory(root)) return false;
    for (const auto& e : fs::recursive_directory_iterator(root)) {
      if (!e.is_regular_file()) continue;
      const std::string rel = fs::relative(e.path(), root).generic_string();
      String windows = FromUtf8(rel);
      std::replace(windows.begin(), windows.end(), u'/', u'\\');
      File(folder + windows, test::RealFile(relative + "/" + rel));
    }
    return true;
  }
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

}  // namespace tc
