#include "plugins/TCP_WindowsTools.h"

#include "engine/TC_Common.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"

namespace tc {

namespace {

const String kAppletsKey = u"Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\";

constexpr TTraceFlags kDeletableFixed =
    FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning);

// Steps shared by every constructor of the unit, in the plug-in recipe's order.
void SetTexts(TTCPlugin& p, const String& app, int icon, const String& caption,
              const String& description) {
  p.Describe(rsTCPSection_WindowsTools, app, icon, caption, description);
  p.DeactivateIfAbsent = false;
}

TTCPWordPad* TCPWordPad = nullptr;
TTCPMSPaint* TCPMSPaint = nullptr;
TTCPRegedit* TCPRegedit = nullptr;
TTCPTermSrvClient* TCPTermSrvClient = nullptr;
TTCPMovieMakerMRU* TCPMovieMakerMRU = nullptr;

}  // namespace

TTCPWordPad::TTCPWordPad() : TTCPlugin(u"TTCPWordPad") {
  SetTexts(*this, u"Microsoft WordPad", 6000, u"Liste der zuletzt verwendeten Dokumente",
           u"Microsoft WordPad speichert eine Liste der zuletzt von Ihnen geöffneten Dokumente "
           u"und zeigt diese im Hauptmenü an. Selbst wenn die entsprechenden Dokumente nicht mehr "
           u"existieren, können die gespeicherten Dateinamen vertrauliche Informationen "
           u"verraten.");
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(
                       HKEY_CURRENT_USER, kAppletsKey + u"Wordpad\\Recent File List", u"File", 0),
                   TTT_FileName, kDeletableFixed);
}

TTCPMSPaint::TTCPMSPaint() : TTCPlugin(u"TTCPMSPaint") {
  SetTexts(*this, u"Microsoft Paint", 6001, u"Liste der zuletzt verwendeten Grafiken",
           u"Microsoft Paint speichert eine Liste der zuletzt von Ihnen geöffneten Grafiken und "
           u"zeigt diese im Hauptmenü an. Selbst wenn die entsprechenden Grafiken nicht mehr "
           u"existieren, können die gespeicherten Dateinamen vertrauliche Informationen "
           u"verraten.");
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(
                       HKEY_CURRENT_USER, kAppletsKey + u"Paint\\Recent File List", u"File", 0),
                   TTT_FileName, kDeletableFixed);
}

TTCPRegedit::TTCPRegedit() : TTCPlugin(u"TTCPRegedit") {
  SetTexts(*this, u"Registrierungs-Editor", 6002, u"Zuletzt geöffneter Schlüssel",
           u"Der Registrierungs-Editor von Windows merkt sich den Schlüssel, der zuletzt "
           u"angezeigt wurde, bevor Sie die Anwendung geschlossen haben. Beim nächsten Start "
           u"springt er automatisch wieder zu diesem Schlüssel und kann so verraten, an welcher "
           u"Stelle Sie Änderungen an der Registrierung vorgenommen haben.");
  AddTraceLocation(TLT_Registry_StringValue,
                   new TLD_Registry_StringValue(HKEY_CURRENT_USER, kAppletsKey + u"Regedit",
                                                u"LastKey", u"", 0),
                   TTT_Unknown, 0);
}

TTCPTermSrvClient::TTCPTermSrvClient() : TTCPlugin(u"TTCPTermSrvClient") {
  SetTexts(*this, u"Remotedesktopverbindung", 6003, u"Liste der zuletzt verbundenen Computer",
           u"Die Remotedesktopverbindung speichert eine Liste der letzten Computer, zu denen Sie "
           u"eine Verbindung hergestellt haben.");
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(HKEY_CURRENT_USER,
                                                  u"Software\\Microsoft\\Terminal Server Client\\"
                                                  u"Default",
                                                  u"MRU", 0),
                   TTT_Unknown, 0);
}

TTCPMovieMakerMRU::TTCPMovieMakerMRU() : TTCPlugin(u"TTCPMovieMakerMRU") {
  String key;
  SetTexts(*this, u"Windows Movie Maker", 6004, u"Liste der zuletzt geöffneten Projekte",
           u"Der Windows Movie Maker speichert die zuletzt geöffneten oder gespeicherten "
           u"Projekte in einer Liste, um diese später schneller wieder öffnen zu können. Diese "
           u"Liste enthält die kompletten Pfade zu Ihren Movie Maker Projekten");
  // Asked before `key` is set, so this tests HKEY_CURRENT_USER itself; kept that way.
  Active = KeyExist(HKEY_CURRENT_USER, key, RO_None);
  key = u"Software\\Microsoft\\MM20\\Recent Document List";
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, key, u"Document", 0),
                   TTT_Unknown, 0);
}

void TCP_WindowsTools_Initialization() {
  TCPWordPad = new TTCPWordPad();
  TCPMSPaint = new TTCPMSPaint();
  TCPRegedit = new TTCPRegedit();
  TCPTermSrvClient = new TTCPTermSrvClient();
  TCPMovieMakerMRU = new TTCPMovieMakerMRU();
}

void TCP_WindowsTools_Finalization() {
  FreeAndNil(TCPWordPad);
  FreeAndNil(TCPMSPaint);
  FreeAndNil(TCPRegedit);
  FreeAndNil(TCPTermSrvClient);
  FreeAndNil(TCPMovieMakerMRU);
}

}  // namespace tc
