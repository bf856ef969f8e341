#include "plugins/TCP_ModernWindowsTraces.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "engine/TC_Common.h"
#include "platform/helpers/LastError.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/ShellItemList.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "plugins/TCP_MSOffice.h"
#include "plugins/TCP_MSOffice2013.h"
#include "platform/Platform.h"

namespace tc {

namespace {

const String rsApp_Explorer = u"Windows-Explorer";
const String kOffice = u"Software\\Microsoft\\Office\\";
const String kMountPoints = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MountPoints2";
const char16_t* const kOfficeApps[] = {u"Word",      u"Excel", u"PowerPoint", u"Access",
                                       u"Publisher", u"Visio", u"OneNote"};

TTCPIETypedURLsTime* TCPIETypedURLsTime = nullptr;
TTCPCompatibilityAssistant* TCPCompatibilityAssistant = nullptr;
TTCPShellMuiCache* TCPShellMuiCache = nullptr;
TTCPMSOfficeTrustedDocuments* TCPMSOfficeTrustedDocuments = nullptr;
TTCPMSOffice2007Places* TCPMSOffice2007Places = nullptr;
TTCPExplorerStreamMRU* TCPExplorerStreamMRU = nullptr;
TTCPMSOfficeHyperlink* TCPMSOfficeHyperlink = nullptr;
TTCPMMCRecentFiles* TCPMMCRecentFiles = nullptr;
TTCPExplorerMountPoints* TCPExplorerMountPoints = nullptr;

// The keys of Office's versions ("14.0", "16.0", ...) below `kOffice`.
StringList OfficeVersions() {
  StringList versions;
  EnumRegKeysEx(HKEY_CURRENT_USER, kOffice, versions, RO_None);
  return versions;
}

bool IsShareKey(const String& name) { return name.starts_with(u"##"); }

// Runs the generic scan of `p`, showing each trace as `shown` makes it from its source.
void ScanShowing(TTCPlugin& p,
                 const std::function<String(const TTraceSourceData&, const String&)>& shown) {
  const TScanTraceFoundEvent outer = p.OnScanTraceFound;
  if (outer) {
    p.OnScanTraceFound = [outer, &shown](TTCPlugin* sender, TTraceSourceType type,
                                         const TTraceSourceData& source, TTraceTargetType target,
                                         TTraceFlags flags, const String& data) {
      outer(sender, type, source, target, flags, shown(source, data));
    };
  }
  p.TTCPlugin::Scan();
  p.OnScanTraceFound = outer;
}

}  // namespace

String FileTimeText(const Bytes& data) {
  if (data.size() != 8) return {};
  uint64_t ticks = 0;
  for (int i = 7; i >= 0; --i) ticks = ticks << 8 | data[size_t(i)];
  if (ticks == 0 || ticks >= 265046774400ULL * 10000000) return {};  // from year 10000 on
  using namespace std::chrono;
  const sys_seconds at{seconds{int64_t(ticks / 10000000) - 11644473600LL}};
  const sys_days day = floor<days>(at);
  const year_month_day date{day};
  const hh_mm_ss time{at - day};
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02ld:%02ld:%02ld", int(date.year()),
                unsigned(date.month()), unsigned(date.day()), long(time.hours().count()),
                long(time.minutes().count()), long(time.seconds().count()));
  return FromUtf8(text);
}

void TTCPValueNamesPlugin::AddKey(const String& key, TTraceTargetType target) {
  AddTraceLocation(TLT_Registry_AllValues,
                   new TLD_Registry_AllValues(HKEY_CURRENT_USER, key, LO_CountEmptyValues),
                   target, FlagOf(TF_Deletable_Per_Item));
}

void TTCPValueNamesPlugin::Scan() {
  TraceCount = 0;
  bool found = false;
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_AllValues>();
    std::vector<RegNamedValue> values;
    if (Services().Registry->EnumValues(d.RootKey, d.Key, values, RegView::Default) !=
        ERROR_SUCCESS)
      continue;
    found = true;
    for (const auto& v : values) {
      if (!IsTrace(v.Name, v.Value)) continue;
      ReportTrace(TST_Registry_Value, {d.RootKey, d.Key, v.Name, {}}, loc->TargetType,
                  loc->Flags, Shown(v.Name, v.Value));
      ++TraceCount;
    }
  }
  if (DeactivateIfAbsent && !found) Active = false;
}

void TTCPValueNamesPlugin::Clean() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_AllValues>();
    std::vector<RegNamedValue> values;
    Services().Registry->EnumValues(d.RootKey, d.Key, values, RegView::Default);
    for (const auto& v : values) {
      if (!IsTrace(v.Name, v.Value) || DeleteRegValue(d.RootKey, d.Key, v.Name, RO_None)) continue;
      const uint32_t error = GetLastOSError();
      if (error != ERROR_FILE_NOT_FOUND)
        AddCleanFailure(TST_Registry_Value, {d.RootKey, d.Key, v.Name, {}}, u"delete value", error);
    }
  }
}

TTCPIETypedURLsTime::TTCPIETypedURLsTime() : TTCPValueNamesPlugin(u"TTCPIETypedURLsTime") {
  Describe(rsTCPSection_Browser, u"Internet Explorer", 1000,
           u"Zeitpunkte der eingegebenen Internetadressen",
           u"Seit Windows 8 merkt sich der Internet Explorer zu jeder in die Adressleiste "
           u"eingegebenen Adresse, wann Sie sie eingegeben haben. Diese Zeitpunkte bleiben "
           u"auch dann erhalten, wenn die Adressen selbst schon gelöscht sind.");
  DeactivateIfAbsent = false;
  AddKey(u"Software\\Microsoft\\Internet Explorer\\TypedURLsTime");
}

bool TTCPIETypedURLsTime::IsTrace(const String& name, const RegValue&) const {
  int64_t number;
  return IsNumberedName(name, u"url", number);
}

String TTCPIETypedURLsTime::Shown(const String& name, const RegValue& value) const {
  const String time = FileTimeText(value.Data);
  return time.empty() ? name : name + u": " + time;
}

TTCPCompatibilityAssistant::TTCPCompatibilityAssistant()
    : TTCPValueNamesPlugin(u"TTCPCompatibilityAssistant") {
  Describe(rsTCPSection_Windows, u"Programmkompatibilitäts-Assistent", 5007,
           u"Liste der gestarteten Programme und Installationsprogramme",
           u"Der Programmkompatibilitäts-Assistent von Windows vermerkt seit Windows Vista jedes "
           u"Programm und jedes Installationsprogramm, das er beim Start beobachtet hat, mit "
           u"seinem vollständigen Pfad, auch auf Netzlaufwerken und Wechseldatenträgern.");
  DeactivateIfAbsent = false;
  const String key =
      u"Software\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Compatibility Assistant\\";
  AddKey(key + u"Store");
  AddKey(key + u"Persisted");
}

TTCPShellMuiCache::TTCPShellMuiCache() : TTCPValueNamesPlugin(u"TTCPShellMuiCache") {
  Describe(rsTCPSection_Windows, rsApp_Explorer, 5000, u"Namen der gestarteten Programme",
           u"Windows speichert zu jedem Programm, das Sie gestartet haben, dessen Pfad mit dem "
           u"Anzeigenamen und dem Hersteller. Die Liste bleibt erhalten, auch wenn das "
           u"Programm längst gelöscht ist. Windows liest die Namen bei Bedarf neu ein.");
  DeactivateIfAbsent = false;
  AddKey(u"Software\\Classes\\Local Settings\\Software\\Microsoft\\Windows\\Shell\\MuiCache");
  AddKey(u"Software\\Microsoft\\Windows\\ShellNoRoam\\MUICache");
}

bool TTCPShellMuiCache::IsTrace(const String& name, const RegValue&) const {
  return !name.starts_with(u'@') && !SameText(name, u"LangID");
}

TTCPMSOfficeTrustedDocuments::TTCPMSOfficeTrustedDocuments()
    : TTCPValueNamesPlugin(u"TTCPMSOfficeTrustedDocuments") {
  Describe(rsTCPSection_Office, rsTCPApp_MSOffice, 2000,
           u"Liste der als vertrauenswürdig eingestuften Dokumente",
           u"Office ab Version 2010 merkt sich jedes Dokument, für das Sie die Bearbeitung oder "
           u"Makros aktiviert haben, mit seinem Pfad. Nach dem Bereinigen fragt Office bei "
           u"diesen Dokumenten erneut nach, ob Sie ihnen vertrauen.");
  Active = false;
  StringList apps;
  for (const String& version : OfficeVersions()) {
    EnumRegKeysEx(HKEY_CURRENT_USER, kOffice + version, apps, RO_None);
    for (const String& app : apps) {
      const String key = kOffice + version + u"\\" + app + u"\\Security\\Trusted Documents\\TrustRecords";
      if (KeyExist(HKEY_CURRENT_USER, key, RO_None)) AddKey(key);
    }
  }
}

String TTCPMSOfficeTrustedDocuments::Shown(const String& name, const RegValue&) const {
  return UrlDecode(name);  // Office stores the path URL-escaped: "...%20Fury.docx"
}

TTCPMSOffice2007Places::TTCPMSOffice2007Places() : TTCPlugin(u"TTCPMSOffice2007Places") {
  Describe(rsTCPSection_Office, u"Microsoft Office 2007 und 2010", 2000,
           u"Liste der zuletzt verwendeten Orte",
           u"Word, Excel, PowerPoint, Access, Publisher, Visio und OneNote 2007 und 2010 "
           u"speichern neben den zuletzt geöffneten Dateien auch die Ordner, in denen Sie "
           u"zuletzt Dateien geöffnet oder gespeichert haben.");
  for (const char16_t* version : {u"12.0", u"14.0"})
    for (const char16_t* app : kOfficeApps)
      AddTraceLocation(TLT_Registry_NumberedNames,
                       new TLD_Registry_NumberedNames(
                           HKEY_CURRENT_USER, kOffice + version + u"\\" + app + u"\\Place MRU",
                           u"Item ", 0),
                       TTT_FileOrFolderName, FlagOf(TF_Deletable_Per_Item));
}

void TTCPMSOffice2007Places::Scan() {
  ScanShowing(*this, [](const TTraceSourceData&, const String& data) { return OfficeMRUPath(data); });
}

TTCPExplorerStreamMRU::TTCPExplorerStreamMRU() : TTCPShellMRUList(u"TTCPExplorerStreamMRU") {
  Describe(rsTCPSection_Windows, rsApp_Explorer, 5000,
           u"Liste der zuletzt im Explorer geöffneten Ordner (StreamMRU)",
           u"Bis Windows 7 legt der Explorer für die zuletzt geöffneten Ordner eine eigene Liste "
           u"an, die auch Ordner auf Wechseldatenträgern und Netzlaufwerken enthält.");
  DeactivateIfAbsent = false;
  AddTraceLocation(TLT_Registry_MRUListEx,
                   new TLD_Registry_MRUListEx(
                       HKEY_CURRENT_USER,
                       u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StreamMRU", 0),
                   TTT_FileOrFolderName, FlagOf(TF_Deletable_Per_Item));
}

void TTCPExplorerStreamMRU::Scan() {
  ScanShowing(*this, [](const TTraceSourceData& source, const String& data) {
    Bytes raw;
    uint32_t size = 0;
    StringList names;
    if (!GetRegValue(source.RootKey, source.Key, source.ValueName, raw, size, RO_None) ||
        Services().ShellItems->ItemNames(raw, names) != ERROR_SUCCESS || names.empty())
      return data;
    return JoinItemNames(names);
  });
}

TTCPMSOfficeHyperlink::TTCPMSOfficeHyperlink() : TTCPValueNamesPlugin(u"TTCPMSOfficeHyperlink") {
  Describe(rsTCPSection_Office, rsTCPApp_MSOffice, 2000,
           u"Zuletzt aus einem Dokument aufgerufene Internetadresse",
           u"Office merkt sich die Internetadresse, die Sie zuletzt über einen Link in einem "
           u"Dokument oder einer E-Mail geöffnet haben, auch wenn der Verlauf des Browsers "
           u"längst gelöscht ist.");
  DeactivateIfAbsent = false;
  for (const String& version : OfficeVersions()) {
    const String key = kOffice + version + u"\\Common\\Internet";
    if (KeyExist(HKEY_CURRENT_USER, key, RO_None)) AddKey(key, TTT_URL);
  }
}

bool TTCPMSOfficeHyperlink::IsTrace(const String& name, const RegValue& value) const {
  return SameText(name, u"UseRWHlinkNavigation") &&
         (value.Type == REG_SZ || value.Type == REG_EXPAND_SZ) && !RegValueToText(value).empty();
}

String TTCPMSOfficeHyperlink::Shown(const String&, const RegValue& value) const {
  return RegValueToText(value);
}

TTCPMMCRecentFiles::TTCPMMCRecentFiles() : TTCPlugin(u"TTCPMMCRecentFiles") {
  Describe(rsTCPSection_WindowsTools, u"Microsoft Management Console", 6005,
           u"Liste der zuletzt geöffneten Konsolen",
           u"Die Microsoft Management Console, in der unter anderem die Dienste, die "
           u"Computerverwaltung und die Ereignisanzeige laufen, speichert eine Liste der zuletzt "
           u"von Ihnen geöffneten Konsolen. Diese Liste verrät, welche Teile des Systems Sie "
           u"verwaltet haben.");
  DeactivateIfAbsent = false;
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(
                       HKEY_CURRENT_USER,
                       u"Software\\Microsoft\\Microsoft Management Console\\Recent File List",
                       u"File", 0),
                   TTT_FileName,
                   FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning));
}

TTCPExplorerMountPoints::TTCPExplorerMountPoints() : TTCPlugin(u"TTCPExplorerMountPoints") {
  Describe(rsTCPSection_Windows, rsApp_Explorer, 5000, u"Liste der geöffneten Netzwerkfreigaben",
           u"Windows legt für jede Netzwerkfreigabe, die Sie geöffnet oder als Laufwerk "
           u"verbunden haben, einen eigenen Eintrag an, der auch nach dem Trennen erhalten "
           u"bleibt. Diese Einträge verraten, auf welche Server und Freigaben Sie zugegriffen "
           u"haben.");
  DeactivateIfAbsent = false;
  AddTraceLocation(TLT_Registry_AllKeys,
                   new TLD_Registry_AllKeys(HKEY_CURRENT_USER, kMountPoints, 0),
                   TTT_FileOrFolderName, FlagOf(TF_Deletable_Per_Item));
}

namespace {

// The keys of a location that stand for network shares (named "##server#share").
StringList ShareKeys(const TLD_Registry_AllKeys& d) {
  StringList keys, shares;
  EnumRegKeysEx(d.RootKey, d.Key, keys, RO_None);
  for (String& key : keys)
    if (IsShareKey(key)) shares.push_back(std::move(key));
  return shares;
}

}  // namespace

void TTCPExplorerMountPoints::Scan() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_AllKeys>();
    for (const String& key : ShareKeys(d)) {
      String share = key;
      std::replace(share.begin(), share.end(), u'#', u'\\');
      ReportTrace(TST_Registry_Key, {d.RootKey, d.Key + u"\\" + key, {}, {}}, loc->TargetType,
                  loc->Flags, share);
      ++TraceCount;
    }
  }
}

void TTCPExplorerMountPoints::Clean() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_AllKeys>();
    for (const String& key : ShareKeys(d)) {
      if (DeleteRegKey(d.RootKey, d.Key + u"\\" + key, RO_None)) continue;
      const uint32_t error = GetLastOSError();
      if (error != ERROR_FILE_NOT_FOUND)
        AddCleanFailure(TST_Registry_Key, {d.RootKey, d.Key + u"\\" + key, {}, {}},
                        u"delete key", error);
    }
  }
}

void TCP_ModernWindowsTraces_Initialization() {
  TCPIETypedURLsTime = new TTCPIETypedURLsTime();
  TCPCompatibilityAssistant = new TTCPCompatibilityAssistant();
  TCPShellMuiCache = new TTCPShellMuiCache();
  TCPExplorerStreamMRU = new TTCPExplorerStreamMRU();
  TCPExplorerMountPoints = new TTCPExplorerMountPoints();
  TCPMMCRecentFiles = new TTCPMMCRecentFiles();
  TCPMSOffice2007Places = new TTCPMSOffice2007Places();
  TCPMSOfficeTrustedDocuments = new TTCPMSOfficeTrustedDocuments();
  TCPMSOfficeHyperlink = new TTCPMSOfficeHyperlink();
}

void TCP_ModernWindowsTraces_Finalization() {
  FreeAndNil(TCPIETypedURLsTime);
  FreeAndNil(TCPCompatibilityAssistant);
  FreeAndNil(TCPShellMuiCache);
  FreeAndNil(TCPExplorerStreamMRU);
  FreeAndNil(TCPMSOffice2007Places);
  FreeAndNil(TCPMSOfficeTrustedDocuments);
  FreeAndNil(TCPMSOfficeHyperlink);
  FreeAndNil(TCPExplorerMountPoints);
  FreeAndNil(TCPMMCRecentFiles);
}

}  // namespace tc
