#include "plugins/TCP_ModernWindowsExplorer.h"

#include "engine/TC_Common.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/ShellItemList.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/UserAssistNames.h"
#include "platform/Platform.h"

namespace tc {

namespace {

const String rsApp_ComDlg = u"Datei öffnen-/speichern-Dialoge";
const String rsApp_Explorer = u"Windows-Explorer";
const String rsApp_Search = u"Windows-Suche";

const String kExplorerKey = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const String kUserAssistKey = kExplorerKey + u"UserAssist";
const String kXPUserAssist = u"{75048700-EF1F-11D0-9888-006097DEACF9}";
const String kComDlgKey = kExplorerKey + u"ComDlg32\\";
const String kShellBagRoots[] = {
    u"Software\\Microsoft\\Windows\\Shell",
    u"Software\\Microsoft\\Windows\\ShellNoRoam",
    u"Software\\Classes\\Local Settings\\Software\\Microsoft\\Windows\\Shell",
};

constexpr TTraceFlags kDeletableFixed =
    FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning);

void SetTexts(TTCPlugin& p, const String& app, int icon, const String& caption,
              const String& description) {
  p.Describe(rsTCPSection_Windows, app, icon, caption, description);
  p.DeactivateIfAbsent = false;
}

void AddMRUListEx(TTCPlugin& p, const String& key, TTraceTargetType target) {
  p.AddTraceLocation(TLT_Registry_MRUListEx,
                     new TLD_Registry_MRUListEx(HKEY_CURRENT_USER, key, 0), target,
                     FlagOf(TF_Deletable_Per_Item));
}

// The UTF-16 text at `at` up to its terminator; `at` moves past the terminator.
String TextAt(const Bytes& data, size_t& at) {
  String text;
  while (at + 1 < data.size()) {
    char16_t c = char16_t(data[at] | data[at + 1] << 8);
    at += 2;
    if (!c) break;
    text += c;
  }
  return text;
}

String LastItemName(const Bytes& data, size_t at) {
  StringList names;
  Bytes list(data.begin() + long(std::min(at, data.size())), data.end());
  if (Services().ShellItems->ItemNames(list, names) != ERROR_SUCCESS) return String();
  return names.back();
}

TTCPExplorerUserAssist* TCPExplorerUserAssist = nullptr;
TTCPComDlgPidlMRU* TCPComDlgPidlMRU = nullptr;
TTCPExplorerSearchTerms* TCPExplorerSearchTerms = nullptr;
TTCPExplorerTypedPaths* TCPExplorerTypedPaths = nullptr;
TTCPExplorerShellBags* TCPExplorerShellBags = nullptr;

}  // namespace

String ComDlgValueName(const String& key, const Bytes& data) {
  if (UpperCase(key).find(u"OPENSAVEPIDLMRU") != String::npos) return LastItemName(data, 0);
  size_t at = 0;
  String program = TextAt(data, at);
  if (UpperCase(key).find(u"LASTVISITEDPIDLMRU") == String::npos) return program;
  String folder = LastItemName(data, at);
  return folder.empty() ? program : program + u": " + folder;
}

TTCPExplorerUserAssist::TTCPExplorerUserAssist() : TTCPlugin(u"TTCPExplorerUserAssist") {
  SetTexts(*this, rsApp_Explorer, 5000, u"Liste der gestarteten Programme und Verknüpfungen",
           u"Windows merkt sich seit Windows 7, welche Programme, Verknüpfungen und "
           u"Systemsteuerungselemente Sie wie oft und wann zuletzt gestartet haben, und zeigt "
           u"die häufigsten davon im Startmenü an. Anhand dieser Liste lässt sich genau "
           u"nachvollziehen, womit Sie am Computer arbeiten.");
  StringList guids;
  EnumRegKeysEx(HKEY_CURRENT_USER, kUserAssistKey, guids, RO_None);
  for (const String& guid : guids) {
    if (SameText(guid, kXPUserAssist)) continue;  // RecentApps cleans the Windows XP list
    AddTraceLocation(TLT_Registry_AllValues,
                     new TLD_Registry_AllValues(HKEY_CURRENT_USER,
                                                kUserAssistKey + u"\\" + guid + u"\\Count",
                                                LO_CountEmptyValues),
                     TTT_UserAssist, FlagOf(TF_Deletable_Per_Item));
  }
}

void TTCPExplorerUserAssist::Scan() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_AllValues>();
    StringList names;
    EnumRegValueNames(d.RootKey, d.Key, names, RO_None);
    for (const String& name : names) {
      ReportTrace(TST_Registry_Value, {d.RootKey, d.Key, name, {}}, loc->TargetType, loc->Flags,
                  ReadableUserAssistName(name));
      ++TraceCount;
    }
  }
}

void TTCPShellMRUList::Clean() {
  TraceCount = 0;
  const Bytes emptyOrder = {0xFF, 0xFF, 0xFF, 0xFF};
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_MRUListEx>();
    StringList keys{d.Key}, subKeys;
    EnumRegKeysEx(d.RootKey, d.Key, subKeys, RO_None);
    for (const String& sub : subKeys) keys.push_back(d.Key + u"\\" + sub);
    for (const String& key : keys) {
      StringList names;
      EnumRegValueNames(d.RootKey, key, names, RO_None);
      for (const String& name : names) {
        if (SameText(name, u"MRUListEx"))
          SetRegBinaryValue(d.RootKey, key, name, emptyOrder, RO_None);
        else
          DeleteRegValue(d.RootKey, key, name, RO_None);
      }
    }
  }
}

TTCPComDlgPidlMRU::TTCPComDlgPidlMRU() : TTCPShellMRUList(u"TTCPComDlgPidlMRU") {
  SetTexts(*this, rsApp_ComDlg, 5002,
           u"Liste der zuletzt geöffneten und gespeicherten Dateien und Ordner",
           u"Seit Windows Vista legen die Windows-Standarddialoge zum Öffnen und Speichern von "
           u"Dateien für jede Dateiendung eine Liste der zuletzt gewählten Dateien an, dazu "
           u"für jede Anwendung den zuletzt verwendeten Ordner und die Größe des Dialogs. Diese "
           u"Listen verraten, mit welchen Dateien Sie gearbeitet haben.");
  for (const char16_t* list : {u"OpenSavePidlMRU", u"LastVisitedPidlMRU",
                               u"LastVisitedPidlMRULegacy", u"CIDSizeMRU", u"FirstFolder"})
    AddMRUListEx(*this, kComDlgKey + list, TTT_FileOrFolderName);
}

void TTCPComDlgPidlMRU::Scan() {
  const TScanTraceFoundEvent outer = OnScanTraceFound;
  if (outer) {
    OnScanTraceFound = [outer](TTCPlugin* sender, TTraceSourceType type,
                               const TTraceSourceData& source, TTraceTargetType target,
                               TTraceFlags flags, const String& data) {
      Bytes raw;
      uint32_t size = 0;
      String name;
      if (GetRegValue(source.RootKey, source.Key, source.ValueName, raw, size, RO_None))
        name = ComDlgValueName(source.Key, raw);
      outer(sender, type, source, target, flags, name.empty() ? data : name);
    };
  }
  TTCPlugin::Scan();
  OnScanTraceFound = outer;
}

TTCPExplorerSearchTerms::TTCPExplorerSearchTerms()
    : TTCPShellMRUList(u"TTCPExplorerSearchTerms") {
  SetTexts(*this, rsApp_Search, 5001, u"Liste der zuletzt im Explorer gesuchten Begriffe",
           u"Das Suchfeld des Windows-Explorers speichert die zuletzt von Ihnen eingegebenen "
           u"Suchbegriffe und schlägt sie bei der nächsten Suche wieder vor. Diese Liste kann "
           u"vertrauliche Informationen enthalten.");
  AddMRUListEx(*this, kExplorerKey + u"WordWheelQuery", TTT_Unknown);
}

TTCPExplorerTypedPaths::TTCPExplorerTypedPaths() : TTCPlugin(u"TTCPExplorerTypedPaths") {
  SetTexts(*this, rsApp_Explorer, 5000,
           u"Liste der zuletzt in die Adressleiste eingegebenen Ordner",
           u"Die Adressleiste des Windows-Explorers merkt sich die Ordner und Adressen, die Sie "
           u"zuletzt von Hand eingegeben haben. Diese Liste kann verraten, auf welche Ordner und "
           u"Netzwerkfreigaben Sie zugegriffen haben.");
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kExplorerKey + u"TypedPaths",
                                                  u"url", 0),
                   TTT_FileOrFolderName, kDeletableFixed);
}

TTCPExplorerShellBags::TTCPExplorerShellBags() : TTCPlugin(u"TTCPExplorerShellBags") {
  SetTexts(*this, rsApp_Explorer, 5000, u"Liste der geöffneten Ordner (Shellbags)",
           u"Windows speichert für jeden Ordner, den Sie im Explorer geöffnet haben, dessen "
           u"Ansicht, auch für Ordner auf Wechseldatenträgern und Netzlaufwerken, die längst "
           u"nicht mehr angeschlossen sind. Diese Einträge verraten, welche Ordner Sie kennen. "
           u"Beim Bereinigen werden alle Ordneransichten (Symbolgröße, Sortierung, Spalten) "
           u"auf die Standardeinstellungen zurückgesetzt.");
  Active = false;
  for (const String& root : kShellBagRoots) {
    for (const char16_t* key : {u"\\BagMRU", u"\\Bags"})
      AddTraceLocation(TLT_Registry_AllKeys,
                       new TLD_Registry_AllKeys(HKEY_CURRENT_USER, root + key, 0), TTT_Unknown,
                       0);
  }
}

namespace {

// Reports the folders below one BagMRU key; `parent` holds the items of the path so far.
void ScanBagTree(HKEY root, const String& key, const Bytes& parent,
                 const std::function<void(const String&, const String&, const String&)>& found,
                 int depth) {
  if (depth > 64) return;  // Explorer nests no deeper; a looping hive must not hang us
  std::vector<RegNamedValue> values;
  if (Services().Registry->EnumValues(root, key, values, RegView::Default) != ERROR_SUCCESS)
    return;
  for (const auto& v : values) {
    int64_t n = -1;
    if (!TryStrToInt(v.Name, n) || n < 0 || v.Value.Type != REG_BINARY) continue;
    Bytes path = parent;
    const size_t size = ItemListSize(v.Value.Data, 0);
    if (size > 2) path.insert(path.end(), v.Value.Data.begin(), v.Value.Data.begin() + long(size - 2));
    StringList names;
    Bytes list = path;
    list.insert(list.end(), {0, 0});
    String shown = Services().ShellItems->ItemNames(list, names) == ERROR_SUCCESS
                       ? JoinItemNames(names)
                       : String();
    found(key, v.Name, shown);
    ScanBagTree(root, key + u"\\" + v.Name, path, found, depth + 1);
  }
}

}  // namespace

void TTCPExplorerShellBags::Scan() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_AllKeys>();
    if (d.Key.size() < 7 || !SameText(Right(d.Key, 7), u"\\BagMRU")) continue;
    ScanBagTree(d.RootKey, d.Key, {},
                [&](const String& key, const String& name, const String& shown) {
                  ReportTrace(TST_Registry_Value, {d.RootKey, key, name, {}}, loc->TargetType,
                              loc->Flags, shown);
                  ++TraceCount;
                },
                0);
  }
}

void TTCPExplorerShellBags::Clean() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    const auto& d = loc->As<TLD_Registry_AllKeys>();
    DeleteRegKey(d.RootKey, d.Key, RO_None);
  }
}

void TCP_ModernWindowsExplorer_Initialization() {
  TCPExplorerUserAssist = new TTCPExplorerUserAssist();
  TCPComDlgPidlMRU = new TTCPComDlgPidlMRU();
  TCPExplorerSearchTerms = new TTCPExplorerSearchTerms();
  TCPExplorerTypedPaths = new TTCPExplorerTypedPaths();
  TCPExplorerShellBags = new TTCPExplorerShellBags();
}

void TCP_ModernWindowsExplorer_Finalization() {
  FreeAndNil(TCPExplorerUserAssist);
  FreeAndNil(TCPComDlgPidlMRU);
  FreeAndNil(TCPExplorerSearchTerms);
  FreeAndNil(TCPExplorerTypedPaths);
  FreeAndNil(TCPExplorerShellBags);
}

}  // namespace tc
