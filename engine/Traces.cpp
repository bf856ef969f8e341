#include "engine/Traces.h"

#include <map>

#include "engine/TC_BasePlugin.h"
#include "plugins/TCP_Archiver.h"
#include "plugins/TCP_FileSharing.h"
#include "plugins/TCP_MSOffice.h"
#include "plugins/TCP_Player.h"
#include "plugins/TCP_Windows.h"
#include "plugins/TCP_WindowsExplorer.h"
#include "plugins/TCP_WindowsTools.h"

namespace tc {

const std::vector<TUnitInfo>& PackageUnits() {
  // Plug-ins register in this order, so Plugins follows it until the host sorts.
  static const std::vector<TUnitInfo> units = {
      {u"TC_BasePlugin", TC_BasePlugin_Initialization, TC_BasePlugin_Finalization},
      {u"TCP_Firefox", nullptr, nullptr},
      {u"TCP_InternetExplorer", nullptr, nullptr},
      {u"TCP_MSOffice", TCP_MSOffice_Initialization, TCP_MSOffice_Finalization},
      {u"TCP_Player", TCP_Player_Initialization, TCP_Player_Finalization},
      {u"TCP_Windows", TCP_Windows_Initialization, TCP_Windows_Finalization},
      {u"TCP_WindowsExplorer", TCP_WindowsExplorer_Initialization, TCP_WindowsExplorer_Finalization},
      {u"TCP_WindowsTools", TCP_WindowsTools_Initialization, TCP_WindowsTools_Finalization},
      {u"TCP_Archiver", TCP_Archiver_Initialization, TCP_Archiver_Finalization},
      {u"TCP_FileSharing", TCP_FileSharing_Initialization, TCP_FileSharing_Finalization},
      {u"TCP_Toolbars", nullptr, nullptr},
      {u"TCP_Messenger", nullptr, nullptr},
      {u"TCP_Tools", nullptr, nullptr},
      {u"TCP_Netscape7", nullptr, nullptr},
      {u"TCP_Opera", nullptr, nullptr},
      {u"TCP_Netscape8", nullptr, nullptr},
      {u"TCP_TOnline", nullptr, nullptr},
      {u"TCP_OpenOffice", nullptr, nullptr},
      {u"TC_Common", nullptr, nullptr},
      {u"RegShredder", nullptr, nullptr},
      {u"Orvitracecleaner", nullptr, nullptr},
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
