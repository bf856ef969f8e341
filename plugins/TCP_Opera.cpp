#include "plugins/TCP_Opera.h"

#include <memory>

#include "browsers/TC_BrowserFuncs.h"
#include "browsers/TC_OperaBrowser.h"
#include "engine/CookieKeepLists.h"
#include "engine/TC_Common.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/Platform.h"

namespace tc {

namespace {

const String rsTCPApp_Opera = u"Opera";
constexpr int kOperaIcon = 12000;

std::vector<std::unique_ptr<TOperaProfilePlugin>> OperaPlugins;

// A trace held in one of the profile's files.
TTraceSourceData InFile(const String& file) {
  TTraceSourceData source;
  source.FileName = file;
  return source;
}

// The cookie keep-list of every Opera profile, for the host's cookie commands.
class OperaKeepList : public ICookieKeepList {
 public:
  String Browser() const override { return u"opera"; }
  String Caption() const override { return rsTCPApp_Opera; }
  bool HonoursKeepList(String&) const override { return true; }

  bool Hosts(std::vector<TCookieHostInfo>& hosts, String& error) override {
    hosts.clear();
    for (const TTCPOperaCookies* p : CookiePlugins()) {
      TOperaBrowser browser(p->ProfileFolder);
      try {
        browser.EnumCookies();
      } catch (const std::exception& e) {
        error = FromUtf8(e.what());
        return false;
      }
      if (!browser.Refusal.empty()) {
        error = browser.Refusal;
        return false;
      }
      for (const auto& group : browser.CookieHosts) {
        const bool deletable = GetProductRegSetting(
            kOperaKeepSection, OperaKeepName(p->ProfileName, group->Host), true, 0);
        hosts.push_back({group->Host, CookiePlugins().size() > 1 ? p->ProfileName : String(),
                         static_cast<int32_t>(group->Entries.size()), !deletable});
      }
    }
    return true;
  }

  uint32_t SetKept(const String& host, bool kept) override {
    std::vector<const TTCPOperaCookies*> having;
    for (const TTCPOperaCookies* p : CookiePlugins()) {
      TOperaBrowser browser(p->ProfileFolder);
      try {
        browser.EnumCookies();
      } catch (const std::exception&) {
        continue;
      }
      for (const auto& group : browser.CookieHosts)
        if (group->Host == host) having.push_back(p);
    }
    if (having.empty()) having = CookiePlugins();
    for (const TTCPOperaCookies* p : having) {
      uint32_t rc = Services().ProductSettings->WriteBool(
          kOperaKeepSection, OperaKeepName(p->ProfileName, host), !kept);
      if (rc != ERROR_SUCCESS) return rc;
    }
    return ERROR_SUCCESS;
  }

 private:
  static std::vector<const TTCPOperaCookies*> CookiePlugins() {
    std::vector<const TTCPOperaCookies*> out;
    for (const auto& p : OperaPlugins)
      if (auto* cookies = dynamic_cast<const TTCPOperaCookies*>(p.get())) out.push_back(cookies);
    return out;
  }
};

OperaKeepList KeepList;

}  // namespace

TOperaProfilePlugin::TOperaProfilePlugin(const String& className, String folder, String name)
    : TTCPlugin(className), ProfileFolder(std::move(folder)), ProfileName(std::move(name)) {}

TTCPOperaCache::TTCPOperaCache(const String& Folder, const String& Name)
    : TOperaProfilePlugin(u"TTCPOperaCache", Folder, Name) {
  Describe(rsTCPSection_Browser, rsTCPApp_Opera, kOperaIcon, u"Temporäre Internetdateien",
           u"Opera legt Bilder, Texte und andere Inhalte der besuchten Webseiten in einem "
           u"Zwischenspeicher auf der Festplatte ab. Daran lässt sich ablesen, welche Webseiten "
           u"Sie besucht haben.");
  Active = IsOperaInstalled();
  // Opera up to 9 keeps its cache in the profile, later versions in the local folder.
  AddTraceLocation(TLT_FileSystem_Files,
                   new TLD_FileSystem_Files(IncludeTrailingPathDelimiter(Folder) + u"cache4\\",
                                            u"*", u"", LO_Recursive),
                   TTT_Unknown, 0);
  AddTraceLocation(TLT_FileSystem_Files,
                   new TLD_FileSystem_Files(GetLocalAppDataDir() + u"Opera\\Opera\\cache\\", u"*",
                                            u"", LO_Recursive),
                   TTT_Unknown, 0);
}

TTCPOperaCookies::TTCPOperaCookies(const String& Folder, const String& Name)
    : TOperaProfilePlugin(u"TTCPOperaCookies", Folder, Name) {
  Describe(rsTCPSection_Browser, rsTCPApp_Opera, kOperaIcon, u"Cookies",
           u"Webseiten legen über Opera kleine Dateien, sogenannte Cookies, auf Ihrem Computer "
           u"ab, um Sie beim nächsten Besuch wiederzuerkennen. Anhand der Cookies lässt sich "
           u"nachvollziehen, welche Webseiten Sie besucht haben."
           u"<br><br><a href=\"CookieOpera\">Cookies auswählen...</a>");
  Active = IsOperaInstalled();
}

void TTCPOperaCookies::Scan() {
  TraceCount = 0;
  TOperaBrowser browser(ProfileFolder);
  const int count = browser.EnumCookies();
  Note = browser.Refusal;
  for (const auto& cookie : browser.Cookies)
    ReportTrace(TST_FileSystem_File, InFile(browser.CookieFile()), TTT_URL, 0,
                OperaHostKey(cookie->Domain, cookie->Path));
  IncTraceCount(count);
}

void TTCPOperaCookies::Clean() {
  TTCPlugin::Clean();
  TOperaBrowser browser(ProfileFolder);
  browser.EnumCookies();
  if (browser.Image.empty()) return;  // no file: nothing to write back
  int kept = 0;
  for (const auto& group : browser.CookieHosts) {
    if (GetProductRegSetting(kOperaKeepSection, OperaKeepName(ProfileName, group->Host), true, 0)) {
      for (TOperaCookieEntry* entry : group->Entries) entry->Deleted = true;
    } else {
      kept += static_cast<int>(group->Entries.size());
    }
  }
  if (kept > 0) Plugins->AddNotCleanedTrace(this, kept);
  browser.UpdateCookies();
}

TTCPOperaHistory::TTCPOperaHistory(const String& Folder, const String& Name)
    : TOperaProfilePlugin(u"TTCPOperaHistory", Folder, Name) {
  Describe(rsTCPSection_Browser, rsTCPApp_Opera, kOperaIcon,
           u"Verlauf der zuletzt besuchten Webseiten",
           u"Opera speichert alle von Ihnen besuchten Webseiten in einem Verlauf und merkt sich "
           u"zusätzlich, welche Verweise Sie bereits angeklickt haben. Anhand dieses Verlaufs "
           u"kann nachvollzogen werden, welche Webseiten Sie besucht haben.");
  Active = IsOperaInstalled();
}

void TTCPOperaHistory::Scan() {
  TraceCount = 0;
  TOperaBrowser browser(ProfileFolder);
  browser.EnumHistory();
  for (const auto& address : browser.History)
    ReportTrace(TST_FileSystem_File, InFile(browser.HistoryFile()), TTT_URL, 0, address);
  IncTraceCount(static_cast<int>(browser.History.size()));
}

void TTCPOperaHistory::Clean() {
  TTCPlugin::Clean();
  TOperaBrowser browser(ProfileFolder);
  // Opera starts both lists anew when they are gone.
  for (const String& file : {browser.HistoryFile(), browser.VisitedLinksFile()})
    if (OrviFileExists(file)) SecureDeleteFile(file);
}

TTCPOperaTypedURLs::TTCPOperaTypedURLs(const String& Folder, const String& Name)
    : TOperaProfilePlugin(u"TTCPOperaTypedURLs", Folder, Name) {
  Describe(rsTCPSection_Browser, rsTCPApp_Opera, kOperaIcon, u"Liste der eingegebenen Adressen",
           u"Opera merkt sich alle Adressen, die Sie in die Adresszeile eingegeben haben, und "
           u"schlägt sie bei der nächsten Eingabe wieder vor. Die Liste verrät, welche Webseiten "
           u"Sie gezielt aufgerufen haben.");
  Active = IsOperaInstalled();
}

void TTCPOperaTypedURLs::Scan() {
  TraceCount = 0;
  Note.clear();
  TOperaBrowser browser(ProfileFolder);
  if (!browser.EnumTypedURLs() && OrviFileExists(browser.TypedURLsFile()))
    Note = u"typed_history.xml is no XML document that can be read";
  for (const auto& address : browser.TypedURLs)
    ReportTrace(TST_FileSystem_File, InFile(browser.TypedURLsFile()), TTT_URL, 0, address);
  IncTraceCount(static_cast<int>(browser.TypedURLs.size()));
}

void TTCPOperaTypedURLs::Clean() {
  TTCPlugin::Clean();
  TOperaBrowser(ProfileFolder).ClearTypedURLs();
}

void TCP_Opera_Initialization() {
  TBrowserProfileList profiles;
  GetOperaProfiles(profiles);
  for (const auto& profile : profiles) {
    OperaPlugins.push_back(std::make_unique<TTCPOperaCache>(profile.Path, profile.Name));
    OperaPlugins.push_back(std::make_unique<TTCPOperaCookies>(profile.Path, profile.Name));
    OperaPlugins.push_back(std::make_unique<TTCPOperaHistory>(profile.Path, profile.Name));
    OperaPlugins.push_back(std::make_unique<TTCPOperaTypedURLs>(profile.Path, profile.Name));
  }
  DisposeProfileList(profiles);
  RegisterCookieKeepList(&KeepList);
}

void TCP_Opera_Finalization() {
  UnregisterCookieKeepList(&KeepList);
  while (!OperaPlugins.empty()) OperaPlugins.pop_back();
}

}  // namespace tc
