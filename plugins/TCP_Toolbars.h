// Plug-ins for browser toolbars (group "Browsererweiterungen"): the search histories and
// log-in data of the Google, GMX, eBay and MSN toolbars.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPGoogleToolbarHistory : public TTCPlugin {
 public:
  TTCPGoogleToolbarHistory();
};

class TTCPGMXToolbarHistory : public TTCPlugin {
 public:
  TTCPGMXToolbarHistory();
};

class TTCPGMXToolbarLogindaten : public TTCPlugin {
 public:
  TTCPGMXToolbarLogindaten();
};

// A scan that finds something asks the host to show its notice.
class TTCPEBayToolbarHistory : public TTCPlugin {
 public:
  TTCPEBayToolbarHistory();
  void Scan() override;
};

class TTCPEBayToolbarLogfile : public TTCPlugin {
 public:
  TTCPEBayToolbarLogfile();
};

class TTCPMSNToolbarHistory : public TTCPlugin {
 public:
  TTCPMSNToolbarHistory();
};

void TCP_Toolbars_Initialization();
void TCP_Toolbars_Finalization();

}  // namespace tc
