// XML documents with pugixml, read and saved through IFileSystem. Comments, processing
// instructions, the declaration, white space, line ends and the encoding survive a save.
#pragma once
#include <memory>

#include "platform/FileSystem.h"
#include "platform/XmlDocument.h"

namespace tc {

// A node's children are all its child nodes except white-space-only text; element names
// are as written ("oor:items"), text nodes are "#text", comments "#comment". Removing a
// child also removes the white space just before it, so no blank line is left behind.
// Handles of removed nodes are invalid.
class PugiXmlDocuments : public IXmlDocuments {
 public:
  explicit PugiXmlDocuments(std::shared_ptr<IFileSystem> files);
  std::unique_ptr<IXmlDocument> Create() override;

 private:
  std::shared_ptr<IFileSystem> files_;
};

}  // namespace tc
