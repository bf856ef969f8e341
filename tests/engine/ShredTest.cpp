// Secure deletion: overwrite passes, name removal, failures, progress gating.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "EngineFixture.h"
#include "platform/common/FaultInjection.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {
namespace {

// Snapshots a file's content at each flush and at its removal; as the fault wrapper it is,
// it can make files look in use.
class SpyFiles : public FaultyFileSystem {
 public:
  using FaultyFileSystem::FaultyFileSystem;

  std::vector<std::string> flushes;                     // content after each pass
  std::vector<std::pair<String, std::string>> removed;  // name and content when removed
  std::function<void()> onWrite;

  std::string Content(const String& path) {
    Bytes data;
    FileContents::Read(*Inner(), path, data);
    return std::string(data.begin(), data.end());
  }
  uint32_t Open(const String& path, OpenMode mode, std::unique_ptr<IFileHandle>& file) override {
    const uint32_t rc = FaultyFileSystem::Open(path, mode, file);
    if (rc == ERROR_SUCCESS) file = std::make_unique<Handle>(*this, path, std::move(file));
    return rc;
  }
  uint32_t RemoveFile(const String& path) override {
    const std::string content = Content(path);
    const uint32_t rc = FaultyFileSystem::RemoveFile(path);
    if (rc == ERROR_SUCCESS) removed.emplace_back(path, content);
    return rc;
  }

 private:
  class Handle : public IFileHandle {
   public:
    Handle(SpyFiles& spy, String path, std::unique_ptr<IFileHandle> inner)
        : spy_(spy), path_(std::move(path)), inner_(std::move(inner)) {}
    uint32_t Read(uint64_t o, void* b, size_t s, size_t& d) override { return inner_->Read(o, b, s, d); }
    uint32_t Write(uint64_t o, const void* d, size_t s) override {
      if (spy_.onWrite) spy_.onWrite();
      return inner_->Write(o, d, s);
    }
    uint32_t Flush() override {
      uint32_t rc = inner_->Flush();
      uint64_t size = 0;
      inner_->GetSize(size);
      if (size) spy_.flushes.push_back(spy_.Content(path_));
      return rc;
    }
    uint32_t SetSize(uint64_t s) override { return inner_->SetSize(s); }
    uint32_t GetSize(uint64_t& s) override { return inner_->GetSize(s); }

   private:
    SpyFiles& spy_;
    String path_;
    std::unique_ptr<IFileHandle> inner_;
  };
};

const String kDir = u"C:\\Users\\Tester\\Documents";
const String kFile = kDir + u"\\secret-report.txt";

std::string SecretContent(size_t size) {
  std::string s;
  while (s.size() < size) s += "TOP-SECRET-MARKER " + std::to_string(s.size()) + "\n";
  s.resize(size);
  return s;
}

class ShredTest : public EngineFixture {
 protected:
  std::shared_ptr<SpyFiles> spy;
  TestPlugin plugin{u"TTCPShred"};

  void SetUp() override {
    EngineFixture::SetUp();
    spy = std::make_shared<SpyFiles>(Services().Files);
    Services().Files = spy;
  }
};

bool AllBytesFollow(const std::string& data, const std::vector<uint8_t>& pattern) {
  for (size_t i = 0; i < data.size(); ++i) {
    if (static_cast<uint8_t>(data[i]) != pattern[i % pattern.size()]) return false;
  }
  return true;
}

TEST_F(ShredTest, EveryMethodOverwritesEachPassAndLeavesNeitherContentNorName) {
  struct Case {
    TDeleteMethod method;
    int recurrence;
    size_t passes;
    std::map<size_t, std::vector<uint8_t>> patterns;  // some passes' expected pattern
    std::vector<size_t> randomPasses;
  };
  const Case cases[] = {
      {TDeleteMethod::dmZeros, 1, 1, {{0, {0}}}, {}},
      {TDeleteMethod::dmZeros, 3, 3, {{0, {0}}, {1, {0}}, {2, {0}}}, {}},
      {TDeleteMethod::dmRandom, 1, 1, {}, {0}},
      {TDeleteMethod::dmDoD5220, 1, 3, {{0, {0}}, {1, {0xFF}}}, {2}},
      {TDeleteMethod::dmGutmann, 1, 35,
       {{4, {0x55}}, {5, {0xAA}}, {6, {0x92, 0x49, 0x24}}, {10, {0x11}}, {30, {0xDB, 0x6D, 0xB6}}},
       {0, 1, 2, 3, 31, 32, 33, 34}},
  };
  const std::string secret = SecretContent(2 * 786432 + 1001);  // spans chunks, odd tail
  for (const auto& c : cases) {
    WriteFile(kFile, secret);
    spy->flushes.clear();
    spy->removed.clear();
    plugin.ShredMethod = c.method;
    plugin.ShredRecurrence = c.recurrence;
    ASSERT_TRUE(plugin.SecureDeleteFile(kFile));
    EXPECT_EQ(plugin.ShredTotalSize, static_cast<int64_t>(secret.size()));
    ASSERT_EQ(spy->flushes.size(), c.passes);
    for (size_t pass = 0; pass < c.passes; ++pass) {
      const std::string& after = spy->flushes[pass];
      ASSERT_EQ(after.size(), secret.size());
      EXPECT_EQ(after.find("SECRET"), std::string::npos) << "pass " << pass;
      auto it = c.patterns.find(pass);
      if (it != c.patterns.end()) {
        EXPECT_TRUE(AllBytesFollow(after, it->second)) << "pass " << pass;
      } else if (std::count(c.randomPasses.begin(), c.randomPasses.end(), pass)) {
        size_t same = 0;  // random data agrees with the original about 1 byte in 256
        for (size_t i = 0; i < after.size(); ++i) same += after[i] == secret[i];
        EXPECT_LT(same, secret.size() / 64) << "pass " << pass;
      }
    }
    // The file was renamed to a random name of the same length and emptied first.
    ASSERT_EQ(spy->removed.size(), 1u);
    String removedName = ExtractFileName(spy->removed[0].first);
    EXPECT_NE(removedName, ExtractFileName(kFile));
    EXPECT_EQ(removedName.size(), ExtractFileName(kFile).size());
    EXPECT_EQ(spy->removed[0].second, "");
    StringList left;
    EnumFiles(kDir, left, u"*");
    EXPECT_TRUE(left.empty());
  }
}

TEST_F(ShredTest, OtherFailuresCountAsDoneAndBatchesScheduleNothing) {
  WriteFile(kFile, "denied");
  spy->LockFile(kFile, ERROR_ACCESS_DENIED);
  EXPECT_TRUE(plugin.SecureDeleteFile(kFile));
  EXPECT_FALSE(plugin.RebootRequired);

  spy->LockFile(kFile, ERROR_SHARING_VIOLATION);
  EXPECT_FALSE(plugin.SecureDeleteFiles({kFile}));
  EXPECT_FALSE(plugin.RebootRequired);
  StringList pending;
  Services().RebootDeleter->Pending(pending);
  EXPECT_TRUE(pending.empty());

  EXPECT_TRUE(plugin.SecureDeleteFiles({}));  // a trivial job still runs
  EXPECT_FALSE(plugin.ShredTimer.Enabled());
}

TEST_F(ShredTest, ProgressReachesTheHostOnlyAfterTwoSeconds) {
  std::vector<int> percents;
  plugin.OnSecureDelete = [&](TTCPlugin*, int percent) { percents.push_back(percent); };
  const std::string big = SecretContent(4 * 786432);  // four chunks

  WriteFile(kFile, big);
  ASSERT_TRUE(plugin.SecureDeleteFile(kFile));  // the clock stands still: a short job
  EXPECT_TRUE(percents.empty());
  EXPECT_FALSE(plugin.ShredTimerElapsed);

  WriteFile(kFile, big);
  spy->onWrite = [&] { AdvanceClock(1000); };
  ASSERT_TRUE(plugin.SecureDeleteFile(kFile));
  EXPECT_TRUE(plugin.ShredTimerElapsed);
  ASSERT_FALSE(percents.empty());
  EXPECT_EQ(percents.front(), 50);  // the second chunk ends at two seconds
  EXPECT_EQ(percents.back(), 100);
  EXPECT_FALSE(plugin.ShredTimer.Enabled());
}

}  // namespace
}  // namespace tc
