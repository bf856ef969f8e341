// What every IXmlDocuments does with an OpenOffice settings file: the same children, names
// and texts, and a save that keeps everything not removed, byte for byte. Instantiated once
// per implementation with the documents class, made over the in-memory file system.
#pragma once
#include <gtest/gtest.h>

#include "platform/XmlDocument.h"
#include "platform/memory/MemoryPlatform.h"
#include "tests/support/CrashPointSweep.h"

namespace tc {

// The shape of OpenOffice's registrymodifications.xcu, with CRLF line ends.
inline const std::string kXcu =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<!-- kept <comment/> -->\r\n"
    "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\">\r\n"
    "<item oor:path=\"/org.openoffice.Office.Histories/Histories/org.openoffice.Office.Histories:"
    "HistoryInfo['PickList']/ItemList\"><node oor:name=\"file:///C:/a%20b.odt\" oor:op=\"replace\">"
    "<prop oor:name=\"Title\"><value>A &amp; B</value></prop><prop oor:name=\"Password\"><value>"
    "</value></prop><prop oor:name=\"Thumbnail\"><value/></prop></node></item>\r\n"
    "<!-- between -->\r\n"
    "<item oor:path=\"/org.openoffice.Setup/L10N\"><prop oor:name=\"ooLocale\"><value>de</value>"
    "</prop></item>\r\n"
    "</oor:items>\r\n";

template <typename Documents>
class XmlDocumentsTest : public ::testing::Test {
 protected:
  MemoryWindows mem = MakeMemoryWindows();
  Documents xml{mem.FileFaults};
  const String path = u"C:\\oo\\registrymodifications.xcu";
};

TYPED_TEST_SUITE_P(XmlDocumentsTest);

TYPED_TEST_P(XmlDocumentsTest, WalksChildrenAttributesAndText) {
  this->mem.Files->AddFile(this->path, kXcu);
  auto doc = this->xml.Create();
  ASSERT_TRUE(doc->Load(this->path));
  XmlNode root = doc->DocumentElement();
  EXPECT_EQ(u"oor:items", doc->NodeName(root));
  ASSERT_EQ(3u, doc->ChildCount(root));  // white space is no child, the comment is
  EXPECT_EQ(u" between ", doc->NodeText(doc->Child(root, 1)));
  XmlNode item = doc->Child(root, 0);
  XmlNode node = doc->Child(item, 0);
  EXPECT_EQ(u"file:///C:/a%20b.odt", doc->Attribute(node, u"oor:name"));
  EXPECT_EQ(u"", doc->Attribute(node, u"missing"));
  EXPECT_EQ(u"A & B", doc->NodeText(doc->Child(node, 0)));
  EXPECT_EQ(0u, doc->Child(root, 3));
  EXPECT_EQ(u"", doc->NodeName(0));
  StringList names;
  for (XmlNode child : doc->Children(root)) names.push_back(doc->NodeName(child));
  EXPECT_EQ(names, (StringList{u"item", u"#comment", u"item"}));
  EXPECT_TRUE(doc->Children(0).empty());
}

TYPED_TEST_P(XmlDocumentsTest, SavingKeepsEverythingNotRemoved) {
  this->mem.Files->AddFile(this->path, kXcu);
  auto doc = this->xml.Create();
  ASSERT_TRUE(doc->Load(this->path));
  ASSERT_TRUE(doc->Save(this->path));
  EXPECT_EQ(kXcu, this->mem.Files->Contents(this->path));

  doc->RemoveChild(doc->DocumentElement(), 0);
  ASSERT_TRUE(doc->Save(this->path));
  std::string expected = kXcu;
  const size_t from = expected.find("\r\n<item");
  expected.erase(from, expected.find("\r\n<!--", from) - from);
  EXPECT_EQ(expected, this->mem.Files->Contents(this->path));

  doc->Remove(doc->Children(doc->DocumentElement()).back());
  ASSERT_TRUE(doc->Save(this->path));
  expected.erase(expected.find("\r\n<item"), expected.find("\r\n</oor") - expected.find("\r\n<item"));
  EXPECT_EQ(expected, this->mem.Files->Contents(this->path));
}

TYPED_TEST_P(XmlDocumentsTest, FailuresLeaveTheFileAlone) {
  auto& files = *this->mem.Files;
  auto doc = this->xml.Create();
  EXPECT_FALSE(doc->Load(u"C:\\oo\\missing.xcu"));
  for (const char* broken : {"<a><b></a>", "text only", "<a/><b/>", "<a/>text"}) {
    files.AddFile(u"C:\\oo\\broken.xcu", broken);
    EXPECT_FALSE(doc->Load(u"C:\\oo\\broken.xcu")) << broken;
    files.RemoveFile(u"C:\\oo\\broken.xcu");
  }
  files.AddFile(this->path, kXcu);
  const std::string saved = test::SweepCrashPoints(this->mem, this->path, [&] {
    ASSERT_TRUE(doc->Load(this->path));
    doc->RemoveChild(doc->DocumentElement(), 1);
    doc->Save(this->path);
  });
  EXPECT_EQ(std::string::npos, saved.find("between")) << saved;
  EXPECT_NE(std::string::npos, saved.find("ooLocale")) << saved;
}

REGISTER_TYPED_TEST_SUITE_P(XmlDocumentsTest, WalksChildrenAttributesAndText,
                            SavingKeepsEverythingNotRemoved, FailuresLeaveTheFileAlone);

}  // namespace tc
