// A stop request ends scans and cleans at the next item; every counted trace reaches the host,
// through the trace-found event or the preview.
#include "EngineFixture.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {
namespace {

const String kDir = u"C:\\Walk\\";
const String kKey = u"Software\\Test";

class StopAndPreviewTest : public EngineFixture {
 protected:
  void SeedFiles(int n) {
    for (int i = 0; i < n; ++i)
      WriteFile(kDir + (i % 2 ? u"sub\\" : u"") + u"f" + IntToStr(i) + u".tmp", "0123456789");
  }
  int FilesLeft(int n) {
    int left = 0;
    for (int i = 0; i < n; ++i)
      left += FileExists(kDir + (i % 2 ? u"sub\\" : u"") + u"f" + IntToStr(i) + u".tmp");
    return left;
  }
};

TEST_F(StopAndPreviewTest, EveryCountedTraceIsReportedOrPreviewed) {
  SetString(kKey + u"\\All", u"a", u"x");
  SetString(kKey + u"\\All", u"b", u"y");
  SetString(kKey + u"\\Keys\\One", u"v", u"1");
  SetString(kKey + u"\\Keys\\Two", u"v", u"2");
  SetString(kKey, u"List", u"a;b;c");
  SetString(kKey, u"Single", u"text");
  MemoryOf(platform_).Registry->SetValue(HKEY_CURRENT_USER, kKey, u"Multi",
                                         {REG_MULTI_SZ, ToUtf16LE(String(u"l1\0l2\0\0", 7))},
                                         RegView::Default);
  SeedFiles(4);
  TestPlugin p(u"TTCPTest");
  p.AddTraceLocation(TLT_Registry_AllValues,
                     new TLD_Registry_AllValues(HKEY_CURRENT_USER, kKey + u"\\All", 0), TTT_Unknown, 0);
  p.AddTraceLocation(TLT_Registry_AllKeys,
                     new TLD_Registry_AllKeys(HKEY_CURRENT_USER, kKey + u"\\Keys", 0), TTT_Unknown, 0);
  p.AddTraceLocation(TLT_Registry_StringValue,
                     new TLD_Registry_StringValue(HKEY_CURRENT_USER, kKey, u"List", u";", 0),
                     TTT_Unknown, 0);
  p.AddTraceLocation(TLT_Registry_StringValue,
                     new TLD_Registry_StringValue(HKEY_CURRENT_USER, kKey, u"Single", u"", 0),
                     TTT_Unknown, 0);
  p.AddTraceLocation(TLT_Registry_StringValue,
                     new TLD_Registry_StringValue(HKEY_CURRENT_USER, kKey, u"Multi", u"",
                                                  LO_MultiString),
                     TTT_Unknown, 0);
  p.AddTraceLocation(TLT_FileSystem_Files,
                     new TLD_FileSystem_Files(kDir, u"*.tmp", u"", LO_Recursive), TTT_FileName, 0);
  std::vector<FoundTrace> found;
  p.OnScanTraceFound = Recorder(found);
  StringList previewed;
  int64_t bytes = 0;
  p.OnPreviewTrace = [&](TTCPlugin*, TTraceSourceType, const TTraceSourceData& where,
                         TTraceTargetType, TTraceFlags, const String& data, int64_t size) {
    previewed.push_back(where.FileName.empty() ? where.Key + u":" + data : where.FileName);
    bytes += size > 0 ? size : 0;
  };
  p.Scan();
  EXPECT_EQ(2 + 2 + 3 + 1 + 2 + 4, p.TraceCount);
  EXPECT_EQ(size_t(p.TraceCount), found.size() + previewed.size());
  EXPECT_EQ(40, bytes);
}

TEST_F(StopAndPreviewTest, AStopRequestEndsScanAndCleanAfterTheItemAtHand) {
  constexpr int kFiles = 10, kStopAt = 4;
  struct Case {
    const char* name;
    bool clean;
    bool atOnce;  // the user insists: the file being overwritten is dropped, not finished
  };
  const Case cases[] = {{"scan", false, false}, {"clean", true, false}, {"clean, insisted", true, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    StopWorking = StopAtOnce = false;
    SeedFiles(kFiles);
    TestPlugin p(u"TTCPTest");
    p.AddTraceLocation(TLT_FileSystem_Files,
                       new TLD_FileSystem_Files(kDir, u"*.tmp", u"", LO_Recursive), TTT_FileName, 0);
    int items = 0;
    auto request = [&] {
      if (++items != kStopAt) return;
      StopWorking = true;
      StopAtOnce = c.atOnce;
    };
    p.OnScanProgress = [&](TTCPlugin*, int, const String&, bool) { request(); };
    p.OnCleanProgress = [&](TTCPlugin*, int, const String&, const String&, bool) { request(); };
    if (c.clean) p.Clean();
    else p.Scan();
    EXPECT_EQ(c.clean ? 0 : kStopAt, p.TraceCount);
    EXPECT_EQ(c.clean ? kFiles - kStopAt : kFiles, FilesLeft(kFiles));
    EXPECT_EQ(size_t(c.clean ? kStopAt : 0), p.RemovedFiles.size());
    EXPECT_TRUE(Plugins->CleanFailures.empty());
  }
  StopWorking = StopAtOnce = false;
}

}  // namespace
}  // namespace tc
