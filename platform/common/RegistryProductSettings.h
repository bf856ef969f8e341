// Product settings kept as REG_DWORD 0/1 values below HKEY_CURRENT_USER.
#pragma once
#include <memory>

#include "platform/ProductSettings.h"
#include "platform/Registry.h"

namespace tc {

class RegistryProductSettings : public IProductSettings {
 public:
  static constexpr char16_t kDefaultKey[] = u"Software\\TraceCleaner";

  explicit RegistryProductSettings(std::shared_ptr<IRegistry> registry,
                                   String baseKey = kDefaultKey);

  // A value that is absent, or not a number of at least four bytes, reads as the default.
  bool ReadBool(const String& section, const String& name, bool defaultValue) override;
  uint32_t WriteBool(const String& section, const String& name, bool value) override;

  // HKEY_CURRENT_USER key of a section.
  String SectionKey(const String& section) const;

 private:
  std::shared_ptr<IRegistry> registry_;
  String baseKey_;
};

}  // namespace tc
