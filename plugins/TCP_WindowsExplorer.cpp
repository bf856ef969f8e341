#include "plugins/TCP_WindowsExplorer.h"

#include "engine/TC_Common.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/Platform.h"

namespace tc {

namespace {

const String rsApp_ComDlg = u"Datei öffnen-/speichern-Dialoge";
const String rsApp_Explorer = u"Windows-Explorer";
const String rsApp_Search = u"Windows-Suche";

const String kExplorerKey = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const String kExplorerBarsKey =
    u"Software\\Microsoft\\Internet Explorer\\Explorer Bars\\"
    u"{C4EE31F3-4768-11D2-BE5C-00A0C9A83DA1}\\";
const String kACMruKey = u"Software\\Microsoft\\Search Assistant\\ACMru\\";

constexpr TTraceFlags kDeletableFixed =
    FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning);

constexpr int32_t kSHCNE_ASSOCCHANGED = 0x08000000;

// Steps shared by every constructor of the unit, in the plug-in recipe's order.
void SetTexts(TTCPlugin& p, const String& app, int icon, const String& caption,
              const String& description) {
  p.Describe(rsTCPSection_Windows, app, icon, caption, description);
  p.DeactivateIfAbsent = false;
}

TTCPComDlgOpenSave* TCPComDlgOpenSave = nullptr;
TTCPComDlgLastVisited* TCPComDlgLastVisited = nullptr;
TTCPStartMenuRun* TCPStartMenuRun = nullptr;
TTCPRecentDocs* TCPRecentDocs = nullptr;
TTCPSearchFiles* TCPSearchFiles = nullptr;
TTCPSearchText* TCPSearchText = nullptr;
TTCPNetworkDrives* TCPNetworkDrives = nullptr;
TTCPRecentApps* TCPRecentApps = nullptr;

}  // namespace

TTCPComDlgOpenSave::TTCPComDlgOpenSave() : TTCPlugin(u"TTCPComDlgOpenSave") {
  SetTexts(*this, rsApp_ComDlg, 5002, u"Liste der zuletzt geöffneten und gespeicherten Dateien",
           u"Viele Anwendungen verwenden zum Öffnen und Speichern von Dateien spezielle "
           u"Windows-Standarddialoge. Diese Dialoge legen selbständig eine Liste der zuletzt "
           u"geöffneten und gespeicherten Dateien an und können somit verraten, was Sie am "
           u"Computer getan haben.");
  AddTraceLocation(TLT_Registry_MRUList,
                   new TLD_Registry_MRUList(HKEY_CURRENT_USER,
                                            kExplorerKey + u"ComDlg32\\OpenSaveMRU", 0),
                   TTT_FileOrFolderName, kDeletableFixed);
}

TTCPComDlgLastVisited::TTCPComDlgLastVisited() : TTCPlugin(u"TTCPComDlgLastVisited") {
  SetTexts(*this, rsApp_ComDlg, 5002, u"Liste der zuletzt verwendeten Ordner",
           u"Viele Anwendungen verwenden zum Öffnen und Speichern von Dateien spezielle "
           u"Windows-Standarddialoge. Diese Dialoge legen selbständig eine Liste der zuletzt "
           u"verwendeten Ordner an und können somit verraten, was Sie am Computer getan haben.");
  AddTraceLocation(TLT_Registry_MRUList,
                   new TLD_Registry_MRUList(HKEY_CURRENT_USER,
                                            kExplorerKey + u"ComDlg32\\LastVisitedMRU", 0),
                   TTT_Unknown, kDeletableFixed);
}

TTCPStartMenuRun::TTCPStartMenuRun() : TTCPlugin(u"TTCPStartMenuRun") {
  SetTexts(*this, rsApp_Explorer, 5000,
           u"Liste der zuletzt geöffneten Anwendungen, Dateien und Webseiten",
           u"Der Befehl \"Ausführen\" im Startmenü führt eine Liste der zuletzt eingegebenen "
           u"Befehle. Diese Liste kann verraten, welche Anwendungen Sie gestartet, welche "
           u"Dokumente Sie aufgerufen und welche Internetseiten Sie besucht haben.");
  AddTraceLocation(TLT_Registry_MRUList,
                   new TLD_Registry_MRUList(HKEY_CURRENT_USER, kExplorerKey + u"RunMRU", 0),
                   TTT_RunCMD, kDeletableFixed | FlagOf(TF_Consider_Dropping_Last_Directory));
}

void TTCPStartMenuRun::Clean() {
  TTCPlugin::Clean();
  HostNotice = true;
}

TTCPRecentDocs::TTCPRecentDocs() : TTCPlugin(u"TTCPRecentDocs") {
  SetTexts(*this, rsApp_Explorer, 5000, u"Liste der zuletzt verwendeten Dokumente",
           u"Im Windows-Startmenü werden die von Ihnen zuletzt verwendeten Dokumente angezeigt. "
           u"Diese Liste von Dokumenten gibt Aufschluss darüber, mit welchen Dokumenten Sie "
           u"gearbeitet haben und kann vertrauliche Informationen enthalten.");
  AddTraceLocation(TLT_Registry_MRUListEx,
                   new TLD_Registry_MRUListEx(HKEY_CURRENT_USER, kExplorerKey + u"RecentDocs", 0),
                   TTT_Unknown, 0);
}

TTCPSearchFiles::TTCPSearchFiles() : TTCPlugin(u"TTCPSearchFiles") {
  SetTexts(*this, rsApp_Search, 5001, u"Liste der zuletzt gesuchten Dateinamen",
           u"Die Windows-Suche, die Sie über das Startmenü oder den Windows-Explorer erreichen "
           u"können, speichert die zuletzt von Ihnen eingegebenen Dateinamen oder Suchmasken. "
           u"Diese Liste kann vertrauliche Informationen enthalten.");
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(HKEY_CURRENT_USER,
                                                  kExplorerBarsKey + u"FilesNamedMRU", u"", 0),
                   TTT_Unknown, 0);
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kACMruKey + u"5603", u"", 0),
                   TTT_Unknown, 0);
}

TTCPSearchText::TTCPSearchText() : TTCPlugin(u"TTCPSearchText") {
  SetTexts(*this, rsApp_Search, 5001,
           u"Liste der zuletzt innerhalb von Dateien gesuchten Begriffe",
           u"Die Windows-Suche, die Sie über das Startmenü oder den Windows-Explorer erreichen "
           u"können, speichert die zuletzt von Ihnen eingegebenen Begriffe, nach denen Sie "
           u"innerhalb von Dateien gesucht haben. Diese Liste kann vertrauliche Informationen "
           u"enthalten.");
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(HKEY_CURRENT_USER,
                                                  kExplorerBarsKey + u"ContainingTextMRU", u"", 0),
                   TTT_Unknown, 0);
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kACMruKey + u"5604", u"", 0),
                   TTT_Unknown, 0);
}

TTCPNetworkDrives::TTCPNetworkDrives() : TTCPlugin(u"TTCPNetworkDrives") {
  SetTexts(*this, rsApp_Explorer, 5000, u"Liste der zuletzt verbundenen Netzlaufwerke",
           u"Wenn Sie in Windows ein Netzlaufwerk verbinden, wird der verwendete freigegebene "
           u"Ordner in einer Liste gespeichert. Diese Liste bleibt auch nach dem Trennen des "
           u"Netzlaufwerkes bestehen und kann somit verraten, was Sie am Computer getan haben.");
  AddTraceLocation(TLT_Registry_MRUList,
                   new TLD_Registry_MRUList(HKEY_CURRENT_USER,
                                            kExplorerKey + u"Map Network Drive MRU", 0),
                   TTT_Unknown, 0);
}

TTCPRecentApps::TTCPRecentApps() : TTCPlugin(u"TTCPRecentApps") {
  SetTexts(*this, rsApp_Explorer, 5000, u"Liste der häufig verwendeten Anwendungen im Startmenü",
           u"Windows XP und Windows 2003 speichern die von Ihnen häufig verwendeten Anwendungen "
           u"in einer Liste, um sie auf der linken Seite des neuen Startmenüs anzuzeigen. Anhand "
           u"dieser Liste lässt sich herausfinden, mit welchen Anwendungen Sie arbeiten und wie "
           u"oft Sie diese verwenden.");
  AddTraceLocation(TLT_Registry_AllValues,
                   new TLD_Registry_AllValues(
                       HKEY_CURRENT_USER,
                       kExplorerKey + u"UserAssist\\{75048700-EF1F-11D0-9888-006097DEACF9}\\Count",
                       0),
                   TTT_UserAssist, FlagOf(TF_Deletable_Per_Item));
}

void TTCPRecentApps::Clean() {
  TTCPlugin::Clean();
  Services().Shell->ChangeNotify(kSHCNE_ASSOCCHANGED, 0, String());
}

void TCP_WindowsExplorer_Initialization() {
  TCPComDlgOpenSave = new TTCPComDlgOpenSave();
  TCPComDlgLastVisited = new TTCPComDlgLastVisited();
  TCPStartMenuRun = new TTCPStartMenuRun();
  TCPRecentDocs = new TTCPRecentDocs();
  TCPSearchFiles = new TTCPSearchFiles();
  TCPSearchText = new TTCPSearchText();
  TCPNetworkDrives = new TTCPNetworkDrives();
  TCPRecentApps = new TTCPRecentApps();
}

void TCP_WindowsExplorer_Finalization() {
  FreeAndNil(TCPComDlgOpenSave);
  FreeAndNil(TCPComDlgLastVisited);
  FreeAndNil(TCPStartMenuRun);
  FreeAndNil(TCPRecentDocs);
  FreeAndNil(TCPSearchFiles);
  FreeAndNil(TCPSearchText);
  FreeAndNil(TCPNetworkDrives);
  FreeAndNil(TCPRecentApps);
}

}  // namespace tc
