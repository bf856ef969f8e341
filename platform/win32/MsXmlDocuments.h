// XML documents through MSXML (DOMDocument 6.0, else 3.0), read and saved through
// IFileSystem, so any backend's files can be edited with it.
#pragma once
#include <memory>

#include "platform/FileSystem.h"
#include "platform/XmlDocument.h"

namespace tc {

// Each document initialises COM for its thread and uninitialises it when destroyed.
// A node's children are all its child nodes except white-space-only text (kept so a save
// leaves the layout alone); names are MSXML's ("oor:items", "#text", "#comment").
// Removing a child also removes the white space just before it. Saving replaces the file
// all-or-nothing.
class MsXmlDocuments : public IXmlDocuments {
 public:
  explicit MsXmlDocuments(std::shared_ptr<IFileSystem> files);
  std::unique_ptr<IXmlDocument> Create() override;

 private:
  std::shared_ptr<IFileSystem> files_;
};

}  // namespace tc
