#include "plugins/TCP_Windows.h"

#include "engine/TC_Common.h"
#include "platform/helpers/ErrorText.h"
#include "platform/helpers/Eventlog.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/RecycleBinHelpers.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {

namespace {

const String rsApp_EventViewer = u"Windows Ereignisanzeige";
const String kMemoryManagementKey =
    u"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";

// Steps shared by every constructor of the unit, in the plug-in recipe's order.
void SetTexts(TTCPlugin& p, const String& app, int icon, const String& caption,
              const String& description) {
  p.Describe(rsTCPSection_Windows, app, icon, caption, description);
}

// Opens the log at `position` of the component's list; false when the list is shorter.
bool OpenLogAt(TNTEventLog& log, int position) {
  StringList logs;
  log.GetEventLogs(logs);
  if (static_cast<int>(logs.size()) <= position) return false;
  log.SetLog(logs[position]);
  log.SetActive(true);
  return true;
}

// A log the user may not read or clear (the security log, for most) stays as it is; the
// plug-in says so instead of counting nothing in silence.
void NoteRefusedLog(TTCPlugin& plugin, const TNTEventLog& log, const char16_t* what) {
  plugin.Note = u"the event log " + log.Log() + u" could not be " + what + u" (" +
                SysErrorMessage(log.LastError()) + u"); it is left as it is";
}

void ScanEventLog(TTCPlugin& plugin, int position) {
  TNTEventLog log(nullptr);
  plugin.Note.clear();
  if (!OpenLogAt(log, position)) return;
  if (log.Active()) plugin.IncTraceCount(log.GetCount());
  else NoteRefusedLog(plugin, log, u"opened");
}

void CleanEventLog(TTCPlugin& plugin, int position) {
  TNTEventLog log(nullptr);
  if (!OpenLogAt(log, position)) return;
  if (!log.Active()) NoteRefusedLog(plugin, log, u"opened");
  else if (!log.Clear()) NoteRefusedLog(plugin, log, u"cleared");
}

TTCPRecycleBin* TCPRecycleBin = nullptr;
TTCPPagingFile* TCPPagingFile = nullptr;
TTCPWindowsEventApps* TCPWindowsEventApps = nullptr;
TTCPWindowsEventSecurity* TCPWindowsEventSecurity = nullptr;
TTCPWindowsEventSystem* TCPWindowsEventSystem = nullptr;

}  // namespace

TTCPRecycleBin::TTCPRecycleBin() : TTCPlugin(u"TTCPRecycleBin") {
  SetTexts(*this, u"Papierkorb", 4000, u"Elemente im Papierkorb",
           u"Wenn Sie Dateien löschen, werden diese normalerweise nicht endgültig entfernt, "
           u"sondern zuerst in den Windows-Papierkorb verschoben. Solange der Papierkorb nicht "
           u"geleert wird, lassen sich diese Dateien jederzeit wiederherstellen und können so "
           u"verraten, woran Sie am Computer gearbeitet haben.");
}

TTCPRecycleBin::~TTCPRecycleBin() = default;

void TTCPRecycleBin::Scan() {
  TTCPlugin::Scan();
  int64_t items = 0, size = 0;
  GetRecycleBinsInfo(items, size);
  const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(items));
  IncTraceCount(count);
  PreviewEntries(u"Papierkorb", count > 0 ? count : 0, size);
}

void TTCPRecycleBin::Clean() {
  TTCPlugin::Clean();
  // Emptied whatever the last count said: a clean never leaves the bin filled.
  EmptyRecycleBin();
}

TTCPPagingFile::TTCPPagingFile() : TTCPlugin(u"TTCPPagingFile") {
  SetTexts(*this, u"Auslagerungsdateien", 4001, u"Inhalt der Auslagerungsdateien",
           u"Windows schreibt Daten in Auslagerungsdateien, wenn der Arbeitsspeicher Ihres "
           u"Computers nicht mehr für alle laufenden Anwendungen ausreicht. Diese Dateien können "
           u"Teile von Dokumenten, Kennwörtern und anderen vertraulichen Informationen enthalten, "
           u"die Sie längst geschlossen haben. Die Auslagerungsdateien werden beim nächsten "
           u"Neustart von Windows gelöscht und dabei neu angelegt.");
}

TTCPPagingFile::~TTCPPagingFile() = default;

void TTCPPagingFile::EnumPagingFiles(StringList& Files) {
  Files.clear();
  StringList lines;
  if (GetRegMultiStringValue(HKEY_LOCAL_MACHINE, kMemoryManagementKey, u"PagingFiles", lines,
                             RO_None) != 0)
    return;
  for (const auto& line : lines) {
    // "C:\pagefile.sys 1024 2048": the sizes behind the path are dropped.
    String path = Param(line, 1);
    if (OrviFileExists(path)) Files.push_back(path);
  }
}

void TTCPPagingFile::Scan() {
  TTCPlugin::Scan();
  StringList files;
  EnumPagingFiles(files);
  IncTraceCount(static_cast<int>(files.size()));
  for (const auto& file : files)
    PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, file}, TTT_FileName, 0, {},
                 GetFileSize64(file));
}

void TTCPPagingFile::Clean() {
  TTCPlugin::Clean();
  StringList files;
  EnumPagingFiles(files);
  // Windows holds its paging files open: they can only go at the next start.
  for (const auto& file : files) {
    bool scheduled = DeleteFileOnReboot(file);
    RebootRequired = true;
    AddFileCleanFailure(file, u"remove file", ERROR_SHARING_VIOLATION, scheduled);
  }
}

TTCPWindowsEventApps::TTCPWindowsEventApps() : TTCPlugin(u"TTCPWindowsEventApps") {
  SetTexts(*this, rsApp_EventViewer, 4002, u"Liste der Anwendungsereignisse",
           u"Windows protokolliert in einem Ereignisprotokoll, wann Anwendungen gestartet oder "
           u"beendet wurden, wann eine Anwendung einen Fehler verursacht hat u.v.m. Anhand "
           u"dieses Protokolls lässt sich nachvollziehen, mit welchen Anwendungen Sie wann "
           u"gearbeitet haben.");
  Active = true;
  DeactivateIfAbsent = false;
}

void TTCPWindowsEventApps::Scan() {
  TTCPlugin::Scan();
  ScanEventLog(*this, 0);
}

void TTCPWindowsEventApps::Clean() {
  TTCPlugin::Clean();
  CleanEventLog(*this, 0);
}

TTCPWindowsEventSecurity::TTCPWindowsEventSecurity() : TTCPlugin(u"TTCPWindowsEventSecurity") {
  SetTexts(*this, rsApp_EventViewer, 4002, u"Liste der Sicherheitsrelevante Ereignisse",
           u"Windows speichert Sicherheitsrelevante Ereignisse in einem Protokoll. Ein "
           u"Sicherheitsrelevantes Ereignis ist z.B. das Sichern oder Löschen von Einträgen in "
           u"der Registrierungsdatenbank.");
  Active = true;
  DeactivateIfAbsent = false;
}

void TTCPWindowsEventSecurity::Scan() {
  TTCPlugin::Scan();
  ScanEventLog(*this, 1);
}

void TTCPWindowsEventSecurity::Clean() {
  TTCPlugin::Clean();
  CleanEventLog(*this, 1);
}

TTCPWindowsEventSystem::TTCPWindowsEventSystem() : TTCPlugin(u"TTCPWindowsEventSystem") {
  SetTexts(*this, rsApp_EventViewer, 4002, u"Liste der Systemereignisse",
           u"Windows protokolliert Systemmeldungen in einem Ereignissprotokoll. Dazu gehören "
           u"z.B. das Starten und Beenden von Diensten und Treibern sowie Fehler der Hardware. "
           u"Anhand dieses Protokolls lässt sich nachvollziehen, wann Ihr Computer benutzt "
           u"wurde.");
  Active = true;
  DeactivateIfAbsent = false;
}

void TTCPWindowsEventSystem::Scan() {
  TTCPlugin::Scan();
  ScanEventLog(*this, 2);
}

void TTCPWindowsEventSystem::Clean() {
  TTCPlugin::Clean();
  CleanEventLog(*this, 2);
}

void TCP_Windows_Initialization() {
  TCPRecycleBin = new TTCPRecycleBin();
  TCPPagingFile = new TTCPPagingFile();
  TCPWindowsEventApps = new TTCPWindowsEventApps();
  TCPWindowsEventSecurity = new TTCPWindowsEventSecurity();
  TCPWindowsEventSystem = new TTCPWindowsEventSystem();
}

void TCP_Windows_Finalization() {
  FreeAndNil(TCPRecycleBin);
  FreeAndNil(TCPPagingFile);
  FreeAndNil(TCPWindowsEventApps);
  FreeAndNil(TCPWindowsEventSecurity);
  FreeAndNil(TCPWindowsEventSystem);
}

}  // namespace tc
