// An XML document service: load, walk children, read attributes, delete children, save.
#pragma once
#include <memory>
#include <vector>

#include "WinTypes.h"

namespace tc {

// Opaque node handle, valid while its document lives; 0 is no node.
using XmlNode = uintptr_t;

// Contract: Save keeps everything of the loaded file that was not deleted.
class IXmlDocument {
 public:
  virtual ~IXmlDocument() = default;
  virtual bool Load(const String& path) = 0;
  virtual bool Save(const String& path) = 0;
  virtual XmlNode DocumentElement() = 0;
  virtual size_t ChildCount(XmlNode node) = 0;
  virtual XmlNode Child(XmlNode node, size_t index) = 0;
  virtual String NodeName(XmlNode node) = 0;
  virtual String NodeText(XmlNode node) = 0;
  virtual String Attribute(XmlNode node, const String& name) = 0;
  virtual void RemoveChild(XmlNode node, size_t index) = 0;
  // The children Child gives, all at once, so a walk over many is linear.
  virtual std::vector<XmlNode> Children(XmlNode node) = 0;
  // Removes the node from its parent as RemoveChild does; its handle becomes invalid.
  virtual void Remove(XmlNode node) = 0;
};

class IXmlDocuments {
 public:
  virtual ~IXmlDocuments() = default;
  virtual std::unique_ptr<IXmlDocument> Create() = 0;
};

}  // namespace tc
