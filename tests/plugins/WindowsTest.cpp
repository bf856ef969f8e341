// System stores: recycle bin, paging files, event logs.
#include "AppPluginFixture.h"
#include "plugins/TCP_Windows.h"

namespace tc {
namespace {

const String kMemMgmt =
    u"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";

class WindowsTest : public AppPluginFixture {
 protected:
  StringList PendingDeletes() {
    StringList paths;
    mem.RebootDeleter->Pending(paths);
    return paths;
  }
};

// Stands for a bin whose count does not fit 32 bits.
class HugeRecycleBin : public IRecycleBin {
 public:
  uint32_t Query(uint64_t& items, uint64_t& bytes) override {
    items = (uint64_t{1} << 32) + 5;
    bytes = 1;
    return ERROR_SUCCESS;
  }
  uint32_t Empty() override {
    ++emptied;
    return ERROR_SUCCESS;
  }
  int emptied = 0;
};

TEST_F(WindowsTest, RecycleBinEmptiedWhateverTheCount) {
  Start();
  auto bin = std::make_shared<HugeRecycleBin>();
  mem.Platform->RecycleBin = bin;
  CleanAndFix({u"RecycleBin"});  // never scanned: the count is 0
  EXPECT_EQ(bin->emptied, 1);
  EXPECT_EQ(Scan(u"RecycleBin"), 5);  // the low 32 bits of the item count
}

TEST_F(WindowsTest, PagingFilesCountedByPathAndOnlyScheduled) {
  struct Case {
    StringList lines;  // no value at all when empty (a paging file is there all the same)
    StringList files;  // that exist and are scheduled
    int count;
  } cases[] = {
      {{u"C:\\pagefile.sys 1024 2048", u"D:\\pagefile.sys 0 0"}, {u"C:\\pagefile.sys"}, 1},
      {{u"?:\\pagefile.sys"}, {}, 0},  // the system-managed default
      {{u"C:\\pagefile.sys", u"C:\\swap\\extra.sys 16 16"},
       {u"C:\\pagefile.sys", u"C:\\swap\\extra.sys"}, 2},
      {{}, {}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.count);
    Reset();
    mem.Registry->DeleteValue(HKEY_LOCAL_MACHINE, kMemMgmt, u"PagingFiles", RegView::Default);
    if (c.lines.empty()) File(u"C:\\pagefile.sys");
    else mem.Registry->PutMultiString(HKEY_LOCAL_MACHINE, kMemMgmt, u"PagingFiles", c.lines);
    for (const auto& f : c.files) File(f, "seiten");
    Start();
    EXPECT_EQ(Scan(u"PagingFile"), c.count);
    auto [lost, gained] = CleanAndDiff({u"PagingFile"});
    EXPECT_EQ(Plugin(u"PagingFile").RebootRequired, c.count > 0);
    EXPECT_EQ(PendingDeletes(), c.files);
    for (const auto& f : c.files) EXPECT_TRUE(Exists(f)) << ToUtf8(f);
    // Nothing in the hives changes but the pending operations.
    for (const auto& line : lost) ADD_FAILURE() << "lost " << ToUtf8(line);
    for (const auto& line : gained)
      EXPECT_NE(line.find(u"[PendingFileRenameOperations]"), String::npos) << ToUtf8(line);
  }
}

// Logs are chosen by their position in the list, not by name.
TEST_F(WindowsTest, EventLogsByPosition) {
  struct Case {
    std::vector<std::pair<String, uint32_t>> logs;  // in list order
    int apps, security, system;
    std::vector<uint32_t> afterClean;
  } cases[] = {
      {{{u"Application", 12}, {u"Security", 3}, {u"System", 40}, {u"Setup", 2}},
       12, 3, 40, {0, 0, 0, 2}},
      {{{u"Application", 12}, {u"Security", 3}}, 12, 3, 0, {0, 0}},
      {{{u"Application", 12}}, 12, 0, 0, {0}},
      // Without a security log the second position is the system log.
      {{{u"Application", 1}, {u"System", 7}}, 1, 7, 0, {0, 0}},
  };
  const char16_t* ids[] = {u"WindowsEventApps", u"WindowsEventSecurity", u"WindowsEventSystem"};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.logs.size());
    Reset();
    for (const char16_t* name : {u"Application", u"Security", u"System"})
      mem.EventLogs->RemoveLog(name);
    for (const auto& [name, records] : c.logs) mem.EventLogs->SetLog(name, records);
    Start();
    EXPECT_EQ(Scan(ids[0]), c.apps);
    EXPECT_EQ(Scan(ids[1]), c.security);
    EXPECT_EQ(Scan(ids[2]), c.system);
    CleanAndFix({ids[0], ids[1], ids[2]});
    std::vector<uint32_t> after;
    for (const auto& [name, records] : c.logs) after.push_back(mem.EventLogs->Records(name));
    EXPECT_EQ(after, c.afterClean);
  }
}

TEST_F(WindowsTest, EventLogFailuresStayInside) {
  mem.EventLogs->SetLog(u"Security", 9);
  mem.EventLogs->SetLog(u"System", 4);
  mem.EventLogs->SetAccessError(u"Security");
  Start();
  EXPECT_EQ(Scan(u"WindowsEventSecurity"), 0);
  EXPECT_NE(Plugin(u"WindowsEventSecurity").Note.find(u"event log Security could not be opened"),
            String::npos);
  EXPECT_EQ(Scan(u"WindowsEventSystem"), 4);  // the refused log keeps its place
  CleanAndFix({u"WindowsEventSecurity"});
  EXPECT_EQ(mem.EventLogs->Records(u"Security"), 9u);
  EXPECT_TRUE(Plugin(u"WindowsEventSecurity").Active);

  // An image without event logs: nothing counted, nothing cleaned.
  mem.EventLogs->SetUnavailable();
  EXPECT_EQ(Scan(u"WindowsEventSystem"), 0);
  CleanAndFix({u"WindowsEventSystem"});
  mem.EventLogs->SetUnavailable(0);
  EXPECT_EQ(mem.EventLogs->Records(u"System"), 4u);
}

}  // namespace
}  // namespace tc
