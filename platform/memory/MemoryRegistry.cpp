#include "platform/memory/MemoryRegistry.h"

#include <list>
#include <unordered_map>

#include "platform/helpers/RegData.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

struct MemoryRegistry::Node {
  String Name;
  std::list<RegNamedValue> Values;                // creation order
  std::map<String, std::unique_ptr<Node>> Keys;   // by upper-cased name: the order hives keep
  // Upper-cased value name to its place, so keys of 100,000 values stay quick.
  std::unordered_map<String, std::list<RegNamedValue>::iterator> ValueIndex;

  std::list<RegNamedValue>::iterator FindValue(const String& name) {
    auto it = ValueIndex.find(UpperCase(name));
    return it == ValueIndex.end() ? Values.end() : it->second;
  }
  void AddValue(const String& name, const RegValue& value) {
    Values.push_back({name, value});
    ValueIndex[UpperCase(name)] = std::prev(Values.end());
  }
  void EraseValue(std::list<RegNamedValue>::iterator it) {
    ValueIndex.erase(UpperCase(it->Name));
    Values.erase(it);
  }
};

namespace {

StringList SplitKey(const String& key) {
  StringList parts;
  size_t start = 0;
  while (start <= key.size()) {
    size_t pos = key.find(u'\\', start);
    if (pos == String::npos) pos = key.size();
    if (pos > start) parts.push_back(key.substr(start, pos - start));
    start = pos + 1;
  }
  return parts;
}

}  // namespace

MemoryRegistry::MemoryRegistry() {
  for (HKEY root : {kHKEY_CLASSES_ROOT, kHKEY_CURRENT_USER, kHKEY_LOCAL_MACHINE, kHKEY_USERS}) {
    roots_[root] = std::make_unique<Node>();
  }
}

MemoryRegistry::~MemoryRegistry() = default;

MemoryRegistry::Node* MemoryRegistry::Root(HKEY root) {
  auto it = roots_.find(root);
  return it == roots_.end() ? nullptr : it->second.get();
}

uint32_t MemoryRegistry::Find(HKEY root, const String& key, Node*& node) {
  node = Root(root);
  if (!node) return ERROR_INVALID_HANDLE;
  for (const String& part : SplitKey(key)) {
    auto it = node->Keys.find(UpperCase(part));
    if (it == node->Keys.end()) {
      node = nullptr;
      return ERROR_FILE_NOT_FOUND;
    }
    node = it->second.get();
  }
  return ERROR_SUCCESS;
}

void MemoryRegistry::Record(RegWrite::Kind what, HKEY root, const String& key,
                            const String& name, const RegValue* value) {
  if (!recording_) return;
  RegWrite w;
  w.What = what;
  w.Root = root;
  w.Key = key;
  w.Name = name;
  if (value) w.Value = *value;
  writes_.push_back(std::move(w));
}

uint32_t MemoryRegistry::KeyExists(HKEY root, const String& key, RegView) {
  Node* node;
  return Find(root, key, node);
}

uint32_t MemoryRegistry::CreateKey(HKEY root, const String& key, RegView) {
  Node* node = Root(root);
  if (!node) return ERROR_INVALID_HANDLE;
  for (const String& part : SplitKey(key)) {
    auto& slot = node->Keys[UpperCase(part)];
    if (!slot) {
      slot = std::make_unique<Node>();
      slot->Name = part;
    }
    node = slot.get();
  }
  return ERROR_SUCCESS;
}

uint32_t MemoryRegistry::EnumKeys(HKEY root, const String& key, StringList& names, RegView) {
  names.clear();
  Node* node;
  if (uint32_t rc = Find(root, key, node)) return rc;
  for (const auto& [upper, child] : node->Keys) names.push_back(child->Name);
  return ERROR_SUCCESS;
}

uint32_t MemoryRegistry::EnumValues(HKEY root, const String& key,
                                    std::vector<RegNamedValue>& values, RegView) {
  values.clear();
  Node* node;
  if (uint32_t rc = Find(root, key, node)) return rc;
  values.assign(node->Values.begin(), node->Values.end());
  return ERROR_SUCCESS;
}

uint32_t MemoryRegistry::QueryValue(HKEY root, const String& key, const String& name,
                                    RegValue& value, RegView) {
  Node* node;
  if (uint32_t rc = Find(root, key, node)) return rc;
  auto it = node->FindValue(name);
  if (it == node->Values.end()) return ERROR_FILE_NOT_FOUND;
  value = it->Value;
  return ERROR_SUCCESS;
}

uint32_t MemoryRegistry::SetValue(HKEY root, const String& key, const String& name,
                                  const RegValue& value, RegView) {
  Node* node;
  if (uint32_t rc = Find(root, key, node)) return rc;
  auto it = node->FindValue(name);
  if (it != node->Values.end()) {
    it->Value = value;  // keeps its place and the case it was created with
  } else {
    node->AddValue(name, value);
  }
  Record(RegWrite::Kind::SetValue, root, key, name, &value);
  return ERROR_SUCCESS;
}

uint32_t MemoryRegistry::DeleteValue(HKEY root, const String& key, const String& name,
                                     RegView) {
  Node* node;
  if (uint32_t rc = Find(root, key, node)) return rc;
  auto it = node->FindValue(name);
  if (it == node->Values.end()) return ERROR_FILE_NOT_FOUND;
  node->EraseValue(it);
  Record(RegWrite::Kind::DeleteValue, root, key, name, nullptr);
  return ERROR_SUCCESS;
}

uint32_t MemoryRegistry::DeleteKeyTree(HKEY root, const String& key, RegView) {
  StringList parts = SplitKey(key);
  Node* parent = Root(root);
  if (!parent) return ERROR_INVALID_HANDLE;
  if (parts.empty()) return ERROR_ACCESS_DENIED;
  for (size_t i = 0; i + 1 < parts.size(); ++i) {
    auto it = parent->Keys.find(UpperCase(parts[i]));
    if (it == parent->Keys.end()) return ERROR_FILE_NOT_FOUND;
    parent = it->second.get();
  }
  if (parent->Keys.erase(UpperCase(parts.back())) == 0) return ERROR_FILE_NOT_FOUND;
  Record(RegWrite::Kind::DeleteKeyTree, root, key, String(), nullptr);
  return ERROR_SUCCESS;
}

uint32_t MemoryRegistry::Flush() { return ERROR_SUCCESS; }

uint32_t MemoryRegistry::Put(HKEY root, const String& key, const String& name,
                             const RegValue& value) {
  if (uint32_t rc = CreateKey(root, key, RegView::Default)) return rc;
  bool wasRecording = recording_;
  recording_ = false;  // seeding is not a write under test
  uint32_t rc = SetValue(root, key, name, value, RegView::Default);
  recording_ = wasRecording;
  return rc;
}

uint32_t MemoryRegistry::PutString(HKEY root, const String& key, const String& name,
                                   const String& text) {
  return Put(root, key, name, RegData::Sz(text));
}

uint32_t MemoryRegistry::PutDword(HKEY root, const String& key, const String& name,
                                  uint32_t number) {
  return Put(root, key, name, RegData::Dword(number));
}

uint32_t MemoryRegistry::PutMultiString(HKEY root, const String& key, const String& name,
                                        const StringList& lines) {
  return Put(root, key, name, RegData::MultiSz(lines));
}

uint32_t MemoryRegistry::PutBinary(HKEY root, const String& key, const String& name,
                                   const Bytes& data) {
  return Put(root, key, name, RegData::Binary(data));
}

bool MemoryRegistry::HasKey(HKEY root, const String& key) {
  Node* node;
  return Find(root, key, node) == ERROR_SUCCESS;
}

bool MemoryRegistry::HasValue(HKEY root, const String& key, const String& name) {
  RegValue v;
  return QueryValue(root, key, name, v, RegView::Default) == ERROR_SUCCESS;
}

String MemoryRegistry::GetString(HKEY root, const String& key, const String& name) {
  RegValue v;
  if (QueryValue(root, key, name, v, RegView::Default) != ERROR_SUCCESS) return String();
  return RegData::Text(v);
}

StringList MemoryRegistry::ValueNames(HKEY root, const String& key) {
  std::vector<RegNamedValue> values;
  EnumValues(root, key, values, RegView::Default);
  StringList names;
  for (const auto& v : values) names.push_back(v.Name);
  return names;
}

StringList MemoryRegistry::KeyNames(HKEY root, const String& key) {
  StringList names;
  EnumKeys(root, key, names, RegView::Default);
  return names;
}

}  // namespace tc
