#include "plugins/TCP_Chromium.h"

#include "browsers/BrowserDatabase.h"
#include "engine/TC_Common.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "plugins/MozillaCookieKeepList.h"

namespace tc {

namespace {

String Named(const String& text, const TChromiumBrowser& b) { return Replace(text, u"%s", b.Caption); }

std::vector<std::unique_ptr<TTCPlugin>> ChromiumPlugins;
std::vector<std::unique_ptr<TMozillaCookieKeepList>> ChromiumKeepLists;

// The hosts of one profile's cookie databases, for the keep-list.
bool CookieHosts(const TBrowserProfile& Profile, std::vector<TCookieHostInfo>& Hosts,
                 String& Error) {
  TChromiumTraces traces;
  if (!ScanChromiumCookies(Profile.Path, traces, Error)) return false;
  for (const auto& t : traces) {
    const size_t bar = t.Text.find(u" | ");
    TMozillaCookieKeepList::CountHost(Hosts, t.Text.substr(0, bar));
  }
  return true;
}

}  // namespace

String ChromiumKeepSection(const TChromiumBrowser& Browser) { return u"Cookies\\" + Browser.ID; }

TTCPChromiumPlugin::TTCPChromiumPlugin(const TChromiumBrowser& Browser, const String& Store,
                                       int IconId, const String& Caption,
                                       const String& Description, bool NeedsDatabases)
    : TTCPlugin(u"TTCP" + Browser.ID + Store), Browser(Browser), needsDatabases_(NeedsDatabases) {
  Describe(rsTCPSection_Browser, Browser.Caption, IconId, Caption, Named(Description, Browser));
  DeactivateIfAbsent = false;
  Active = !GetChromiumProfiles(Browser).empty();
  String why;  // the scan says why, should the host switch it on
  if (NeedsDatabases && !BrowserDatabasesAvailable(why)) Active = false;
}

void TTCPChromiumPlugin::Tell(const String& Text) {
  if (Note.find(Text) != String::npos) return;
  Note += (Note.empty() ? u"" : u"; ") + Text;
}

void TTCPChromiumPlugin::Scan() {
  TraceCount = 0;
  Note.clear();
  String why;
  if (needsDatabases_ && !BrowserDatabasesAvailable(why)) {
    Tell(u"not available: " + why);
    return;
  }
  for (const auto& profile : GetChromiumProfiles(Browser)) {
    TChromiumTraces traces;
    String error;
    if (!ScanProfile(profile, traces, error)) Tell(error);
    for (const auto& t : traces) {
      TTraceSourceData source;
      source.FileName = t.File;
      ReportTrace(TST_FileSystem_File, source, t.IsUrl ? TTT_URL : TTT_Unknown, 0, t.Text);
    }
    IncTraceCount(static_cast<int>(traces.size()));
  }
}

void TTCPChromiumPlugin::Clean() {
  Note.clear();
  String why;
  if (needsDatabases_ && !BrowserDatabasesAvailable(why)) {
    Tell(u"not available: " + why);
    return;
  }
  if (IsChromiumRunning(Browser)) {
    Tell(u"close " + Browser.Caption + u" first: it is running and holds its profile; nothing "
         u"was changed");
    return;
  }
  for (const auto& profile : GetChromiumProfiles(Browser)) {
    String error;
    if (!CleanProfile(profile, error)) Tell(error);
  }
  TraceCount = 0;
}

TTCPChromiumHistory::TTCPChromiumHistory(const TChromiumBrowser& B)
    : TTCPChromiumPlugin(B, u"History", 11000, u"Chronik der zuletzt besuchten Webseiten",
                         u"%s speichert alle von Ihnen besuchten Webseiten, Ihre Downloads und "
                         u"die Suchbegriffe, die Sie eingegeben haben, in einer Chronik. Anhand "
                         u"dieser Chronik kann nachvollzogen werden, welche Webseiten Sie "
                         u"besucht haben. Lesezeichen bleiben erhalten.",
                         true) {}

bool TTCPChromiumHistory::ScanProfile(const TBrowserProfile& P, TChromiumTraces& T, String& E) {
  return ScanChromiumHistory(P.Path, T, E);
}

bool TTCPChromiumHistory::CleanProfile(const TBrowserProfile& P, String& E) {
  return CleanChromiumHistory(P.Path, [this](const String& f) { SecureDeleteFile(f); }, E);
}

TTCPChromiumCookies::TTCPChromiumCookies(const TChromiumBrowser& B)
    : TTCPChromiumPlugin(B, u"Cookies", 11001, u"Cookies",
                         u"Cookies sind kleine Textdateien, die Webseiten auf Ihrem Computer "
                         u"ablegen, um Sie beim nächsten Besuch wiederzuerkennen. %s speichert "
                         u"sie in Ihrem Profil; anhand der Cookies lässt sich ablesen, welche "
                         u"Webseiten Sie besucht haben.<br><br><a href=\"Cookie" + B.ID +
                             u"\">Cookies auswählen...</a>",
                         true) {}

void TTCPChromiumCookies::Clean() {
  kept_ = 0;
  TTCPChromiumPlugin::Clean();
  if (kept_ > 0 && Plugins) Plugins->AddNotCleanedTrace(this, kept_);
}

bool TTCPChromiumCookies::ScanProfile(const TBrowserProfile& P, TChromiumTraces& T, String& E) {
  return ScanChromiumCookies(P.Path, T, E);
}

bool TTCPChromiumCookies::CleanProfile(const TBrowserProfile& P, String& E) {
  const String section = ChromiumKeepSection(Browser);
  auto keep = [&](const String& host) {
    return !GetProductRegSetting(section, P.Path + u"-" + host, true, 0);
  };
  return CleanChromiumCookies(P.Path, keep, kept_, E);
}

TTCPChromiumFormData::TTCPChromiumFormData(const TChromiumBrowser& B)
    : TTCPChromiumPlugin(B, u"FormData", 11002, u"Gespeicherte Formulardaten",
                         u"%s speichert die Eingaben, die Sie in Formulare auf Webseiten machen, "
                         u"und schlägt sie beim nächsten Ausfüllen wieder vor. Darunter können "
                         u"Namen, Adressen und Suchbegriffe sein, die Sie nicht preisgeben "
                         u"möchten.",
                         true) {}

bool TTCPChromiumFormData::ScanProfile(const TBrowserProfile& P, TChromiumTraces& T, String& E) {
  return ScanChromiumFormData(P.Path, T, E);
}

bool TTCPChromiumFormData::CleanProfile(const TBrowserProfile& P, String& E) {
  return CleanChromiumFormData(P.Path, E);
}

TTCPChromiumCache::TTCPChromiumCache(const TChromiumBrowser& B)
    : TTCPChromiumPlugin(B, u"Cache", 11003, u"Temporäre Internetdateien",
                         u"%s legt Kopien der besuchten Webseiten, Bilder und Skripte in einem "
                         u"Zwischenspeicher ab, damit sie beim nächsten Besuch schneller "
                         u"geladen werden. Daraus lässt sich ablesen, welche Webseiten Sie "
                         u"besucht haben.",
                         false) {}

bool TTCPChromiumCache::ScanProfile(const TBrowserProfile& P, TChromiumTraces& T, String&) {
  ScanChromiumCache(P.Path, T);
  return true;
}

bool TTCPChromiumCache::CleanProfile(const TBrowserProfile& P, String&) {
  SecureDeleteFiles(ChromiumCacheFiles(P.Path));
  return true;
}

TTCPChromiumSessions::TTCPChromiumSessions(const TChromiumBrowser& B)
    : TTCPChromiumPlugin(B, u"Sessions", 11004, u"Zuletzt geöffnete Tabs und Fenster",
                         u"%s merkt sich die geöffneten Fenster und Tabs, um sie beim nächsten "
                         u"Start wiederherzustellen. Daraus lässt sich ablesen, welche Webseiten "
                         u"Sie zuletzt geöffnet hatten.",
                         false) {}

bool TTCPChromiumSessions::ScanProfile(const TBrowserProfile& P, TChromiumTraces& T, String&) {
  ScanChromiumSessions(P.Path, T);
  return true;
}

bool TTCPChromiumSessions::CleanProfile(const TBrowserProfile& P, String&) {
  TChromiumTraces traces;
  ScanChromiumSessions(P.Path, traces);
  StringList files;
  for (const auto& t : traces) files.push_back(t.File);
  SecureDeleteFiles(files);
  return true;
}

TTCPChromiumPasswords::TTCPChromiumPasswords(const TChromiumBrowser& B)
    : TTCPChromiumPlugin(B, u"Passwords", 11005, u"Gespeicherte Passwörter",
                         u"%s kann alle Passwörter speichern, die Sie auf anmeldepflichtigen "
                         u"Seiten eingeben. Beim erneuten Besuch einer solchen Seite werden "
                         u"Benutzername und Passwort automatisch eingesetzt.",
                         true) {
  Active = false;
}

bool TTCPChromiumPasswords::ScanProfile(const TBrowserProfile& P, TChromiumTraces& T, String& E) {
  return ScanChromiumPasswords(P.Path, T, E);
}

bool TTCPChromiumPasswords::CleanProfile(const TBrowserProfile& P, String& E) {
  return CleanChromiumPasswords(P.Path, E);
}

void TCP_Chromium_Initialization() {
  for (const auto& b : ChromiumBrowsers()) {
    ChromiumPlugins.push_back(std::make_unique<TTCPChromiumHistory>(b));
    ChromiumPlugins.push_back(std::make_unique<TTCPChromiumCookies>(b));
    ChromiumPlugins.push_back(std::make_unique<TTCPChromiumFormData>(b));
    ChromiumPlugins.push_back(std::make_unique<TTCPChromiumCache>(b));
    ChromiumPlugins.push_back(std::make_unique<TTCPChromiumSessions>(b));
    ChromiumPlugins.push_back(std::make_unique<TTCPChromiumPasswords>(b));
    auto keep = std::make_unique<TMozillaCookieKeepList>(
        b.KeepListName, b.Caption, ChromiumKeepSection(b), u"",
        [&b] { return GetChromiumProfiles(b); });
    keep->AddHostReader(CookieHosts);
    RegisterCookieKeepList(keep.get());
    ChromiumKeepLists.push_back(std::move(keep));
  }
}

void TCP_Chromium_Finalization() {
  for (auto& k : ChromiumKeepLists) UnregisterCookieKeepList(k.get());
  ChromiumKeepLists.clear();
  while (!ChromiumPlugins.empty()) ChromiumPlugins.pop_back();  // last made, first freed
}

}  // namespace tc
