// A Protected Storage tests fill by hand.
#pragma once
#include <utility>

#include "platform/ProtectedStorage.h"

namespace tc {

class MemoryProtectedStorage : public IProtectedStorage {
 public:
  // Calls before a successful Open answer ERROR_INVALID_HANDLE, as a store never created.
  uint32_t Open() override;
  uint32_t EnumItems(const Guid& type, const Guid& subtype, StringList& names) override;
  uint32_t ReadItem(const Guid& type, const Guid& subtype, const String& name,
                    Bytes& data) override;
  uint32_t DeleteItem(const Guid& type, const Guid& subtype, const String& name) override;

  // Adds the item at the end of its type and subtype (creating them), or replaces its data.
  void AddItem(const Guid& type, const Guid& subtype, const String& name, Bytes data);
  // Item names of a type and subtype, in store order.
  StringList Items(const Guid& type, const Guid& subtype) const;
  // Open answers `code` (ERROR_MOD_NOT_FOUND: no "pstorec.dll"); 0 makes it work again.
  void SetOpenError(uint32_t code) { openError_ = code; }

 private:
  struct Item {
    Guid Type, Subtype;
    String Name;
    Bytes Data;
  };
  std::vector<Item>::iterator Find(const Guid& type, const Guid& subtype, const String& name);
  bool HasType(const Guid& type, const Guid& subtype) const;

  std::vector<Item> items_;
  std::vector<std::pair<Guid, Guid>> types_;  // a type stays known when its last item goes
  uint32_t openError_ = ERROR_SUCCESS;
  bool open_ = false;
};

}  // namespace tc
