// Single settings of "prefs.js": user_pref("name", value); lines.
#include "browsers/MozillaText.h"
#include "browsers/TC_MozillaBrowser.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {

bool Parse_StripThrough(String& S, const String& Delimiter, String& Before) {
  Before.clear();
  size_t at = String::npos;
  if (Delimiter.size() == 1) {
    bool escaped = false;
    for (size_t i = 0; i < S.size() && at == String::npos; ++i) {
      if (escaped) escaped = false;
      else if (S[i] == Delimiter[0]) at = i;
      else if (S[i] == u'\\') escaped = true;
    }
  } else if (!Delimiter.empty()) {
    at = S.find(Delimiter);
  }
  if (at == String::npos) return false;
  Before = S.substr(0, at);
  S.erase(0, at + Delimiter.size());
  return true;
}

bool Parse_StripThrough(String& S, const String& Delimiter) {
  String before;
  return Parse_StripThrough(S, Delimiter, before);
}

bool FindPrefsSetting(const StringList& Lines, const String& Name, String& Value) {
  for (const String& line : Lines) {
    String s = line, key;
    if (!Parse_StripThrough(s, u"(") || !Parse_StripThrough(s, u"\"") ||
        !Parse_StripThrough(s, u"\"", key) || key != Name || !Parse_StripThrough(s, u","))
      continue;
    if (Parse_StripThrough(s, u")", Value)) return true;
  }
  return false;
}

void TMozillaBrowser::GetPrefsJsSetting(const String& Name, const String& Default, String& Value) {
  Value = Default;
  std::string data;
  if (!ReadProfileFile(Folder_ + u"prefs.js", data)) return;
  String raw;
  if (!FindPrefsSetting(AnsiLines(data), Name, raw)) return;
  raw = Trim(raw);
  if (!raw.empty() && raw.front() == u'"' && raw.back() == u'"')
    Value = raw.size() >= 2 ? raw.substr(1, raw.size() - 2) : String();
  else
    Value = raw;
}

}  // namespace tc
