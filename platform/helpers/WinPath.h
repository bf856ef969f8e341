// Small helpers for absolute Windows paths ("C:\dir\file"), shared by the backends and
// the services built over IFileSystem.
#pragma once
#include <string_view>

#include "platform/WinTypes.h"

namespace tc {

struct WinPath {
  // `folder` + '\' + `name`, with no doubled delimiter.
  static String Join(std::u16string_view folder, std::u16string_view name);
  // Everything before the last delimiter ("C:\a\b" -> "C:\a", "C:\a" -> "C:\").
  static String Parent(std::u16string_view path);
  // The last component ("C:\a\b.txt" -> "b.txt").
  static String Name(std::u16string_view path);
  // Splits "C:\a\b" into the upper-case drive letter and its components; '/' counts as a
  // delimiter and empty components are dropped. ERROR_INVALID_NAME for anything that is
  // not an absolute drive path or holds ".", "..", wildcards or other characters Windows
  // refuses in names.
  static uint32_t Split(std::u16string_view path, char16_t& drive, StringList& parts);
  // A comparison key: upper-cased, '\' only, no trailing delimiter. Two paths naming the
  // same file on a case-insensitive volume have the same key.
  static String Key(std::u16string_view path);
};

}  // namespace tc
