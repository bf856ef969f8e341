#include "plugins/TCP_Archiver.h"

#include <memory>

#include "engine/TC_Common.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {

namespace {

const String rsTCPApp_WinRAR = u"WinRAR";
const String rsTCPApp_WinZip = u"WinZip";
const String rsTCPApp_PowerArchiver = u"PowerArchiver 9";
const String kWinRAR = u"Software\\WinRAR";
const String kArcHistory = u"Software\\WinRAR\\ArcHistory";
const String kWinZip = u"Software\\Nico Mak Computing\\WinZip";
const String kPowerArchiver = u"Software\\PowerArchiver";
const String kPowerArchiverLanguages = u"G,FR,I,PL,SK,CZ,UK,RU";
constexpr TTraceFlags kFixedZeroBased = 14;  // deletable per item, needs fix, zero-based

void AddNumberedNames(TTCPlugin& p, const String& key, const String& prefix, uint32_t options,
                      TTraceTargetType target, TTraceFlags flags) {
  p.AddTraceLocation(TLT_Registry_NumberedNames,
                     new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, key, prefix, options),
                     target, flags);
}

// The "\Files" key of PowerArchiver for one location. With no PowerArchiver key at all the
// plain key is named: it is absent, so the location finds nothing and the plug-in switches
// itself off, where "\Files" alone would be no key path at all.
String PowerArchiverFiles() {
  String key = PowerArchiverKey();
  return (key.empty() ? kPowerArchiver : key) + u"\\Files";
}

std::unique_ptr<TTCPWinRARRecentArchives> WinRARRecentArchives;
std::unique_ptr<TTCPWinRARRecentFolders> WinRARRecentFolders;
std::unique_ptr<TTCPWinRARCreatedArchives> WinRARCreatedArchives;
std::unique_ptr<TTCPWinZipRecentArchives> WinZipRecentArchives;
std::unique_ptr<TTCPWinZipTargetFolders> WinZipTargetFolders;
std::unique_ptr<TTCPPowerArcRecentArchives> PowerArcRecentArchives;
std::unique_ptr<TTCPPowerArcRecentFolders> PowerArcRecentFolders;
std::unique_ptr<TTCPWinAceLastOpenArchives> WinAceLastOpenArchives;

}  // namespace

String PowerArchiverKey() {
  if (KeyExist(HKEY_CURRENT_USER, kPowerArchiver, RO_None)) return kPowerArchiver;
  for (int i = 1; i <= ParamXCount(kPowerArchiverLanguages, u','); ++i) {
    String key = kPowerArchiver + ParamX(kPowerArchiverLanguages, u',', i);
    if (KeyExist(HKEY_CURRENT_USER, key, RO_None)) return key;
  }
  return {};
}

TTCPWinRARRecentArchives::TTCPWinRARRecentArchives() : TTCPlugin(u"TTCPWinRARRecentArchives") {
  Describe(rsTCPSection_Archiver, rsTCPApp_WinRAR, 7000, u"Liste der zuletzt geöffneten Archive",
           u"WinRAR speichert eine Liste der zuletzt von Ihnen geöffneten Archive. Diese Liste "
           u"wird im Menü Datei angezeigt und ist für jeden sichtbar, der WinRAR auf Ihrem "
           u"Computer startet.");
  Active = KeyExist(HKEY_CURRENT_USER, kWinRAR, RO_None);
  DeactivateIfAbsent = false;
  AddNumberedNames(*this, kArcHistory, u"", 0, TTT_FileName, kFixedZeroBased);
}

void TTCPWinRARRecentArchives::Clean() {
  bool existed = KeyExist(HKEY_CURRENT_USER, kArcHistory, RO_None);
  TTCPlugin::Clean();
  // WinRAR expects the key; its empty default value restores it without adding an entry,
  // since WinRAR reads only the numbered values.
  if (existed && !KeyExist(HKEY_CURRENT_USER, kArcHistory, RO_None))
    SetRegStringValue(HKEY_CURRENT_USER, kArcHistory, u"", u"", RO_None);
}

TTCPWinRARRecentFolders::TTCPWinRARRecentFolders() : TTCPlugin(u"TTCPWinRARRecentFolders") {
  Describe(rsTCPSection_Archiver, rsTCPApp_WinRAR, 7000, u"Liste der zuletzt verwendeten Ordner",
           u"WinRAR speichert eine Liste der Ordner, in die Sie zuletzt Archive entpackt haben, "
           u"und merkt sich den zuletzt geöffneten Ordner.");
  Active = KeyExist(HKEY_CURRENT_USER, kWinRAR, RO_None);
  DeactivateIfAbsent = false;
  AddNumberedNames(*this, u"Software\\WinRAR\\DialogEditHistory\\ExtrPath", u"", 0,
                   TTT_FileOrFolderName, kFixedZeroBased);
  AddTraceLocation(TLT_Registry_StringValue,
                   new TLD_Registry_StringValue(HKEY_CURRENT_USER, u"Software\\WinRAR\\General",
                                                u"LastFolder", u"", 0),
                   TTT_FileOrFolderName, FlagOf(TF_Deletable_Per_Item));
}

TTCPWinRARCreatedArchives::TTCPWinRARCreatedArchives() : TTCPlugin(u"TTCPWinRARCreatedArchives") {
  Describe(rsTCPSection_Archiver, rsTCPApp_WinRAR, 7000, u"Namen der zuletzt erstellten Archive",
           u"WinRAR speichert die Namen der zuletzt von Ihnen erstellten Archive und bietet sie "
           u"beim Anlegen eines neuen Archivs zur Auswahl an.");
  Active = KeyExist(HKEY_CURRENT_USER, kWinRAR, RO_None);
  DeactivateIfAbsent = false;
  AddNumberedNames(*this, u"Software\\WinRAR\\DialogEditHistory\\ArcName", u"", 0, TTT_Unknown, 0);
}

TTCPWinZipRecentArchives::TTCPWinZipRecentArchives() : TTCPlugin(u"TTCPWinZipRecentArchives") {
  Describe(rsTCPSection_Archiver, rsTCPApp_WinZip, 7001, u"Liste der zuletzt verwendeten Archive",
           u"WinZip speichert eine Liste der zuletzt von Ihnen verwendeten Archive. Diese Liste "
           u"wird im Menü Datei angezeigt und ist für jeden sichtbar, der WinZip auf Ihrem "
           u"Computer startet.");
  Active = KeyExist(HKEY_CURRENT_USER, kWinZip, RO_None);
  DeactivateIfAbsent = false;
  AddNumberedNames(*this, kWinZip + u"\\filemenu", u"filemenu", 0, TTT_FileOrFolderName,
                   FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning));
}

TTCPWinZipTargetFolders::TTCPWinZipTargetFolders() : TTCPlugin(u"TTCPWinZipTargetFolders") {
  Describe(rsTCPSection_Archiver, rsTCPApp_WinZip, 7001,
           u"Liste der Ordner, in die zuletzt Dateien entpackt wurden",
           u"WinZip speichert eine Liste der Ordner, in die Sie zuletzt Dateien entpackt haben, "
           u"und bietet sie beim nächsten Entpacken zur Auswahl an.");
  Active = KeyExist(HKEY_CURRENT_USER, kWinZip, RO_None);
  DeactivateIfAbsent = false;
  AddNumberedNames(*this, kWinZip + u"\\extract", u"extract", 0, TTT_FileOrFolderName,
                   FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning));
}

TTCPPowerArcRecentArchives::TTCPPowerArcRecentArchives()
    : TTCPlugin(u"TTCPPowerArcRecentArchives") {
  Describe(rsTCPSection_Archiver, rsTCPApp_PowerArchiver, 7002,
           u"Liste der zuletzt verwendeten Archive",
           u"PowerArchiver speichert eine Liste der zuletzt von Ihnen verwendeten Archive. Diese "
           u"Liste wird im Menü Datei angezeigt und ist für jeden sichtbar, der PowerArchiver auf "
           u"Ihrem Computer startet.");
  AddNumberedNames(*this, PowerArchiverFiles(), u"Active_File", LO_StringList, TTT_FileName,
                   FlagOf(TF_Clearable_Per_Item));
}

TTCPPowerArcRecentFolders::TTCPPowerArcRecentFolders() : TTCPlugin(u"TTCPPowerArcRecentFolders") {
  Describe(rsTCPSection_Archiver, rsTCPApp_PowerArchiver, 7002,
           u"Liste der zuletzt verwendeten Ordner",
           u"PowerArchiver speichert eine Liste der Ordner, die Sie zuletzt zum Entpacken, "
           u"Hinzufügen und Öffnen von Dateien verwendet haben.");
  const TTraceFlags clearable = FlagOf(TF_Clearable_Per_Item);
  AddNumberedNames(*this, PowerArchiverFiles(), u"Extract", LO_StringList, TTT_FileOrFolderName,
                   clearable);
  AddNumberedNames(*this, PowerArchiverFiles(), u"SelDir", LO_StringList, TTT_FileOrFolderName,
                   clearable);
  for (const char16_t* value : {u"Last open dir", u"Last add dir", u"Add from folder"})
    AddTraceLocation(TLT_Registry_StringValue,
                     new TLD_Registry_StringValue(HKEY_CURRENT_USER, PowerArchiverFiles(), value,
                                                  u"", LO_StringList),
                     TTT_FileOrFolderName, clearable);
}

TTCPWinAceLastOpenArchives::TTCPWinAceLastOpenArchives()
    : TTCPlugin(u"TTCPWinAceLastOpenArchives") {
  Describe(rsTCPSection_Archiver, u"WinAce", 7003, u"Liste der zuletzt verwendeten Archive",
           u"WinAce speichert eine Liste der zuletzt von Ihnen verwendeten Archive und Ihrer "
           u"Favoriten. Diese Listen sind für jeden sichtbar, der WinAce auf Ihrem Computer "
           u"startet.");
  String path =
      GetRegStringValueDef(HKEY_CURRENT_USER, u"Software\\e-merge\\WinAce", u"Path", u"", RO_None);
  // Installed means: the recorded program path still exists on disk.
  Active = !path.empty() && FileOrDirExists(path);
  DeactivateIfAbsent = false;
  if (path.empty()) return;
  AddNumberedNames(*this, u"Software\\e-merge\\Winace\\2.0\\Favorites", u"H", 0, TTT_Unknown, 0);
  AddNumberedNames(*this, u"Software\\e-merge\\Winace\\2.0\\MRU Items", u"F", 0, TTT_Unknown, 0);
}

void TCP_Archiver_Initialization() {
  WinRARRecentArchives = std::make_unique<TTCPWinRARRecentArchives>();
  WinRARRecentFolders = std::make_unique<TTCPWinRARRecentFolders>();
  WinRARCreatedArchives = std::make_unique<TTCPWinRARCreatedArchives>();
  WinZipRecentArchives = std::make_unique<TTCPWinZipRecentArchives>();
  WinZipTargetFolders = std::make_unique<TTCPWinZipTargetFolders>();
  PowerArcRecentArchives = std::make_unique<TTCPPowerArcRecentArchives>();
  PowerArcRecentFolders = std::make_unique<TTCPPowerArcRecentFolders>();
  WinAceLastOpenArchives = std::make_unique<TTCPWinAceLastOpenArchives>();
}

void TCP_Archiver_Finalization() {
  WinAceLastOpenArchives.reset();
  PowerArcRecentFolders.reset();
  PowerArcRecentArchives.reset();
  WinZipTargetFolders.reset();
  WinZipRecentArchives.reset();
  WinRARCreatedArchives.reset();
  WinRARRecentFolders.reset();
  WinRARRecentArchives.reset();
}

}  // namespace tc
