#include "plugins/TCP_Tools.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "engine/TC_Common.h"
#include "platform/Platform.h"
#include "platform/Shell.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

// The tools' folders, found once when the unit starts (each with trailing delimiter).
struct {
  String DAP, GetRight, IrfanView, Babylon, DivXPlayer;
  String Temp;  // the user's temporary folder
} ToolFolders;

const String rsTCPApp_ACDSee = u"ACDSee 7";
const String rsTCPApp_DAP = u"Download Accelerator Plus 7";
const String rsTCPApp_GetRight = u"GetRight 5";
const String rsTCPApp_IrfanView = u"IrfanView";
const String rsTCPApp_Babylon = u"Babylon 5";
const String rsTCPApp_Nero = u"Nero Burning Rom";
const String rsCapLastDownloads = u"Informationen der zuletzt heruntergeladenen Dateien";
const String rsCapActionLog = u"Protokoll der durchgeführten Aktionen";
const String rsCapTempFiles = u"Temporäre Dateien";

const String kAppPaths = u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
const String kACDSee = u"Software\\ACD Systems\\ACDSee\\70";
const String kIrfanViewIni = u"i_view32.ini";
const String kZoneAlarmLog = u"c:\\windows\\internet logs\\zalog.txt";
constexpr TTraceFlags kNeroFlags = 14;  // deletable per item, needs fix, zero-based

const char16_t* const kNeroLists[] = {
    u"Software\\ahead\\Nero - Burning Rom",
    u"Software\\Nero\\Nero8\\Nero - Burning Rom",
    u"Software\\Nero\\Nero 9\\Nero - Burning Rom",
    u"Software\\Nero\\Nero 9\\Nero Burning ROM",
    u"Software\\Nero\\Nero 10\\Nero Burning ROM",
    u"Software\\ahead\\Cover Designer",
    u"Software\\Nero\\Nero8\\Cover Designer",
    u"Software\\Nero\\Nero 9\\Cover Designer",
    u"Software\\Nero\\Nero 9\\Nero CoverDesigner",
    u"Software\\Nero\\Nero 10\\Nero CoverDesigner",
    u"Software\\ahead\\Nero WaveEditor",
    u"Software\\Nero\\Nero8\\Nero WaveEditor",
    u"Software\\Nero\\Nero 9\\Nero WaveEditor",
    u"Software\\Nero\\Nero 10\\Nero WaveEditor",
    u"Software\\ahead\\Nero SoundTrax",
    u"Software\\Nero\\Nero8\\Nero SoundTrax",
    u"Software\\Nero\\Nero 9\\Nero SoundTrax",
    u"Software\\Nero\\Nero 10\\Nero SoundTrax",
    u"Software\\ahead\\Nero PhotoSnap",
    u"Software\\Nero\\Nero8\\Nero PhotoSnap",
    u"Software\\Nero\\Nero 9\\Nero PhotoSnap",
    u"Software\\Nero\\Nero 9\\Nero PhotoSnap Viewer",
};

void AddFiles(TTCPlugin& p, const String& folder, const String& include, const String& exclude,
              uint32_t options) {
  p.AddTraceLocation(TLT_FileSystem_Files,
                     new TLD_FileSystem_Files(folder, include, exclude, options), TTT_Unknown, 0);
}

void AddBinaryTextList(TTCPlugin& p, const String& valueName) {
  p.AddTraceLocation(TLT_Registry_StringValue,
                     new TLD_Registry_StringValue(HKEY_CURRENT_USER, kACDSee, valueName,
                                                  String(1, u'\0'), LO_BinaryText),
                     TTT_Unknown, 0);
}

void AddMRUList(TTCPlugin& p, const String& key) {
  p.AddTraceLocation(TLT_Registry_MRUList, new TLD_Registry_MRUList(HKEY_CURRENT_USER, key, 0),
                     TTT_Unknown, 0);
}

// Installers register each program's path under "App Paths"; else its usual folder.
String ProgramFolder(const String& exe, const String& usualFolder) {
  String path = Replace(
      GetRegStringValueDef(HKEY_LOCAL_MACHINE, kAppPaths + exe, u"", u"", RO_None), u"\"", u"");
  String folder = ExtractFilePath(Trim(path));
  if (!folder.empty()) return folder;
  return IncludeTrailingPathDelimiter(GetFolderLocStr(kCSIDL_PROGRAM_FILES)) + usualFolder + u"\\";
}

// The user's "Temp": in local app data, or beside "Application Data" on the older layout.
String UserTempFolder() {
  const String local = GetLocalAppDataDir();
  const String older = u"\\Local Settings\\Application Data\\";
  if (SameText(Right(local, older.size()), older))
    return local.substr(0, local.size() - String(u"Application Data\\").size()) + u"Temp\\";
  return local + u"Temp\\";
}

// A plug-in without locations of its own switches off like the others when its file is gone.
void SwitchOffIfAbsent(TTCPlugin& p, bool present) {
  if (!present && p.DeactivateIfAbsent) p.Active = false;
}

String IrfanViewIni() { return ToolFolders.IrfanView + kIrfanViewIni; }

// Keys of the ini section that hold a value (only `key` when it is given).
StringList FilledIniKeys(const String& section, const String& key, bool& present) {
  IIniFiles& ini = *Services().IniFiles;
  StringList keys, filled;
  present = ini.ReadKeys(IrfanViewIni(), section, keys) == ERROR_SUCCESS;
  for (const String& k : keys)
    if ((key.empty() || SameText(k, key)) &&
        !Trim(ini.ReadString(IrfanViewIni(), section, k, u"")).empty())
      filled.push_back(k);
  return filled;
}

void ScanIni(TTCPlugin& p, const String& section, const String& key) {
  bool present = false;
  const StringList filled = FilledIniKeys(section, key, present);
  p.IncTraceCount(static_cast<int>(filled.size()));
  for (const String& k : filled)
    p.PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, IrfanViewIni()}, TTT_FileName, 0,
                   u"[" + section + u"] " + k + u"=" +
                       Services().IniFiles->ReadString(IrfanViewIni(), section, k, u""));
  SwitchOffIfAbsent(p, present);
}

// Entries go, not just values: IrfanView reads a missing one as never used. A failed rewrite stops.
void CleanIni(const String& section, const String& key) {
  bool present = false;
  for (const String& k : FilledIniKeys(section, key, present))
    if (Services().IniFiles->DeleteKey(IrfanViewIni(), section, k) != ERROR_SUCCESS) return;
}

// Lines of a log that hold more than blanks and control characters; -1 when it cannot be read.
int CountLogLines(const String& fileName) {
  std::unique_ptr<IFileHandle> f;
  uint64_t size = 0;
  if (Services().Files->Open(fileName, OpenMode::Read, f) != ERROR_SUCCESS ||
      f->GetSize(size) != ERROR_SUCCESS)
    return -1;
  // In blocks, as a firewall log grows to megabytes; bytes up to 0x20 are blanks in UTF-16 too.
  std::vector<uint8_t> block(65536);
  int lines = 0;
  bool written = false;
  for (uint64_t offset = 0; offset < size;) {
    size_t done = 0;
    if (f->Read(offset, block.data(), block.size(), done) != ERROR_SUCCESS) return -1;
    if (done == 0) break;
    for (const uint8_t *p = block.data(), *end = p + done; p < end;) {
      auto* eol = static_cast<const uint8_t*>(std::memchr(p, '\n', size_t(end - p)));
      const uint8_t* stop = eol ? eol : end;
      written = written || std::find_if(p, stop, [](uint8_t b) { return b > 0x20; }) != stop;
      if (!eol) break;
      lines += written;
      written = false;
      p = eol + 1;
    }
    offset += done;
  }
  return lines + written;
}

// A log counts one trace per written line, the actions a user sees when opening it.
void ScanLog(TTCPlugin& p, const String& file) {
  int lines = CountLogLines(file);
  if (lines > 0) p.IncTraceCount(lines);
  FileInfo info;
  if (lines > 0 && p.OnPreviewTrace && Services().Files->GetInfo(file, info) == ERROR_SUCCESS)
    p.PreviewEntries(file, lines, static_cast<int64_t>(info.Size));
  SwitchOffIfAbsent(p, lines >= 0);
}

// The whole log is shredded: the program starts a new one and no line stays on disk.
void CleanLog(TTCPlugin& p, const String& file) {
  if (OrviFileExists(file)) p.SecureDeleteFile(file);
}

std::unique_ptr<TTCPACDSeeFolderHistory> ACDSeeFolderHistory;
std::unique_ptr<TTCPACDSeeSearchHistory> ACDSeeSearchHistory;
std::unique_ptr<TTCPAcrobatReaderHistory> AcrobatReaderHistory;
std::unique_ptr<TTCPDAPLastDownloads> DAPLastDownloads;
std::unique_ptr<TTCPDAPTempfiles> DAPTempfiles;
std::unique_ptr<TTCPDAPLogfiles> DAPLogfiles;
std::unique_ptr<TTCPGetRightLastDownloads> GetRightLastDownloads;
std::unique_ptr<TTCPGetRightLastCookies> GetRightLastCookies;
std::unique_ptr<TTCPIrfanViewLastFiles> IrfanViewLastFiles;
std::unique_ptr<TTCPIrfanViewLastOpenDir> IrfanViewLastOpenDir;
std::unique_ptr<TTCPBabylonWordlist> BabylonWordlist;
std::unique_ptr<TTCPBabylonLogfile> BabylonLogfile;
std::unique_ptr<TTCPBabylonTempfiles> BabylonTempfiles;
std::unique_ptr<TTCPDivXPlayerMRU> DivXPlayerMRU;
std::unique_ptr<TTCPZoneAlarmProLogs> ZoneAlarmProLogs;
std::unique_ptr<TTCPNeroMRU> NeroMRU;

}  // namespace

TTCPACDSeeFolderHistory::TTCPACDSeeFolderHistory() : TTCPlugin(u"TTCPACDSeeFolderHistory") {
  Describe(rsTCPSection_Tools, rsTCPApp_ACDSee, 15000, u"Liste der zuletzt geöffneten Ordner",
           u"ACDSee speichert eine Liste der zuletzt von Ihnen geöffneten Ordner. Daran lässt "
           u"sich ablesen, welche Bilder Sie zuletzt angesehen haben.");
  AddBinaryTextList(*this, u"HistPaths");
}

TTCPACDSeeSearchHistory::TTCPACDSeeSearchHistory() : TTCPlugin(u"TTCPACDSeeSearchHistory") {
  Describe(rsTCPSection_Tools, rsTCPApp_ACDSee, 15000,
           u"Liste der zuletzt verwendeten Suchbegriffe",
           u"ACDSee speichert alle Begriffe, nach denen Sie zuletzt gesucht haben, in einer "
           u"Verlaufsliste. Oft können Begriffe vertrauliche Informationen enthalten.");
  AddBinaryTextList(*this, u"HistSearchFileName");
}

TTCPAcrobatReaderHistory::TTCPAcrobatReaderHistory() : TTCPlugin(u"TTCPAcrobatReaderHistory") {
  Describe(rsTCPSection_Tools, u"Adobe Reader 7", 15001, u"Liste der zuletzt geöffneten Dokumente",
           u"Der Adobe Reader speichert eine Liste der zuletzt von Ihnen geöffneten Dokumente. "
           u"Diese Liste wird im Menü Datei angezeigt und ist für jeden sichtbar, der den Adobe "
           u"Reader auf Ihrem Computer startet.");
  AddTraceLocation(TLT_Registry_NumberedKeys,
                   new TLD_Registry_NumberedKeys(
                       HKEY_CURRENT_USER,
                       u"Software\\Adobe\\Acrobat Reader\\7.0\\AVGeneral\\cRecentFiles", u"c", 0),
                   TTT_Unknown, 0);
}

TTCPDAPLastDownloads::TTCPDAPLastDownloads() : TTCPlugin(u"TTCPDAPLastDownloads") {
  Describe(rsTCPSection_Tools, rsTCPApp_DAP, 15002, rsCapLastDownloads,
           u"Download Accelerator Plus speichert Informationen über alle von Ihnen "
           u"heruntergeladenen Dateien. Daran lässt sich ablesen, welche Dateien Sie wann aus "
           u"dem Internet geladen haben.");
  AddFiles(*this, ToolFolders.DAP + u"History\\", u"*", u"_lasthist*", 0);
  AddTraceLocation(
      TLT_Registry_AllKeys,
      new TLD_Registry_AllKeys(HKEY_LOCAL_MACHINE,
                               u"SOFTWARE\\SpeedBit\\Download Accelerator\\FileList", 0),
      TTT_Unknown, 0);
}

TTCPDAPTempfiles::TTCPDAPTempfiles() : TTCPlugin(u"TTCPDAPTempfiles") {
  Describe(rsTCPSection_Tools, rsTCPApp_DAP, 15002, rsCapTempFiles,
           u"Download Accelerator Plus legt beim Herunterladen temporäre Dateien an, die auch "
           u"nach abgebrochenen Downloads erhalten bleiben. Sie verraten, welche Dateien Sie "
           u"herunterladen wollten.");
  // The pieces of unfinished downloads wait in "Temp" beside the program.
  AddFiles(*this, ToolFolders.DAP + u"Temp\\", u"*", u"", 0);
}

TTCPDAPLogfiles::TTCPDAPLogfiles() : TTCPlugin(u"TTCPDAPLogfiles") {
  Describe(rsTCPSection_Tools, rsTCPApp_DAP, 15002, rsCapActionLog,
           u"Download Accelerator Plus speichert alle durchgeführten Aktionen in "
           u"Protokoll-Dateien.");
  AddFiles(*this, ToolFolders.DAP + u"Log\\", u"*", u"", LO_NonEmptyFilesOnly);
}

TTCPGetRightLastDownloads::TTCPGetRightLastDownloads() : TTCPlugin(u"TTCPGetRightLastDownloads") {
  Describe(rsTCPSection_Tools, rsTCPApp_GetRight, 15003, rsCapLastDownloads,
           u"GetRight speichert eine Liste der zuletzt heruntergeladenen Dateien und der zuletzt "
           u"eingegebenen Adressen. Daran lässt sich ablesen, welche Dateien Sie aus dem "
           u"Internet geladen haben.");
  AddMRUList(*this, u"Software\\Headlight\\GetRight\\MRU");
  AddMRUList(*this, u"Software\\Headlight\\GetRight\\TypedURLs");
  AddFiles(*this, ToolFolders.GetRight, u"*.hst", u"", 0);
}

TTCPGetRightLastCookies::TTCPGetRightLastCookies() : TTCPlugin(u"TTCPGetRightLastCookies") {
  Describe(rsTCPSection_Tools, rsTCPApp_GetRight, 15003, u"Cookies",
           u"GetRight legt eigene Cookies an, mit denen Internetseiten Sie beim nächsten "
           u"Herunterladen wiedererkennen.");
  AddFiles(*this, ToolFolders.GetRight, u"*.cok", u"", 0);
}

TTCPIrfanViewLastFiles::TTCPIrfanViewLastFiles() : TTCPlugin(u"TTCPIrfanViewLastFiles") {
  Describe(rsTCPSection_Tools, rsTCPApp_IrfanView, 15007, u"Liste der zuletzt geöffneten Dateien",
           u"IrfanView speichert eine Liste der zuletzt von Ihnen geöffneten Dateien in seiner "
           u"Einstellungsdatei. Diese Liste ist für jeden sichtbar, der IrfanView auf Ihrem "
           u"Computer startet.");
}

void TTCPIrfanViewLastFiles::Scan() {
  TTCPlugin::Scan();
  ScanIni(*this, u"MRUD", u"");
}

void TTCPIrfanViewLastFiles::Clean() {
  TTCPlugin::Clean();
  CleanIni(u"MRUD", u"");
}

TTCPIrfanViewLastOpenDir::TTCPIrfanViewLastOpenDir() : TTCPlugin(u"TTCPIrfanViewLastOpenDir") {
  Describe(rsTCPSection_Tools, rsTCPApp_IrfanView, 15007, u"Liste der zuletzt geöffneten Ordner",
           u"IrfanView merkt sich den Ordner, aus dem Sie zuletzt Dateien geöffnet haben, in "
           u"seiner Einstellungsdatei.");
}

void TTCPIrfanViewLastOpenDir::Scan() {
  TTCPlugin::Scan();
  ScanIni(*this, u"OPEN", u"OpenDir");
}

void TTCPIrfanViewLastOpenDir::Clean() {
  TTCPlugin::Clean();
  CleanIni(u"OPEN", u"OpenDir");
}

TTCPBabylonWordlist::TTCPBabylonWordlist() : TTCPlugin(u"TTCPBabylonWordlist") {
  Describe(rsTCPSection_Tools, rsTCPApp_Babylon, 15004, u"Liste der zuletzt übersetzten Begriffe",
           u"Babylon speichert alle Begriffe, die Sie zuletzt übersetzt haben, in einer "
           u"Verlaufsliste. Daran lässt sich ablesen, womit Sie sich beschäftigt haben.");
  // Of the client key only "History" holds looked-up terms; its other values are settings.
  AddTraceLocation(TLT_Registry_AllValues,
                   new TLD_Registry_AllValues(HKEY_CURRENT_USER,
                                              u"Software\\Babylon\\Babylon Client\\History", 0),
                   TTT_Unknown, 0);
}

TTCPBabylonLogfile::TTCPBabylonLogfile() : TTCPlugin(u"TTCPBabylonLogfile") {
  Describe(rsTCPSection_Tools, rsTCPApp_Babylon, 15004, rsCapActionLog,
           u"Babylon speichert alle durchgeführten Aktionen in einer Protokoll-Datei.");
}

void TTCPBabylonLogfile::Scan() {
  TTCPlugin::Scan();
  ScanLog(*this, ToolFolders.Babylon + u"log_file.txt");
}

void TTCPBabylonLogfile::Clean() {
  TTCPlugin::Clean();
  CleanLog(*this, ToolFolders.Babylon + u"log_file.txt");
}

TTCPBabylonTempfiles::TTCPBabylonTempfiles() : TTCPlugin(u"TTCPBabylonTempfiles") {
  Describe(rsTCPSection_Tools, rsTCPApp_Babylon, 15004, rsCapTempFiles,
           u"Babylon legt temporäre Dateien an, die auch nach dem Beenden des Programms "
           u"erhalten bleiben.");
  AddFiles(*this, ToolFolders.Temp + u"Babylon\\", u"*", u"", 0);
}

TTCPDivXPlayerMRU::TTCPDivXPlayerMRU() : TTCPlugin(u"TTCPDivXPlayerMRU") {
  Describe(rsTCPSection_Player, u"DivX Player 2", 15005,
           u"Liste der zuletzt geöffnete Videodateien",
           u"Der DivX Player speichert eine Liste der zuletzt von Ihnen geöffneten Videodateien. "
           u"Daran lässt sich ablesen, welche Filme Sie zuletzt angesehen haben.");
  AddFiles(*this, ToolFolders.DivXPlayer, u"DivXPlayer2.dbf", u"", 0);
}

TTCPZoneAlarmProLogs::TTCPZoneAlarmProLogs() : TTCPlugin(u"TTCPZoneAlarmProLogs") {
  Describe(rsTCPSection_Tools, u"Zone Alarm PRO", 15006, rsCapActionLog,
           u"Zone Alarm PRO speichert alle Zugriffe auf das Internet und aus dem Internet in "
           u"einer Protokoll-Datei. Daran lässt sich ablesen, welche Programme und Adressen Sie "
           u"genutzt haben.");
}

void TTCPZoneAlarmProLogs::Scan() {
  TTCPlugin::Scan();
  ScanLog(*this, kZoneAlarmLog);
}

void TTCPZoneAlarmProLogs::Clean() {
  TTCPlugin::Clean();
  CleanLog(*this, kZoneAlarmLog);
}

TTCPNeroMRU::TTCPNeroMRU() : TTCPlugin(u"TTCPNeroMRU") {
  Describe(rsTCPSection_Tools, rsTCPApp_Nero, 3003,
           u"Liste der zuletzt geöffneten Nero Projekt Dateien oder Multi Media Dateien.",
           u"Jedes Programm von Nero speichert eine Liste der zuletzt von Ihnen geöffneten "
           u"Projekt- und Multimedia-Dateien. Diese Listen sind für jeden sichtbar, der Nero auf "
           u"Ihrem Computer startet.");
  for (const char16_t* program : kNeroLists)
    AddTraceLocation(TLT_Registry_NumberedNames,
                     new TLD_Registry_NumberedNames(
                         HKEY_CURRENT_USER, String(program) + u"\\Recent File List", u"File", 0),
                     TTT_FileName, kNeroFlags);
}

void TCP_Tools_Initialization() {
  ToolFolders.DAP = ProgramFolder(u"DAP.exe", u"DAP");
  ToolFolders.GetRight = ProgramFolder(u"getright.exe", u"GetRight");
  ToolFolders.IrfanView = ProgramFolder(u"i_view32.exe", u"IrfanView");
  ToolFolders.Babylon = ProgramFolder(u"Babylon.exe", u"Babylon");
  ToolFolders.DivXPlayer = ProgramFolder(u"DivX Player.exe", u"DivX\\DivX Player");
  ToolFolders.Temp = UserTempFolder();
  ACDSeeFolderHistory = std::make_unique<TTCPACDSeeFolderHistory>();
  ACDSeeSearchHistory = std::make_unique<TTCPACDSeeSearchHistory>();
  AcrobatReaderHistory = std::make_unique<TTCPAcrobatReaderHistory>();
  DAPLastDownloads = std::make_unique<TTCPDAPLastDownloads>();
  DAPTempfiles = std::make_unique<TTCPDAPTempfiles>();
  DAPLogfiles = std::make_unique<TTCPDAPLogfiles>();
  GetRightLastDownloads = std::make_unique<TTCPGetRightLastDownloads>();
  GetRightLastCookies = std::make_unique<TTCPGetRightLastCookies>();
  IrfanViewLastFiles = std::make_unique<TTCPIrfanViewLastFiles>();
  IrfanViewLastOpenDir = std::make_unique<TTCPIrfanViewLastOpenDir>();
  BabylonWordlist = std::make_unique<TTCPBabylonWordlist>();
  BabylonLogfile = std::make_unique<TTCPBabylonLogfile>();
  BabylonTempfiles = std::make_unique<TTCPBabylonTempfiles>();
  DivXPlayerMRU = std::make_unique<TTCPDivXPlayerMRU>();
  ZoneAlarmProLogs = std::make_unique<TTCPZoneAlarmProLogs>();
  NeroMRU = std::make_unique<TTCPNeroMRU>();
}

void TCP_Tools_Finalization() {
  NeroMRU.reset();
  ZoneAlarmProLogs.reset();
  DivXPlayerMRU.reset();
  BabylonTempfiles.reset();
  BabylonLogfile.reset();
  BabylonWordlist.reset();
  IrfanViewLastOpenDir.reset();
  IrfanViewLastFiles.reset();
  GetRightLastCookies.reset();
  GetRightLastDownloads.reset();
  DAPLogfiles.reset();
  DAPTempfiles.reset();
  DAPLastDownloads.reset();
  AcrobatReaderHistory.reset();
  ACDSeeSearchHistory.reset();
  ACDSeeFolderHistory.reset();
  ToolFolders = {};
}

}  // namespace tc
