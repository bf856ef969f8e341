// One object holding every service; the host sets it before start-up.
#pragma once
#include <memory>

#include "Clock.h"
#include "EventLogs.h"
#include "FileSystem.h"
#include "IconCatalogue.h"
#include "IniFiles.h"
#include "JumpListFiles.h"
#include "ProductSettings.h"
#include "ProtectedStorage.h"
#include "RebootDeleter.h"
#include "RecycleBin.h"
#include "Registry.h"
#include "Shell.h"
#include "Sqlite.h"
#include "ShellItems.h"
#include "UrlCache.h"
#include "UrlHistory.h"
#include "UserInterface.h"
#include "XmlDocument.h"

namespace tc {

struct Platform {
  std::shared_ptr<IRegistry> Registry;
  std::shared_ptr<IFileSystem> Files;
  std::shared_ptr<IShell> Shell;
  std::shared_ptr<IUrlCache> UrlCache;
  std::shared_ptr<IProtectedStorage> ProtectedStorage;
  std::shared_ptr<IUrlHistory> UrlHistory;
  std::shared_ptr<IEventLogs> EventLogs;
  std::shared_ptr<IRecycleBin> RecycleBin;
  std::shared_ptr<IRebootDeleter> RebootDeleter;
  std::shared_ptr<IProductSettings> ProductSettings;
  std::shared_ptr<IIniFiles> IniFiles;
  std::shared_ptr<IXmlDocuments> Xml;
  std::shared_ptr<IUserInterface> UI;
  std::shared_ptr<IClock> Clock;
  std::shared_ptr<IIconCatalogue> Icons;
  std::shared_ptr<ISqlite> Sqlite;
  std::shared_ptr<IShellItems> ShellItems;
  std::shared_ptr<IJumpListFiles> JumpLists;
};

// The platform the engine works on. Throws std::logic_error when none is set: a host that
// forgot to choose a backend is a programming error, not bad input.
Platform& Services();
void SetServices(std::shared_ptr<Platform> platform);
bool HasServices();

}  // namespace tc
