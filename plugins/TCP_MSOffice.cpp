#include "plugins/TCP_MSOffice.h"

#include <memory>

#include "engine/TC_Common.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

String OfficeRecentFolder;

namespace {

const String kOffice = u"Software\\Microsoft\\Office\\";
const String kPictureMasks = u"*.bmp;*.jpg;*.jpeg;*.gif;*.tif;*.png;*.tiff;*.tga;*.jpe";
const String rsCapOutlookGlyphs = u"Temporäre Grafiken aus E-Mail-Anhängen";

// The recent-file lists of Office up to 11.0 ("MRU"/"File" values of one key per version)
// and of 12.0 and 14.0 ("Item" values of "File MRU"), all emptied rather than deleted.
void AddOfficeList(TTCPlugin& p, const String& key, const String& prefix) {
  p.AddTraceLocation(
      TLT_Registry_NumberedNames,
      new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, kOffice + key, prefix, LO_StringList),
      TTT_ParamFileName, FlagOf(TF_Deletable_Per_Item));
}

// The application's shortcuts in Office's recent folder.
void AddRecentShortcuts(TTCPlugin& p, const String& masks) {
  p.AddTraceLocation(TLT_FileSystem_Files,
                     new TLD_FileSystem_Files(OfficeRecentFolder, masks, u"", 0),
                     TTT_FileOrFolderName, FlagOf(TF_Deletable_Per_Item));
}

// One location on Outlook's secure temporary folder for each of 11.0 and 14.0 that has one.
void AddSecureTempFolders(TTCPlugin& p, const String& include, const String& exclude) {
  for (const char16_t* version : {u"11.0", u"14.0"}) {
    String folder =
        GetRegStringValueDef(HKEY_CURRENT_USER, kOffice + version + u"\\Outlook\\Security",
                             u"OutlookSecureTempFolder", u"", RO_None);
    if (folder.empty()) continue;
    p.AddTraceLocation(
        TLT_FileSystem_Files,
        new TLD_FileSystem_Files(IncludeTrailingPathDelimiter(folder), include, exclude, 0),
        TTT_Unknown, 0);
  }
}

String OutlookFolderPath() { return GetAppDataDir() + u"Microsoft\\Outlook\\"; }

String RecentFolderOfOffice() {
  // 12.0 is skipped on purpose (kept behaviour): a profile with only 12.0 has no folder here.
  for (const char16_t* version : {u"14.0", u"11.0", u"10.0", u"9.0"}) {
    String name = GetRegStringValueDef(HKEY_CURRENT_USER, kOffice + version + u"\\Common\\General",
                                       u"RecentFiles", u"", RO_None);
    if (!name.empty())
      return IncludeTrailingPathDelimiter(GetAppDataDir() + u"Microsoft\\Office\\" + name);
  }
  return {};
}

std::unique_ptr<TTCPMSOfficeRecentResources> MSOfficeRecentResources;
std::unique_ptr<TTCPMSOfficeAccess> MSOfficeAccess;
std::unique_ptr<TTCPMSOfficeExcel> MSOfficeExcel;
std::unique_ptr<TTCPMSOfficePowerPoint> MSOfficePowerPoint;
std::unique_ptr<TTCPMSOfficeWord> MSOfficeWord;
std::unique_ptr<TTCPMSOfficeImaging> MSOfficeImaging;
std::unique_ptr<TTCPOutlookAutoFill> OutlookAutoFill;
std::unique_ptr<TTCPOutlookSecurityGlyphs> OutlookSecurityGlyphs;
std::unique_ptr<TTCPOutlookSecurityFiles> OutlookSecurityFiles;

}  // namespace

int CountNK2Addresses(const Bytes& data) {
  return ParamXCount(
      FromAnsi(std::string_view(reinterpret_cast<const char*>(data.data()), data.size())), u'@');
}

TTCPMSOfficeRecentResources::TTCPMSOfficeRecentResources()
    : TTCPlugin(u"TTCPMSOfficeRecentResources") {
  Describe(rsTCPSection_Office, rsTCPApp_MSOffice, 2000,
           u"Verknüpfungen auf zuletzt verwendete Ordner und Ressourcen",
           u"Alle Microsoft Office-Anwendungen legen Verknüpfungen auf die zuletzt von Ihnen "
           u"verwendeten Ordner und Ressourcen wie Internetadressen und Bilder an. Diese "
           u"Verknüpfungen liegen in einem eigenen Ordner und verraten, womit Sie zuletzt "
           u"gearbeitet haben.");
  Active = false;
  AddTraceLocation(TLT_FileSystem_Files,
                   new TLD_FileSystem_Files(OfficeRecentFolder, u"*",
                                            u"*.mdb.lnk;*.xls.lnk;*.ppt.lnk;*.pub.lnk;*.doc.lnk;"
                                            u"*.dot.lnk;*.xla.lnk;index.dat;",
                                            0),
                   TTT_FileOrFolderName, FlagOf(TF_Deletable_Per_Item));
}

TTCPMSOfficeAccess::TTCPMSOfficeAccess() : TTCPlugin(u"TTCPMSOfficeAccess") {
  Describe(rsTCPSection_Office, rsTCPApp_Access, 2002, u"Liste der zuletzt verwendeten Datenbanken",
           u"Microsoft Office Access speichert eine Liste der zuletzt von Ihnen geöffneten "
           u"Datenbanken. Diese Liste wird im Menü Datei angezeigt und ist für jeden sichtbar, der "
           u"Access auf Ihrem Computer startet.");
  DeactivateIfAbsent = true;
  AddOfficeList(*this, u"9.0\\Access\\Settings", u"MRU");
  AddOfficeList(*this, u"10.0\\Access\\Settings", u"MRU");
  AddOfficeList(*this, u"11.0\\Access\\Settings", u"MRU");
  AddOfficeList(*this, u"12.0\\Access\\File MRU", u"Item");
  AddOfficeList(*this, u"14.0\\Access\\File MRU", u"Item");
  AddRecentShortcuts(*this, u"*.mdb.lnk;");
}

TTCPMSOfficeExcel::TTCPMSOfficeExcel() : TTCPlugin(u"TTCPMSOfficeExcel") {
  Describe(rsTCPSection_Office, rsTCPApp_Excel, 2004,
           u"Liste der zuletzt verwendeten Arbeitsmappen",
           u"Microsoft Office Excel speichert eine Liste der zuletzt von Ihnen geöffneten "
           u"Arbeitsmappen. Diese Liste wird im Menü Datei angezeigt und ist für jeden sichtbar, "
           u"der Excel auf Ihrem Computer startet.");
  DeactivateIfAbsent = true;
  AddOfficeList(*this, u"9.0\\Excel\\Recent Files", u"File");
  AddOfficeList(*this, u"10.0\\Excel\\Recent Files", u"File");
  AddOfficeList(*this, u"11.0\\Excel\\Recent Files", u"File");
  AddOfficeList(*this, u"12.0\\Excel\\File MRU", u"Item");
  AddOfficeList(*this, u"14.0\\Excel\\File MRU", u"Item");
  AddRecentShortcuts(*this, u"*.xls.lnk;");
}

TTCPMSOfficePowerPoint::TTCPMSOfficePowerPoint() : TTCPlugin(u"TTCPMSOfficePowerPoint") {
  Describe(rsTCPSection_Office, rsTCPApp_PowerPoint, 2005,
           u"Liste der zuletzt verwendeten Präsentationen",
           u"Microsoft Office PowerPoint speichert eine Liste der zuletzt von Ihnen geöffneten "
           u"Präsentationen. Diese Liste wird im Menü Datei angezeigt und ist für jeden sichtbar, "
           u"der PowerPoint auf Ihrem Computer startet.");
  DeactivateIfAbsent = true;
  AddOfficeList(*this, u"9.0\\PowerPoint\\Recent File List", u"File");
  AddOfficeList(*this, u"10.0\\PowerPoint\\Recent File List", u"File");
  AddOfficeList(*this, u"11.0\\PowerPoint\\Recent File List", u"File");
  AddOfficeList(*this, u"12.0\\PowerPoint\\File MRU", u"Item");
  AddOfficeList(*this, u"14.0\\PowerPoint\\File MRU", u"Item");
  AddRecentShortcuts(*this, u"*.ppt.lnk;");
}

TTCPMSOfficeWord::TTCPMSOfficeWord() : TTCPlugin(u"TTCPMSOfficeWord") {
  Describe(rsTCPSection_Office, rsTCPApp_Word, 2003, u"Liste der zuletzt verwendeten Dokumente",
           u"Microsoft Office Word speichert eine Liste der zuletzt von Ihnen geöffneten "
           u"Dokumente. Diese Liste wird im Menü Datei angezeigt und ist für jeden sichtbar, der "
           u"Word auf Ihrem Computer startet.");
  Active = false;
  AddOfficeList(*this, u"12.0\\Word\\File MRU", u"Item");
  AddOfficeList(*this, u"14.0\\Word\\File MRU", u"Item");
  AddRecentShortcuts(*this, u"*.doc.lnk;*.dot.lnk;");
}

TTCPMSOfficeImaging::TTCPMSOfficeImaging() : TTCPlugin(u"TTCPMSOfficeImaging") {
  Describe(rsTCPSection_Office, rsTCPApp_MSOffice + u" Imaging", 2000,
           u"Office Document Imaging: Liste der zuletzt verwendeten Bilder",
           u"Microsoft Office Document Imaging ist eine Anwendung zum Scannen und Betrachten von "
           u"Bildern, die eine Liste der zuletzt von Ihnen verwendeten Bilder speichert. Diese "
           u"Liste verrät, welche Dokumente Sie zuletzt eingescannt oder angesehen haben.");
  Active = KeyExist(HKEY_CURRENT_USER, kOffice + u"11.0", RO_None);
  DeactivateIfAbsent = false;
  for (const char16_t* key : {u"Software\\Microsoft\\MSPaper 11.0\\Persist File Name",
                              u"Software\\Microsoft\\MSPaper 11.0\\Recent File List"})
    AddTraceLocation(TLT_Registry_NumberedNames,
                     new TLD_Registry_NumberedNames(HKEY_CURRENT_USER, key, u"File", 0),
                     TTT_ParamFileName,
                     FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning));
}

TTCPOutlookAutoFill::TTCPOutlookAutoFill() : TTCPlugin(u"TTCPOutlookAutoFill") {
  Describe(rsTCPSection_Office, rsTCPApp_Outlook, 2001, u"Liste der eingegebenen E-Mail-Adressen",
           u"Microsoft Outlook speichert die von Ihnen eingegebenen E-Mail-Adresse in einer Datei. "
           u"Beim Schreiben einer neuen E-Mail werden diese Adressen zur automatischen "
           u"Vervollständigung angeboten und verraten so, mit wem Sie in Kontakt stehen.");
  OutlookFolder = OutlookFolderPath();
  Active = DirExists(OutlookFolder);
}

String TTCPOutlookAutoFill::FirstNK2File() const {
  StringList names;
  if (!EnumFiles(OutlookFolder, names, u"*.NK2") || names.empty()) return {};
  return OutlookFolder + names.front();
}

void TTCPOutlookAutoFill::Scan() {
  TTCPlugin::Scan();
  String file = FirstNK2File();
  if (file.empty()) return;
  Bytes data;
  // An unreadable file (Outlook holding it) adds nothing, as the reader reports failure.
  if (FileContents::Read(*Services().Files, file, data) == ERROR_SUCCESS)
  {
    const int addresses = CountNK2Addresses(data);
    IncTraceCount(addresses);
    PreviewEntries(file, addresses, static_cast<int64_t>(data.size()));
  }
}

void TTCPOutlookAutoFill::Clean() {
  TTCPlugin::Clean();
  String file = FirstNK2File();
  // In use by a running Outlook (32/33): scheduled for the next start, RebootRequired set.
  if (!file.empty()) SecureDeleteFile(file);
}

TTCPOutlookSecurityGlyphs::TTCPOutlookSecurityGlyphs() : TTCPlugin(u"TTCPOutlookSecurityGlyphs") {
  Describe(rsTCPSection_Office, rsTCPApp_Outlook, 2001, rsCapOutlookGlyphs,
           u"Microsoft Outlook speichert alle Grafiken aus E-Mails und E-Mail-Anhängen in einem "
           u"temporären Ordner, um diese bei erneutem Öffnen der E-Mail schneller anzeigen zu "
           u"können. Die Grafiken bleiben dort auch dann erhalten, wenn Sie die E-Mail längst "
           u"gelöscht haben.");
  Active = DirExists(OutlookFolderPath());
  AddSecureTempFolders(*this, kPictureMasks, u"");
}

TTCPOutlookSecurityFiles::TTCPOutlookSecurityFiles() : TTCPlugin(u"TTCPOutlookSecurityFiles") {
  Describe(rsTCPSection_Office, rsTCPApp_Outlook, 2001, u"Temporäre Dateien aus E-Mail-Anhängen",
           u"Microsoft Outlook speichert alle schon einmal geöffneten Dateien aus "
           u"E-Mail-Anhängen in einem temporären Ordner. Die Dateien bleiben dort auch dann "
           u"erhalten, wenn Sie die E-Mail längst gelöscht haben.");
  Active = DirExists(OutlookFolderPath());
  AddSecureTempFolders(*this, u"*", kPictureMasks);
}

void TCP_MSOffice_Initialization() {
  OfficeRecentFolder = RecentFolderOfOffice();
  MSOfficeRecentResources = std::make_unique<TTCPMSOfficeRecentResources>();
  MSOfficeAccess = std::make_unique<TTCPMSOfficeAccess>();
  MSOfficeExcel = std::make_unique<TTCPMSOfficeExcel>();
  MSOfficePowerPoint = std::make_unique<TTCPMSOfficePowerPoint>();
  MSOfficeWord = std::make_unique<TTCPMSOfficeWord>();
  MSOfficeImaging = std::make_unique<TTCPMSOfficeImaging>();
  OutlookAutoFill = std::make_unique<TTCPOutlookAutoFill>();
  OutlookSecurityGlyphs = std::make_unique<TTCPOutlookSecurityGlyphs>();
  OutlookSecurityFiles = std::make_unique<TTCPOutlookSecurityFiles>();
}

void TCP_MSOffice_Finalization() {
  OutlookSecurityFiles.reset();
  OutlookSecurityGlyphs.reset();
  OutlookAutoFill.reset();
  MSOfficeImaging.reset();
  MSOfficeWord.reset();
  MSOfficePowerPoint.reset();
  MSOfficeExcel.reset();
  MSOfficeAccess.reset();
  MSOfficeRecentResources.reset();
  OfficeRecentFolder.clear();
}

}  // namespace tc
