// The smaller services against the live system: timers, event logs, recycle bin, shell
// folders and Protected Storage.
#include "platform/win32/Win32ProtectedStorage.h"
#include "LiveFixture.h"  // last: it brings <windows.h>

#include <shellapi.h>

namespace tc {
namespace {

using ServicesLive = LiveTest;

TEST_F(ServicesLive, TimersFireOnlyFromTheMessageLoopOncePerCall) {
  IUserInterface& ui = *platform_->UI;
  int fired = 0;
  const uint32_t id = ui.StartTimer(10, [&] { ++fired; });
  ASSERT_NE(0u, id);
  Sleep(60);
  EXPECT_EQ(0, fired);
  ui.ProcessMessages();
  EXPECT_EQ(1, fired);
  ui.KillTimer(id);
  Sleep(60);
  ui.ProcessMessages();
  EXPECT_EQ(1, fired);
  ui.KillTimer(12345);  // unknown: nothing happens
}

TEST_F(ServicesLive, RecycleBinIsCountedAndEmptiedSilently) {
  const String path = WriteFile(u"binned.txt", "12345");
  String from = path + u'\0';  // the shell's list ends with a second NUL
  SHFILEOPSTRUCTW op{};
  op.wFunc = FO_DELETE;
  op.pFrom = Wide(from);
  op.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
  ASSERT_EQ(0, SHFileOperationW(&op));
  IRecycleBin& bin = *platform_->RecycleBin;
  uint64_t items = 0, bytes = 0;
  ASSERT_EQ(0u, bin.Query(items, bytes));
  if (items == 0) GTEST_SKIP() << "this system deleted the file instead of binning it";
  EXPECT_GE(bytes, 5u);
  EXPECT_EQ(0u, bin.Empty());
  ASSERT_EQ(0u, bin.Query(items, bytes));
  EXPECT_EQ(0u, items);
  EXPECT_EQ(0u, bin.Empty());  // an empty bin empties without complaint
}

TEST_F(ServicesLive, ShellFoldersAreRealFolders) {
  for (int csidl : {kCSIDL_APPDATA, kCSIDL_LOCAL_APPDATA, kCSIDL_WINDOWS, kCSIDL_PERSONAL}) {
    String path;
    ASSERT_EQ(0u, platform_->Shell->GetSpecialFolder(csidl, path)) << csidl;
    FileInfo info;
    EXPECT_EQ(0u, Files().GetInfo(path, info)) << ToUtf8(path);
    EXPECT_TRUE(info.IsDirectory());
    EXPECT_NE(u'\\', path.back());
  }
  platform_->Shell->ChangeNotify(0x08000000 /* SHCNE_ASSOCCHANGED */, 0, u"");
}

TEST_F(ServicesLive, ProtectedStorageWithoutLibraryOrEntryPointFailsToOpen) {
  const Guid type{0xe161255a, 0x37c3, 0x11d2, {0xbc, 0xaa, 0x00, 0xc0, 0x4f, 0xd9, 0x29, 0xdb}};
  StringList names;
  Win32ProtectedStorage missing(u"tc-no-such-library.dll");
  EXPECT_EQ(uint32_t{ERROR_MOD_NOT_FOUND}, missing.Open());
  EXPECT_EQ(uint32_t{ERROR_MOD_NOT_FOUND}, missing.EnumItems(type, type, names));
  Win32ProtectedStorage noEntry(u"kernel32.dll");
  EXPECT_EQ(uint32_t{ERROR_PROC_NOT_FOUND}, noEntry.Open());
  // The system's own store may exist or not; either way it answers without failing hard.
  IProtectedStorage& store = *platform_->ProtectedStorage;
  if (store.Open() == ERROR_SUCCESS) store.EnumItems(type, type, names);
}

}  // namespace
}  // namespace tc
