// Text files of a Mozilla profile: read whole, split into lines as the runtime's text files
// read them (CR, LF or CR LF end a line), converted with the ANSI code page.
#pragma once
#include <string>
#include <string_view>

#include "platform/WinTypes.h"

namespace tc {

// The file's bytes; false when it cannot be opened or read.
bool ReadProfileFile(const String& Path, std::string& Data);
// Writes the bytes beside the file, then renames them over it.
bool ReplaceProfileFile(const String& Path, std::string_view Data);
// Text holds no NUL byte; anything else is a binary or damaged file.
bool IsText(std::string_view Data);
StringList AnsiLines(std::string_view Data);

// Calls Line(text) for each line of Data, without its line break.
template <class F>
void ForEachLine(std::string_view Data, F&& Line) {
  size_t start = 0;
  const size_t n = Data.size();
  while (start < n) {
    size_t end = start;
    while (end < n && Data[end] != '\n' && Data[end] != '\r') ++end;
    Line(Data.substr(start, end - start));
    if (end + 1 < n && Data[end] == '\r' && Data[end + 1] == '\n') ++end;
    start = end + 1;
  }
}
// Base64 decoded up to the first character outside the alphabet, read as UTF-8.
String DecodeBase64Utf8(const String& Text);

}  // namespace tc
