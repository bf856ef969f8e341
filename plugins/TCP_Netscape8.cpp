#include "plugins/TCP_Netscape8.h"

#include <memory>

#include "browsers/TC_BrowserFuncs.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "plugins/MozillaCookieKeepList.h"

namespace tc {

TNetscapeEdition Netscape8;

namespace {

const String rsTCPApp_Netscape8 = u"Netscape Navigator 8";

TBrowserProfileList Netscape8Profiles;
std::vector<std::unique_ptr<TTCPlugin>> Netscape8Plugins;
std::unique_ptr<TMozillaCookieKeepList> Netscape8KeepList;

}  // namespace

TTCPNetscape8cache::TTCPNetscape8cache(const String& Folder, const String& Name)
    : TNetscapeCachePlugin(
          u"TTCPNetscape8cache", Netscape8, Folder, Name, u"Temporäre Internetdateien",
          u"Temporäre Internetdateien in Profil \"%s\"",
          u"Der Netscape Navigator 8 legt alle Seiten, Bilder und Dateien, die Sie im Internet "
          u"aufrufen, in einem Zwischenspeicher auf Ihrer Festplatte ab. Aus diesen Dateien lässt "
          u"sich ablesen, welche Webseiten Sie besucht haben.") {}

TTCPNetscape8Cookies::TTCPNetscape8Cookies(const String& Folder, const String& Name)
    : TNetscapeCookiesPlugin(
          u"TTCPNetscape8Cookies", Netscape8, Folder, Name, u"Cookies",
          u"Cookies in Profil \"%s\"",
          u"Cookies sind kleine Textdateien, die Webseiten auf Ihrem Computer ablegen, um Sie "
          u"beim nächsten Besuch wiederzuerkennen. Der Netscape Navigator 8 speichert sie in "
          u"Ihrem Profil; anhand der Cookies lässt sich ablesen, welche Webseiten Sie besucht "
          u"haben.<br><br><a href=\"CookieNN8\">Cookies auswählen...</a>") {}

TTCPNetscape8History::TTCPNetscape8History(const String& Folder, const String& Name)
    : TNetscapeHistoryPlugin(
          u"TTCPNetscape8History", Netscape8, Folder, Name,
          u"Chronik der zuletzt besuchten Webseiten",
          u"Chronik der zuletzt besuchten Webseiten von Profil \"%s\"",
          u"Der Netscape Navigator 8 speichert alle von Ihnen besuchten Webseiten in einer "
          u"Chronik. Anhand dieser Chronik kann nachvollzogen werden, welche Webseiten Sie "
          u"besucht haben.") {
  RestartWhenLocked = true;
}

TTCPNetscape8Formdata::TTCPNetscape8Formdata(const String& Folder, const String& Name)
    : TNetscapeProfilePlugin(
          u"TTCPNetscape8Formdata", Netscape8, Folder, Name, u"Gespeicherte Formulardaten",
          u"Gespeicherte Formulardaten von Profil \"%s\"",
          u"Der Netscape Navigator 8 speichert die Eingaben, die Sie in Formulare auf Webseiten "
          u"machen, als Datenkarten und setzt sie beim nächsten Ausfüllen wieder ein. Darunter "
          u"können Namen, Adressen und andere persönliche Angaben sein.") {}

String TTCPNetscape8Formdata::DataCards() const {
  return IncludeTrailingPathDelimiter(Folder) + u"datacards\\";
}

void TTCPNetscape8Formdata::Scan() {
  TTCPlugin::Scan();
  StringList names;
  EnumFiles(DataCards(), names, u"*.*");
  for (const auto& name : names) {
    String text;
    if (LoadFileIntoString(DataCards() + name, text)) IncTraceCount(ParamXCount(text, u'\n'));
  }
}

void TTCPNetscape8Formdata::Clean() {
  TTCPlugin::Clean();
  StringList names;
  EnumFiles(DataCards(), names, u"*.*");
  for (const auto& name : names) SecureDeleteFile(DataCards() + name);
}

TTCPNetscape8Passwords::TTCPNetscape8Passwords(const String& Folder, const String& Name)
    : TNetscapePasswordsPlugin(
          u"TTCPNetscape8Passwords", Netscape8, Folder, Name, u"Gespeicherte Kennwörter",
          u"Gespeicherte Kennwörter von Profil \"%s\"",
          u"Der Netscape Navigator 8 kann alle Kennwörter speichern, die Sie auf "
          u"anmeldepflichtigen Seiten eingeben. Beim erneuten Besuch einer solchen Seite wird "
          u"automatisch die korrekte Kombination von Benutzername und Kennwort "
          u"vorgeschlagen.") {}

void TCP_Netscape8_Initialization() {
  const bool installed = IsNetscape8Installen();
  if (installed) GetNetscape8Profiles(Netscape8Profiles);
  Netscape8 = {rsTCPApp_Netscape8, u"Cookies\\Netscape8", installed, Netscape8Profiles.size()};
  // Without a profile the five plug-ins still exist, with no folder.
  const TBrowserProfileList profiles =
      Netscape8Profiles.empty() ? TBrowserProfileList{{}} : Netscape8Profiles;
  for (const auto& p : profiles) {
    Netscape8Plugins.push_back(std::make_unique<TTCPNetscape8cache>(p.Path, p.Name));
    Netscape8Plugins.push_back(std::make_unique<TTCPNetscape8Cookies>(p.Path, p.Name));
    Netscape8Plugins.push_back(std::make_unique<TTCPNetscape8History>(p.Path, p.Name));
    Netscape8Plugins.push_back(std::make_unique<TTCPNetscape8Formdata>(p.Path, p.Name));
    Netscape8Plugins.push_back(std::make_unique<TTCPNetscape8Passwords>(p.Path, p.Name));
  }
  Netscape8KeepList = std::make_unique<TMozillaCookieKeepList>(
      u"netscape8", rsTCPApp_Netscape8, u"Cookies\\Netscape8",
      u"the Netscape 8 cookie clean keeps every cookie; choices are stored for later",
      [] { return Netscape8Profiles; });
  RegisterCookieKeepList(Netscape8KeepList.get());
}

void TCP_Netscape8_Finalization() {
  UnregisterCookieKeepList(Netscape8KeepList.get());
  Netscape8KeepList.reset();
  while (!Netscape8Plugins.empty()) Netscape8Plugins.pop_back();
  DisposeProfileList(Netscape8Profiles);
  Netscape8 = {};
}

}  // namespace tc
