#include "platform/common/RegistryProductSettings.h"

#include "platform/helpers/RegData.h"

namespace tc {

RegistryProductSettings::RegistryProductSettings(std::shared_ptr<IRegistry> registry,
                                                 String baseKey)
    : registry_(std::move(registry)), baseKey_(std::move(baseKey)) {}

String RegistryProductSettings::SectionKey(const String& section) const {
  size_t first = section.find_first_not_of(u'\\');
  if (first == String::npos) return baseKey_;
  size_t last = section.find_last_not_of(u'\\');
  return baseKey_ + u"\\" + section.substr(first, last - first + 1);
}

bool RegistryProductSettings::ReadBool(const String& section, const String& name,
                                       bool defaultValue) {
  RegValue value;
  if (registry_->QueryValue(kHKEY_CURRENT_USER, SectionKey(section), name, value,
                            RegView::Default) != ERROR_SUCCESS) {
    return defaultValue;
  }
  uint32_t number;
  if ((value.Type != REG_DWORD && value.Type != REG_BINARY) || !RegData::Number(value, number)) {
    return defaultValue;
  }
  return number != 0;
}

uint32_t RegistryProductSettings::WriteBool(const String& section, const String& name,
                                            bool value) {
  const String key = SectionKey(section);
  if (uint32_t rc = registry_->CreateKey(kHKEY_CURRENT_USER, key, RegView::Default)) return rc;
  return registry_->SetValue(kHKEY_CURRENT_USER, key, name, RegData::Dword(value ? 1 : 0),
                             RegView::Default);
}

}  // namespace tc
