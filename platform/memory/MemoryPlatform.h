// The in-memory Windows: a fresh, realistic and empty machine for tests.
//
//   MemoryWindows mem = MakeMemoryWindows();
//   mem.Registry->PutString(HKEY_CURRENT_USER, u"Software\\X", u"File1", u"a.txt");
//   mem.Files->AddFile(u"C:\\Users\\Tester\\Documents\\a.txt", "text");
//   SetServices(mem.Platform);
#pragma once
#include <memory>

#include "platform/common/FaultInjection.h"
#include "platform/common/FolderRecycleBin.h"
#include "platform/common/PendingRenameRebootDeleter.h"
#include "platform/Platform.h"
#include "platform/common/TimerQueueUI.h"
#include "platform/memory/ManualClock.h"
#include "platform/memory/MemoryEventLogs.h"
#include "platform/memory/MemoryFileSystem.h"
#include "platform/memory/MemoryProtectedStorage.h"
#include "platform/memory/MemoryRegistry.h"
#include "platform/memory/MemoryShell.h"
#include "platform/memory/MemoryUrlCache.h"
#include "platform/memory/MemoryUrlHistory.h"

namespace tc {

// Typed access to the pieces of a memory platform, to seed and inspect them. Every member
// is the same object the Platform holds (Registry and Files sit behind FaultyRegistry /
// FaultyFileSystem, whose faults start switched off).
struct MemoryWindows {
  std::shared_ptr<tc::Platform> Platform;
  std::shared_ptr<MemoryRegistry> Registry;
  std::shared_ptr<MemoryFileSystem> Files;
  std::shared_ptr<FaultyRegistry> RegistryFaults;
  std::shared_ptr<FaultyFileSystem> FileFaults;
  std::shared_ptr<MemoryShell> Shell;
  std::shared_ptr<ManualClock> Clock;
  std::shared_ptr<TimerQueueUI> UI;
  std::shared_ptr<MemoryUrlCache> UrlCache;
  std::shared_ptr<MemoryUrlHistory> UrlHistory;
  std::shared_ptr<MemoryProtectedStorage> ProtectedStorage;
  std::shared_ptr<MemoryEventLogs> EventLogs;
  std::shared_ptr<FolderRecycleBin> RecycleBin;
  std::shared_ptr<PendingRenameRebootDeleter> RebootDeleter;
};

// A machine with C:\Windows (system32, Fonts, Temp), C:\Program Files, every folder
// MemoryShell names for user "Tester", an empty recycle bin, the three classic event logs
// (no records) and the registry keys a fresh system has, the Session Manager included.
MemoryWindows MakeMemoryWindows();
std::shared_ptr<Platform> MakeMemoryPlatform();
// The pieces of a platform made by MakeMemoryPlatform / MakeMemoryWindows; members of
// services that are not the memory ones are null.
MemoryWindows MemoryOf(const std::shared_ptr<Platform>& platform);

}  // namespace tc
