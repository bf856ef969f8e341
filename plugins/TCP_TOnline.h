// Plug-ins for the T-Online browser ("T-Online Software 5"), which keeps its cookies and
// temporary internet files in Internet Explorer's URL cache.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

// Counts the temporary files, but its clean deletes the deletable cookies and leaves the
// temporary files: kept as shipped.
class TTCPTOnlineCache : public TTCPlugin {
 public:
  TTCPTOnlineCache();
  void Scan() override;
  void Clean() override;
};

// Never reports the cookies the keep-list keeps.
class TTCPTOnlineCookies : public TTCPlugin {
 public:
  TTCPTOnlineCookies();
  void Scan() override;
  void Clean() override;
};

void TCP_TOnline_Initialization();
void TCP_TOnline_Finalization();

}  // namespace tc
