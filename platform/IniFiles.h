// Private-profile (.ini) files.
#pragma once
#include "WinTypes.h"

namespace tc {

// Contract: section and key names compare case-insensitively; a missing file, section or
// key reads as the default. WriteString creates the file, section and key as needed and
// keeps every other line of the file; DeleteKey removes one key line.
class IIniFiles {
 public:
  virtual ~IIniFiles() = default;
  virtual String ReadString(const String& file, const String& section, const String& key,
                            const String& defaultValue) = 0;
  virtual uint32_t ReadSections(const String& file, StringList& sections) = 0;
  virtual uint32_t ReadKeys(const String& file, const String& section, StringList& keys) = 0;
  virtual uint32_t WriteString(const String& file, const String& section, const String& key,
                               const String& value) = 0;
  virtual uint32_t DeleteKey(const String& file, const String& section, const String& key) = 0;
};

}  // namespace tc
