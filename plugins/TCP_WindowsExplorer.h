// Most-recently-used lists of Windows Explorer and its shell dialogs (group "Windows").
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPComDlgOpenSave : public TTCPlugin {
 public:
  TTCPComDlgOpenSave();
};

class TTCPComDlgLastVisited : public TTCPlugin {
 public:
  TTCPComDlgLastVisited();
};

class TTCPStartMenuRun : public TTCPlugin {
 public:
  TTCPStartMenuRun();
  // Explorer keeps the run list cached, so the host is asked to tell the user.
  void Clean() override;
};

class TTCPRecentDocs : public TTCPlugin {
 public:
  TTCPRecentDocs();
};

class TTCPSearchFiles : public TTCPlugin {
 public:
  TTCPSearchFiles();
};

class TTCPSearchText : public TTCPlugin {
 public:
  TTCPSearchText();
};

class TTCPNetworkDrives : public TTCPlugin {
 public:
  TTCPNetworkDrives();
};

class TTCPRecentApps : public TTCPlugin {
 public:
  TTCPRecentApps();
  // Tells the shell to rebuild its cached start-menu data.
  void Clean() override;
};

void TCP_WindowsExplorer_Initialization();
void TCP_WindowsExplorer_Finalization();

}  // namespace tc
