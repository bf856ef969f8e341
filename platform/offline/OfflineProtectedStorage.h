// Protected Storage of an offline profile, from the user's own hive: every item is a key
// "Software\Microsoft\Protected Storage System Provider\<SID>\Data\<type>\<subtype>\<name>".
#pragma once
#include <memory>

#include "platform/ProtectedStorage.h"
#include "platform/Registry.h"

namespace tc {

// Item names stand in the key names, so items are listed and deleted without the user's
// secrets. Reading gives the "Item Data" value as stored: encrypted with keys that come from
// the user's password, which an image does not give away. A hive without the provider's key
// has no store (ERROR_FILE_NOT_FOUND from Open).
class OfflineProtectedStorage : public IProtectedStorage {
 public:
  explicit OfflineProtectedStorage(std::shared_ptr<IRegistry> registry)
      : registry_(std::move(registry)) {}
  uint32_t Open() override;
  uint32_t EnumItems(const Guid& type, const Guid& subtype, StringList& names) override;
  uint32_t ReadItem(const Guid& type, const Guid& subtype, const String& name,
                    Bytes& data) override;
  uint32_t DeleteItem(const Guid& type, const Guid& subtype, const String& name) override;

  static constexpr char16_t kProviderKey[] =
      u"Software\\Microsoft\\Protected Storage System Provider";
  // "e161255a-37c3-11d2-bcaa-00c04fd929db": how the provider names type and subtype keys.
  static String GuidText(const Guid& g);

 private:
  // The key of a type and subtype ("" when the hive has none).
  String SubtypeKey(const Guid& type, const Guid& subtype);
  String ItemKey(const Guid& type, const Guid& subtype, const String& name);
  String Child(const String& key, const String& guidText);

  std::shared_ptr<IRegistry> registry_;
  bool open_ = false;
};

}  // namespace tc
