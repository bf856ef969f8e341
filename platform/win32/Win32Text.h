// UTF-16 strings across the wide Windows API: wchar_t is 16 bits with MinGW-w64, so the
// project's String passes through without conversion.
#pragma once
#include <cwchar>

#include "platform/WinTypes.h"

namespace tc {

static_assert(sizeof(wchar_t) == sizeof(char16_t), "the wide API needs a 16-bit wchar_t");

inline const wchar_t* Wide(const String& s) { return reinterpret_cast<const wchar_t*>(s.c_str()); }
inline wchar_t* Wide(String& s) { return reinterpret_cast<wchar_t*>(s.data()); }
inline String FromWide(const wchar_t* s) {
  return s ? String(reinterpret_cast<const char16_t*>(s), std::wcslen(s)) : String();
}
inline String FromWide(const wchar_t* s, size_t length) {
  return String(reinterpret_cast<const char16_t*>(s), length);
}

// Prefixes long absolute paths with \\?\ so the file API takes them past MAX_PATH; such
// paths are not normalised by Windows, so ".." in them is never resolved either.
String ExtendedPath(const String& path);

}  // namespace tc
