#include "engine/Traces.h"

#include <map>

#include "engine/TC_BasePlugin.h"
#include "plugins/TCP_Archiver.h"
#include "plugins/TCP_Chromium.h"
#include "plugins/TCP_FileSharing.h"
#include "plugins/TCP_Firefox.h"
#include "plugins/TCP_InternetExplorer.h"
#include "plugins/TCP_MSOffice.h"
#include "plugins/TCP_MSOffice2013.h"
#include "plugins/TCP_ModernWindowsExplorer.h"
#include "plugins/TCP_ModernWindowsFiles.h"
#include "plugins/TCP_ModernWindowsTraces.h"
#include "plugins/TCP_Netscape7.h"
#include "plugins/TCP_Netscape8.h"
#include "plugins/TCP_OpenOffice.h"
#include "plugins/TCP_Opera.h"
#include "plugins/TCP_Player.h"
#include "plugins/TCP_TOnline.h"
#include "plugins/TCP_Toolbars.h"
#include "plugins/TCP_Tools.h"
#include "plugins/TCP_Windows.h"
#include "plugins/TCP_WindowsExplorer.h"
#include "plugins/TCP_WindowsTools.h"

namespace tc {

const std::vector<TUnitInfo>& PackageUnits() {
  // Plug-ins register in this order, so Plugins follows it until the host sorts.
  static const std::vector<TUnitInfo> units = {
      {u"TC_BasePlugin", TC_BasePlugin_Initialization, TC_BasePlugin_Finalization},
      {u"TCP_Firefox", TCP_Firefox_Initialization, TCP_Firefox_Finalization},
      {u"TCP_InternetExplorer", TCP_InternetExplorer_Initialization, TCP_InternetExplorer_Finalization},
      {u"TCP_MSOffice", TCP_MSOffice_Initialization, TCP_MSOffice_Finalization},
      {u"TCP_Player", TCP_Player_Initialization, TCP_Player_Finalization},
      {u"TCP_Windows", TCP_Windows_Initialization, TCP_Windows_Finalization},
      {u"TCP_WindowsExplorer", TCP_WindowsExplorer_Initialization, TCP_WindowsExplorer_Finalization},
      {u"TCP_WindowsTools", TCP_WindowsTools_Initialization, TCP_WindowsTools_Finalization},
      {u"TCP_Archiver", TCP_Archiver_Initialization, TCP_Archiver_Finalization},
      {u"TCP_FileSharing", TCP_FileSharing_Initialization, TCP_FileSharing_Finalization},
      {u"TCP_Toolbars", TCP_Toolbars_Initialization, TCP_Toolbars_Finalization},
      {u"TCP_Messenger", nullptr, nullptr},
      {u"TCP_Tools", TCP_Tools_Initialization, TCP_Tools_Finalization},
      {u"TCP_Netscape7", TCP_Netscape7_Initialization, TCP_Netscape7_Finalization},
      {u"TCP_Opera", TCP_Opera_Initialization, TCP_Opera_Finalization},
      {u"TCP_Netscape8", TCP_Netscape8_Initialization, TCP_Netscape8_Finalization},
      {u"TCP_TOnline", TCP_TOnline_Initialization, TCP_TOnline_Finalization},
      {u"TCP_OpenOffice", TCP_OpenOffice_Initialization, TCP_OpenOffice_Finalization},
      {u"TC_Common", nullptr, nullptr},
      {u"RegShredder", nullptr, nullptr},
      {u"Orvitracecleaner", nullptr, nullptr},
      {u"TCP_Chromium", TCP_Chromium_Initialization, TCP_Chromium_Finalization},
      {u"TCP_ModernWindowsExplorer", TCP_ModernWindowsExplorer_Initialization,
       TCP_ModernWindowsExplorer_Finalization},
      {u"TCP_ModernWindowsFiles", TCP_ModernWindowsFiles_Initialization,
       TCP_ModernWindowsFiles_Finalization},
      {u"TCP_MSOffice2013", TCP_MSOffice2013_Initialization, TCP_MSOffice2013_Finalization},
      {u"TCP_ModernWindowsTraces", TCP_ModernWindowsTraces_Initialization,
       TCP_ModernWindowsTraces_Finalization},
  };
  return units;
}

namespace {
// Per-unit guard: each unit starts once however often the package is initialised.
int initCount = 0;
}  // namespace

void Initialize() {
  if (initCount++ > 0) return;
  for (const auto& unit : PackageUnits()) {
    if (unit.Initialization) unit.Initialization();
  }
}

void Finalize() {
  if (initCount == 0 || --initCount > 0) return;
  const auto& units = PackageUnits();
  for (auto it = units.rbegin(); it != units.rend(); ++it) {
    if (it->Finalization) it->Finalization();
  }
}

}  // namespace tc
