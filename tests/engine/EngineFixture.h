// A fresh in-memory Windows and a started package for every engine test.
#pragma once
#include <gtest/gtest.h>

#include <memory>

#include "engine/TC_BasePlugin.h"
#include "engine/TC_Common.h"
#include "engine/Traces.h"
#include "platform/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/TextCodec.h"
#include "platform/memory/ManualClock.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {

// A declarative plug-in of any class name, for tests.
class TestPlugin : public TTCPlugin {
 public:
  explicit TestPlugin(const String& className) : TTCPlugin(className) {}
};

struct FoundTrace {
  TTraceSourceType type;
  TTraceSourceData source;
  TTraceTargetType target;
  TTraceFlags flags;
  String data;
};

inline TScanTraceFoundEvent Recorder(std::vector<FoundTrace>& into) {
  return [&into](TTCPlugin*, TTraceSourceType type, const TTraceSourceData& source,
                 TTraceTargetType target, TTraceFlags flags, const String& data) {
    into.push_back({type, source, target, flags, data});
  };
}

inline Bytes StringBytes(std::u16string_view s) {
  Bytes b = ToUtf16LE(s);
  b.push_back(0);
  b.push_back(0);
  return b;
}

inline Bytes MultiBytes(const StringList& lines) {
  Bytes b;
  for (const auto& l : lines) {
    Bytes one = StringBytes(l);
    b.insert(b.end(), one.begin(), one.end());
  }
  b.push_back(0);
  b.push_back(0);
  return b;
}

// Records every registry write and delete, then passes it on.
class SpyRegistry : public IRegistry {
 public:
  explicit SpyRegistry(std::shared_ptr<IRegistry> inner) : inner_(std::move(inner)) {}
  StringList log;

  uint32_t KeyExists(HKEY r, const String& k, RegView v) override { return inner_->KeyExists(r, k, v); }
  uint32_t CreateKey(HKEY r, const String& k, RegView v) override { return inner_->CreateKey(r, k, v); }
  uint32_t EnumKeys(HKEY r, const String& k, StringList& n, RegView v) override {
    return inner_->EnumKeys(r, k, n, v);
  }
  uint32_t EnumValues(HKEY r, const String& k, std::vector<RegNamedValue>& n, RegView v) override {
    return inner_->EnumValues(r, k, n, v);
  }
  uint32_t QueryValue(HKEY r, const String& k, const String& n, RegValue& val, RegView v) override {
    return inner_->QueryValue(r, k, n, val, v);
  }
  uint32_t SetValue(HKEY r, const String& k, const String& n, const RegValue& val,
                    RegView v) override {
    String text = FromUtf16LE(val.Data.data(), val.Data.size());
    if (!text.empty() && text.back() == u'\0') text.pop_back();
    log.push_back(n + u"=" + text);
    return inner_->SetValue(r, k, n, val, v);
  }
  uint32_t DeleteValue(HKEY r, const String& k, const String& n, RegView v) override {
    log.push_back(u"delete " + n);
    return inner_->DeleteValue(r, k, n, v);
  }
  uint32_t DeleteKeyTree(HKEY r, const String& k, RegView v) override {
    log.push_back(u"delete key " + k);
    return inner_->DeleteKeyTree(r, k, v);
  }
  uint32_t Flush() override { return inner_->Flush(); }

 private:
  std::shared_ptr<IRegistry> inner_;
};

class EngineFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    StopWorking = false;
    SetServices(MakeMemoryPlatform());
    Initialize();
  }
  void TearDown() override {
    Finalize();
    SetServices(nullptr);
    StopWorking = false;
  }

  void AdvanceClock(uint64_t ms) {
    auto clock = std::dynamic_pointer_cast<ManualClock>(Services().Clock);
    ASSERT_TRUE(clock) << "the memory platform's clock is driven by hand";
    clock->Advance(ms);
  }
  std::shared_ptr<SpyRegistry> SpyOnRegistry() {
    auto spy = std::make_shared<SpyRegistry>(Services().Registry);
    Services().Registry = spy;
    return spy;
  }

  static void SetString(const String& key, const String& name, const String& value) {
    ASSERT_TRUE(SetRegStringValue(HKEY_CURRENT_USER, key, name, value, RO_None));
  }
  static void SetDWord(const String& key, const String& name, uint32_t value) {
    ASSERT_TRUE(SetRegDWordValue(HKEY_CURRENT_USER, key, name, value, RO_None));
  }
  static void SetBinary(const String& key, const String& name, const Bytes& value) {
    ASSERT_TRUE(SetRegBinaryValue(HKEY_CURRENT_USER, key, name, value, RO_None));
  }
  static void WriteFile(const String& path, const std::string& content) {
    auto& fs = *Services().Files;
    size_t cut = path.find_last_of(u'\\');
    ASSERT_EQ(fs.MakeFolder(path.substr(0, cut)), ERROR_SUCCESS);
    std::unique_ptr<IFileHandle> f;
    ASSERT_EQ(fs.Open(path, OpenMode::CreateAlways, f), ERROR_SUCCESS);
    ASSERT_EQ(f->Write(0, content.data(), content.size()), ERROR_SUCCESS);
  }
  static std::string ReadFile(const String& path) {
    std::unique_ptr<IFileHandle> f;
    if (Services().Files->Open(path, OpenMode::Read, f) != ERROR_SUCCESS) return "<missing>";
    uint64_t size = 0;
    f->GetSize(size);
    std::string data(size, '\0');
    size_t done = 0;
    f->Read(0, data.data(), data.size(), done);
    return data;
  }
  static bool FileExists(const String& path) { return OrviFileExists(path); }
};

}  // namespace tc
