#include "plugins/TCP_Firefox.h"

#include "browsers/TC_BrowserFuncs.h"
#include "engine/TC_Common.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "plugins/FirefoxModernStores.h"
#include "plugins/MozillaCookieKeepList.h"
#include "plugins/MozillaPreviews.h"

namespace tc {

TFirefoxProfileList FirefoxProfiles;
bool FirefoxInstalled = false;

namespace {

const String rsTCPApp_Firefox = u"Mozilla Firefox";
const String rsCookieLinkFF = u"<br><br><a href=\"CookieFF\">Cookies auswählen...</a>";

// "cookies.txt": counted as read; the clean writes it anew from an object that never read it.
class TCookiesTxtStore : public TFirefoxStore {
 public:
  int Scan(TMozillaBrowser& p, TTCPlugin& plugin) override {
    if (!p.EnumCookies() && !p.CookieError().empty())
      AddNote(plugin, p.ProfileFolder() + u"cookies.txt: " + p.CookieError());
    PreviewCookies(plugin, p);
    return static_cast<int>(p.Cookies.size());
  }
  void Clean(TMozillaBrowser& p, TTCPlugin&) override { p.UpdateCookies(); }
};

// "history.dat", a Mork table; only a profile whose last scan found rows is cleaned.
class TMorkHistoryStore : public TFirefoxStore {
 public:
  int Scan(TMozillaBrowser& p, TTCPlugin& plugin) override {
    if (!p.EnumHistory()) return 0;
    PreviewHistory(plugin, p);
    return static_cast<int>(p.History.size());
  }
  void Clean(TMozillaBrowser& p, TTCPlugin&) override {
    if (!p.History.empty()) p.DeleteHistory();
  }
};

// "formhistory.dat", a Mork table.
class TMorkFormHistoryStore : public TFirefoxStore {
 public:
  int Scan(TMozillaBrowser& p, TTCPlugin& plugin) override {
    if (!p.EnumFormData()) return 0;
    PreviewFormData(plugin, p);
    return static_cast<int>(p.FormData.size());
  }
  void Clean(TMozillaBrowser& p, TTCPlugin&) override {
    if (!p.FormData.empty()) p.DeleteFormData();
  }
};

// "signons.txt": the clean marks nothing, so the file is written back whole.
class TSignonsTxtStore : public TFirefoxStore {
 public:
  int Scan(TMozillaBrowser& p, TTCPlugin& plugin) override {
    if (!p.EnumSavedPasswords()) {
      if (!p.PasswordError().empty())
        AddNote(plugin, p.ProfileFolder() + u"signons.txt: " + p.PasswordError());
      return 0;
    }
    if (!p.SavedPasswords.empty()) AddNote(plugin, u"a clean writes signons.txt back whole");
    PreviewSavedPasswords(plugin, p);
    return static_cast<int>(p.SavedPasswords.size());
  }
  void Clean(TMozillaBrowser& p, TTCPlugin& plugin) override {
    if (p.SavedPasswords.empty()) return;
    p.UpdateSavedPasswords();
    // Left by design, not by failure: the host reports them as kept.
    if (Plugins) Plugins->AddNotCleanedTrace(&plugin, static_cast<int>(p.SavedPasswords.size()));
  }
};

TTCPFirefoxCookies* TCPFirefoxCookies = nullptr;
TTCPFirefoxHistory* TCPFirefoxHistory = nullptr;
TTCPFirefoxFormData* TCPFirefoxFormData = nullptr;
TTCPFirefoxSavedPasswords* TCPFirefoxSavedPasswords = nullptr;
TTCPFirefoxCache* TCPFirefoxCache = nullptr;
TTCPFirefoxSessions* TCPFirefoxSessions = nullptr;
std::unique_ptr<TMozillaCookieKeepList> FirefoxKeepList;

TBrowserProfileList FreshFirefoxProfiles() {
  TBrowserProfileList list;
  GetFirefoxProfiles(list);
  return list;
}

}  // namespace

void AddNote(TTCPlugin& Plugin, const String& Text) {
  if (Plugin.Note.find(Text) != String::npos) return;
  Plugin.Note += (Plugin.Note.empty() ? u"" : u"; ") + Text;
}

TTCPFirefoxPlugin::TTCPFirefoxPlugin(const String& ClassName, const String& Caption,
                                     const String& Description)
    : TTCPlugin(ClassName) {
  Describe(rsTCPSection_Browser, rsTCPApp_Firefox, 0, Caption, Description);
  Active = FirefoxInstalled;
  DeactivateIfAbsent = false;
}

void TTCPFirefoxPlugin::AddStore(std::unique_ptr<TFirefoxStore> Store) {
  stores_.push_back(std::move(Store));
}

void TTCPFirefoxPlugin::ForEachProfile(const std::function<void(TMozillaBrowser&)>& Work) {
  for (auto& profile : FirefoxProfiles) Work(*profile);
}

void TTCPFirefoxPlugin::Scan() {
  TTCPlugin::Scan();
  Note.clear();
  ForEachProfile([this](TMozillaBrowser& profile) {
    for (auto& store : stores_) IncTraceCount(store->Scan(profile, *this));
  });
}

void TTCPFirefoxPlugin::Clean() {
  TTCPlugin::Clean();
  ForEachProfile([this](TMozillaBrowser& profile) {
    profile.ShredMethod = ShredMethod;
    profile.ShredRecurrence = ShredRecurrence;
    for (auto& store : stores_) store->Clean(profile, *this);
  });
}

TTCPFirefoxCookies::TTCPFirefoxCookies()
    : TTCPFirefoxPlugin(u"TTCPFirefoxCookies", u"Cookies",
                        u"Cookies sind kleine Textdateien, die Webseiten auf Ihrem Computer "
                        u"ablegen, um Sie beim nächsten Besuch wiederzuerkennen. Mozilla Firefox "
                        u"speichert sie in Ihrem Profil; anhand der Cookies lässt sich ablesen, "
                        u"welche Webseiten Sie besucht haben." +
                            rsCookieLinkFF) {
  AddStore(std::make_unique<TCookiesTxtStore>());
}

void TTCPFirefoxCookies::ForEachProfile(const std::function<void(TMozillaBrowser&)>& Work) {
  for (const auto& found : FreshFirefoxProfiles()) {
    TMozillaBrowser profile(found.Path, MT_Firefox);
    Work(profile);
  }
}

TTCPFirefoxHistory::TTCPFirefoxHistory()
    : TTCPFirefoxPlugin(u"TTCPFirefoxHistory", u"Chronik der zuletzt besuchten Webseiten",
                        u"Mozilla Firefox speichert alle von Ihnen besuchten Webseiten in einer "
                        u"Chronik. Die Chronik enthält alle von Ihnen eingegebenen "
                        u"Webseiten-Adressen. Anhand dieser Chronik kann nachvollzogen werden, "
                        u"welche Webseiten Sie besucht haben.") {
  AddStore(std::make_unique<TMorkHistoryStore>());
}

TTCPFirefoxFormData::TTCPFirefoxFormData()
    : TTCPFirefoxPlugin(u"TTCPFirefoxFormData", u"Gespeicherte Formulardaten",
                        u"Mozilla Firefox speichert die Eingaben, die Sie in Formulare auf "
                        u"Webseiten machen, und schlägt sie beim nächsten Ausfüllen wieder vor. "
                        u"Darunter können Namen, Adressen und Suchbegriffe sein, die Sie nicht "
                        u"preisgeben möchten.") {
  AddStore(std::make_unique<TMorkFormHistoryStore>());
}

TTCPFirefoxSavedPasswords::TTCPFirefoxSavedPasswords()
    : TTCPFirefoxPlugin(u"TTCPFirefoxSavedPasswords", u"Gespeicherte Passwörter",
                        u"Mozilla Firefox kann alle Passwörter speichern, die Sie auf "
                        u"anmeldepflichtigen Seiten eingeben. Beim erneuten Besuch einer solchen "
                        u"Seite werden Benutzername und Passwort automatisch eingesetzt.") {
  AddStore(std::make_unique<TSignonsTxtStore>());
}

void TCP_Firefox_Initialization() {
  String firefox, mozilla, netscape7;
  IsFirefoxMozillaNetscapeInstalled(firefox, mozilla, netscape7);
  FirefoxInstalled = !firefox.empty();
  if (FirefoxInstalled) {
    TBrowserProfileList found;
    GetFirefoxProfiles(found);
    for (const auto& p : found) FirefoxProfiles.push_back(std::make_unique<TMozillaBrowser>(p.Path, MT_Firefox));
    DisposeProfileList(found);
  }
  TCPFirefoxCookies = new TTCPFirefoxCookies();
  TCPFirefoxHistory = new TTCPFirefoxHistory();
  TCPFirefoxFormData = new TTCPFirefoxFormData();
  TCPFirefoxSavedPasswords = new TTCPFirefoxSavedPasswords();
  FirefoxKeepList = std::make_unique<TMozillaCookieKeepList>(
      u"firefox", rsTCPApp_Firefox, u"Cookies\\Firefox",
      u"the Firefox cookie clean empties cookies.txt whole; choices are stored for later",
      FreshFirefoxProfiles);
  RegisterCookieKeepList(FirefoxKeepList.get());
  TCPFirefoxCache = new TTCPFirefoxCache();
  TCPFirefoxSessions = new TTCPFirefoxSessions();
  AddModernFirefoxStores(*TCPFirefoxCookies, *TCPFirefoxHistory, *TCPFirefoxFormData,
                         *TCPFirefoxSavedPasswords, *FirefoxKeepList);
  // Firefox 3 and later keep cookies in cookies.sqlite, whose clean honours the list.
  for (const auto& p : FreshFirefoxProfiles())
    if (OrviFileExists(IncludeTrailingPathDelimiter(p.Path) + u"cookies.sqlite"))
      FirefoxKeepList->SetWhyIgnored(u"");
}

void TCP_Firefox_Finalization() {
  UnregisterCookieKeepList(FirefoxKeepList.get());
  FirefoxKeepList.reset();
  FreeAndNil(TCPFirefoxSessions);
  FreeAndNil(TCPFirefoxCache);
  FreeAndNil(TCPFirefoxSavedPasswords);
  FreeAndNil(TCPFirefoxFormData);
  FreeAndNil(TCPFirefoxHistory);
  FreeAndNil(TCPFirefoxCookies);
  FirefoxProfiles.clear();
  FirefoxInstalled = false;
}

}  // namespace tc
