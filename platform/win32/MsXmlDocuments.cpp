#include "platform/win32/MsXmlDocuments.h"

#include <vector>

#include "platform/win32/ComApartment.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <msxml2.h>

namespace tc {

namespace {

// A BSTR for the span of one call.
class Bstr {
 public:
  explicit Bstr(const String& s) : b_(SysAllocStringLen(Wide(s), static_cast<UINT>(s.size()))) {}
  Bstr() = default;
  ~Bstr() { SysFreeString(b_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  BSTR Get() const { return b_; }
  BSTR* Out() { return &b_; }
  String Text() const { return b_ ? FromWide(b_, SysStringLen(b_)) : String(); }

 private:
  BSTR b_ = nullptr;
};

// A VARIANT holding a path, for load and save.
class PathVariant {
 public:
  explicit PathVariant(const String& path) : path_(path) {
    VariantInit(&v_);
    v_.vt = VT_BSTR;
    v_.bstrVal = path_.Get();
  }
  const VARIANT& Get() const { return v_; }

 private:
  Bstr path_;
  VARIANT v_;
};

IXMLDOMDocument* NewDocument() {
  for (const wchar_t* progId : {L"Msxml2.DOMDocument.6.0", L"Msxml2.DOMDocument.3.0"}) {
    CLSID clsid;
    if (FAILED(CLSIDFromProgID(progId, &clsid))) continue;
    IXMLDOMDocument* doc = nullptr;
    if (SUCCEEDED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IXMLDOMDocument, reinterpret_cast<void**>(&doc))) &&
        doc)
      return doc;
  }
  return nullptr;
}

class MsXmlDocument : public IXmlDocument {
 public:
  MsXmlDocument() : doc_(NewDocument()) {}
  ~MsXmlDocument() override {
    ReleaseNodes();
    if (doc_) doc_->Release();
  }  // COM is uninitialised after this, as com_ is destroyed last

  bool Load(const String& path) override {
    if (!doc_) return false;
    ReleaseNodes();
    doc_->put_async(VARIANT_FALSE);
    doc_->put_validateOnParse(VARIANT_FALSE);
    doc_->put_resolveExternals(VARIANT_FALSE);
    doc_->put_preserveWhiteSpace(VARIANT_TRUE);  // a save keeps the file's layout
    PathVariant file(path);
    VARIANT_BOOL ok = VARIANT_FALSE;
    return SUCCEEDED(doc_->load(file.Get(), &ok)) && ok == VARIANT_TRUE;
  }

  // Written beside the target, flushed and then renamed over it, so a failed save leaves
  // the old file whole.
  bool Save(const String& path) override {
    if (!doc_) return false;
    const String temp = path + u".tc-new";
    PathVariant file(temp);
    if (FAILED(doc_->save(file.Get()))) {
      DeleteFileW(Wide(temp));
      return false;
    }
    HANDLE h = CreateFileW(Wide(temp), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (h != INVALID_HANDLE_VALUE) {
      FlushFileBuffers(h);
      CloseHandle(h);
    }
    if (!MoveFileExW(Wide(temp), Wide(path), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
      DeleteFileW(Wide(temp));
      return false;
    }
    return true;
  }

  XmlNode DocumentElement() override {
    if (!doc_) return 0;
    IXMLDOMElement* root = nullptr;
    if (doc_->get_documentElement(&root) != S_OK || !root) return 0;
    return Keep(root);
  }

  size_t ChildCount(XmlNode node) override { return Elements(node).size(); }

  XmlNode Child(XmlNode node, size_t index) override {
    auto children = Elements(node);
    if (index >= children.size()) {
      for (auto* c : children) c->Release();
      return 0;
    }
    for (size_t i = 0; i < children.size(); ++i)
      if (i != index) children[i]->Release();
    return Keep(children[index]);
  }

  String NodeName(XmlNode node) override {
    if (!node) return {};
    Bstr name;
    AsNode(node)->get_nodeName(name.Out());
    return name.Text();
  }

  String NodeText(XmlNode node) override {
    if (!node) return {};
    Bstr text;
    AsNode(node)->get_text(text.Out());
    return text.Text();
  }

  String Attribute(XmlNode node, const String& name) override {
    if (!node) return {};
    IXMLDOMElement* element = nullptr;
    if (FAILED(AsNode(node)->QueryInterface(IID_IXMLDOMElement,
                                            reinterpret_cast<void**>(&element))) ||
        !element)
      return {};
    Bstr attr(name);
    VARIANT value;
    VariantInit(&value);
    String result;
    if (element->getAttribute(attr.Get(), &value) == S_OK && value.vt == VT_BSTR)
      result = FromWide(value.bstrVal, SysStringLen(value.bstrVal));
    VariantClear(&value);
    element->Release();
    return result;
  }

  void RemoveChild(XmlNode node, size_t index) override {
    if (!node) return;
    auto children = Elements(node);
    if (index < children.size()) {
      IXMLDOMNode* removed = nullptr;
      if (SUCCEEDED(AsNode(node)->removeChild(children[index], &removed)) && removed)
        removed->Release();
    }
    for (auto* c : children) c->Release();
  }

 private:
  static IXMLDOMNode* AsNode(XmlNode node) { return reinterpret_cast<IXMLDOMNode*>(node); }

  // Handles stay valid while the document lives: it holds one reference to each.
  XmlNode Keep(IXMLDOMNode* node) {
    nodes_.push_back(node);
    return reinterpret_cast<XmlNode>(node);
  }

  void ReleaseNodes() {
    for (auto* n : nodes_) n->Release();
    nodes_.clear();
  }

  // The element children of a node, each holding a reference the caller releases.
  std::vector<IXMLDOMNode*> Elements(XmlNode node) {
    std::vector<IXMLDOMNode*> out;
    if (!node) return out;
    IXMLDOMNode* child = nullptr;
    if (AsNode(node)->get_firstChild(&child) != S_OK) return out;
    while (child) {
      DOMNodeType type = NODE_INVALID;
      child->get_nodeType(&type);
      IXMLDOMNode* next = nullptr;
      if (child->get_nextSibling(&next) != S_OK) next = nullptr;
      if (type == NODE_ELEMENT)
        out.push_back(child);
      else
        child->Release();
      child = next;
    }
    return out;
  }

  ComApartment com_;  // first member: initialised before and uninitialised after the rest
  IXMLDOMDocument* doc_;
  std::vector<IXMLDOMNode*> nodes_;
};

}  // namespace

std::unique_ptr<IXmlDocument> MsXmlDocuments::Create() {
  return std::make_unique<MsXmlDocument>();
}

}  // namespace tc
