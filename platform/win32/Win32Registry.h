// The live registry through the wide Reg* API.
#pragma once
#include "platform/Registry.h"

namespace tc {

// Values are read and written raw (expandable strings stay unexpanded). Sub-keys are
// returned in the upper-cased order Windows keeps, also where the system at hand (Wine)
// enumerates them otherwise.
class Win32Registry : public IRegistry {
 public:
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
};

}  // namespace tc
