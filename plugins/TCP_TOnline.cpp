#include "plugins/TCP_TOnline.h"

#include "browsers/TC_BrowserFuncs.h"
#include "browsers/TC_InternetExplorer.h"
#include "engine/TC_Common.h"
#include "plugins/TCP_InternetExplorer.h"

namespace tc {

namespace {

const String rsTCPApp_TOnline = u"T-Online Software 5";

TTCPTOnlineCache* TCPTOnlineCache = nullptr;
TTCPTOnlineCookies* TCPTOnlineCookies = nullptr;

}  // namespace

TTCPTOnlineCache::TTCPTOnlineCache() : TTCPlugin(u"TTCPTOnlineCache") {
  Describe(rsTCPSection_Browser, rsTCPApp_TOnline, 13000, u"Temporäre Internetdateien",
           u"Der T-Online Browser speichert Grafiken und Texte von besuchten Webseiten auf dem "
           u"lokalen Computer. Daran lässt sich ablesen, welche Seiten Sie aufgerufen haben.");
  Active = IsTOnline50Installed();
}

void TTCPTOnlineCache::Scan() {
  TTCPlugin::Scan();
  IncTraceCount(
      EnumIECacheFiles(false, false, false, [this](auto& e) { PreviewCacheEntry(*this, e); }));
}

void TTCPTOnlineCache::Clean() {
  TTCPlugin::Clean();
  EnumIECacheFiles(true, true, false);
}

TTCPTOnlineCookies::TTCPTOnlineCookies() : TTCPlugin(u"TTCPTOnlineCookies") {
  Describe(rsTCPSection_Browser, rsTCPApp_TOnline, 13000, u"Cookies",
           u"Webseiten legen kleine Textdateien, sogenannte Cookies, auf Ihrem Computer ab. Der "
           u"T-Online Browser speichert sie auf Ihrer Festplatte, und sie verraten, welche "
           u"Webseiten Sie besucht haben.");
  Active = IsTOnline50Installed();
}

void TTCPTOnlineCookies::Scan() {
  TTCPlugin::Scan();
  IncTraceCount(
      EnumIECacheFiles(true, false, false, [this](auto& e) { PreviewCacheEntry(*this, e); }));
}

void TTCPTOnlineCookies::Clean() {
  TTCPlugin::Clean();
  EnumIECacheFiles(true, true, false);
}

void TCP_TOnline_Initialization() {
  TCPTOnlineCache = new TTCPTOnlineCache();
  TCPTOnlineCookies = new TTCPTOnlineCookies();
}

void TCP_TOnline_Finalization() {
  FreeAndNil(TCPTOnlineCookies);
  FreeAndNil(TCPTOnlineCache);
}

}  // namespace tc
