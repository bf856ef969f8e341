// Office and Outlook plug-ins: the recent folder, the recent lists, NK2 and secure temp files.
#include "AppPluginFixture.h"
#include "plugins/TCP_MSOffice.h"

namespace tc {
namespace {

const String kOffice = u"Software\\Microsoft\\Office\\";
const String kOutlook = AppPluginFixture::kAppData + u"Microsoft\\Outlook\\";

class MSOfficeTest : public AppPluginFixture {
 public:
  String RecentFolder(const String& name) { return kAppData + u"Microsoft\\Office\\" + name + u"\\"; }
};

TEST_F(MSOfficeTest, RecentFolderComesFromTheFirstOf14_11_10_9AndNever12) {
  const struct {
    std::vector<std::pair<const char16_t*, const char16_t*>> values;  // version, RecentFiles
    const char16_t* expected;
  } cases[] = {{{{u"12.0", u"Recent12"}}, u""},
               {{{u"11.0", u"Recent11"}, {u"14.0", u"Recent14"}}, u"Recent14"},
               {{{u"12.0", u"Recent12"}, {u"10.0", u"Recent10"}, {u"9.0", u"Recent9"}}, u"Recent10"},
               {{{u"9.0", u"Recent9"}}, u"Recent9"},
               {{}, u""}};
  for (const auto& c : cases) {
    Reset();
    for (auto [version, name] : c.values)
      Str(HKEY_CURRENT_USER, kOffice + version + u"\\Common\\General", u"RecentFiles", name);
    Start();
    EXPECT_EQ(OfficeRecentFolder, *c.expected ? RecentFolder(c.expected) : String()) << ToUtf8(c.expected);
  }
}

TEST_F(MSOfficeTest, ListsAreEmptiedAndShortcutsSplitBetweenThePlugins) {
  Str(HKEY_CURRENT_USER, kOffice + u"11.0\\Common\\General", u"RecentFiles", u"Recent");
  const String excel11 = kOffice + u"11.0\\Excel\\Recent Files", excel12 = kOffice + u"12.0\\Excel\\File MRU";
  Strs(HKEY_CURRENT_USER, excel11, {{u"File1", u"C:\\Daten\\a.xls"}, {u"File2", u""}});
  mem.Registry->PutDword(HKEY_CURRENT_USER, excel11, u"Max Display", 4);
  Str(HKEY_CURRENT_USER, excel12, u"Item 1", u"[F00000000][T01C8]*C:\\Daten\\b.xlsx");
  Str(HKEY_CURRENT_USER, kOffice + u"14.0\\Word\\File MRU", u"Item 1", u"[F00000000]*C:\\c.docx");
  const String link = kOffice + u"14.0\\Common\\Internet";
  Str(HKEY_CURRENT_USER, link, u"UseRWHlinkNavigation", u"http://example.com/a");
  // The number a support article tells administrators to set there is a setting.
  mem.Registry->PutDword(HKEY_CURRENT_USER, kOffice + u"16.0\\Common\\Internet", u"UseRWHlinkNavigation", 1);
  const String recent = RecentFolder(u"Recent");
  Files(recent, {u"a.xls.lnk", u"b.doc.lnk", u"c.dot.lnk", u"d.mdb.lnk", u"e.ppt.lnk", u"f.pub.lnk",
                 u"g.xla.lnk", u"Projekte.lnk", u"index.dat", u"desktop.ini"});
  // Office 11 present: the imaging list counts too.
  const String imaging = u"Software\\Microsoft\\MSPaper 11.0\\Recent File List";
  Strs(HKEY_CURRENT_USER, imaging,
       {{u"File1", u"C:\\scan1.tif"}, {u"File3", u"C:\\scan3.mdi"}, {u"Settings", u"kept"}});
  Start();

  const std::pair<const char16_t*, int> counts[] = {
      {u"MSOfficeRecentResources", 1}, {u"MSOfficeAccess", 1}, {u"MSOfficeExcel", 3},
      {u"MSOfficePowerPoint", 1},      {u"MSOfficeWord", 3},  {u"MSOfficeHyperlink", 1},
      {u"MSOfficeImaging", 2}};
  for (auto [id, n] : counts) EXPECT_EQ(Scan(id), n) << ToUtf8(id);
  EXPECT_TRUE(Plugin(u"MSOfficeImaging").Active);

  auto [lost, gained] = CleanAndDiff({u"MSOfficeExcel"});
  EXPECT_EQ(lost, (std::set<String>{u"HKCU\\" + excel11 + u"[File1]=C:\\Daten\\a.xls",
                                    u"HKCU\\" + excel12 + u"[Item 1]=[F00000000][T01C8]*C:\\Daten\\b.xlsx"}));
  EXPECT_EQ(gained, (std::set<String>{u"HKCU\\" + excel11 + u"[File1]=", u"HKCU\\" + excel12 + u"[Item 1]="}));
  const auto linkChanges = CleanAndDiff({u"MSOfficeHyperlink"});
  EXPECT_EQ(linkChanges.lost, (std::set<String>{u"HKCU\\" + link + u"[UseRWHlinkNavigation]=http://example.com/a"}));
  EXPECT_TRUE(linkChanges.gained.empty());
  CleanAndFix({u"MSOfficeImaging"});
  EXPECT_EQ(Names(imaging), StringList{u"Settings"});
  CleanAndFix({u"MSOfficeRecentResources"});
  EXPECT_EQ(mem.Files->Names(recent),
            (StringList{u"b.doc.lnk", u"c.dot.lnk", u"d.mdb.lnk", u"desktop.ini", u"e.ppt.lnk",
                        u"f.pub.lnk", u"g.xla.lnk", u"index.dat"}));
}

// The first NK2 file is counted by its at signs; one in use waits for the next start.
TEST_F(MSOfficeTest, AutoFillCountsAndRemovesTheFirstNK2) {
  for (uint32_t lock : {0u, uint32_t{ERROR_SHARING_VIOLATION}, uint32_t{ERROR_LOCK_VIOLATION}}) {
    SCOPED_TRACE(lock);
    Reset();
    File(kOutlook + u"Outlook.NK2", std::string("\x0d\xf0\xad\xba\0a@b.de\0c@d.de\0e@f.de", 25));
    File(kOutlook + u"Zweit.NK2", "x@y");
    if (lock) mem.FileFaults->LockFile(kOutlook + u"Outlook.NK2", lock);
    Start();
    EXPECT_TRUE(Plugin(u"OutlookAutoFill").Active);
    EXPECT_EQ(Scan(u"OutlookAutoFill"), 4);
    CleanAndFix({u"OutlookAutoFill"});
    EXPECT_EQ(mem.Files->Names(kOutlook), (lock ? StringList{u"Outlook.NK2", u"Zweit.NK2"}
                                                : StringList{u"Zweit.NK2"}));  // the next one waits
    EXPECT_EQ(Plugin(u"OutlookAutoFill").RebootRequired, lock != 0);
    StringList pending;
    mem.RebootDeleter->Pending(pending);
    EXPECT_EQ(pending, (lock ? StringList{kOutlook + u"Outlook.NK2"} : StringList{}));
  }
}

TEST_F(MSOfficeTest, SecureTempFolderIsSplitBetweenPicturesAndOtherFiles) {
  mem.Files->AddFolder(kOutlook);
  const String temp11 = u"C:\\Users\\Tester\\AppData\\Local\\Temp\\OLK1A";
  const String temp14 = u"C:\\Users\\Tester\\AppData\\Local\\Microsoft\\Outlook\\Secure\\";
  Str(HKEY_CURRENT_USER, kOffice + u"11.0\\Outlook\\Security", u"OutlookSecureTempFolder", temp11);
  Str(HKEY_CURRENT_USER, kOffice + u"12.0\\Outlook\\Security", u"OutlookSecureTempFolder", u"C:\\Never");
  Str(HKEY_CURRENT_USER, kOffice + u"14.0\\Outlook\\Security", u"OutlookSecureTempFolder", temp14);
  Files(temp11, {u"\\logo.JPE", u"\\scan.tiff", u"\\bericht.pdf"});
  Files(temp14, {u"bild.png", u"angebot.docx"});
  File(u"C:\\Never\\x.png");
  Start();
  EXPECT_TRUE(Plugin(u"OutlookSecurityGlyphs").Active);
  EXPECT_EQ(Scan(u"OutlookSecurityGlyphs"), 3);
  EXPECT_EQ(Scan(u"OutlookSecurityFiles"), 2);
  CleanAndFix({u"OutlookSecurityGlyphs"});
  EXPECT_EQ(mem.Files->Names(temp11), StringList{u"bericht.pdf"});
  CleanAndFix({u"OutlookSecurityFiles"});
  EXPECT_TRUE(mem.Files->Names(temp14).empty());
  EXPECT_TRUE(Exists(u"C:\\Never\\x.png"));
}

}  // namespace
}  // namespace tc
