#include "plugins/FirefoxModernStores.h"

#include "browsers/FirefoxStores.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {

namespace {

const String rsFirefoxRunning =
    u"close Mozilla Firefox first: it is running and holds its profile; its databases were not "
    u"changed";

using ScanFn = bool (*)(const String&, TBrowserTraces&, String&);
using CleanFn = std::function<bool(TMozillaBrowser&, TTCPlugin&, String&)>;

// Reports the traces one by one, as the plug-in's own scan would.
int Report(TTCPlugin& plugin, const TBrowserTraces& traces) {
  if (plugin.OnScanTraceFound)
    for (const auto& t : traces) {
      TTraceSourceData source;
      source.FileName = t.File;
      plugin.OnScanTraceFound(&plugin, TST_FileSystem_File, source, t.IsUrl ? TTT_URL : TTT_Unknown,
                              0, t.Text);
    }
  return static_cast<int>(traces.size());
}

// A store of a file of Firefox 3 and later; its clean waits for Firefox to be closed.
class TModernStore : public TFirefoxStore {
 public:
  // `database`: the file that needs SQLite, "" for a store of plain files.
  TModernStore(ScanFn scan, CleanFn clean, String database)
      : scan_(scan), clean_(std::move(clean)), database_(std::move(database)) {}
  int Scan(TMozillaBrowser& p, TTCPlugin& plugin) override {
    String why, error;
    if (!database_.empty() && !BrowserDatabasesAvailable(why)) {
      // Said only where the profile has the database: older profiles lack nothing.
      if (OrviFileExists(p.ProfileFolder() + database_)) AddNote(plugin, u"not available: " + why);
      return 0;
    }
    TBrowserTraces traces;
    if (!scan_(p.ProfileFolder(), traces, error)) AddNote(plugin, error);
    return Report(plugin, traces);
  }
  void Clean(TMozillaBrowser& p, TTCPlugin& plugin) override {
    String why, error;
    if (!database_.empty() && !BrowserDatabasesAvailable(why)) return;
    if (IsFirefoxProfileLocked(p.ProfileFolder())) return AddNote(plugin, rsFirefoxRunning);
    if (!clean_(p, plugin, error)) AddNote(plugin, error);
  }

 private:
  ScanFn scan_;
  CleanFn clean_;
  String database_;
};

std::unique_ptr<TFirefoxStore> Store(ScanFn scan, CleanFn clean, String database = {}) {
  return std::make_unique<TModernStore>(scan, std::move(clean), std::move(database));
}

bool ScanCache(const String& profile, TBrowserTraces& traces, String&) {
  ScanFirefoxCache(profile, traces);
  return true;
}

bool ScanSessions(const String& profile, TBrowserTraces& traces, String&) {
  ScanFirefoxSessions(profile, traces);
  return true;
}

bool Shred(TTCPlugin& plugin, const TBrowserTraces& traces) {
  StringList files;
  for (const auto& t : traces) files.push_back(t.File);
  if (!files.empty()) plugin.SecureDeleteFiles(files);
  return true;
}

// The keep-list names a choice after the profile folder as profiles.ini gives it.
String KeepName(const TMozillaBrowser& p, const String& host) {
  return ExcludeTrailingPathDelimiter(p.ProfileFolder()) + u"-" + host;
}

}  // namespace

TTCPFirefoxCache::TTCPFirefoxCache()
    : TTCPFirefoxPlugin(u"TTCPFirefoxCache", u"Temporäre Internetdateien",
                        u"Mozilla Firefox legt Kopien der besuchten Webseiten, Bilder und Skripte "
                        u"in einem Zwischenspeicher ab, damit sie beim nächsten Besuch schneller "
                        u"geladen werden. Daraus lässt sich ablesen, welche Webseiten Sie besucht "
                        u"haben.") {
  AddStore(Store(ScanCache, [](TMozillaBrowser& p, TTCPlugin& plugin, String&) {
    TBrowserTraces files;
    for (const String& f : FilesBelow(FirefoxCacheFolder(p.ProfileFolder()))) files.push_back({f, f});
    return Shred(plugin, files);
  }));
}

TTCPFirefoxSessions::TTCPFirefoxSessions()
    : TTCPFirefoxPlugin(u"TTCPFirefoxSessions", u"Zuletzt geöffnete Tabs und Fenster",
                        u"Mozilla Firefox merkt sich die geöffneten Fenster und Tabs, um sie beim "
                        u"nächsten Start wiederherzustellen. Daraus lässt sich ablesen, welche "
                        u"Webseiten Sie zuletzt geöffnet hatten.") {
  AddStore(Store(ScanSessions, [](TMozillaBrowser& p, TTCPlugin& plugin, String&) {
    TBrowserTraces traces;
    ScanFirefoxSessions(p.ProfileFolder(), traces);
    return Shred(plugin, traces);
  }));
}

void AddModernFirefoxStores(TTCPFirefoxPlugin& Cookies, TTCPFirefoxPlugin& History,
                            TTCPFirefoxPlugin& FormData, TTCPFirefoxPlugin& Passwords,
                            TMozillaCookieKeepList& KeepList) {
  History.AddStore(Store(ScanFirefoxPlaces, [](TMozillaBrowser& p, TTCPlugin&, String& e) {
    return CleanFirefoxPlaces(p.ProfileFolder(), e);
  }, u"places.sqlite"));
  Cookies.AddStore(Store(ScanFirefoxCookies, [](TMozillaBrowser& p, TTCPlugin& plugin, String& e) {
    int kept = 0;
    auto keep = [&p](const String& host) {
      return !GetProductRegSetting(u"Cookies\\Firefox", KeepName(p, host), true, 0);
    };
    bool ok = CleanFirefoxCookies(p.ProfileFolder(), keep, kept, e);
    if (kept > 0 && Plugins) Plugins->AddNotCleanedTrace(&plugin, kept);
    return ok;
  }, u"cookies.sqlite"));
  FormData.AddStore(Store(ScanFirefoxFormHistory, [](TMozillaBrowser& p, TTCPlugin&, String& e) {
    return CleanFirefoxFormHistory(p.ProfileFolder(), e);
  }, u"formhistory.sqlite"));
  Passwords.AddStore(Store(ScanFirefoxLogins, [](TMozillaBrowser& p, TTCPlugin&, String& e) {
    return CleanFirefoxLogins(p.ProfileFolder(), e);
  }));
  KeepList.AddHostReader([](const TBrowserProfile& profile, std::vector<TCookieHostInfo>& hosts,
                            String& error) {
    TBrowserTraces traces;
    if (!ScanFirefoxCookies(IncludeTrailingPathDelimiter(profile.Path), traces, error)) return false;
    for (const auto& t : traces)
      TMozillaCookieKeepList::CountHost(hosts, t.Text.substr(0, t.Text.find(u" | ")));
    return true;
  });
}

}  // namespace tc
