// Windows paths on folders of the host: drive letters map to folders, components resolve
// case-insensitively, and no resolved path leaves its drive's folder: ".." is refused and
// symbolic links are never entered.
#pragma once
#include <map>
#include <string>

#include "platform/WinTypes.h"

namespace tc {

enum class LastLink : uint8_t {
  Refuse,    // a link as last component is refused like one inside the path
  NoFollow,  // the link itself is meant
};

class DriveMap {
 public:
  // `folder` must exist; it is made absolute and free of links first. False if it is not
  // a folder.
  bool Map(char16_t letter, const std::string& folder);
  bool Has(char16_t letter) const;
  const std::map<char16_t, std::string>& Drives() const { return roots_; }
  // The host folder of a drive, "" if it is not mapped.
  std::string Root(char16_t letter) const;

  // Resolves `path` ("C:\dir\name") to a host path. With `allowMissingLast` a missing last
  // component keeps the given name (for creating it). Errors: ERROR_PATH_NOT_FOUND for an
  // unmapped drive or missing folder, ERROR_FILE_NOT_FOUND for a missing last component,
  // ERROR_INVALID_NAME for "..", ERROR_ACCESS_DENIED for a path through a link.
  uint32_t Resolve(const String& path, LastLink last, bool allowMissingLast,
                   std::string& host) const;
  // The Windows path of a host path inside a mapped drive ("" if it is in none).
  String ToWindows(const std::string& host) const;

 private:
  std::map<char16_t, std::string> roots_;  // upper-case letter -> folder without trailing '/'
};

}  // namespace tc
