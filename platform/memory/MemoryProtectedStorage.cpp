#include "platform/memory/MemoryProtectedStorage.h"

#include <algorithm>

namespace tc {

uint32_t MemoryProtectedStorage::Open() {
  if (openError_) return openError_;
  open_ = true;
  return ERROR_SUCCESS;
}

std::vector<MemoryProtectedStorage::Item>::iterator MemoryProtectedStorage::Find(
    const Guid& type, const Guid& subtype, const String& name) {
  return std::find_if(items_.begin(), items_.end(), [&](const Item& i) {
    return i.Type == type && i.Subtype == subtype && i.Name == name;
  });
}

bool MemoryProtectedStorage::HasType(const Guid& type, const Guid& subtype) const {
  return std::find(types_.begin(), types_.end(), std::make_pair(type, subtype)) != types_.end();
}

uint32_t MemoryProtectedStorage::EnumItems(const Guid& type, const Guid& subtype,
                                           StringList& names) {
  names.clear();
  if (!open_) return ERROR_INVALID_HANDLE;
  if (!HasType(type, subtype)) return ERROR_FILE_NOT_FOUND;
  names = Items(type, subtype);
  return ERROR_SUCCESS;
}

uint32_t MemoryProtectedStorage::ReadItem(const Guid& type, const Guid& subtype,
                                          const String& name, Bytes& data) {
  data.clear();
  if (!open_) return ERROR_INVALID_HANDLE;
  auto it = Find(type, subtype, name);
  if (it == items_.end()) return ERROR_FILE_NOT_FOUND;
  data = it->Data;
  return ERROR_SUCCESS;
}

uint32_t MemoryProtectedStorage::DeleteItem(const Guid& type, const Guid& subtype,
                                            const String& name) {
  if (!open_) return ERROR_INVALID_HANDLE;
  auto it = Find(type, subtype, name);
  if (it == items_.end()) return ERROR_FILE_NOT_FOUND;
  items_.erase(it);
  return ERROR_SUCCESS;
}

void MemoryProtectedStorage::AddItem(const Guid& type, const Guid& subtype, const String& name,
                                     Bytes data) {
  if (!HasType(type, subtype)) types_.emplace_back(type, subtype);
  auto it = Find(type, subtype, name);
  if (it != items_.end()) {
    it->Data = std::move(data);
  } else {
    items_.push_back({type, subtype, name, std::move(data)});
  }
}

StringList MemoryProtectedStorage::Items(const Guid& type, const Guid& subtype) const {
  StringList names;
  for (const Item& i : items_) {
    if (i.Type == type && i.Subtype == subtype) names.push_back(i.Name);
  }
  return names;
}

}  // namespace tc
