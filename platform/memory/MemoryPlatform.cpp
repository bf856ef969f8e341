#include "platform/memory/MemoryPlatform.h"

#include "platform/common/DefaultIconCatalogue.h"
#if TC_HAVE_PUGIXML
#include "platform/common/PugiXmlDocuments.h"
#else
#include "platform/win32/MsXmlDocuments.h"
#endif
#include "platform/common/RegistryProductSettings.h"
#include "platform/common/SqliteFiles.h"
#ifdef _WIN32
#include "platform/win32/WinSqlite.h"
#else
#include "platform/common/LinkedSqlite.h"
#endif
#if TC_HAVE_LIBYAL
#include "platform/common/LibJumpListFiles.h"
#include "platform/common/LibShellItems.h"
#else
#include "platform/win32/Win32JumpListFiles.h"
#include "platform/win32/Win32ShellItems.h"
#endif
#include "platform/common/TextIniFiles.h"

namespace tc {

namespace {

constexpr char16_t kUserSid[] = u"S-1-5-21-1004336348-1177238915-682003330-1001";

void SeedFiles(MemoryFileSystem& files, const MemoryShell& shell) {
  for (const char16_t* folder :
       {u"C:\\Windows\\system32", u"C:\\Windows\\Fonts", u"C:\\Windows\\Temp",
        u"C:\\Program Files\\Common Files", u"C:\\Users\\Public",
        u"C:\\Users\\Tester\\AppData\\Local\\Temp"}) {
    files.AddFolder(folder);
  }
  for (const auto& [csidl, path] : shell.Folders()) files.AddFolder(path);
  const String bin = u"C:\\$Recycle.Bin";
  files.AddFolder(bin, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  files.AddFolder(bin + u"\\" + kUserSid, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  files.AddFile(bin + u"\\" + kUserSid + u"\\desktop.ini",
                "\r\n[.ShellClassInfo]\r\nCLSID={645FF040-5081-101B-9F08-00AA002F954E}\r\n",
                FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE);
}

void SeedRegistry(MemoryRegistry& reg) {
  const String sessionManager = u"SYSTEM\\CurrentControlSet\\Control\\Session Manager";
  reg.CreateKey(kHKEY_LOCAL_MACHINE, sessionManager, RegView::Default);
  // Windows 7's default: the system manages the paging file ("?:" is not a real path).
  reg.PutMultiString(kHKEY_LOCAL_MACHINE, sessionManager + u"\\Memory Management",
                     u"PagingFiles", {u"?:\\pagefile.sys"});
  reg.PutString(kHKEY_LOCAL_MACHINE, u"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
                u"ProductName", u"Windows 7 Professional");
  reg.PutString(kHKEY_LOCAL_MACHINE, u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion",
                u"ProgramFilesDir", u"C:\\Program Files");
  reg.CreateKey(kHKEY_CURRENT_USER, u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer",
                RegView::Default);
  reg.CreateKey(kHKEY_CURRENT_USER, u"Control Panel\\Desktop", RegView::Default);
  reg.CreateKey(kHKEY_CLASSES_ROOT, u".txt", RegView::Default);
  reg.CreateKey(kHKEY_USERS, u".DEFAULT\\Software", RegView::Default);
  reg.CreateKey(kHKEY_USERS, String(kUserSid) + u"\\Software", RegView::Default);
}

}  // namespace

MemoryWindows MakeMemoryWindows() {
  MemoryWindows m;
  m.Clock = std::make_shared<ManualClock>();
  m.Registry = std::make_shared<MemoryRegistry>();
  m.Files = std::make_shared<MemoryFileSystem>(m.Clock);
  m.RegistryFaults = std::make_shared<FaultyRegistry>(m.Registry);
  m.FileFaults = std::make_shared<FaultyFileSystem>(m.Files);
  m.Shell = std::make_shared<MemoryShell>();
  m.UI = std::make_shared<TimerQueueUI>(m.Clock);
  m.UrlCache = std::make_shared<MemoryUrlCache>(m.FileFaults);
  m.UrlHistory = std::make_shared<MemoryUrlHistory>();
  m.ProtectedStorage = std::make_shared<MemoryProtectedStorage>();
  m.EventLogs = std::make_shared<MemoryEventLogs>();
  m.RecycleBin = std::make_shared<FolderRecycleBin>(m.FileFaults);
  m.RebootDeleter = std::make_shared<PendingRenameRebootDeleter>(m.RegistryFaults);
  SeedFiles(*m.Files, *m.Shell);
  SeedRegistry(*m.Registry);

  auto p = std::make_shared<Platform>();
  p->Registry = m.RegistryFaults;
  p->Files = m.FileFaults;
  p->Shell = m.Shell;
  p->UrlCache = m.UrlCache;
  p->ProtectedStorage = m.ProtectedStorage;
  p->UrlHistory = m.UrlHistory;
  p->EventLogs = m.EventLogs;
  p->RecycleBin = m.RecycleBin;
  p->RebootDeleter = m.RebootDeleter;
  p->ProductSettings = std::make_shared<RegistryProductSettings>(m.RegistryFaults);
  p->IniFiles = std::make_shared<TextIniFiles>(m.FileFaults);
#if TC_HAVE_PUGIXML
  p->Xml = std::make_shared<PugiXmlDocuments>(m.FileFaults);
#else
  p->Xml = std::make_shared<MsXmlDocuments>(m.FileFaults);
#endif
  p->UI = m.UI;
  p->Clock = m.Clock;
  p->Icons = std::make_shared<DefaultIconCatalogue>();
#ifdef _WIN32
  String noSqlite;
  const SqliteApi* sqlite = WinSqlite(noSqlite);
  p->Sqlite = std::make_shared<SqliteFiles>(m.FileFaults, sqlite, noSqlite);
#else
  p->Sqlite = std::make_shared<SqliteFiles>(m.FileFaults, LinkedSqlite());
#endif
#if TC_HAVE_LIBYAL
  p->ShellItems = std::make_shared<LibShellItems>();
  p->JumpLists = std::make_shared<LibJumpListFiles>(p->ShellItems);
#else
  p->ShellItems = std::make_shared<Win32ShellItems>();
  p->JumpLists = std::make_shared<Win32JumpListFiles>(p->ShellItems);
#endif
  m.Platform = std::move(p);
  return m;
}

std::shared_ptr<Platform> MakeMemoryPlatform() { return MakeMemoryWindows().Platform; }

MemoryWindows MemoryOf(const std::shared_ptr<Platform>& platform) {
  MemoryWindows m;
  if (!platform) return m;
  m.Platform = platform;
  m.RegistryFaults = std::dynamic_pointer_cast<FaultyRegistry>(platform->Registry);
  m.Registry = std::dynamic_pointer_cast<MemoryRegistry>(
      m.RegistryFaults ? m.RegistryFaults->Inner() : platform->Registry);
  m.FileFaults = std::dynamic_pointer_cast<FaultyFileSystem>(platform->Files);
  m.Files = std::dynamic_pointer_cast<MemoryFileSystem>(m.FileFaults ? m.FileFaults->Inner()
                                                                     : platform->Files);
  m.Shell = std::dynamic_pointer_cast<MemoryShell>(platform->Shell);
  m.Clock = std::dynamic_pointer_cast<ManualClock>(platform->Clock);
  m.UI = std::dynamic_pointer_cast<TimerQueueUI>(platform->UI);
  m.UrlCache = std::dynamic_pointer_cast<MemoryUrlCache>(platform->UrlCache);
  m.UrlHistory = std::dynamic_pointer_cast<MemoryUrlHistory>(platform->UrlHistory);
  m.ProtectedStorage =
      std::dynamic_pointer_cast<MemoryProtectedStorage>(platform->ProtectedStorage);
  m.EventLogs = std::dynamic_pointer_cast<MemoryEventLogs>(platform->EventLogs);
  m.RecycleBin = std::dynamic_pointer_cast<FolderRecycleBin>(platform->RecycleBin);
  m.RebootDeleter = std::dynamic_pointer_cast<PendingRenameRebootDeleter>(platform->RebootDeleter);
  return m;
}

}  // namespace tc
