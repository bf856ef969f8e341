// A fresh in-memory Windows and a started package for every engine test.
#pragma once
#include <gtest/gtest.h>

#include <memory>

#include "engine/TC_BasePlugin.h"
#include "engine/TC_Common.h"
#include "engine/Traces.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"
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

class EngineFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    StopWorking = false;
    platform_ = MakeMemoryPlatform();
    SetServices(platform_);
    Initialize();
  }
  void TearDown() override {
    Finalize();
    SetServices(nullptr);
    StopWorking = false;
  }

  std::shared_ptr<Platform> platform_;

  void AdvanceClock(uint64_t ms) {
    auto clock = std::dynamic_pointer_cast<ManualClock>(Services().Clock);
    ASSERT_TRUE(clock) << "the memory platform's clock is driven by hand";
    clock->Advance(ms);
  }
  // From now on, every registry write as "name=text" or "delete name".
  void RecordRegistryWrites() { MemoryOf(platform_).Registry->RecordWrites(true); }
  StringList RegistryWrites() {
    StringList log;
    for (const auto& w : MemoryOf(platform_).Registry->Writes()) {
      if (w.What != RegWrite::Kind::SetValue) {
        log.push_back(u"delete " + w.Name);
        continue;
      }
      String text = FromUtf16LE(w.Value.Data.data(), w.Value.Data.size());
      if (!text.empty() && text.back() == u'\0') text.pop_back();
      log.push_back(w.Name + u"=" + text);
    }
    return log;
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
  static bool FileExists(const String& path) { return OrviFileExists(path); }
};

}  // namespace tc
