// MSXML documents behave as the pugixml ones the other builds use: same children, names,
// texts, and a save that keeps everything not removed, byte for byte.
#include "platform/win32/MsXmlDocuments.h"

#include <gtest/gtest.h>

#include "platform/FileContents.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {
namespace {

// The shape of OpenOffice's registrymodifications.xcu, with CRLF line ends.
const std::string kXcu =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<!-- kept comment -->\r\n"
    "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\">\r\n"
    "<item oor:path=\"/org.openoffice.Office.Histories/Histories/org.openoffice.Office.Histories:"
    "HistoryInfo['PickList']/ItemList\"><node oor:name=\"file:///C:/a%20b.odt\" oor:op=\"replace\">"
    "<prop oor:name=\"Title\"><value>A &amp; B</value></prop></node></item>\r\n"
    "<!-- between -->\r\n"
    "<item oor:path=\"/org.openoffice.Setup/L10N\"><prop oor:name=\"ooLocale\"><value>de</value>"
    "</prop></item>\r\n"
    "</oor:items>\r\n";

class MsXmlDocumentsTest : public ::testing::Test {
 protected:
  MemoryWindows mem = MakeMemoryWindows();
  MsXmlDocuments xml{mem.FileFaults};
  const String path = u"C:\\oo\\registrymodifications.xcu";
};

TEST_F(MsXmlDocumentsTest, WalksChildrenAttributesAndText) {
  mem.Files->AddFile(path, kXcu);
  auto doc = xml.Create();
  ASSERT_TRUE(doc->Load(path));
  XmlNode root = doc->DocumentElement();
  EXPECT_EQ(u"oor:items", doc->NodeName(root));
  ASSERT_EQ(3u, doc->ChildCount(root));  // white space is no child, the comment is
  EXPECT_EQ(u"#comment", doc->NodeName(doc->Child(root, 1)));
  EXPECT_EQ(u" between ", doc->NodeText(doc->Child(root, 1)));
  XmlNode item = doc->Child(root, 0);
  EXPECT_EQ(u"item", doc->NodeName(item));
  XmlNode node = doc->Child(item, 0);
  EXPECT_EQ(u"file:///C:/a%20b.odt", doc->Attribute(node, u"oor:name"));
  EXPECT_EQ(u"", doc->Attribute(node, u"missing"));
  EXPECT_EQ(u"A & B", doc->NodeText(doc->Child(node, 0)));
  EXPECT_EQ(0u, doc->Child(root, 3));
  EXPECT_EQ(u"", doc->NodeName(0));
}

TEST_F(MsXmlDocumentsTest, SavingKeepsEverythingNotRemoved) {
  mem.Files->AddFile(path, kXcu);
  auto doc = xml.Create();
  ASSERT_TRUE(doc->Load(path));
  ASSERT_TRUE(doc->Save(path));
  EXPECT_EQ(kXcu, mem.Files->Contents(path));

  doc->RemoveChild(doc->DocumentElement(), 0);
  ASSERT_TRUE(doc->Save(path));
  std::string expected = kXcu;
  const size_t from = expected.find("\r\n<item");
  expected.erase(from, expected.find("\r\n<!--", from) - from);
  EXPECT_EQ(expected, mem.Files->Contents(path));
}

TEST_F(MsXmlDocumentsTest, FailuresLeaveTheFileAlone) {
  auto doc = xml.Create();
  EXPECT_FALSE(doc->Load(u"C:\\oo\\missing.xcu"));
  for (const char* broken : {"<a><b></a>", "text only", "<a/><b/>", "<a/>text"}) {
    mem.Files->AddFile(u"C:\\oo\\broken.xcu", broken);
    EXPECT_FALSE(doc->Load(u"C:\\oo\\broken.xcu")) << broken;
    mem.Files->RemoveFile(u"C:\\oo\\broken.xcu");
  }
  mem.Files->AddFile(path, kXcu);
  ASSERT_TRUE(doc->Load(path));
  doc->RemoveChild(doc->DocumentElement(), 1);
  mem.FileFaults->LockFile(path, ERROR_LOCK_VIOLATION);
  EXPECT_FALSE(doc->Save(path));
  EXPECT_EQ(kXcu, mem.Files->Contents(path));
  EXPECT_FALSE(mem.Files->Exists(FileContents::TempName(path)));
}

}  // namespace
}  // namespace tc
