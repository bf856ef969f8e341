// What a clean could not remove: one record per trace, with the step, the reason and
// whether it waits for the next start; and the outcome that follows from the counts.
#include <functional>

#include "EngineFixture.h"
#include "platform/common/FaultInjection.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {
namespace {

const String kDir = u"C:\\Traces\\";
const String kKey = u"Software\\Test\\Recent";

class CleanFailureTest : public EngineFixture {
 public:
  void SetUp() override {
    EngineFixture::SetUp();
    files_ = std::make_shared<FaultyFileSystem>(platform_->Files);
    registry_ = std::make_shared<FaultyRegistry>(platform_->Registry);
    platform_->Files = files_;
    platform_->Registry = registry_;
  }
  std::shared_ptr<FaultyFileSystem> files_;
  std::shared_ptr<FaultyRegistry> registry_;
};

TEST_F(CleanFailureTest, EveryTraceLeftIsRecordedWithItsStepAndReason) {
  struct Case {
    const char* name;
    std::function<void(CleanFailureTest&, TestPlugin&)> act;
    const char16_t* location;  // file name or value name; nullptr: no failure
    const char16_t* operation;
    uint32_t code;
    bool scheduled;
  };
  const Case cases[] = {
      {"file in use, batch",
       [](CleanFailureTest& t, TestPlugin& p) {
         t.files_->LockFile(kDir + u"b.log");
         p.AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(kDir, u"*.log", u"", 0),
                            TTT_FileName, 0);
         p.Clean();
       },
       u"C:\\Traces\\b.log", u"overwrite file", ERROR_SHARING_VIOLATION, false},
      {"file in use, single: waits for the next start",
       [](CleanFailureTest& t, TestPlugin& p) {
         t.files_->LockFile(kDir + u"b.log", ERROR_LOCK_VIOLATION);
         EXPECT_FALSE(p.SecureDeleteFile(kDir + u"b.log"));
         EXPECT_TRUE(p.RebootRequired);
       },
       u"C:\\Traces\\b.log", u"overwrite file", ERROR_LOCK_VIOLATION, true},
      {"missing file: gone is what was wanted",
       [](CleanFailureTest&, TestPlugin& p) { EXPECT_TRUE(p.SecureDeleteFile(kDir + u"x.log")); },
       nullptr, nullptr, 0, false},
      {"value of a locked key",
       [](CleanFailureTest& t, TestPlugin& p) {
         t.registry_->LockKey(HKEY_CURRENT_USER, kKey);
         p.AddTraceLocation(TLT_Registry_NumberedNames,
                            new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kKey, u"File", 0),
                            TTT_FileName, 0);
         p.Clean();
       },
       u"File1", u"delete value", ERROR_ACCESS_DENIED, false},
      {"shredded string value whose deletion fails",
       [](CleanFailureTest& t, TestPlugin& p) {
         t.registry_->LockKey(HKEY_CURRENT_USER, kKey);
         p.AddTraceLocation(TLT_Registry_StringValue,
                            new TLD_Registry_StringValue(HKEY_CURRENT_USER, kKey, u"File1", u"", 0),
                            TTT_FileName, 0);
         p.Clean();
       },
       u"File1", u"delete value", ERROR_ACCESS_DENIED, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    files_->ClearFaults();
    registry_->ClearFaults();
    Plugins->CleanFailures.clear();
    WriteFile(kDir + u"b.log", "content");
    SetString(kKey, u"File1", u"C:\\a.txt");
    TestPlugin p(u"TTCPTest");
    c.act(*this, p);
    if (!c.location) {
      EXPECT_TRUE(Plugins->CleanFailures.empty());
      continue;
    }
    ASSERT_EQ(1u, Plugins->CleanFailures.size());
    const TCleanFailure& f = Plugins->CleanFailures[0];
    EXPECT_EQ(u"Test", f.PluginID);
    EXPECT_EQ(c.location, f.SourceType == TST_FileSystem_File ? f.Source.FileName
                                                              : f.Source.ValueName);
    EXPECT_EQ(c.operation, f.Operation);
    EXPECT_EQ(c.code, f.ErrorCode);
    EXPECT_FALSE(f.Reason.empty());
    EXPECT_EQ(c.scheduled, f.Scheduled);
    EXPECT_EQ(1, Plugins->CountCleanFailures(&p));
    EXPECT_EQ(c.scheduled ? 0 : 1, Plugins->CountCleanFailures(&p, true));
  }
}

TEST_F(CleanFailureTest, RemovedFilesAndTheirBytesAreBooked) {
  WriteFile(kDir + u"a.log", "12345");
  WriteFile(kDir + u"b.log", "123");
  files_->LockFile(kDir + u"b.log");
  TestPlugin p(u"TTCPTest");
  EXPECT_FALSE(p.SecureDeleteFiles({kDir + u"a.log", kDir + u"b.log"}));
  EXPECT_EQ(StringList{kDir + u"a.log"}, p.RemovedFiles);
  EXPECT_EQ(5, p.RemovedBytes);
  // Past the names kept for the report, removals are counted only.
  StringList many;
  for (size_t i = 0; i < TTCPlugin::kRemovedNamesKept + 1; ++i) {
    many.push_back(kDir + u"m" + IntToStr(int64_t(i)) + u".log");
    WriteFile(many.back(), "1");
  }
  EXPECT_TRUE(p.SecureDeleteFiles(many));
  EXPECT_EQ(TTCPlugin::kRemovedNamesKept, p.RemovedFiles.size());
  EXPECT_EQ(int64_t(TTCPlugin::kRemovedNamesKept) + 2, p.RemovedFileCount);
}

TEST(CleanOutcomeTest, FollowsFromWhatRanAndWhatIsLeft) {
  struct Case {
    bool ran, raised;
    int before, left;
    TCleanOutcome want;
  };
  const Case cases[] = {
      {false, false, 3, 3, CO_Skipped},      {true, false, 3, 0, CO_Cleaned},
      {true, false, 3, 1, CO_PartlyCleaned}, {true, false, 3, 3, CO_Failed},
      {true, true, 3, 0, CO_PartlyCleaned},  {true, true, 0, 0, CO_Failed},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.want, CleanOutcome(c.ran, c.raised, c.before, c.left))
        << c.ran << c.raised << c.before << c.left;
}

}  // namespace
}  // namespace tc
