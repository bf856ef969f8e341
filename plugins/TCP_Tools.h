// Plug-ins for assorted tools (group "Tools & Programme"; the DivX player in the player
// group): ACDSee, Adobe Reader, Download Accelerator Plus, GetRight, IrfanView, Babylon,
// DivX Player, Zone Alarm and Nero.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPACDSeeFolderHistory : public TTCPlugin {
 public:
  TTCPACDSeeFolderHistory();
};

class TTCPACDSeeSearchHistory : public TTCPlugin {
 public:
  TTCPACDSeeSearchHistory();
};

class TTCPAcrobatReaderHistory : public TTCPlugin {
 public:
  TTCPAcrobatReaderHistory();
};

class TTCPDAPLastDownloads : public TTCPlugin {
 public:
  TTCPDAPLastDownloads();
};

class TTCPDAPTempfiles : public TTCPlugin {
 public:
  TTCPDAPTempfiles();
};

class TTCPDAPLogfiles : public TTCPlugin {
 public:
  TTCPDAPLogfiles();
};

class TTCPGetRightLastDownloads : public TTCPlugin {
 public:
  TTCPGetRightLastDownloads();
};

class TTCPGetRightLastCookies : public TTCPlugin {
 public:
  TTCPGetRightLastCookies();
};

// The entries of section "MRUD" in "i_view32.ini".
class TTCPIrfanViewLastFiles : public TTCPlugin {
 public:
  TTCPIrfanViewLastFiles();
  void Scan() override;
  void Clean() override;
};

// Key "OpenDir" of section "OPEN" in "i_view32.ini".
class TTCPIrfanViewLastOpenDir : public TTCPlugin {
 public:
  TTCPIrfanViewLastOpenDir();
  void Scan() override;
  void Clean() override;
};

class TTCPBabylonWordlist : public TTCPlugin {
 public:
  TTCPBabylonWordlist();
};

// Babylon's "log_file.txt".
class TTCPBabylonLogfile : public TTCPlugin {
 public:
  TTCPBabylonLogfile();
  void Scan() override;
  void Clean() override;
};

class TTCPBabylonTempfiles : public TTCPlugin {
 public:
  TTCPBabylonTempfiles();
};

class TTCPDivXPlayerMRU : public TTCPlugin {
 public:
  TTCPDivXPlayerMRU();
};

// The firewall's log at its fixed path.
class TTCPZoneAlarmProLogs : public TTCPlugin {
 public:
  TTCPZoneAlarmProLogs();
  void Scan() override;
  void Clean() override;
};

class TTCPNeroMRU : public TTCPlugin {
 public:
  TTCPNeroMRU();
};

void TCP_Tools_Initialization();
void TCP_Tools_Finalization();

}  // namespace tc
