#include "plugins/TCP_Player.h"

#include <memory>

#include "engine/TC_Common.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/Shell.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {

String WinampFolder;

namespace {

const String rsTCPApp_Winamp = u"Winamp";
const String kWinampSection = u"Winamp";
constexpr int kWinampRecentURLs = 16;  // later numbers are never looked at

String WinampIni() { return WinampFolder.empty() ? String() : WinampFolder + u"Winamp.ini"; }

String FindWinampFolder() {
  String folder = GetFolderLocStr(kCSIDL_PROGRAM_FILES) + u"\\Winamp";
  String configured =
      GetRegStringValueDef(HKEY_CURRENT_USER, u"Software\\Winamp", u"", u"", RO_None);
  if (!configured.empty()) folder = configured;
  folder = IncludeTrailingPathDelimiter(folder);
  return OrviFileExists(folder + u"Winamp.ini") ? folder : String();
}

// Counts the listed Winamp.ini keys that hold text, each offered to the preview.
int CountWinampKeys(TTCPlugin& p, const StringList& keys) {
  String ini = WinampIni();
  if (ini.empty()) return 0;
  int n = 0;
  for (const auto& key : keys) {
    String text = GetPPString(kWinampSection, key, u"", ini);
    if (text.empty()) continue;
    ++n;
    p.PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, ini}, TTT_Unknown, 0,
                   key + u"=" + text);
  }
  return n;
}

void ClearWinampKeys(const StringList& keys) {
  String ini = WinampIni();
  if (ini.empty()) return;
  for (const auto& key : keys)
    if (!GetPPString(kWinampSection, key, u"", ini).empty())
      WritePPString(kWinampSection, key, u"", ini);
}

StringList RecentURLKeys() {
  StringList keys;
  for (int n = 1; n <= kWinampRecentURLs; ++n) keys.push_back(u"RecentURL" + IntToStr(n));
  return keys;
}

// The first recipe steps all three Winamp plug-ins share: section, application, icon.
std::unique_ptr<TTCPQuickTimeRecentMovies> QuickTimeRecentMovies;
std::unique_ptr<TTCPRealPlayerRecentFiles> RealPlayerRecentFiles;
std::unique_ptr<TTCPWinampRecentURLs> WinampRecentURLs;
std::unique_ptr<TTCPWinampDefaultPlaylist> WinampDefaultPlaylist;
std::unique_ptr<TTCPWinampRecentFolder> WinampRecentFolder;
std::unique_ptr<TTCPWMPlayerRecentFiles> WMPlayerRecentFiles;

}  // namespace

TTCPQuickTimeRecentMovies::TTCPQuickTimeRecentMovies() : TTCPlugin(u"TTCPQuickTimeRecentMovies") {
  Describe(rsTCPSection_Player, u"QuickTime", 3000, u"Liste der zuletzt abgespielte Videos",
           u"Alle von Ihnen abgespielten Videodateien werden von QuickTime in einer Verlaufsliste "
           u"abgespeichert. Diese Liste ist für jeden sichtbar, der QuickTime auf Ihrem Computer "
           u"startet.");
  const String key = u"SOFTWARE\\Apple Computer, Inc.\\QuickTime\\Recent Movies";
  AddTraceLocation(TLT_Registry_AllValues, new TLD_Registry_AllValues(HKEY_LOCAL_MACHINE, key, 0),
                   TTT_Unknown, 0);
  AddTraceLocation(TLT_Registry_AllValues, new TLD_Registry_AllValues(HKEY_CURRENT_USER, key, 0),
                   TTT_Unknown, 0);
}

TTCPRealPlayerRecentFiles::TTCPRealPlayerRecentFiles() : TTCPlugin(u"TTCPRealPlayerRecentFiles") {
  Describe(rsTCPSection_Player, u"RealPlayer", 3002,
           u"Liste der zuletzt abgespielten Medien und gespeicherte Cookies",
           u"Alle von Ihnen abgespielten Medien werden vom RealPlayer in einer Verlaufsliste "
           u"abgespeichert. Außerdem legt der RealPlayer eigene Cookies und eine Liste der "
           u"zuletzt aufgerufenen Internetadressen an.");
  AddTraceLocation(TLT_Registry_NumberedKeys,
                   new TLD_Registry_NumberedKeys(
                       HKEY_CURRENT_USER, u"Software\\RealNetworks\\RealPlayer\\6.0\\Preferences",
                       u"MostRecentClips", 0),
                   TTT_Unknown, 0);
  // Joined explicitly with delimiters, so reported paths read folder\name.
  String folder = GetAppDataDir() + u"Real\\RealPlayer\\";
  AddTraceLocation(TLT_FileSystem_Files,
                   new TLD_FileSystem_Files(folder, u"cookies.txt;realplayer.ste;urls.ini", u"", 0),
                   TTT_Unknown, 0);
  AddTraceLocation(TLT_FileSystem_Files,
                   new TLD_FileSystem_Files(folder + u"History\\", u"*", u"", 0), TTT_Unknown, 0);
}

TTCPWinampRecentURLs::TTCPWinampRecentURLs() : TTCPlugin(u"TTCPWinampRecentURLs") {
  Describe(rsTCPSection_Player, rsTCPApp_Winamp, 3001,
           u"Liste der zuletzt abgespielten Radio- und Videostreams",
           u"Winamp speichert die Adressen der zuletzt von Ihnen abgespielten Radio- und "
           u"Videostreams in seiner Einstellungsdatei. Daran lässt sich ablesen, welche Sender Sie "
           u"gehört und gesehen haben.");
  Active = false;
}

void TTCPWinampRecentURLs::Scan() {
  TTCPlugin::Scan();
  IncTraceCount(CountWinampKeys(*this, RecentURLKeys()));
}

void TTCPWinampRecentURLs::Clean() {
  TTCPlugin::Clean();
  ClearWinampKeys(RecentURLKeys());
}

TTCPWinampDefaultPlaylist::TTCPWinampDefaultPlaylist() : TTCPlugin(u"TTCPWinampDefaultPlaylist") {
  Describe(rsTCPSection_Player, rsTCPApp_Winamp, 3001, u"Standard-Wiedergabeliste",
           u"Winamp speichert die zuletzt geöffnete Wiedergabeliste als Standard-Wiedergabeliste "
           u"in seinem Programmordner. Sie verrät, welche Musik- und Videodateien Sie zuletzt "
           u"abgespielt haben.");
  Active = false;
  AddTraceLocation(TLT_FileSystem_Files,
                   new TLD_FileSystem_Files(WinampFolder, u"winamp.m3u", u"", 0), TTT_Unknown, 0);
}

TTCPWinampRecentFolder::TTCPWinampRecentFolder() : TTCPlugin(u"TTCPWinampRecentFolder") {
  Describe(rsTCPSection_Player, rsTCPApp_Winamp, 3001, u"Zuletzt verwendeter Ordner",
           u"Winamp merkt sich den Ordner, aus dem Sie zuletzt Dateien geöffnet haben, in seiner "
           u"Einstellungsdatei.");
  Active = false;
}

void TTCPWinampRecentFolder::Scan() {
  TTCPlugin::Scan();
  IncTraceCount(CountWinampKeys(*this, {u"cwd"}));
}

void TTCPWinampRecentFolder::Clean() {
  TTCPlugin::Clean();
  ClearWinampKeys({u"cwd"});
}

TTCPWMPlayerRecentFiles::TTCPWMPlayerRecentFiles() : TTCPlugin(u"TTCPWMPlayerRecentFiles") {
  Describe(rsTCPSection_Player, u"Windows Media Player", 3003,
           u"Liste der zuletzt geöffneten Medien",
           u"Der Windows Media Player speichert eine Liste der zuletzt von Ihnen geöffneten "
           u"Musik- und Videodateien. Diese Liste wird im Menü Datei angezeigt und ist für jeden "
           u"sichtbar, der den Media Player auf Ihrem Computer startet.");
  DeactivateIfAbsent = false;
  AddTraceLocation(
      TLT_Registry_NumberedNames,
      new TLD_Registry_NumberedNames(HKEY_CURRENT_USER,
                                     u"Software\\Microsoft\\MediaPlayer\\Player\\RecentFileList",
                                     u"File", 0),
      TTT_FileName,
      FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning) | FlagOf(TF_Zero_Based));
}

void TCP_Player_Initialization() {
  WinampFolder = FindWinampFolder();
  QuickTimeRecentMovies = std::make_unique<TTCPQuickTimeRecentMovies>();
  RealPlayerRecentFiles = std::make_unique<TTCPRealPlayerRecentFiles>();
  WinampRecentURLs = std::make_unique<TTCPWinampRecentURLs>();
  WinampDefaultPlaylist = std::make_unique<TTCPWinampDefaultPlaylist>();
  WinampRecentFolder = std::make_unique<TTCPWinampRecentFolder>();
  WMPlayerRecentFiles = std::make_unique<TTCPWMPlayerRecentFiles>();
}

void TCP_Player_Finalization() {
  WMPlayerRecentFiles.reset();
  WinampRecentFolder.reset();
  WinampDefaultPlaylist.reset();
  WinampRecentURLs.reset();
  RealPlayerRecentFiles.reset();
  QuickTimeRecentMovies.reset();
  WinampFolder.clear();
}

}  // namespace tc
