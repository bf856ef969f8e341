// Conversions at the edges: UTF-8 for POSIX paths, console and JSON; Windows-1252 for
// files read with the default single-byte conversion; UTF-16LE for registry data.
#pragma once
#include <string>
#include <string_view>

#include "platform/WinTypes.h"

namespace tc {

std::string ToUtf8(std::u16string_view s);
String FromUtf8(std::string_view s);
// For names the file system stores as bytes: a byte that is not part of valid UTF-8 becomes
// U+DC00 + byte (a lone surrogate) and goes back to that byte, so every name round-trips.
String FromUtf8Lossless(std::string_view s);
std::string ToUtf8Lossless(std::u16string_view s);
// Windows-1252; characters it cannot hold become '?'.
std::string ToAnsi(std::u16string_view s);
String FromAnsi(std::string_view s);
// UTF-16LE bytes, without terminator.
Bytes ToUtf16LE(std::u16string_view s);
// Reads UTF-16LE bytes; an odd trailing byte is dropped.
String FromUtf16LE(const uint8_t* data, size_t size);

// ASCII-only case folding ("ordinal ignore case").
char16_t UpCaseAscii(char16_t c);
// Case folding for Latin letters incl. Latin-1 and Latin Extended-A, as Windows' locale
// comparison does for the texts this system handles.
char16_t UpCaseChar(char16_t c);
String UpperCase(std::u16string_view s);
String LowerCase(std::u16string_view s);
bool SameText(std::u16string_view a, std::u16string_view b);
// Locale-aware, case-insensitive comparison (<0, 0, >0).
int CompareText(std::u16string_view a, std::u16string_view b);
// Ordinal comparison with only ASCII letters folded.
int CompareTextOrdinal(std::u16string_view a, std::u16string_view b);

}  // namespace tc
