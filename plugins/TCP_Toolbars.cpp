#include "plugins/TCP_Toolbars.h"

#include <memory>

#include "engine/TC_Common.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

// Which toolbars are installed, found once when the unit starts.
struct TToolbarInstalls {
  bool Google = false, GMX = false, EBay = false, MSN = false;
  String EBayFolder;  // "InstallPath" with trailing delimiter: where "toolbar.log" lives
} ToolbarInstalls;

const String rsTCPApp_GoogleToolbar = u"Google Toolbar";
const String rsTCPApp_GMXToolbar = u"GMX Toolbar";
const String rsTCPApp_EBayToolbar = u"eBay Toolbar 2";
const String rsTCPApp_MSNToolbar = u"MSN Toolbar";
const String rsCapSearchTerms = u"Liste der zuletzt eingegebenen Suchbegriffe";

const String kBrowserHelperObjects =
    u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";
const String kIEToolbars = u"SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar";
const String kEBayMachineKey = u"SOFTWARE\\eBay\\eBayToolbar";
const String kMSNMachineKey = u"SOFTWARE\\Microsoft\\MSN Toolbar";

// The search-history description: the same three sentences under each toolbar's name.
String SearchHistoryText(const String& toolbar) {
  return u"Die " + toolbar +
         u" speichert alle Begriffe von Suchanfragen in einer Protokoll-Datei und zeigt diese "
         u"in einem Auswahlfeld an. Oft können Begriffe vertrauliche Informationen enthalten. "
         u"Die Begriffe sollten regelmäßig gelöscht werden.";
}

void AddAllValues(TTCPlugin& p, const String& key, uint32_t options) {
  p.AddTraceLocation(TLT_Registry_AllValues,
                     new TLD_Registry_AllValues(HKEY_CURRENT_USER, key, options), TTT_Unknown, 0);
}

// A COM class of that name whose in-process server is registered: the toolbar's DLL.
bool IsRegisteredClass(const String& clsid, const String& name) {
  const String key = u"CLSID\\" + clsid;
  return SameText(GetRegStringValueDef(HKEY_CLASSES_ROOT, key, u"", u"", RO_None), name) &&
         !GetRegStringValueDef(HKEY_CLASSES_ROOT, key + u"\\InprocServer32", u"", u"", RO_None)
              .empty();
}

bool AnyRegisteredClass(const StringList& clsids, const String& name) {
  for (const String& clsid : clsids)
    if (IsRegisteredClass(clsid, name)) return true;
  return false;
}

TToolbarInstalls DetectToolbars() {
  TToolbarInstalls t;
  StringList helpers, toolbars;
  EnumRegKeysEx(HKEY_LOCAL_MACHINE, kBrowserHelperObjects, helpers, RO_None);
  t.Google = AnyRegisteredClass(helpers, u"Google Toolbar Helper");
  EnumRegValueNames(HKEY_LOCAL_MACHINE, kIEToolbars, toolbars, RO_None);
  t.GMX = AnyRegisteredClass(toolbars, u"GMX Toolbar");
  String ebay =
      GetRegStringValueDef(HKEY_LOCAL_MACHINE, kEBayMachineKey, u"InstallPath", u"", RO_None);
  t.EBay = !ebay.empty();
  if (t.EBay) t.EBayFolder = IncludeTrailingPathDelimiter(ebay);
  t.MSN = !GetRegStringValueDef(HKEY_LOCAL_MACHINE, kMSNMachineKey, u"InstallDir", u"", RO_None)
               .empty();
  return t;
}

std::unique_ptr<TTCPGoogleToolbarHistory> GoogleToolbarHistory;
std::unique_ptr<TTCPGMXToolbarHistory> GMXToolbarHistory;
std::unique_ptr<TTCPGMXToolbarLogindaten> GMXToolbarLogindaten;
std::unique_ptr<TTCPEBayToolbarHistory> EBayToolbarHistory;
std::unique_ptr<TTCPEBayToolbarLogfile> EBayToolbarLogfile;
std::unique_ptr<TTCPMSNToolbarHistory> MSNToolbarHistory;

}  // namespace

// A toolbar's plug-ins start on only where it is installed; a scan finding no key still stops them.

TTCPGoogleToolbarHistory::TTCPGoogleToolbarHistory() : TTCPlugin(u"TTCPGoogleToolbarHistory") {
  Describe(rsTCPSection_Toolbars, rsTCPApp_GoogleToolbar, 14000, rsCapSearchTerms,
           SearchHistoryText(rsTCPApp_GoogleToolbar));
  Active = ToolbarInstalls.Google;
  AddAllValues(*this, u"Software\\Google\\NavClient\\1.1\\History", 0);
}

TTCPGMXToolbarHistory::TTCPGMXToolbarHistory() : TTCPlugin(u"TTCPGMXToolbarHistory") {
  Describe(rsTCPSection_Toolbars, rsTCPApp_GMXToolbar, 14003, rsCapSearchTerms,
           SearchHistoryText(rsTCPApp_GMXToolbar));
  Active = ToolbarInstalls.GMX;
  AddAllValues(*this, u"Software\\GMX\\GMX Toolbar\\Historycombo1", LO_CountEmptyValues);
}

TTCPGMXToolbarLogindaten::TTCPGMXToolbarLogindaten() : TTCPlugin(u"TTCPGMXToolbarLogindaten") {
  Describe(rsTCPSection_Toolbars, rsTCPApp_GMXToolbar, 14003,
           u"Gespeicherte Zugangsdaten des GMX-Kontos",
           u"Die GMX Toolbar speichert Ihre GMX-Zugangsdaten in der Registrierungsdatenbank.");
  Active = ToolbarInstalls.GMX;
  AddAllValues(*this, u"Software\\GMX\\GMX Toolbar\\Login", 0);
}

TTCPEBayToolbarHistory::TTCPEBayToolbarHistory() : TTCPlugin(u"TTCPEBayToolbarHistory") {
  Describe(rsTCPSection_Toolbars, rsTCPApp_EBayToolbar, 14001,
           u"Liste der zuletzt gesuchten eBay Artikel", SearchHistoryText(u"eBay Toolbar"));
  Active = ToolbarInstalls.EBay;
  AddAllValues(*this, u"Software\\eBay\\eBayToolbar\\History", 0);
  AddAllValues(*this, u"Software\\eBay\\eBayToolbar\\RecentSearches", 0);
}

void TTCPEBayToolbarHistory::Scan() {
  TTCPlugin::Scan();
  if (TraceCount > 0) HostNotice = true;
}

TTCPEBayToolbarLogfile::TTCPEBayToolbarLogfile() : TTCPlugin(u"TTCPEBayToolbarLogfile") {
  Describe(rsTCPSection_Toolbars, rsTCPApp_EBayToolbar, 14001,
           u"Protokoll der durchgeführten Aktionen",
           u"Die eBay Toolbar speichert alle Aktionen die mit der Toolbar ausgeführt werden in "
           u"einer Protokoll-Datei.");
  Active = ToolbarInstalls.EBay;
  AddTraceLocation(TLT_FileSystem_Files,
                   new TLD_FileSystem_Files(ToolbarInstalls.EBayFolder, u"toolbar.log", u"", 0),
                   TTT_Unknown, 0);
}

TTCPMSNToolbarHistory::TTCPMSNToolbarHistory() : TTCPlugin(u"TTCPMSNToolbarHistory") {
  Describe(rsTCPSection_Toolbars, rsTCPApp_MSNToolbar, 14002, rsCapSearchTerms,
           SearchHistoryText(rsTCPApp_MSNToolbar));
  Active = ToolbarInstalls.MSN;
  AddTraceLocation(
      TLT_Registry_StringValue,
      new TLD_Registry_StringValue(HKEY_CURRENT_USER, u"Software\\Microsoft\\MSN Toolbar",
                                   u"SearchStrings", u"", LO_MultiString),
      TTT_Unknown, 0);
}

void TCP_Toolbars_Initialization() {
  ToolbarInstalls = DetectToolbars();
  GoogleToolbarHistory = std::make_unique<TTCPGoogleToolbarHistory>();
  GMXToolbarHistory = std::make_unique<TTCPGMXToolbarHistory>();
  GMXToolbarLogindaten = std::make_unique<TTCPGMXToolbarLogindaten>();
  EBayToolbarHistory = std::make_unique<TTCPEBayToolbarHistory>();
  EBayToolbarLogfile = std::make_unique<TTCPEBayToolbarLogfile>();
  MSNToolbarHistory = std::make_unique<TTCPMSNToolbarHistory>();
}

void TCP_Toolbars_Finalization() {
  MSNToolbarHistory.reset();
  EBayToolbarLogfile.reset();
  EBayToolbarHistory.reset();
  GMXToolbarLogindaten.reset();
  GMXToolbarHistory.reset();
  GoogleToolbarHistory.reset();
  ToolbarInstalls = {};
}

}  // namespace tc
