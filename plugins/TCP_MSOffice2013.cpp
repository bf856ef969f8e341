#include "plugins/TCP_MSOffice2013.h"

#include "engine/TC_Common.h"
#include "platform/helpers/Orviregistry.h"

namespace tc {

namespace {

const String kOffice = u"Software\\Microsoft\\Office\\";
const char16_t* const kVersions[] = {u"15.0", u"16.0"};
const char16_t* const kApps[] = {u"Word",      u"Excel", u"PowerPoint", u"Access",
                                 u"Publisher", u"Visio", u"OneNote"};
const char16_t* const kLists[] = {u"File MRU", u"Place MRU"};

TTCPMSOffice2013Recent* TCPMSOffice2013Recent = nullptr;

}  // namespace

String OfficeMRUPath(const String& data) {
  const size_t star = data.find(u'*');
  return star == String::npos ? data : data.substr(star + 1);
}

TTCPMSOffice2013Recent::TTCPMSOffice2013Recent() : TTCPlugin(u"TTCPMSOffice2013Recent") {
  Describe(rsTCPSection_Office, u"Microsoft Office 2013 bis 365", 2000,
           u"Listen der zuletzt verwendeten Dateien und Orte",
           u"Word, Excel, PowerPoint, Access, Publisher, Visio und OneNote ab Office 2013 "
           u"speichern die zuletzt von Ihnen geöffneten Dateien und Ordner, auch getrennt für "
           u"jedes angemeldete Microsoft-Konto. Diese Listen erscheinen beim Öffnen von "
           u"Dateien und sind für jeden sichtbar, der Office auf Ihrem Computer startet.");
  for (const char16_t* version : kVersions) {
    for (const char16_t* app : kApps) {
      const String appKey = kOffice + version + u"\\" + app + u"\\";
      StringList places{appKey};
      StringList accounts;
      EnumRegKeysEx(HKEY_CURRENT_USER, appKey + u"User MRU", accounts, RO_None);
      for (const String& account : accounts) places.push_back(appKey + u"User MRU\\" + account + u"\\");
      for (const String& place : places)
        for (const char16_t* list : kLists)
          AddTraceLocation(TLT_Registry_NumberedNames,
                           new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, place + list,
                                                          u"Item ", 0),
                           TTT_FileOrFolderName, FlagOf(TF_Deletable_Per_Item));
    }
  }
}

void TTCPMSOffice2013Recent::Scan() {
  const TScanTraceFoundEvent outer = OnScanTraceFound;
  if (outer) {
    OnScanTraceFound = [outer](TTCPlugin* sender, TTraceSourceType type,
                               const TTraceSourceData& source, TTraceTargetType target,
                               TTraceFlags flags, const String& data) {
      outer(sender, type, source, target, flags, OfficeMRUPath(data));
    };
  }
  TTCPlugin::Scan();
  OnScanTraceFound = outer;
}

void TCP_MSOffice2013_Initialization() { TCPMSOffice2013Recent = new TTCPMSOffice2013Recent(); }

void TCP_MSOffice2013_Finalization() { FreeAndNil(TCPMSOffice2013Recent); }

}  // namespace tc
