// Fixture for the Windows plug-ins: the reported traces with their target and flags, and
// small builders for the registry data these lists hold.
#pragma once
#include "AppPluginFixture.h"

namespace tc {

struct FoundTrace {
  String PluginID;
  TTraceSourceType Type;
  String Key;
  String ValueName;
  TTraceTargetType Target;
  TTraceFlags Flags;
  String Data;
};

class WindowsFixture : public AppPluginFixture {
 public:
  using AppPluginFixture::Str;

  std::vector<FoundTrace> found;

  void StartPackage() {
    Start();
    for (TTCPlugin* p : *Plugins)
      p->OnScanTraceFound = [this](TTCPlugin* s, TTraceSourceType t, const TTraceSourceData& d,
                                   TTraceTargetType target, TTraceFlags flags,
                                   const String& data) {
        found.push_back({s->ID, t, d.Key, d.ValueName, target, flags, data});
      };
  }
  int Scan(const String& id) {
    found.clear();
    Plugin(id).Scan();
    return Plugin(id).TraceCount;
  }
  StringList FoundNames() const {
    StringList out;
    for (const auto& f : found) out.push_back(f.ValueName);
    return out;
  }
  void Bin(HKEY root, const String& key, const String& name, const Bytes& data) {
    ASSERT_EQ(mem.Registry->PutBinary(root, key, name, data), ERROR_SUCCESS);
  }
  StringList Names(const String& key) { return mem.Registry->ValueNames(HKEY_CURRENT_USER, key); }

  // UTF-16 text with its terminator followed by some shell-item bytes, as the binary
  // entries of the recent lists hold it.
  static Bytes TextItem(const String& text) {
    Bytes b = ToUtf16LE(text);
    b.insert(b.end(), {0, 0, 0x14, 0x00, 0x1F, 0x50, 0xE0, 0x4F});
    return b;
  }
  static String Rot13(String s) {
    for (auto& c : s) {
      if (c >= u'a' && c <= u'z') c = u'a' + (c - u'a' + 13) % 26;
      else if (c >= u'A' && c <= u'Z') c = u'A' + (c - u'A' + 13) % 26;
    }
    return s;
  }
};

}  // namespace tc
