// The Windows registry as a service.
#pragma once
#include "WinTypes.h"

namespace tc {

// Which registry view a call uses; the default view unless a location asks otherwise.
enum class RegView : uint8_t { Default, Key64, Native };

struct RegValue {
  uint32_t Type = REG_NONE;
  Bytes Data;  // raw bytes as stored; strings are UTF-16LE with their terminator
};

struct RegNamedValue {
  String Name;  // "" is the key's default value
  RegValue Value;
};

// Contract (every backend):
// - A key path is relative to its root, components separated by '\', no leading
//   backslash; "" names the root itself.
// - Key and value names compare case-insensitively and keep the case they were created with.
// - EnumKeys returns sub-keys ascending by upper-cased name (the order hives keep);
//   EnumValues returns values in creation order; replacing a value keeps its position,
//   deleting one keeps the order of the rest.
// - A missing key is ERROR_FILE_NOT_FOUND, a missing value too; a root the backend does not
//   have is ERROR_INVALID_HANDLE. Nothing throws.
class IRegistry {
 public:
  virtual ~IRegistry() = default;
  virtual uint32_t KeyExists(HKEY root, const String& key, RegView view) = 0;
  // Creates the key and any missing parents; an existing key is success.
  virtual uint32_t CreateKey(HKEY root, const String& key, RegView view) = 0;
  virtual uint32_t EnumKeys(HKEY root, const String& key, StringList& names, RegView view) = 0;
  virtual uint32_t EnumValues(HKEY root, const String& key, std::vector<RegNamedValue>& values,
                              RegView view) = 0;
  virtual uint32_t QueryValue(HKEY root, const String& key, const String& name, RegValue& value,
                              RegView view) = 0;
  // The key must exist (ERROR_FILE_NOT_FOUND otherwise).
  virtual uint32_t SetValue(HKEY root, const String& key, const String& name,
                            const RegValue& value, RegView view) = 0;
  virtual uint32_t DeleteValue(HKEY root, const String& key, const String& name,
                               RegView view) = 0;
  // Deletes the key with all its sub-keys; the root itself ("") cannot be deleted
  // (ERROR_ACCESS_DENIED).
  virtual uint32_t DeleteKeyTree(HKEY root, const String& key, RegView view) = 0;
  // Makes every change so far durable (offline: writes the changed hives).
  virtual uint32_t Flush() = 0;
};

}  // namespace tc
