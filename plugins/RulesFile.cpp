#include "plugins/RulesFile.h"

#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

// Browsers the rules file tests for by name, as the folders that show them installed.
const std::pair<const char16_t*, const char16_t*> kSpecialDetects[] = {
    {u"DET_CHROME", u"%LocalAppData%\\Google\\Chrome\\User Data"},
    {u"DET_MOZILLA", u"%AppData%\\Mozilla\\Firefox"},
    {u"DET_THUNDERBIRD", u"%AppData%\\Thunderbird"},
    {u"DET_OPERA", u"%AppData%\\Opera Software"},
};

bool DecodeText(const Bytes& data, String& text) {
  text.clear();
  auto is = [&](std::initializer_list<uint8_t> bom) {
    return data.size() >= bom.size() && std::equal(bom.begin(), bom.end(), data.begin());
  };
  if (is({0xFF, 0xFE}) || is({0xFE, 0xFF})) {
    Bytes le(data.begin() + 2, data.end());
    if (data[0] == 0xFE)
      for (size_t i = 0; i + 1 < le.size(); i += 2) std::swap(le[i], le[i + 1]);
    text = FromUtf16LE(le.data(), le.size());
  } else {
    std::string_view bytes(reinterpret_cast<const char*>(data.data()), data.size());
    if (is({0xEF, 0xBB, 0xBF})) bytes.remove_prefix(3);
    text = FromUtf8(bytes);
    // Bytes that are no UTF-8 (they decode with replacement characters) are an older file in
    // the ANSI code page.
    if (text.find(u'\uFFFD') != String::npos && ToUtf8(text) != bytes) text = FromAnsi(bytes);
  }
  for (char16_t c : text)
    if (c < 0x20 && c != u'\t' && c != u'\r' && c != u'\n' && c != u'\f' && c != u'\v' &&
        c != 0x1A)
      return false;
  return true;
}

// "Detect", "Detect12" -> base "Detect"; false when digits are followed by more text.
bool SplitNumberedKey(const String& key, String& base) {
  size_t end = key.size();
  while (end > 0 && key[end - 1] >= u'0' && key[end - 1] <= u'9') --end;
  base = key.substr(0, end);
  return !base.empty();
}

StringList SplitBars(const String& s) {
  StringList parts;
  size_t start = 0;
  for (;;) {
    size_t bar = s.find(u'|', start);
    parts.push_back(Trim(s.substr(start, bar == String::npos ? String::npos : bar - start)));
    if (bar == String::npos) return parts;
    start = bar + 1;
  }
}

String WithoutTrailingDelimiters(String s) {
  while (s.size() > 1 && (s.back() == u'\\' || s.back() == u'/')) s.pop_back();
  return s;
}

bool ParseFileKey(const String& value, TRuleFileKey& key) {
  StringList parts = SplitBars(value);
  if (parts.size() < 2 || parts.size() > 3 || parts[0].empty() || parts[1].empty()) return false;
  key.Path = WithoutTrailingDelimiters(parts[0]);
  key.Masks = parts[1];
  if (parts.size() == 3) {
    if (SameText(parts[2], u"RECURSE")) key.Recurse = true;
    else if (SameText(parts[2], u"REMOVESELF")) key.Recurse = key.RemoveSelf = true;
    else return false;
  }
  return true;
}

bool ParseExclude(const String& value, TRuleExclude& ex) {
  StringList parts = SplitBars(value);
  if (parts.size() < 2 || parts[1].empty()) return false;
  if (SameText(parts[0], u"REG")) {
    ex.What = TRuleExclude::Kind::Reg;
    return ParseRulePlace(GetRestX(value, u'|', 2), true, ex.Reg);
  }
  if (parts.size() > 3) return false;
  if (SameText(parts[0], u"FILE")) ex.What = TRuleExclude::Kind::File;
  else if (SameText(parts[0], u"PATH")) ex.What = TRuleExclude::Kind::Path;
  else return false;
  ex.Path = WithoutTrailingDelimiters(parts[1]);
  ex.Masks = parts.size() == 3 ? parts[2] : String();
  if (ex.Masks.empty()) {
    if (ex.What == TRuleExclude::Kind::Path) {
      ex.Masks = u"*";
    } else {
      // FILE|C:\dir\name.ext names the file itself.
      size_t cut = ex.Path.find_last_of(u"\\/");
      if (cut == String::npos || cut + 1 >= ex.Path.size()) return false;
      ex.Masks = ex.Path.substr(cut + 1);
      ex.Path = ex.Path.substr(0, cut);
    }
  }
  return true;
}

// Applies one Key=Value line to the entry; false with `why` when the line is bad.
bool ApplyKey(TRulesEntry& e, const String& key, const String& value, int line, String& why) {
  String base;
  if (!SplitNumberedKey(key, base)) {
    why = u"unknown key \"" + key + u"\"";
    return false;
  }
  const bool numbered = base.size() != key.size();
  auto bad = [&](const char16_t* what) {
    why = String(what) + u" \"" + key + u"=" + value + u"\"";
    return false;
  };
  if (!numbered && SameText(key, u"LangSecRef")) {
    int64_t n;
    if (!TryStrToInt(value, n) || n < 0 || n > 99999) return bad(u"malformed line");
    e.LangSecRef = int(n);
  } else if (!numbered && SameText(key, u"Section")) {
    e.Section = value;
  } else if (!numbered && SameText(key, u"Warning")) {
    e.Warning = value;
  } else if (!numbered && SameText(key, u"Default")) {
    // Whether another cleaner ticks the entry by default: nothing to us.
  } else if (!numbered && SameText(key, u"DetectOS")) {
    StringList range = SplitBars(value);
    if (range.size() > 2 || (!range[0].empty() && !ParseRuleVersion(range[0], e.MinOS)) ||
        (range.size() == 2 && !range[1].empty() && !ParseRuleVersion(range[1], e.MaxOS)))
      return bad(u"malformed line");
  } else if (SameText(base, u"SpecialDetect")) {
    for (const auto& [name, path] : kSpecialDetects)
      if (SameText(value, name)) {
        e.DetectFiles.push_back({path, line});
        return true;
      }
    return bad(u"unknown special detection");
  } else if (SameText(base, u"Detect")) {
    TRuleRegPlace place;
    if (!ParseRulePlace(value, true, place)) return bad(u"malformed registry key");
    place.Line = line;
    e.Detect.push_back(place);
  } else if (SameText(base, u"DetectFile")) {
    if (value.empty()) return bad(u"malformed line");
    e.DetectFiles.push_back({WithoutTrailingDelimiters(value), line});
  } else if (numbered && SameText(base, u"FileKey")) {
    TRuleFileKey fk;
    if (!ParseFileKey(value, fk)) return bad(u"malformed file key");
    fk.Line = line;
    e.FileKeys.push_back(fk);
  } else if (numbered && SameText(base, u"RegKey")) {
    TRuleRegPlace place;
    if (!ParseRulePlace(value, true, place)) return bad(u"malformed registry key");
    place.Line = line;
    e.RegKeys.push_back(place);
  } else if (numbered && SameText(base, u"ExcludeKey")) {
    TRuleExclude ex;
    if (!ParseExclude(value, ex)) return bad(u"malformed exclusion");
    ex.Line = ex.Reg.Line = line;
    e.Excludes.push_back(ex);
  } else {
    why = u"unknown key \"" + key + u"\"";
    return false;
  }
  return true;
}

}  // namespace

bool ParseRuleVersion(const String& text, int& version) {
  String major = ParamX(text, u'.', 1), minor = ParamX(text, u'.', 2);
  int64_t a, b = 0;
  if (ParamXCount(text, u'.') > 2 || !TryStrToInt(major, a) || a < 0 || a > 999 ||
      (ParamXCount(text, u'.') == 2 && (!TryStrToInt(minor, b) || b < 0 || b > 99)))
    return false;
  version = int(a * 100 + b);
  return true;
}

bool ParseRulePlace(const String& text, bool allowValue, TRuleRegPlace& place) {
  static const std::pair<const char16_t*, HKEY> kRoots[] = {
      {u"HKCU", kHKEY_CURRENT_USER},  {u"HKEY_CURRENT_USER", kHKEY_CURRENT_USER},
      {u"HKLM", kHKEY_LOCAL_MACHINE}, {u"HKEY_LOCAL_MACHINE", kHKEY_LOCAL_MACHINE},
      {u"HKU", kHKEY_USERS},          {u"HKEY_USERS", kHKEY_USERS},
      {u"HKCR", kHKEY_CLASSES_ROOT},  {u"HKEY_CLASSES_ROOT", kHKEY_CLASSES_ROOT}};
  place = TRuleRegPlace{};
  String path = Trim(text);
  size_t bar = path.find(u'|');
  if (bar != String::npos) {
    if (!allowValue) return false;
    place.HasValue = true;
    place.ValueName = Trim(path.substr(bar + 1));
    path = Trim(path.substr(0, bar));
  }
  size_t cut = path.find(u'\\');
  String root = path.substr(0, cut);
  for (const auto& [name, handle] : kRoots)
    if (SameText(root, name)) place.Root = handle;
  if (place.Root == 0) return false;
  // Keys are written without empty components; doubled or trailing backslashes are slips.
  StringList parts;
  String rest = cut == String::npos ? String() : path.substr(cut + 1);
  for (size_t start = 0; start < rest.size();) {
    size_t end = rest.find(u'\\', start);
    if (end == String::npos) end = rest.size();
    if (end > start) parts.push_back(rest.substr(start, end - start));
    start = end + 1;
  }
  for (const auto& p : parts) place.Key += (place.Key.empty() ? u"" : u"\\") + p;
  return true;
}

bool ParseRulesFile(const String& name, const Bytes& data, std::vector<TRulesEntry>& entries,
                    StringList& warnings) {
  entries.clear();
  String text;
  if (!DecodeText(data, text)) return false;
  TRulesEntry current;
  bool inEntry = false, broken = false;
  auto warn = [&](int line, const String& what) {
    warnings.push_back(name + u":" + IntToStr(line) + u": " + what);
  };
  auto finish = [&] {
    if (inEntry && !broken) entries.push_back(std::move(current));
    current = TRulesEntry{};
    inEntry = broken = false;
  };
  int line = 0;
  for (size_t start = 0; start <= text.size();) {
    size_t end = text.find(u'\n', start);
    if (end == String::npos) end = text.size();
    String s = Trim(text.substr(start, end - start));
    start = end + 1;
    ++line;
    if (s.empty() || s[0] == u';' || s[0] == u'#') continue;
    if (s[0] == u'[') {
      finish();
      if (s.back() != u']' || s.size() < 3) {
        warn(line, u"malformed section line \"" + s + u"\"");
        continue;
      }
      String entryName = Trim(s.substr(1, s.size() - 2));
      if (entryName.size() >= 2 && entryName.substr(entryName.size() - 2) == u" *")
        entryName = Trim(entryName.substr(0, entryName.size() - 2));
      if (entryName.empty()) {
        warn(line, u"malformed section line \"" + s + u"\"");
        continue;
      }
      current.Name = entryName;
      current.Line = line;
      inEntry = true;
      continue;
    }
    if (!inEntry) {
      warn(line, u"line outside any entry: \"" + s + u"\"");
      continue;
    }
    if (broken) continue;  // the entry is dropped already
    size_t eq = s.find(u'=');
    String why;
    if (eq == String::npos || eq == 0) {
      why = u"malformed line \"" + s + u"\"";
    } else {
      ApplyKey(current, Trim(s.substr(0, eq)), Trim(s.substr(eq + 1)), line, why);
    }
    if (!why.empty()) {
      warn(line, u"[" + current.Name + u"] skipped: " + why);
      broken = true;
    }
  }
  finish();
  return true;
}

}  // namespace tc
