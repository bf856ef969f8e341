#include "plugins/TCP_OpenOffice.h"

#include "AppPluginFixture.h"
#include "platform/helpers/WinPath.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {
namespace {

const String kOO2 = u"OpenOffice.org2\\user\\registry\\data\\org\\openoffice\\Office\\Common.xcu";
const String kOO3Text = u"OpenOffice.org\\3\\user\\registry\\data\\org\\openoffice\\Office\\Common.xcu_";
const String kOO3 = u"OpenOffice.org\\3\\user\\registrymodifications.xcu";
const String kLibre = u"LibreOffice\\4\\user\\registrymodifications.xcu";

std::string Entry(const std::string& name, const std::string& url) {
  return "   <node oor:name=\"" + name + "\" oor:op=\"replace\">\r\n"
         "    <prop oor:name=\"URL\" oor:type=\"xs:string\">\r\n"
         "     <value>" + url + "</value>\r\n"
         "    </prop>\r\n"
         "   </node>\r\n";
}

std::string CommonXcu(const std::string& entries) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
         "<oor:component-data oor:name=\"Common\">\r\n"
         " <node oor:name=\"History\">\r\n"
         "  <prop oor:name=\"PickListSize\"><value>4</value></prop>\r\n"
         "  <node oor:name=\"PickList\">\r\n" + entries +
         "  </node>\r\n"
         " </node>\r\n"
         "</oor:component-data>\r\n";
}

std::string Item(const std::string& list, const std::string& node) {
  return "<item oor:path=\"/org.openoffice.Office.Histories/Histories/"
         "org.openoffice.Office.Histories:HistoryInfo['" + list + "\">" + node + "</item>\n";
}
std::string Listed(const std::string& list, const std::string& url) {
  return Item(list + "']/ItemList", "<node oor:name=\"" + url +
                                        "\" oor:op=\"replace\"><prop oor:name=\"Title\">"
                                        "<value>t</value></prop></node>");
}
std::string Ordered(const std::string& list, int n, const std::string& url) {
  return Item(list + "']/OrderList", "<node oor:name=\"" + std::to_string(n) +
                                         "\"><prop oor:name=\"HistoryItemRef\"><value>" + url +
                                         "</value></prop></node>");
}
const std::string kXmlHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\">\n";
const std::string kSetting =
    "<item oor:path=\"/org.openoffice.Setup/L10N\"><prop oor:name=\"ooLocale\"><value>de"
    "</value></prop></item>\n";

TEST(OpenOfficeTest, TheLineWalkFindsPickListEntries) {
  struct Case {
    const char* name;
    std::string text;
    StringList files;
  };
  const Case cases[] = {
      {"escapes", CommonXcu(Entry("h0", "file:///C:/Briefe/Bank%20Kredit%C3%BC.odt") +
                            Entry("h1", "file:///D:/a.sxw")),
       {u"C:\\Briefe\\Bank Kredit%C3%BC.odt", u"D:\\a.sxw"}},
      {"a value line under 24 characters names nothing",
       CommonXcu(Entry("h0", "file:///") + Entry("h1", "file:///a")), {u"a"}},
      {"not a file URL", CommonXcu(Entry("h0", "http://example.com/x.odt")), {}},
      {"another History node before the pick list ends the walk",
       " <node oor:name=\"History\">\r\n  <node oor:name=\"Other\">\r\n  </node>\r\n"
       "  <node oor:name=\"PickList\">\r\n" + Entry("h0", "file:///C:/x.odt") + "  </node>\r\n",
       {}},
  };
  for (const auto& c : cases) {
    StringList lines;
    String text = FromUtf8(c.text);
    for (int i = 1; i <= ParamXCount(text, u'\n'); ++i) lines.push_back(ParamX(text, u'\n', i));
    StringList files;
    for (const auto& e : WalkPickListLines(lines, 1)) files.push_back(e.FileName);
    EXPECT_EQ(files, c.files) << c.name;
  }
}

using OpenOfficeFixture = AppPluginFixture;

TEST_F(OpenOfficeFixture, EveryListCountsAndOnlyTheChosenDocumentGoes) {
  const std::string oo2 = CommonXcu(Entry("h0", "file:///C:/Geheim.odt") +
                                    Entry("h1", "file:///C:/Brief%20an%20Bank.odt"));
  const std::string kept = kXmlHead + kSetting + Listed("PickList", "file:///C:/Brief%20an%20Bank.odt") +
                           Ordered("PickList", 1, "file:///C:/Brief%20an%20Bank.odt");
  const std::string oo3 = kXmlHead + Listed("PickList", "file:///C:/geheim.ODT") + kSetting +
                          Ordered("PickList", 0, "file:///C:/geheim.ODT") +
                          Listed("PickList", "file:///C:/Brief%20an%20Bank.odt") +
                          Listed("URLHistory", "file:///C:/Geheim.odt") +
                          Ordered("PickList", 1, "file:///C:/Brief%20an%20Bank.odt") +
                          Ordered("URLHistory", 0, "file:///c:/geheim.odt") + "</oor:items>\n";
  File(kAppData + kOO2, oo2);
  File(kAppData + kOO3Text, CommonXcu(Entry("h0", "file:///C:/Alt.sxw")));
  File(kAppData + kOO3, oo3);
  File(kAppData + kLibre, kXmlHead + Listed("PickList", "file:///C:/Libre.odt") + "</oor:items>");
  Start();

  EXPECT_EQ(5, Scan(u"OpenOfficeMRU"));
  EXPECT_EQ(FoundData(), (StringList{u"C:\\Geheim.odt", u"C:\\Brief an Bank.odt", u"C:\\Alt.sxw",
                                      u"C:\\geheim.ODT", u"C:\\Brief an Bank.odt"}));
  EXPECT_EQ(1, Scan(u"LibreOfficeMRU"));
  EXPECT_EQ(FoundData(), StringList{u"C:\\Libre.odt"});

  Scan(u"OpenOfficeMRU");
  TOrviMRU host;
  ASSERT_TRUE(host.CleanPlugin(Plugin(u"OpenOfficeMRU"), {u"c:\\GEHEIM.odt"}));
  std::string oo2After = oo2;
  oo2After.erase(oo2.find("   <node oor:name=\"h0\""), Entry("h0", "file:///C:/Geheim.odt").size());
  EXPECT_EQ(oo2After, mem.Files->Contents(kAppData + kOO2));
  EXPECT_EQ(kept + "</oor:items>\n", mem.Files->Contents(kAppData + kOO3));
  EXPECT_EQ(1, Scan(u"LibreOfficeMRU")) << "another plug-in's list";
}

TEST_F(OpenOfficeFixture, UnreadableOrUnwritableFilesStayAsTheyWere) {
  const std::string broken = kXmlHead + Listed("PickList", "file:///C:/x.odt");  // not closed
  const std::string good = kXmlHead + Listed("PickList", "file:///C:/x.odt") + "</oor:items>\n";
  File(kAppData + kOO3, broken);
  File(kAppData + kLibre, good);
  Start();
  EXPECT_EQ(0, Scan(u"OpenOfficeMRU"));
  EXPECT_NE(Plugin(u"OpenOfficeMRU").Note.find(u"registrymodifications.xcu"), String::npos);
  EXPECT_TRUE(Plugin(u"OpenOfficeMRU").Active);

  EXPECT_EQ(1, Scan(u"LibreOfficeMRU"));
  mem.FileFaults->LockFile(kAppData + kLibre, ERROR_SHARING_VIOLATION);
  TOrviMRU host;
  EXPECT_FALSE(host.CleanPlugin(Plugin(u"LibreOfficeMRU"), {u"C:\\x.odt"}));
  EXPECT_EQ(good, mem.Files->Contents(kAppData + kLibre));
  for (const String& name : mem.Files->Names(WinPath::Parent(kAppData + kLibre)))
    EXPECT_EQ(name.find(u".~tc"), String::npos) << "a new file stayed behind: " << ToUtf8(name);
}

}  // namespace
}  // namespace tc
