// String utilities the plug-ins share: separated items, words, paths, numbers.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// Items of `s` separated by `sep`, counted from 1; "" past the last item.
String ParamX(const String& s, char16_t sep, int n);
// Number of separated items; 0 for an empty string.
int ParamXCount(const String& s, char16_t sep);
// The text from the n-th separated item (counted from 1) to the end.
String GetRestX(const String& s, char16_t sep, int n);
// The n-th blank-separated word, counted from 1; runs of blanks separate once.
String Param(const String& s, int n);
// Every occurrence of `from` replaced by `to` (case-sensitive).
String Replace(const String& s, const String& from, const String& to);
// The last n characters.
String Right(const String& s, size_t n);
// Blanks and control characters (everything up to U+0020) removed at both ends.
String Trim(const String& s);
// Whole-string integer conversion: optional blanks before, sign, decimal or $/0x hex.
bool TryStrToInt(const String& s, int64_t& value);
int64_t StrToIntDef(const String& s, int64_t def);
// The same over the whole 64-bit range.
int64_t StrToInt64Def(const String& s, int64_t def);
String IntToStr(int64_t v);
// Reads a whole file as text with the default single-byte conversion (Windows-1252).
bool LoadFileIntoString(const String& fileName, String& text);

String IncludeTrailingPathDelimiter(const String& path);
String ExcludeTrailingPathDelimiter(const String& path);
// The path up to and including its last delimiter ('\' or ':').
String ExtractFilePath(const String& path);
String ExtractFileName(const String& path);

}  // namespace tc
