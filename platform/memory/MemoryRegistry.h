// The registry of the in-memory Windows: four roots, every view on the same tree.
#pragma once
#include <map>
#include <memory>

#include "platform/Registry.h"

namespace tc {

// One change made through the IRegistry interface, for tests that check what was written.
struct RegWrite {
  enum class Kind : uint8_t { SetValue, DeleteValue, DeleteKeyTree };
  Kind What = Kind::SetValue;
  HKEY Root = 0;
  String Key;
  String Name;
  RegValue Value;  // SetValue only
};

class MemoryRegistry : public IRegistry {
 public:
  MemoryRegistry();
  ~MemoryRegistry() override;

  uint32_t KeyExists(HKEY root, const String& key, RegView view) override;
  uint32_t CreateKey(HKEY root, const String& key, RegView view) override;
  uint32_t EnumKeys(HKEY root, const String& key, StringList& names, RegView view) override;
  uint32_t EnumValues(HKEY root, const String& key, std::vector<RegNamedValue>& values,
                      RegView view) override;
  uint32_t QueryValue(HKEY root, const String& key, const String& name, RegValue& value,
                      RegView view) override;
  uint32_t SetValue(HKEY root, const String& key, const String& name, const RegValue& value,
                    RegView view) override;
  uint32_t DeleteValue(HKEY root, const String& key, const String& name, RegView view) override;
  uint32_t DeleteKeyTree(HKEY root, const String& key, RegView view) override;
  uint32_t Flush() override;

  // Seeding and inspection for tests; Put* create the key and its parents.
  uint32_t Put(HKEY root, const String& key, const String& name, const RegValue& value);
  uint32_t PutString(HKEY root, const String& key, const String& name, const String& text);
  uint32_t PutDword(HKEY root, const String& key, const String& name, uint32_t number);
  uint32_t PutMultiString(HKEY root, const String& key, const String& name,
                          const StringList& lines);
  uint32_t PutBinary(HKEY root, const String& key, const String& name, const Bytes& data);
  bool HasKey(HKEY root, const String& key);
  bool HasValue(HKEY root, const String& key, const String& name);
  // The value's text (REG_SZ / REG_EXPAND_SZ up to the NUL); "" when missing.
  String GetString(HKEY root, const String& key, const String& name);
  // Value names in enumeration order; empty when the key is missing.
  StringList ValueNames(HKEY root, const String& key);
  StringList KeyNames(HKEY root, const String& key);

  // Every SetValue / DeleteValue / DeleteKeyTree call that succeeded while recording.
  void RecordWrites(bool on) { recording_ = on; }
  const std::vector<RegWrite>& Writes() const { return writes_; }
  void ClearWrites() { writes_.clear(); }

 private:
  struct Node;
  Node* Root(HKEY root);
  uint32_t Find(HKEY root, const String& key, Node*& node);
  void Record(RegWrite::Kind what, HKEY root, const String& key, const String& name,
              const RegValue* value);

  std::map<HKEY, std::unique_ptr<Node>> roots_;
  bool recording_ = false;
  std::vector<RegWrite> writes_;
};

}  // namespace tc
