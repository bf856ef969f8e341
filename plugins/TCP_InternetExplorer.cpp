#include "plugins/TCP_InternetExplorer.h"

#include <map>
#include <memory>

#include "browsers/TC_InternetExplorer.h"
#include "engine/CookieKeepLists.h"
#include "engine/TC_Common.h"
#include "platform/Platform.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/Urlhistory.h"

namespace tc {

namespace {

const String rsTCPApp_InternetExplorer = u"Internet Explorer";

// Form data and the newer log-ins share one item type; the older log-ins have their own.
const Guid kFormDataType{0xe161255a, 0x37c3, 0x11d2, {0xbc, 0xaa, 0x00, 0xc0, 0x4f, 0xd9, 0x29, 0xdb}};
const Guid kOldLoginType{0x5e7e8100, 0x9138, 0x11d1, {0x94, 0x5a, 0x00, 0xc0, 0x4f, 0xc3, 0x08, 0xff}};
const Guid kOldLoginSubtype{};

void SetTexts(TTCPlugin& p, const String& caption, const String& description) {
  p.Describe(rsTCPSection_Browser, rsTCPApp_InternetExplorer, 1000, caption, description);
  p.DeactivateIfAbsent = false;  // the browser is always there
}

bool IsLoginItem(const String& name) {
  return LowerCase(name.substr(0, 7)) == u"http://" || LowerCase(name.substr(0, 8)) == u"https://";
}
bool EndsWith(const String& name, std::u16string_view lowerEnd) {
  return name.size() >= lowerEnd.size() && LowerCase(Right(name, lowerEnd.size())) == lowerEnd;
}
bool IsStringData(const String& name) { return EndsWith(name, u":stringdata"); }
bool IsStringIndex(const String& name) { return EndsWith(name, u":stringindex"); }

// Opens the store and lists one kind; false (the plug-in switched off) when either fails.
bool ListItems(TTCPlugin& p, const Guid& type, const Guid& subtype, StringList& names) {
  IProtectedStorage& store = *Services().ProtectedStorage;
  if (store.Open() != ERROR_SUCCESS || store.EnumItems(type, subtype, names) != ERROR_SUCCESS) {
    p.Active = false;
    return false;
  }
  return true;
}

// Deletes the items of the form-data kind, both halves of each pair, on one side of the split.
void DeleteFormDataItems(const StringList& names, bool logins) {
  for (const String& name : names)
    if ((IsStringData(name) || IsStringIndex(name)) && IsLoginItem(name) == logins)
      Services().ProtectedStorage->DeleteItem(kFormDataType, kFormDataType, name);
}

// Protected Storage items have no file: the preview names them by store and item.
String StoreItem(const String& name) { return u"Protected Storage\\" + name; }

// One saved log-in: one trace, previewed by its item's name.
void CountLogin(TTCPlugin& p, const String& name) {
  p.IncTraceCount(1);
  p.PreviewTrace(TST_Unknown, {kNoRootKey, {}, {}, StoreItem(name)}, TTT_Unknown, 0, {});
}

// The hosts with Internet Explorer cookies, for the host's keep-list commands.
class IECookieKeepList : public ICookieKeepList {
 public:
  String Browser() const override { return u"ie"; }
  String Caption() const override { return rsTCPApp_InternetExplorer; }
  bool HonoursKeepList(String&) const override { return true; }
  bool Hosts(std::vector<TCookieHostInfo>& hosts, String&) override {
    hosts.clear();
    StringList all;
    GetIECookieEntries(all);
    std::map<String, size_t> at;
    for (const String& host : all) {
      if (host.empty()) continue;  // no name the user could choose
      auto [it, added] = at.emplace(host, hosts.size());
      if (added)
        hosts.push_back({host, String(), 0, !GetProductRegSetting(kIECookieSection, host, true, 0)});
      ++hosts[it->second].Count;
    }
    return true;
  }
  uint32_t SetKept(const String& host, bool kept) override {
    return Services().ProductSettings->WriteBool(kIECookieSection, host, !kept);
  }
};

std::unique_ptr<IECookieKeepList> KeepList;
TTCPIETypedURLs* TCPIETypedURLs = nullptr;
TTCPIECookies* TCPIECookies = nullptr;
TTCPIEHistory* TCPIEHistory = nullptr;
TTCPIEAutoComplete* TCPIEAutoComplete = nullptr;
TTCPIESavedPasswords* TCPIESavedPasswords = nullptr;
TTCPIETempInternetFiles* TCPIETempInternetFiles = nullptr;

}  // namespace

int CountAutoCompleteFields(const Bytes& data) {
  // Wide text through the single-byte conversion and back, as the field list was counted.
  String text = FromAnsi(ToAnsi(FromUtf16LE(data.data(), data.size())));
  text = Replace(text, String(3, u'\0'), u"\r");
  text = Replace(text, String(1, u'\0'), u"");
  return ParamXCount(text, u'\r');
}

TTCPIETypedURLs::TTCPIETypedURLs() : TTCPlugin(u"TTCPIETypedURLs") {
  SetTexts(*this, u"Liste der eingegebenen Internetadressen",
           u"Der Internet Explorer führt eine Liste aller direkt in die Adressleiste "
           u"eingegebenen Internetadressen. Daran lässt sich ablesen, welche Webseiten Sie "
           u"gezielt aufgerufen haben.");
  // Run-command target by design, not URL.
  AddTraceLocation(TLT_Registry_NumberedNames,
                   new TLD_Registry_NumberedNames(
                       HKEY_CURRENT_USER, u"Software\\Microsoft\\Internet Explorer\\TypedURLs",
                       u"url", 0),
                   TTT_RunCMD, FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning));
}

TTCPIECookies::TTCPIECookies() : TTCPlugin(u"TTCPIECookies") {
  SetTexts(*this, u"Cookies",
           u"Webseiten legen kleine Textdateien, sogenannte Cookies, auf Ihrem Computer ab, um "
           u"Sie beim nächsten Besuch wiederzuerkennen. Diese Cookies werden vom Internet "
           u"Explorer auf Ihrer Festplatte gespeichert und verraten, welche Webseiten Sie "
           u"besucht haben.<br><a href=\"CookieIE\">Cookies auswählen...</a>");
}

void PreviewCacheEntry(TTCPlugin& Plugin, const UrlCacheEntry& Entry) {
  if (Entry.LocalFileName.empty())  // a redirect or visit record: an address without a file
    Plugin.PreviewTrace(TST_Unknown, {kNoRootKey, {}, {}, Entry.SourceUrlName}, TTT_URL, 0, {});
  else
    Plugin.PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, Entry.LocalFileName}, TTT_URL,
                        0, Entry.SourceUrlName, static_cast<int64_t>(Entry.Size));
}

void TTCPIECookies::Scan() {
  TTCPlugin::Scan();
  IncTraceCount(
      EnumIECacheFiles(true, false, false, [this](auto& e) { PreviewCacheEntry(*this, e); }));
}

void TTCPIECookies::Clean() {
  TTCPlugin::Clean();
  int kept = EnumIECacheFiles(true, true, true);
  if (kept >= 1) Plugins->AddNotCleanedTrace(this, kept);
}

TTCPIEHistory::TTCPIEHistory() : TTCPlugin(u"TTCPIEHistory") {
  SetTexts(*this, u"Verlauf der zuletzt besuchten Webseiten",
           u"Der Internet Explorer merkt sich die Adressen aller Webseiten, die Sie in den "
           u"letzten Tagen besucht haben. Die Verlaufsliste kann vertrauliche Informationen "
           u"enthalten und verraten, welche Webseiten Sie besucht haben.");
}

void TTCPIEHistory::Scan() {
  TTCPlugin::Scan();
  TUrlHistory history;
  int count = history.Enumerate();
  for (int i = 0; i < count; ++i)
    if (history.Items[i].Kind == 2 || history.Items[i].Kind == 3) {
      IncTraceCount(1);
      PreviewTrace(TST_Unknown, {kNoRootKey, {}, {}, history.Items[i].Url}, TTT_URL, 0,
                   history.Items[i].Title);
    }
}

void TTCPIEHistory::Clean() {
  TTCPlugin::Clean();
  TUrlHistory history;
  int count = history.Enumerate();
  for (int i = 0; i < count; ++i)
    if (history.Items[i].Kind == 2 || history.Items[i].Kind == 3)
      history.DeleteUrl(history.Items[i].Url);
}

TTCPIEAutoComplete::TTCPIEAutoComplete() : TTCPlugin(u"TTCPIEAutoComplete") {
  SetTexts(*this, u"Gespeicherte Formulardaten",
           u"Wenn Sie im Internet Explorer ein Web-Formular ausfüllen und dieses abschicken, "
           u"speichert er Ihre Eingaben und schlägt sie beim nächsten Mal wieder vor. So "
           u"bleiben Namen, Anschriften und Suchbegriffe auf dem Computer erhalten.");
}

void TTCPIEAutoComplete::Scan() {
  TTCPlugin::Scan();
  StringList names;
  if (!ListItems(*this, kFormDataType, kFormDataType, names)) return;
  for (const String& name : names) {
    if (!IsStringData(name) || IsLoginItem(name)) continue;
    Bytes data;
    if (Services().ProtectedStorage->ReadItem(kFormDataType, kFormDataType, name, data) ==
        ERROR_SUCCESS) {
      const int fields = CountAutoCompleteFields(data);
      IncTraceCount(fields);
      PreviewEntries(StoreItem(name), fields);
    }
  }
}

void TTCPIEAutoComplete::Clean() {
  TTCPlugin::Clean();
  StringList names;
  if (ListItems(*this, kFormDataType, kFormDataType, names)) DeleteFormDataItems(names, false);
}

TTCPIESavedPasswords::TTCPIESavedPasswords() : TTCPlugin(u"TTCPIESavedPasswords") {
  SetTexts(*this, u"Gespeicherte Kennwörter",
           u"Der Internet Explorer kann alle Kennwörter speichern, die Sie auf "
           u"anmeldepflichtigen Seiten eingeben. Wer an Ihrem Computer sitzt, kann sich damit "
           u"ohne Ihr Wissen in Ihrem Namen anmelden.");
}

void TTCPIESavedPasswords::Scan() {
  TTCPlugin::Scan();
  StringList names;
  if (!ListItems(*this, kOldLoginType, kOldLoginSubtype, names)) return;
  for (const String& name : names) {
    Bytes data;
    if (Services().ProtectedStorage->ReadItem(kOldLoginType, kOldLoginSubtype, name, data) ==
        ERROR_SUCCESS)
      CountLogin(*this, name);
  }
  if (!ListItems(*this, kFormDataType, kFormDataType, names)) return;
  for (const String& name : names)
    if (IsStringData(name) && IsLoginItem(name)) CountLogin(*this, name);
}

void TTCPIESavedPasswords::Clean() {
  TTCPlugin::Clean();
  StringList names;
  if (!ListItems(*this, kOldLoginType, kOldLoginSubtype, names)) return;
  for (const String& name : names)
    Services().ProtectedStorage->DeleteItem(kOldLoginType, kOldLoginSubtype, name);
  if (ListItems(*this, kFormDataType, kFormDataType, names)) DeleteFormDataItems(names, true);
}

TTCPIETempInternetFiles::TTCPIETempInternetFiles() : TTCPlugin(u"TTCPIETempInternetFiles") {
  SetTexts(*this, u"Temporäre Internetdateien",
           u"Der Internet Explorer speichert Grafiken und Texte von besuchten Webseiten auf dem "
           u"lokalen Computer, um sie beim nächsten Besuch schneller anzeigen zu können. Daran "
           u"lässt sich ablesen, welche Seiten Sie aufgerufen haben.");
}

void TTCPIETempInternetFiles::Scan() {
  TTCPlugin::Scan();
  IncTraceCount(
      EnumIECacheFiles(false, false, false, [this](auto& e) { PreviewCacheEntry(*this, e); }));
}

void TTCPIETempInternetFiles::Clean() {
  TTCPlugin::Clean();
  EnumIECacheFiles(false, true, false);
}

void TCP_InternetExplorer_Initialization() {
  TCPIETypedURLs = new TTCPIETypedURLs();
  TCPIECookies = new TTCPIECookies();
  TCPIEHistory = new TTCPIEHistory();
  TCPIEAutoComplete = new TTCPIEAutoComplete();
  TCPIESavedPasswords = new TTCPIESavedPasswords();
  TCPIETempInternetFiles = new TTCPIETempInternetFiles();
  KeepList = std::make_unique<IECookieKeepList>();
  RegisterCookieKeepList(KeepList.get());
}

void TCP_InternetExplorer_Finalization() {
  UnregisterCookieKeepList(KeepList.get());
  KeepList.reset();
  FreeAndNil(TCPIESavedPasswords);
  FreeAndNil(TCPIEAutoComplete);
  FreeAndNil(TCPIEHistory);
  FreeAndNil(TCPIECookies);
  FreeAndNil(TCPIETypedURLs);
  FreeAndNil(TCPIETempInternetFiles);
}

}  // namespace tc
