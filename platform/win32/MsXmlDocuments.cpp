#include "platform/win32/MsXmlDocuments.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/common/XmlTagForms.h"
#include "platform/helpers/FileContents.h"
#include "platform/win32/ComApartment.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <msxml2.h>

namespace tc {

namespace {

// A BSTR for the span of one call.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(const String& s) : b_(SysAllocStringLen(Wide(s), static_cast<UINT>(s.size()))) {}
  ~Bstr() { SysFreeString(b_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  BSTR Get() const { return b_; }
  BSTR* Out() { return &b_; }
  String Text() const { return b_ ? FromWide(b_, SysStringLen(b_)) : String(); }

 private:
  BSTR b_ = nullptr;
};

// Releases the interface on scope exit.
template <class T>
class Ref {
 public:
  Ref() = default;
  explicit Ref(T* p) : p_(p) {}
  ~Ref() {
    if (p_) p_->Release();
  }
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  T** Out() { return &p_; }
  T* Get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  T* Detach() {
    T* p = p_;
    p_ = nullptr;
    return p;
  }

 private:
  T* p_ = nullptr;
};

IXMLDOMDocument* NewDocument() {
  for (const wchar_t* progId : {L"Msxml2.DOMDocument.6.0", L"Msxml2.DOMDocument.3.0"}) {
    CLSID clsid;
    if (FAILED(CLSIDFromProgID(progId, &clsid))) continue;
    IXMLDOMDocument* doc = nullptr;
    if (SUCCEEDED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                                   reinterpret_cast<void**>(&doc))) &&
        doc)
      return doc;
  }
  return nullptr;
}

DOMNodeType TypeOf(IXMLDOMNode* n) {
  DOMNodeType type = NODE_INVALID;
  n->get_nodeType(&type);
  return type;
}

String ValueOf(IXMLDOMNode* n) {
  VARIANT v;
  VariantInit(&v);
  String s;
  if (n->get_nodeValue(&v) == S_OK && v.vt == VT_BSTR) s = FromWide(v.bstrVal, SysStringLen(v.bstrVal));
  VariantClear(&v);
  return s;
}

bool IsBlankText(IXMLDOMNode* n) {
  if (TypeOf(n) != NODE_TEXT) return false;
  for (char16_t c : ValueOf(n))
    if (c != u' ' && c != u'\t' && c != u'\r' && c != u'\n') return false;
  return true;
}

// The node's child nodes in order, each holding a reference the caller releases.
std::vector<IXMLDOMNode*> AllChildren(IXMLDOMNode* node) {
  std::vector<IXMLDOMNode*> out;
  IXMLDOMNode* child = nullptr;
  if (node->get_firstChild(&child) != S_OK) return out;
  while (child) {
    out.push_back(child);
    IXMLDOMNode* next = nullptr;
    if (child->get_nextSibling(&next) != S_OK) next = nullptr;
    child = next;
  }
  return out;
}

void ReleaseAll(std::vector<IXMLDOMNode*>& nodes) {
  for (auto* n : nodes) n->Release();
  nodes.clear();
}

// Text of the element's descendants, white-space-only pieces left out.
void AppendText(IXMLDOMNode* node, String& out) {
  auto children = AllChildren(node);
  for (auto* c : children) {
    const DOMNodeType type = TypeOf(c);
    if ((type == NODE_TEXT || type == NODE_CDATA_SECTION) && !IsBlankText(c))
      out += ValueOf(c);
    else if (type == NODE_ELEMENT)
      AppendText(c, out);
  }
  ReleaseAll(children);
}

bool HasUtf8Bom(const Bytes& b) { return b.size() >= 3 && b[0] == 0xEF && b[1] == 0xBB && b[2] == 0xBF; }

// Gives the saved bytes the loaded file's line ends and UTF-8 byte order mark: parsers
// turn CRLF into LF, and writers differ in both.
Bytes LikeTheOriginal(Bytes out, bool crlf, bool bom) {
  if (crlf) {
    Bytes fixed;
    fixed.reserve(out.size() + out.size() / 16);
    for (size_t i = 0; i < out.size(); ++i) {
      if (out[i] == '\n' && (i == 0 || out[i - 1] != '\r')) fixed.push_back('\r');
      fixed.push_back(out[i]);
    }
    out.swap(fixed);
  }
  if (bom && !HasUtf8Bom(out)) out.insert(out.begin(), {0xEF, 0xBB, 0xBF});
  if (!bom && HasUtf8Bom(out)) out.erase(out.begin(), out.begin() + 3);
  return out;
}

// The element and its descendant elements in document order, each holding a reference.
void CollectElements(IXMLDOMNode* node, std::vector<IXMLDOMNode*>& out) {
  for (IXMLDOMNode* c : AllChildren(node)) {
    if (TypeOf(c) == NODE_ELEMENT) {
      out.push_back(c);
      CollectElements(c, out);
    } else {
      c->Release();
    }
  }
}

class MsXmlDocument : public IXmlDocument {
 public:
  explicit MsXmlDocument(std::shared_ptr<IFileSystem> files)
      : files_(std::move(files)), doc_(NewDocument()) {}
  ~MsXmlDocument() override {
    ReleaseAll(nodes_);
    if (doc_) doc_->Release();
  }  // COM is uninitialised after this, as com_ is destroyed last

  bool Load(const String& path) override {
    if (!doc_) return false;
    ReleaseAll(nodes_);
    Bytes raw;
    if (FileContents::Read(*files_, path, raw) != ERROR_SUCCESS) return false;
    crlf_ = std::search(raw.begin(), raw.end(), kCrLf, kCrLf + 2) != raw.end();
    bom_ = HasUtf8Bom(raw);
    doc_->put_async(VARIANT_FALSE);
    doc_->put_validateOnParse(VARIANT_FALSE);
    doc_->put_resolveExternals(VARIANT_FALSE);
    doc_->put_preserveWhiteSpace(VARIANT_TRUE);  // a save keeps the file's layout
    // Given as bytes, the parser honours the file's byte order mark and declared encoding.
    SAFEARRAY* bytes = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(raw.size()));
    if (!bytes) return false;
    void* data = nullptr;
    if (SUCCEEDED(SafeArrayAccessData(bytes, &data))) {
      if (!raw.empty()) std::memcpy(data, raw.data(), raw.size());
      SafeArrayUnaccessData(bytes);
    }
    VARIANT source;
    VariantInit(&source);
    source.vt = VT_ARRAY | VT_UI1;
    source.parray = bytes;
    VARIANT_BOOL ok = VARIANT_FALSE;
    const HRESULT hr = doc_->load(source, &ok);
    VariantClear(&source);
    if (FAILED(hr) || ok != VARIANT_TRUE) return false;
    KeepEmptyPairs(SelfClosingTags(MarkupText(raw)));
    return true;
  }

  bool Save(const String& path) override {
    if (!doc_) return false;
    Ref<IStream> stream;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()))) return false;
    VARIANT target;
    VariantInit(&target);
    target.vt = VT_UNKNOWN;
    target.punkVal = stream.Get();
    if (FAILED(doc_->save(target))) return false;
    HGLOBAL memory = nullptr;
    STATSTG stat{};
    if (FAILED(GetHGlobalFromStream(stream.Get(), &memory)) ||
        FAILED(stream->Stat(&stat, STATFLAG_NONAME)))
      return false;
    const auto* p = static_cast<const uint8_t*>(GlobalLock(memory));
    if (!p) return false;
    Bytes out(p, p + static_cast<size_t>(stat.cbSize.QuadPart));
    GlobalUnlock(memory);
    return FileContents::Replace(*files_, path, LikeTheOriginal(std::move(out), crlf_, bom_)) ==
           ERROR_SUCCESS;
  }

  XmlNode DocumentElement() override {
    if (!doc_) return 0;
    IXMLDOMElement* root = nullptr;
    if (doc_->get_documentElement(&root) != S_OK || !root) return 0;
    return Keep(root);
  }

  size_t ChildCount(XmlNode node) override {
    if (!node) return 0;
    auto children = Visible(node);
    const size_t n = children.size();
    ReleaseAll(children);
    return n;
  }

  XmlNode Child(XmlNode node, size_t index) override {
    if (!node) return 0;
    auto children = Visible(node);
    XmlNode found = 0;
    if (index < children.size()) {
      children[index]->AddRef();
      found = Keep(children[index]);
    }
    ReleaseAll(children);
    return found;
  }

  String NodeName(XmlNode node) override {
    if (!node) return {};
    Bstr name;
    AsNode(node)->get_nodeName(name.Out());
    return name.Text();
  }

  String NodeText(XmlNode node) override {
    if (!node) return {};
    if (TypeOf(AsNode(node)) != NODE_ELEMENT) return ValueOf(AsNode(node));
    String text;
    AppendText(AsNode(node), text);
    return text;
  }

  String Attribute(XmlNode node, const String& name) override {
    if (!node) return {};
    Ref<IXMLDOMElement> element;
    if (FAILED(AsNode(node)->QueryInterface(IID_IXMLDOMElement,
                                            reinterpret_cast<void**>(element.Out()))) ||
        !element)
      return {};
    Bstr attr(name);
    VARIANT value;
    VariantInit(&value);
    String result;
    if (element->getAttribute(attr.Get(), &value) == S_OK && value.vt == VT_BSTR)
      result = FromWide(value.bstrVal, SysStringLen(value.bstrVal));
    VariantClear(&value);
    return result;
  }

  void RemoveChild(XmlNode node, size_t index) override {
    if (!node) return;
    IXMLDOMNode* parent = AsNode(node);
    auto all = AllChildren(parent);
    size_t visible = 0;
    for (size_t i = 0; i < all.size(); ++i) {
      if (IsBlankText(all[i])) continue;
      if (visible++ != index) continue;
      // The white space in front goes with it, so no blank line is left behind.
      if (i > 0 && IsBlankText(all[i - 1])) Remove(parent, all[i - 1]);
      Remove(parent, all[i]);
      break;
    }
    ReleaseAll(all);
  }

  std::vector<XmlNode> Children(XmlNode node) override {
    std::vector<XmlNode> out;
    if (!node) return out;
    for (IXMLDOMNode* c : Visible(node)) out.push_back(Keep(c));
    return out;
  }

  void Remove(XmlNode node) override {
    if (!node) return;
    IXMLDOMNode* child = AsNode(node);
    Ref<IXMLDOMNode> parent;
    if (child->get_parentNode(parent.Out()) != S_OK || !parent) return;
    Ref<IXMLDOMNode> before;
    if (child->get_previousSibling(before.Out()) == S_OK && before && IsBlankText(before.Get()))
      Remove(parent.Get(), before.Get());
    Remove(parent.Get(), child);
  }

 private:
  static IXMLDOMNode* AsNode(XmlNode node) { return reinterpret_cast<IXMLDOMNode*>(node); }

  static void Remove(IXMLDOMNode* parent, IXMLDOMNode* child) {
    IXMLDOMNode* removed = nullptr;
    if (SUCCEEDED(parent->removeChild(child, &removed)) && removed) removed->Release();
  }

  // Handles stay valid while the document lives: it holds one reference to each.
  XmlNode Keep(IXMLDOMNode* node) {
    nodes_.push_back(node);
    return reinterpret_cast<XmlNode>(node);
  }

  std::vector<IXMLDOMNode*> Visible(XmlNode node) {
    auto all = AllChildren(AsNode(node));
    std::vector<IXMLDOMNode*> out;
    for (auto* c : all) {
      if (IsBlankText(c))
        c->Release();
      else
        out.push_back(c);
    }
    return out;
  }

  // MSXML writes every element without children as "<x/>"; an empty text child makes it
  // write "<x></x>" again where the file had the pair.
  void KeepEmptyPairs(const std::vector<bool>& selfClosing) {
    std::vector<IXMLDOMNode*> elements;
    CollectElements(doc_, elements);
    if (elements.size() == selfClosing.size()) {  // else markup the scan cannot follow
      Bstr empty(String{});
      for (size_t i = 0; i < elements.size(); ++i) {
        VARIANT_BOOL has = VARIANT_FALSE;
        // S_FALSE says "no children".
        if (selfClosing[i] || FAILED(elements[i]->hasChildNodes(&has)) || has) continue;
        Ref<IXMLDOMText> text;
        if (FAILED(doc_->createTextNode(empty.Get(), text.Out())) || !text) continue;
        IXMLDOMNode* added = nullptr;
        if (SUCCEEDED(elements[i]->appendChild(text.Get(), &added)) && added) added->Release();
      }
    }
    ReleaseAll(elements);
  }

  static constexpr uint8_t kCrLf[] = {'\r', '\n'};

  ComApartment com_;  // first member: initialised before and uninitialised after the rest
  std::shared_ptr<IFileSystem> files_;
  IXMLDOMDocument* doc_;
  std::vector<IXMLDOMNode*> nodes_;
  bool crlf_ = false;
  bool bom_ = false;
};

}  // namespace

MsXmlDocuments::MsXmlDocuments(std::shared_ptr<IFileSystem> files) : files_(std::move(files)) {}

std::unique_ptr<IXmlDocument> MsXmlDocuments::Create() {
  return std::make_unique<MsXmlDocument>(files_);
}

}  // namespace tc
