#include "platform/common/PugiXmlDocuments.h"

#include <pugixml.hpp>

#include "platform/common/XmlTagForms.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

// Everything kept: no line-end or attribute white-space conversion, white-space text kept,
// also between the top-level nodes (which only fragment mode stores).
constexpr unsigned kParseOptions = (pugi::parse_full | pugi::parse_ws_pcdata | pugi::parse_fragment) &
                                   ~(pugi::parse_eol | pugi::parse_wconv_attribute);

bool IsBlankText(const pugi::xml_node& n) {
  if (n.type() != pugi::node_pcdata) return false;
  for (const char* p = n.value(); *p; ++p) {
    if (*p != ' ' && *p != '\t' && *p != '\r' && *p != '\n') return false;
  }
  return true;
}

// Fragment mode accepts any top level; a document has one element and only white space
// besides its declaration, comments and processing instructions.
bool WellFormedTop(const pugi::xml_document& doc) {
  int elements = 0;
  for (pugi::xml_node c = doc.first_child(); c; c = c.next_sibling()) {
    if (c.type() == pugi::node_element) ++elements;
    if ((c.type() == pugi::node_pcdata && !IsBlankText(c)) || c.type() == pugi::node_cdata) {
      return false;
    }
  }
  return elements == 1;
}

pugi::xml_node NodeOf(XmlNode handle) {
  return pugi::xml_node(reinterpret_cast<pugi::xml_node_struct*>(handle));
}

XmlNode HandleOf(const pugi::xml_node& node) {
  return reinterpret_cast<XmlNode>(node.internal_object());
}

pugi::xml_node VisibleChild(pugi::xml_node parent, size_t index) {
  for (pugi::xml_node c = parent.first_child(); c; c = c.next_sibling()) {
    if (IsBlankText(c)) continue;
    if (index-- == 0) return c;
  }
  return pugi::xml_node();
}

void AppendText(const pugi::xml_node& node, std::string& out) {
  for (pugi::xml_node c = node.first_child(); c; c = c.next_sibling()) {
    if (c.type() == pugi::node_pcdata || c.type() == pugi::node_cdata) {
      if (!IsBlankText(c)) out += c.value();
    } else if (c.type() == pugi::node_element) {
      AppendText(c, out);
    }
  }
}

// pugixml writes every element without children as "<x/>"; an empty text child makes it
// write "<x></x>" again where the file had the pair.
void KeepEmptyPairs(pugi::xml_document& doc, const std::vector<bool>& selfClosing) {
  struct Walker : pugi::xml_tree_walker {
    std::vector<pugi::xml_node> elements;
    bool for_each(pugi::xml_node& node) override {
      if (node.type() == pugi::node_element) elements.push_back(node);
      return true;
    }
  } walker;
  doc.traverse(walker);
  if (walker.elements.size() != selfClosing.size()) return;  // markup the scan cannot follow
  for (size_t i = 0; i < selfClosing.size(); ++i)
    if (!selfClosing[i] && !walker.elements[i].first_child())
      walker.elements[i].append_child(pugi::node_pcdata);
}

class ByteWriter : public pugi::xml_writer {
 public:
  explicit ByteWriter(Bytes& out) : out_(out) {}
  void write(const void* data, size_t size) override {
    const uint8_t* p = static_cast<const uint8_t*>(data);
    out_.insert(out_.end(), p, p + size);
  }

 private:
  Bytes& out_;
};

class PugiXmlDocument : public IXmlDocument {
 public:
  explicit PugiXmlDocument(std::shared_ptr<IFileSystem> files) : files_(std::move(files)) {}

  bool Load(const String& path) override {
    Bytes raw;
    if (FileContents::Read(*files_, path, raw) != ERROR_SUCCESS) return false;
    pugi::xml_parse_result result = doc_.load_buffer(raw.data(), raw.size(), kParseOptions);
    if (!result || !WellFormedTop(doc_)) {
      doc_.reset();
      return false;
    }
    encoding_ = result.encoding;
    KeepEmptyPairs(doc_, SelfClosingTags(MarkupText(raw)));
    bom_ = (raw.size() >= 3 && raw[0] == 0xEF && raw[1] == 0xBB && raw[2] == 0xBF) ||
           (raw.size() >= 2 && ((raw[0] == 0xFF && raw[1] == 0xFE) ||
                                (raw[0] == 0xFE && raw[1] == 0xFF)));
    return true;
  }

  bool Save(const String& path) override {
    Bytes out;
    ByteWriter writer(out);
    unsigned flags = pugi::format_raw | pugi::format_no_declaration;
    if (bom_) flags |= pugi::format_write_bom;
    doc_.save(writer, "", flags, encoding_);
    return FileContents::Replace(*files_, path, out) == ERROR_SUCCESS;
  }

  XmlNode DocumentElement() override { return HandleOf(doc_.document_element()); }

  size_t ChildCount(XmlNode node) override {
    if (!node) return 0;
    size_t n = 0;
    for (pugi::xml_node c = NodeOf(node).first_child(); c; c = c.next_sibling()) {
      if (!IsBlankText(c)) ++n;
    }
    return n;
  }

  XmlNode Child(XmlNode node, size_t index) override {
    if (!node) return 0;
    return HandleOf(VisibleChild(NodeOf(node), index));
  }

  String NodeName(XmlNode node) override {
    if (!node) return String();
    pugi::xml_node n = NodeOf(node);
    switch (n.type()) {
      case pugi::node_pcdata:
        return u"#text";
      case pugi::node_cdata:
        return u"#cdata-section";
      case pugi::node_comment:
        return u"#comment";
      default:
        return FromUtf8(n.name());
    }
  }

  String NodeText(XmlNode node) override {
    if (!node) return String();
    pugi::xml_node n = NodeOf(node);
    if (n.type() != pugi::node_element) return FromUtf8(n.value());
    std::string text;
    AppendText(n, text);
    return FromUtf8(text);
  }

  String Attribute(XmlNode node, const String& name) override {
    if (!node) return String();
    return FromUtf8(NodeOf(node).attribute(ToUtf8(name).c_str()).value());
  }

  void RemoveChild(XmlNode node, size_t index) override {
    if (!node) return;
    RemoveNode(VisibleChild(NodeOf(node), index));
  }

  std::vector<XmlNode> Children(XmlNode node) override {
    std::vector<XmlNode> out;
    if (!node) return out;
    for (pugi::xml_node c = NodeOf(node).first_child(); c; c = c.next_sibling()) {
      if (!IsBlankText(c)) out.push_back(HandleOf(c));
    }
    return out;
  }

  void Remove(XmlNode node) override {
    if (node) RemoveNode(NodeOf(node));
  }

 private:
  static void RemoveNode(const pugi::xml_node& child) {
    pugi::xml_node parent = child.parent();
    if (!child || !parent) return;
    pugi::xml_node before = child.previous_sibling();
    if (before && IsBlankText(before)) parent.remove_child(before);
    parent.remove_child(child);
  }

  std::shared_ptr<IFileSystem> files_;
  pugi::xml_document doc_;
  pugi::xml_encoding encoding_ = pugi::encoding_utf8;
  bool bom_ = false;
};

}  // namespace

PugiXmlDocuments::PugiXmlDocuments(std::shared_ptr<IFileSystem> files)
    : files_(std::move(files)) {}

std::unique_ptr<IXmlDocument> PugiXmlDocuments::Create() {
  return std::make_unique<PugiXmlDocument>(files_);
}

}  // namespace tc
