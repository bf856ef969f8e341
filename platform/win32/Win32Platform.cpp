#include "platform/win32/Win32Platform.h"

#include "platform/common/DefaultIconCatalogue.h"
#include "platform/common/RegistryProductSettings.h"
#include "platform/common/SqliteFiles.h"
#include "platform/common/SystemClock.h"
#include "platform/common/TextIniFiles.h"
#include "platform/win32/MsXmlDocuments.h"
#include "platform/win32/Win32EventLogs.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32JumpListFiles.h"
#include "platform/win32/Win32ProtectedStorage.h"
#include "platform/win32/Win32RebootDeleter.h"
#include "platform/win32/Win32RecycleBin.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32Shell.h"
#include "platform/win32/Win32ShellItems.h"
#include "platform/win32/Win32UrlCache.h"
#include "platform/win32/Win32UrlHistory.h"
#include "platform/win32/Win32UserInterface.h"
#include "platform/win32/WinSqlite.h"

namespace tc {

std::shared_ptr<Platform> MakeWin32Platform() {
  auto p = std::make_shared<Platform>();
  auto registry = std::make_shared<Win32Registry>();
  p->Registry = registry;
  auto files = std::make_shared<Win32FileSystem>();
  p->Files = files;
  p->Shell = std::make_shared<Win32Shell>();
  p->UrlCache = std::make_shared<Win32UrlCache>();
  p->ProtectedStorage = std::make_shared<Win32ProtectedStorage>();
  p->UrlHistory = std::make_shared<Win32UrlHistory>();
  p->EventLogs = std::make_shared<Win32EventLogs>();
  p->RecycleBin = std::make_shared<Win32RecycleBin>();
  p->RebootDeleter = std::make_shared<Win32RebootDeleter>();
  p->ProductSettings = std::make_shared<RegistryProductSettings>(registry);
  p->IniFiles = std::make_shared<TextIniFiles>(files);
  p->Xml = std::make_shared<MsXmlDocuments>(files);
  p->UI = std::make_shared<Win32UserInterface>();
  p->Clock = std::make_shared<SystemClock>();
  p->Icons = std::make_shared<DefaultIconCatalogue>();
  String noSqlite;
  const SqliteApi* sqlite = WinSqlite(noSqlite);
  p->Sqlite = std::make_shared<SqliteFiles>(files, sqlite, noSqlite);
  p->ShellItems = std::make_shared<Win32ShellItems>();
  p->JumpLists = std::make_shared<Win32JumpListFiles>(p->ShellItems);
  return p;
}

}  // namespace tc
