#include "plugins/TCP_Netscape7.h"

#include <memory>

#include "browsers/TC_BrowserFuncs.h"
#include "plugins/MozillaCookieKeepList.h"

namespace tc {

TNetscapeEdition Netscape7;

namespace {

const String rsTCPApp_Netscape7 = u"Netscape Navigator 6 & 7";

TBrowserProfileList Netscape7Profiles;
std::vector<std::unique_ptr<TTCPlugin>> Netscape7Plugins;
std::unique_ptr<TMozillaCookieKeepList> Netscape7KeepList;

}  // namespace

TTCPNetscapecache::TTCPNetscapecache(const String& Folder, const String& Name)
    : TNetscapeCachePlugin(
          u"TTCPNetscapecache", Netscape7, Folder, Name, u"Temporäre Internetdateien",
          u"Temporäre Internet-Dateien in Profil \"%s\"",
          u"Der Netscape Navigator legt alle Seiten, Bilder und Dateien, die Sie im Internet "
          u"aufrufen, in einem Zwischenspeicher auf Ihrer Festplatte ab. Aus diesen Dateien lässt "
          u"sich ablesen, welche Webseiten Sie besucht haben.") {}

TTCPNetscapeCookies::TTCPNetscapeCookies(const String& Folder, const String& Name)
    : TNetscapeCookiesPlugin(
          u"TTCPNetscapeCookies", Netscape7, Folder, Name, u"Cookies",
          u"Cookies in Profil \"%s\"",
          u"Cookies sind kleine Textdateien, die Webseiten auf Ihrem Computer ablegen, um Sie "
          u"beim nächsten Besuch wiederzuerkennen. Der Netscape Navigator speichert sie in Ihrem "
          u"Profil; anhand der Cookies lässt sich ablesen, welche Webseiten Sie besucht "
          u"haben.<br><br><a href=\"CookieNN7\">Cookies auswählen...</a>") {}

TTCPNetscapeHistory::TTCPNetscapeHistory(const String& Folder, const String& Name)
    : TNetscapeHistoryPlugin(
          u"TTCPNetscapeHistory", Netscape7, Folder, Name,
          u"Verlauf der zuletzt besuchten Webseiten",
          u"Verlauf der zuletzt besuchten Webseiten in Profil \"%s\"",
          u"Der Netscape Navigator speichert alle von Ihnen besuchten Webseiten in einem Verlauf. "
          u"Anhand dieses Verlaufs kann nachvollzogen werden, welche Webseiten Sie besucht "
          u"haben.") {}

TTCPNetscapeFormdata::TTCPNetscapeFormdata(const String& Folder, const String& Name)
    : TNetscapeFormdataPlugin(
          u"TTCPNetscapeFormdata", Netscape7, Folder, Name, u"Gespeicherte Formulardaten",
          u"Gespeicherte Formulardaten in Profil \"%s\"",
          u"Der Netscape Navigator speichert die Eingaben, die Sie in Formulare auf Webseiten "
          u"machen, und schlägt sie beim nächsten Ausfüllen wieder vor. Darunter können Namen, "
          u"Adressen und andere persönliche Angaben sein.") {}

TTCPNetscapePasswords::TTCPNetscapePasswords(const String& Folder, const String& Name)
    : TNetscapePasswordsPlugin(
          u"TTCPNetscapePasswords", Netscape7, Folder, Name, u"Gespeicherte Kennwörter",
          u"Gespeicherte Kennwörter in Profil \"%s\"",
          u"Der Netscape Navigator kann alle Kennwörter speichern, die Sie auf "
          u"anmeldepflichtigen Seiten eingeben. Beim erneuten Besuch einer solchen Seite wird "
          u"automatisch die korrekte Kombination von Benutzername und Kennwort "
          u"vorgeschlagen.") {}

void TCP_Netscape7_Initialization() {
  String firefox, mozilla, netscape7;
  IsFirefoxMozillaNetscapeInstalled(firefox, mozilla, netscape7);
  GetNetscape_MozillaProfiles(Netscape7Profiles);
  Netscape7 = {rsTCPApp_Netscape7, u"Cookies\\Netscape7", !netscape7.empty(),
               Netscape7Profiles.size()};
  // Without a profile the five plug-ins still exist, with no folder.
  const TBrowserProfileList profiles =
      Netscape7Profiles.empty() ? TBrowserProfileList{{}} : Netscape7Profiles;
  for (const auto& p : profiles) {
    Netscape7Plugins.push_back(std::make_unique<TTCPNetscapecache>(p.Path, p.Name));
    Netscape7Plugins.push_back(std::make_unique<TTCPNetscapeCookies>(p.Path, p.Name));
    Netscape7Plugins.push_back(std::make_unique<TTCPNetscapeHistory>(p.Path, p.Name));
    Netscape7Plugins.push_back(std::make_unique<TTCPNetscapeFormdata>(p.Path, p.Name));
    Netscape7Plugins.push_back(std::make_unique<TTCPNetscapePasswords>(p.Path, p.Name));
  }
  Netscape7KeepList = std::make_unique<TMozillaCookieKeepList>(
      u"netscape7", rsTCPApp_Netscape7, u"Cookies\\Netscape7",
      u"the Netscape 7 cookie clean keeps every cookie; choices are stored for later",
      [] { return Netscape7Profiles; });
  RegisterCookieKeepList(Netscape7KeepList.get());
}

void TCP_Netscape7_Finalization() {
  UnregisterCookieKeepList(Netscape7KeepList.get());
  Netscape7KeepList.reset();
  while (!Netscape7Plugins.empty()) Netscape7Plugins.pop_back();
  DisposeProfileList(Netscape7Profiles);
  Netscape7 = {};
}

}  // namespace tc
