// Plug-ins for archivers: the recent archive and folder lists of WinRAR, WinZip,
// PowerArchiver and WinAce.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

// After cleaning, puts back "ArcHistory" if the clean took the key away.
class TTCPWinRARRecentArchives : public TTCPlugin {
 public:
  TTCPWinRARRecentArchives();
  void Clean() override;
};

class TTCPWinRARRecentFolders : public TTCPlugin {
 public:
  TTCPWinRARRecentFolders();
};

class TTCPWinRARCreatedArchives : public TTCPlugin {
 public:
  TTCPWinRARCreatedArchives();
};

class TTCPWinZipRecentArchives : public TTCPlugin {
 public:
  TTCPWinZipRecentArchives();
};

class TTCPWinZipTargetFolders : public TTCPlugin {
 public:
  TTCPWinZipTargetFolders();
};

class TTCPPowerArcRecentArchives : public TTCPlugin {
 public:
  TTCPPowerArcRecentArchives();
};

class TTCPPowerArcRecentFolders : public TTCPlugin {
 public:
  TTCPPowerArcRecentFolders();
};

class TTCPWinAceLastOpenArchives : public TTCPlugin {
 public:
  TTCPWinAceLastOpenArchives();
};

// PowerArchiver's settings key under HKEY_CURRENT_USER: the plain key, else the first
// language edition's key that exists, else empty. Asked anew on every call.
String PowerArchiverKey();

void TCP_Archiver_Initialization();
void TCP_Archiver_Finalization();

}  // namespace tc
