#include "plugins/TCP_FileSharing.h"

#include <memory>
#include <stdexcept>

#include "engine/TC_Common.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

String EMuleFolder;
String EDonkeyFolder;
bool KazaaLite = false;

namespace {

const String rsTCPApp_Azureus = u"Azureus";
const String rsTCPApp_EMule = u"eMule";
const String rsTCPApp_EDonkey2000 = u"eDonkey2000";
const String rsTCPApp_Kazaa = u"Kazaa";
const String rsTCPApp_KazaaLite = u"Kazaa Lite";
const String rsTCPApp_Ares = u"Ares";
const String rsTCPApp_BitTorrent = u"BitTorrent++";
const String rsTCPApp_WinMX = u"WinMX";
const String rsTCPApp_WarezP2P = u"WarezP2P 2";

const String rsCapStatistics = u"Download- und Upload-Statistik";
const String rsCapDownloadMRU = u"Liste der zuletzt heruntergeladenen Dateien";
const String rsCapSearchMRU = u"Liste der zuletzt eingegebenen Suchbegriffe";
const String rsCapDownloadDB = u"Informationen über heruntergeladene Dateien";

const String kUninstallKey = u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
const String kKazaaContentKey = u"SOFTWARE\\Kazaa\\LocalContent";

// "Files" locations of this unit: a mask in a folder, target unknown, no flags.
void AddFiles(TTCPlugin& p, const String& folder, const String& mask) {
  p.AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(folder, mask, u"", 0),
                     TTT_Unknown, 0);
}

void AddRegistryValues(TTCPlugin& p, const String& key) {
  p.AddTraceLocation(TLT_Registry_AllValues,
                     new TLD_Registry_AllValues(HKEY_CURRENT_USER, key, 0x10001), TTT_Unknown, 0);
}

// The folder of the program an uninstall entry's "UninstallString" names.
String UninstallFolder(const String& product) {
  String cmd = GetRegStringValueDef(HKEY_LOCAL_MACHINE, kUninstallKey + product, u"UninstallString",
                                    u"", RO_None);
  String path = ExtractFilePath(ProgramOfCommand(cmd));
  return path.empty() ? path : IncludeTrailingPathDelimiter(path);
}

String FolderHolding(const String& folder, const String& exe) {
  if (folder.empty()) return {};
  String f = IncludeTrailingPathDelimiter(folder);
  return OrviFileExists(f + exe) ? f : String();
}

// The client's folder: the program of the registered ed2k link handler when it is this
// client, else an uninstall entry whose name mentions the client.
String FindClientFolder(const String& nameFragment, const String& exe) {
  // The per-user and machine halves of the classes root, in the order Windows merges them,
  // so the handler found is the one a click on an ed2k link starts on every backend.
  for (const auto& [root, key] :
       {std::pair{HKEY_CURRENT_USER, u"Software\\Classes\\ed2k\\shell\\open\\command"},
        std::pair{HKEY_LOCAL_MACHINE, u"SOFTWARE\\Classes\\ed2k\\shell\\open\\command"}}) {
    String cmd = GetRegStringValueDef(root, key, u"", u"", RO_None);
    if (cmd.empty()) continue;
    String found = FolderHolding(ExtractFilePath(ProgramOfCommand(cmd)), exe);
    if (!found.empty()) return found;
    break;  // the per-user handler hides the machine one, as in the merged view
  }
  StringList products;
  EnumRegKeysEx(HKEY_LOCAL_MACHINE, ExcludeTrailingPathDelimiter(kUninstallKey), products, RO_None);
  for (const auto& product : products) {
    if (LowerCase(product).find(nameFragment) == String::npos) continue;
    String location = GetRegStringValueDef(HKEY_LOCAL_MACHINE, kUninstallKey + product,
                                           u"InstallLocation", u"", RO_None);
    if (!location.empty() && FileIsOnFixedDrive(location, true)) {
      String found = FolderHolding(location, exe);
      if (!found.empty()) return found;
    }
    String program = ProgramOfCommand(GetRegStringValueDef(
        HKEY_LOCAL_MACHINE, kUninstallKey + product, u"UninstallString", u"", RO_None));
    if (!program.empty() && FileIsOnFixedDrive(program, true)) {
      String found = FolderHolding(ExtractFilePath(program), exe);
      if (!found.empty()) return found;
    }
  }
  return {};
}

// Base scan plus the known.met estimate.
void CountKnownMet(TTCPlugin& p, const String& file) {
  if (file.empty()) return;
  int64_t size = GetFileSize64(file);
  if (size < 0) return;
  p.IncTraceCount(KnownMetTraceCount(size));
  p.PreviewEntries(file, KnownMetTraceCount(size), size);
}

void RemoveFile(TTCPlugin& p, const String& file) {
  if (!file.empty() && OrviFileExists(file)) p.SecureDeleteFile(file);
}

String SearchStringsFile() {
  return EMuleFolder.empty() ? String() : EMuleFolder + u"config\\AC_SearchStrings.dat";
}

std::unique_ptr<TTCPAzureusStatistics> AzureusStatistics;
std::unique_ptr<TTCPEMuleDownloadMRU> EMuleDownloadMRU;
std::unique_ptr<TTCPEMuleSearchMRU> EMuleSearchMRU;
std::unique_ptr<TTCPEMuleStatistics> EMuleStatistics;
std::unique_ptr<TTCPEDonkey2000DownloadMRU> EDonkey2000DownloadMRU;
std::unique_ptr<TTCPKazaaSearchMRU> KazaaSearchMRU;
std::unique_ptr<TTCPKazaaDownloadDB> KazaaDownloadDB;
std::unique_ptr<TTCPKazaaPlaylists> KazaaPlaylists;
std::unique_ptr<TTCPKazaaLiteDownloadDB> KazaaLiteDownloadDB;
std::unique_ptr<TTCPAresSearchlist> AresSearchlist;
std::unique_ptr<TTCPBitTorrentHistory> BitTorrentHistory;
std::unique_ptr<TTCPWinMXLogfiles> WinMXLogfiles;
std::unique_ptr<TTCPWarezP2PSearchlist> WarezP2PSearchlist;
std::unique_ptr<TTCPWarezP2PVerlauf> WarezP2PVerlauf;

}  // namespace

int KnownMetTraceCount(int64_t size) {
  int64_t n = size / 250;
  return n < 1 ? 1 : static_cast<int>(n > 0x7FFFFFFF ? 0x7FFFFFFF : n);
}

StringList SearchStringLines(const Bytes& data) {
  String text;
  if (data.size() >= 2 && data[0] == 0xFF && data[1] == 0xFE)
    text = FromUtf16LE(data.data() + 2, data.size() - 2);
  else if (data.size() >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF)
    text =
        FromUtf8(std::string_view(reinterpret_cast<const char*>(data.data()) + 3, data.size() - 3));
  else
    text = FromAnsi(std::string_view(reinterpret_cast<const char*>(data.data()), data.size()));
  StringList lines;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find_first_of(u"\r\n", start);
    if (end == String::npos) end = text.size();
    String line = Trim(text.substr(start, end - start));
    if (!line.empty()) lines.push_back(line);
    if (end < text.size() && text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n')
      ++end;
    start = end + 1;
  }
  return lines;
}

int CountSearchStringLines(const Bytes& data) {
  return static_cast<int>(SearchStringLines(data).size());
}

String ProgramOfCommand(const String& command) {
  String s = Trim(command);
  if (s.empty()) return s;
  if (s[0] == u'"') {
    size_t close = s.find(u'"', 1);
    return s.substr(1, close == String::npos ? String::npos : close - 1);
  }
  for (size_t blank = s.find(u' '); blank != String::npos; blank = s.find(u' ', blank + 1)) {
    if (OrviFileExists(s.substr(0, blank))) return s.substr(0, blank);
  }
  return s;
}

TTCPAzureusStatistics::TTCPAzureusStatistics() : TTCPlugin(u"TTCPAzureusStatistics") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_Azureus, 8000, rsCapStatistics,
           u"Azureus speichert eine Statistik über alle von Ihnen herunter- und hochgeladenen "
           u"Daten. Daraus lässt sich ablesen, wann und in welchem Umfang Sie die Tauschbörse "
           u"genutzt haben.");
  // The scan reports folder + name, so the folder carries its delimiter.
  String installDir =
      GetRegStringValueDef(HKEY_CURRENT_USER, u"Software\\Azureus", u"", u"", RO_None);
  Active = !installDir.empty() && DirExists(installDir);
  if (Active) AddFiles(*this, GetAppDataDir() + u"Azureus\\", u"azureus.statistics");
}

TTCPEMuleDownloadMRU::TTCPEMuleDownloadMRU() : TTCPlugin(u"TTCPEMuleDownloadMRU") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_EMule, 8002, rsCapDownloadMRU,
           u"eMule speichert eine Liste aller von Ihnen heruntergeladenen Dateien. Jeder, der "
           u"Zugang zu Ihrem Computer hat, kann daran ablesen, welche Dateien Sie aus der "
           u"Tauschbörse bezogen haben.");
  if (EMuleFolder.empty()) {
    Active = false;
    return;
  }
  AddFiles(*this, EMuleFolder, u"downloads.txt;downloads.txt.bak");
}

void TTCPEMuleDownloadMRU::Scan() {
  TTCPlugin::Scan();
  if (!EMuleFolder.empty()) CountKnownMet(*this, EMuleFolder + u"config\\known.met");
}

void TTCPEMuleDownloadMRU::Clean() {
  TTCPlugin::Clean();
  if (!EMuleFolder.empty()) RemoveFile(*this, EMuleFolder + u"config\\known.met");
}

TTCPEMuleSearchMRU::TTCPEMuleSearchMRU() : TTCPlugin(u"TTCPEMuleSearchMRU") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_EMule, 8002, rsCapSearchMRU,
           u"eMule speichert alle von Ihnen eingegebenen Suchbegriffe und bietet sie bei der "
           u"nächsten Suche zur Auswahl an. Die Begriffe verraten, wonach Sie in der Tauschbörse "
           u"gesucht haben.");
  if (EMuleFolder.empty()) Active = false;
}

void TTCPEMuleSearchMRU::Scan() {
  TTCPlugin::Scan();
  String file = SearchStringsFile();
  if (file.empty() || !OrviFileExists(file)) return;
  Bytes data;
  if (FileContents::Read(*Services().Files, file, data) != ERROR_SUCCESS)
    throw std::runtime_error("cannot read " + ToUtf8(file));
  const StringList lines = SearchStringLines(data);
  IncTraceCount(static_cast<int>(lines.size()));
  for (const auto& line : lines)
    PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, file}, TTT_Unknown, 0, line,
                 static_cast<int64_t>(data.size()));
}

void TTCPEMuleSearchMRU::Clean() {
  TTCPlugin::Clean();
  RemoveFile(*this, SearchStringsFile());
}

TTCPEMuleStatistics::TTCPEMuleStatistics() : TTCPlugin(u"TTCPEMuleStatistics") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_EMule, 8002, rsCapStatistics,
           u"eMule speichert eine Statistik über alle von Ihnen herunter- und hochgeladenen Daten "
           u"in einer Datei. Daraus lässt sich ablesen, in welchem Umfang Sie die Tauschbörse "
           u"genutzt haben.");
  if (EMuleFolder.empty()) {
    Active = false;
    return;
  }
  AddFiles(*this, EMuleFolder + u"config\\", u"statistics.ini");
}

TTCPEDonkey2000DownloadMRU::TTCPEDonkey2000DownloadMRU()
    : TTCPlugin(u"TTCPEDonkey2000DownloadMRU") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_EDonkey2000, 8005, rsCapDownloadMRU,
           u"eDonkey2000 speichert eine Liste aller von Ihnen heruntergeladenen Dateien. Jeder, "
           u"der Zugang zu Ihrem Computer hat, kann daran ablesen, welche Dateien Sie aus der "
           u"Tauschbörse bezogen haben.");
  if (EDonkeyFolder.empty()) {
    Active = false;
    return;
  }
  AddFiles(*this, EDonkeyFolder, u"known.met.bak");
}

void TTCPEDonkey2000DownloadMRU::Scan() {
  TTCPlugin::Scan();
  if (!EDonkeyFolder.empty()) CountKnownMet(*this, EDonkeyFolder + u"known.met");
}

void TTCPEDonkey2000DownloadMRU::Clean() {
  TTCPlugin::Clean();
  if (!EDonkeyFolder.empty()) RemoveFile(*this, EDonkeyFolder + u"known.met");
}

TTCPKazaaSearchMRU::TTCPKazaaSearchMRU() : TTCPlugin(u"TTCPKazaaSearchMRU") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_Kazaa, 8003, rsCapSearchMRU,
           u"Kazaa speichert alle von Ihnen eingegebenen Suchbegriffe in der "
           u"Registrierungsdatenbank. Die Begriffe verraten, wonach Sie in der Tauschbörse gesucht "
           u"haben.");
  // Kazaa and Kazaa Lite keep this user's settings here: present once the user ran either.
  Active = KeyExist(HKEY_CURRENT_USER, u"Software\\Kazaa", RO_None);
  DeactivateIfAbsent = false;
  AddTraceLocation(
      TLT_Registry_NumberedNames,
      new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, u"Software\\Kazaa\\Search", u"", 0),
      TTT_Unknown, 0);
}

TTCPKazaaDownloadDB::TTCPKazaaDownloadDB() : TTCPlugin(u"TTCPKazaaDownloadDB") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_Kazaa, 8003, rsCapDownloadDB,
           u"Kazaa legt eine Datenbank mit Informationen über alle von Ihnen heruntergeladenen "
           u"Dateien an. Daran lässt sich ablesen, welche Dateien Sie aus der Tauschbörse bezogen "
           u"haben.");
  DeactivateIfAbsent = false;
  String dir =
      GetRegStringValueDef(HKEY_LOCAL_MACHINE, kKazaaContentKey, u"DatabaseDir", u"", RO_None);
  // The Lite edition shares the value; only one of the two plug-ins owns the folder.
  Active = !dir.empty() && !KazaaLite;
  if (Active) AddFiles(*this, IncludeTrailingPathDelimiter(dir), u"*");
}

TTCPKazaaPlaylists::TTCPKazaaPlaylists() : TTCPlugin(u"TTCPKazaaPlaylists") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_Kazaa, 8003, u"Wiedergabelisten",
           u"Kazaa speichert Ihre Wiedergabelisten im Download-Ordner. Sie zeigen, welche "
           u"heruntergeladenen Musik- und Videodateien Sie abgespielt haben.");
  DeactivateIfAbsent = false;
  String dir =
      GetRegStringValueDef(HKEY_LOCAL_MACHINE, kKazaaContentKey, u"DownloadDir", u"", RO_None);
  Active = !dir.empty();
  if (Active) AddFiles(*this, IncludeTrailingPathDelimiter(dir), u"*.kpl");
}

TTCPKazaaLiteDownloadDB::TTCPKazaaLiteDownloadDB() : TTCPlugin(u"TTCPKazaaLiteDownloadDB") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_KazaaLite, 8003, rsCapDownloadDB,
           u"Kazaa Lite legt eine Datenbank mit Informationen über alle von Ihnen "
           u"heruntergeladenen Dateien an. Daran lässt sich ablesen, welche Dateien Sie aus der "
           u"Tauschbörse bezogen haben.");
  String dir =
      GetRegStringValueDef(HKEY_LOCAL_MACHINE, kKazaaContentKey, u"DatabaseDir", u"", RO_None);
  // Installed means: the database folder is known and names the Lite edition.
  Active = !dir.empty() && KazaaLite;
  if (Active) AddFiles(*this, IncludeTrailingPathDelimiter(dir), u"*");
}

TTCPAresSearchlist::TTCPAresSearchlist() : TTCPlugin(u"TTCPAresSearchlist") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_Ares, 8006,
           u"Liste der zuletzt verwendeten Suchbegriffe",
           u"Ares speichert alle von Ihnen eingegebenen Suchbegriffe in der "
           u"Registrierungsdatenbank. Die Begriffe verraten, wonach Sie in der Tauschbörse gesucht "
           u"haben.");
  Active = KeyExist(HKEY_CURRENT_USER, u"Software\\Ares", RO_None);
  DeactivateIfAbsent = false;
  AddRegistryValues(*this, u"Software\\Ares\\Search.History\\gen.gen");
}

TTCPBitTorrentHistory::TTCPBitTorrentHistory() : TTCPlugin(u"TTCPBitTorrentHistory") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_BitTorrent, 8001,
           u"Liste der zuletzt eingegebenen Begriffe",
           u"BitTorrent++ speichert die von Ihnen eingegebenen Begriffe und Adressen in einem "
           u"Verlaufsordner. Daran lässt sich ablesen, welche Dateien Sie gesucht und "
           u"heruntergeladen haben.");
  // The installer records the program under its product name; a user's installation is
  // where that entry's program lives.
  String cmd = GetRegStringValueDef(HKEY_LOCAL_MACHINE, kUninstallKey + u"BitTorrent++",
                                    u"UninstallString", u"", RO_None);
  String folder = ExtractFilePath(Replace(cmd, u"\"", u""));
  Active = !folder.empty() && DirExists(folder);
  if (Active) AddFiles(*this, IncludeTrailingPathDelimiter(folder) + u"History\\", u"*");
}

TTCPWinMXLogfiles::TTCPWinMXLogfiles() : TTCPlugin(u"TTCPWinMXLogfiles") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_WinMX, 8004, u"Protokoll der durchgeführten Aktionen",
           u"WinMX protokolliert alle durchgeführten Aktionen wie Suchanfragen, Downloads und "
           u"Uploads in Protokoll-Dateien im Programmordner.");
  String folder = UninstallFolder(u"WinMX");
  Active = !folder.empty() && DirExists(folder);
  if (Active) AddFiles(*this, folder, u"*.log");
}

TTCPWarezP2PSearchlist::TTCPWarezP2PSearchlist() : TTCPlugin(u"TTCPWarezP2PSearchlist") {
  Section = rsTCPSection_FileSharing;
  AppCaption = rsTCPApp_WarezP2P;
  IconFile = FileNameByID(8007, 27);
  Caption = rsCapDownloadMRU;  // the two WarezP2P captions stand crossed over, as shipped
  Description =
      u"WarezP2P speichert alle von Ihnen eingegebenen Suchbegriffe in der "
      u"Registrierungsdatenbank. Die Begriffe verraten, wonach Sie in der Tauschbörse gesucht "
      u"haben.";
  String folder = UninstallFolder(u"Warez P2P Client");
  Active = !folder.empty() && DirExists(folder);
  if (Active) AddRegistryValues(*this, u"Software\\Warez\\Search.History\\gen.gen");
}

TTCPWarezP2PVerlauf::TTCPWarezP2PVerlauf() : TTCPlugin(u"TTCPWarezP2PVerlauf") {
  Describe(rsTCPSection_FileSharing, rsTCPApp_WarezP2P, 8007, rsCapSearchMRU,
           u"WarezP2P speichert den Verlauf Ihrer Suchen und Downloads in Dateien im Datenordner "
           u"des Programms. Daran lässt sich ablesen, welche Dateien Sie gesucht und "
           u"heruntergeladen haben.");
  String folder = UninstallFolder(u"Warez P2P Client");
  Active = !folder.empty() && DirExists(folder);
  if (Active) AddFiles(*this, folder + u"Data\\", u"*.dat");
}

void TCP_FileSharing_Initialization() {
  EMuleFolder = FindClientFolder(u"emule", u"emule.exe");
  EDonkeyFolder = FindClientFolder(u"edonkey", u"edonkey2000.exe");
  KazaaLite = LowerCase(GetRegStringValueDef(HKEY_LOCAL_MACHINE, kKazaaContentKey, u"DatabaseDir",
                                             u"", RO_None))
                  .find(u"lite") != String::npos;

  AzureusStatistics = std::make_unique<TTCPAzureusStatistics>();
  EMuleDownloadMRU = std::make_unique<TTCPEMuleDownloadMRU>();
  EMuleSearchMRU = std::make_unique<TTCPEMuleSearchMRU>();
  EMuleStatistics = std::make_unique<TTCPEMuleStatistics>();
  EDonkey2000DownloadMRU = std::make_unique<TTCPEDonkey2000DownloadMRU>();
  KazaaSearchMRU = std::make_unique<TTCPKazaaSearchMRU>();
  KazaaDownloadDB = std::make_unique<TTCPKazaaDownloadDB>();
  KazaaPlaylists = std::make_unique<TTCPKazaaPlaylists>();
  KazaaLiteDownloadDB = std::make_unique<TTCPKazaaLiteDownloadDB>();
  AresSearchlist = std::make_unique<TTCPAresSearchlist>();
  BitTorrentHistory = std::make_unique<TTCPBitTorrentHistory>();
  WinMXLogfiles = std::make_unique<TTCPWinMXLogfiles>();
  WarezP2PSearchlist = std::make_unique<TTCPWarezP2PSearchlist>();
  WarezP2PVerlauf = std::make_unique<TTCPWarezP2PVerlauf>();
}

void TCP_FileSharing_Finalization() {
  WarezP2PVerlauf.reset();
  WarezP2PSearchlist.reset();
  WinMXLogfiles.reset();
  BitTorrentHistory.reset();
  AresSearchlist.reset();
  KazaaLiteDownloadDB.reset();
  KazaaPlaylists.reset();
  KazaaDownloadDB.reset();
  KazaaSearchMRU.reset();
  EDonkey2000DownloadMRU.reset();
  EMuleStatistics.reset();
  EMuleSearchMRU.reset();
  EMuleDownloadMRU.reset();
  AzureusStatistics.reset();
  EMuleFolder.clear();
  EDonkeyFolder.clear();
  KazaaLite = false;
}

}  // namespace tc
