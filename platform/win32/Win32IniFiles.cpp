#include "platform/win32/Win32IniFiles.h"

#include <vector>

#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>

namespace tc {

namespace {

// Calls `read(buffer, size)` with growing buffers until the answer fits; `full` is how
// many characters the API returns when it had to cut the answer.
template <class Read>
std::vector<wchar_t> ReadAll(Read read, DWORD full) {
  std::vector<wchar_t> buf(1024);
  for (;;) {
    const DWORD size = static_cast<DWORD>(buf.size());
    const DWORD got = read(buf.data(), size);
    if (got < size - full) {
      buf.resize(got);
      return buf;
    }
    buf.resize(buf.size() * 4);
  }
}

// A double-NUL-terminated list of names.
StringList Names(const std::vector<wchar_t>& list) {
  StringList names;
  size_t start = 0;
  for (size_t i = 0; i < list.size(); ++i) {
    if (list[i] == L'\0') {
      if (i > start) names.push_back(FromWide(list.data() + start, i - start));
      start = i + 1;
    }
  }
  if (start < list.size()) names.push_back(FromWide(list.data() + start, list.size() - start));
  return names;
}

}  // namespace

String Win32IniFiles::ReadString(const String& file, const String& section, const String& key,
                                 const String& defaultValue) {
  auto text = ReadAll(
      [&](wchar_t* b, DWORD n) {
        return GetPrivateProfileStringW(Wide(section), Wide(key), Wide(defaultValue), b, n,
                                        Wide(file));
      },
      1);
  return FromWide(text.data(), text.size());
}

uint32_t Win32IniFiles::ReadSections(const String& file, StringList& sections) {
  sections = Names(ReadAll(
      [&](wchar_t* b, DWORD n) { return GetPrivateProfileSectionNamesW(b, n, Wide(file)); }, 2));
  return ERROR_SUCCESS;
}

uint32_t Win32IniFiles::ReadKeys(const String& file, const String& section, StringList& keys) {
  keys = Names(ReadAll(
      [&](wchar_t* b, DWORD n) {
        return GetPrivateProfileStringW(Wide(section), nullptr, L"", b, n, Wide(file));
      },
      2));
  return ERROR_SUCCESS;
}

uint32_t Win32IniFiles::WriteString(const String& file, const String& section, const String& key,
                                    const String& value) {
  return WritePrivateProfileStringW(Wide(section), Wide(key), Wide(value), Wide(file))
             ? ERROR_SUCCESS
             : LastNativeError();
}

uint32_t Win32IniFiles::DeleteKey(const String& file, const String& section, const String& key) {
  return WritePrivateProfileStringW(Wide(section), Wide(key), nullptr, Wide(file))
             ? ERROR_SUCCESS
             : LastNativeError();
}

}  // namespace tc
