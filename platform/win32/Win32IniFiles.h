// Private-profile files through the system's profile API.
#pragma once
#include "platform/IniFiles.h"

namespace tc {

class Win32IniFiles : public IIniFiles {
 public:
  String ReadString(const String& file, const String& section, const String& key,
                    const String& defaultValue) override;
  uint32_t ReadSections(const String& file, StringList& sections) override;
  uint32_t ReadKeys(const String& file, const String& section, StringList& keys) override;
  uint32_t WriteString(const String& file, const String& section, const String& key,
                       const String& value) override;
  uint32_t DeleteKey(const String& file, const String& section, const String& key) override;
};

}  // namespace tc
