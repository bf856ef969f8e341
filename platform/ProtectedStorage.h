// Protected Storage, the store older Internet Explorer versions keep form data and
// passwords in.
#pragma once
#include <array>

#include "WinTypes.h"

namespace tc {

struct Guid {
  uint32_t Data1 = 0;
  uint16_t Data2 = 0;
  uint16_t Data3 = 0;
  std::array<uint8_t, 8> Data4{};
  bool operator==(const Guid&) const = default;
};

// Contract: all calls work on the current user's store. Open answers ERROR_MOD_NOT_FOUND or
// ERROR_PROC_NOT_FOUND when the system has no Protected Storage (the caller then behaves as
// if store creation failed), ERROR_NOT_SUPPORTED on a backend without one. Enumerations
// give the names in the store's order; a missing type or item is ERROR_FILE_NOT_FOUND.
class IProtectedStorage {
 public:
  virtual ~IProtectedStorage() = default;
  virtual uint32_t Open() = 0;
  virtual uint32_t EnumItems(const Guid& type, const Guid& subtype, StringList& names) = 0;
  virtual uint32_t ReadItem(const Guid& type, const Guid& subtype, const String& name,
                            Bytes& data) = 0;
  virtual uint32_t DeleteItem(const Guid& type, const Guid& subtype, const String& name) = 0;
};

}  // namespace tc
