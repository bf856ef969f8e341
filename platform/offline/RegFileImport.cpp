#include "platform/offline/RegFileImport.h"

#include <cctype>
#include <cstdlib>

#include "platform/helpers/RegData.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

struct RootName {
  const char16_t* name;
  HKEY root;
};
const RootName kRoots[] = {
    {u"HKEY_CURRENT_USER", kHKEY_CURRENT_USER}, {u"HKCU", kHKEY_CURRENT_USER},
    {u"HKEY_LOCAL_MACHINE", kHKEY_LOCAL_MACHINE}, {u"HKLM", kHKEY_LOCAL_MACHINE},
    {u"HKEY_CLASSES_ROOT", kHKEY_CLASSES_ROOT}, {u"HKCR", kHKEY_CLASSES_ROOT},
};

String DecodeText(std::string_view bytes) {
  if (bytes.size() >= 2 && uint8_t(bytes[0]) == 0xFF && uint8_t(bytes[1]) == 0xFE)
    return FromUtf16LE(reinterpret_cast<const uint8_t*>(bytes.data()) + 2, bytes.size() - 2);
  if (bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  return FromUtf8(bytes);
}

bool SplitRoot(const String& path, HKEY& root, String& key) {
  size_t slash = path.find(u'\\');
  String first = path.substr(0, slash);
  for (const auto& r : kRoots) {
    if (SameText(first, r.name)) {
      root = r.root;
      key = slash == String::npos ? String() : path.substr(slash + 1);
      return true;
    }
  }
  return false;
}

// A quoted string starting at s[pos] == '"'; pos ends after the closing quote.
bool ParseQuoted(const String& s, size_t& pos, String& out) {
  out.clear();
  for (++pos; pos < s.size(); ++pos) {
    if (s[pos] == u'\\' && pos + 1 < s.size()) {
      out += s[++pos];
    } else if (s[pos] == u'"') {
      ++pos;
      return true;
    } else {
      out += s[pos];
    }
  }
  return false;
}

bool ParseHexBytes(const String& s, Bytes& out) {
  out.clear();
  std::string digits;
  for (char16_t c : s) {
    if (c == u',' || c == u' ' || c == u'\t') {
      if (!digits.empty()) {
        out.push_back(uint8_t(std::strtoul(digits.c_str(), nullptr, 16)));
        digits.clear();
      }
    } else if ((c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F')) {
      if (digits.size() == 2) return false;
      digits += char(c);
    } else {
      return false;
    }
  }
  if (!digits.empty()) out.push_back(uint8_t(std::strtoul(digits.c_str(), nullptr, 16)));
  return true;
}

// The data part after '=': "text", dword:N, hex:..., hex(T):...
bool ParseData(const String& data, RegValue& value) {
  if (!data.empty() && data[0] == u'"') {
    size_t pos = 0;
    String text;
    if (!ParseQuoted(data, pos, text)) return false;
    value = RegData::Sz(text);
    return true;
  }
  String lower = LowerCase(data);
  if (lower.rfind(u"dword:", 0) == 0) {
    String digits = data.substr(6);
    if (digits.empty() || digits.size() > 8) return false;
    for (char16_t c : digits)
      if (!std::isxdigit(int(c & 0x7F)) || c > 0x7F) return false;
    value = RegData::Dword(uint32_t(std::strtoul(ToUtf8(digits).c_str(), nullptr, 16)));
    return true;
  }
  uint32_t type = REG_BINARY;
  size_t colon = lower.find(u':');
  if (colon == String::npos) return false;
  String head = lower.substr(0, colon);
  if (head.rfind(u"hex(", 0) == 0 && head.back() == u')') {
    type = uint32_t(std::strtoul(ToUtf8(head.substr(4, head.size() - 5)).c_str(), nullptr, 16));
  } else if (head != u"hex") {
    return false;
  }
  value.Type = type;
  return ParseHexBytes(data.substr(colon + 1), value.Data);
}

}  // namespace

bool ImportRegFile(IRegistry& registry, std::string_view fileBytes, std::string& error) {
  String text = DecodeText(fileBytes);
  HKEY root = 0;
  String key;
  bool haveKey = false, sawHeader = false;
  size_t lineNo = 0, pos = 0;
  while (pos < text.size()) {
    // One logical line: hex data continues over lines ending in ",\" (as regedit writes).
    String line;
    size_t startLine = lineNo + 1;
    while (pos < text.size()) {
      size_t end = text.find(u'\n', pos);
      if (end == String::npos) end = text.size();
      String part = text.substr(pos, end - pos);
      pos = end + 1;
      ++lineNo;
      if (!part.empty() && part.back() == u'\r') part.pop_back();
      size_t first = part.find_first_not_of(u" \t");
      part = first == String::npos ? String() : part.substr(first);
      if (part.size() >= 2 && part.back() == u'\\' && part[part.size() - 2] == u',') {
        line += part.substr(0, part.size() - 1);
        continue;
      }
      line += part;
      break;
    }
    auto fail = [&](const std::string& why) {
      error = "line " + std::to_string(startLine) + ": " + why;
      return false;
    };
    if (line.empty() || line[0] == u';') continue;
    if (!sawHeader) {
      if (line != u"Windows Registry Editor Version 5.00" && line != u"REGEDIT4")
        return fail("not a registry editor file (header missing)");
      sawHeader = true;
      continue;
    }
    if (line[0] == u'[') {
      if (line.back() != u']') return fail("unterminated key name");
      bool remove = line.size() > 1 && line[1] == u'-';
      String path = line.substr(remove ? 2 : 1, line.size() - (remove ? 3 : 2));
      if (!SplitRoot(path, root, key)) return fail("unknown root key in " + ToUtf8(path));
      if (remove) {
        uint32_t rc = registry.DeleteKeyTree(root, key, RegView::Default);
        if (rc != ERROR_SUCCESS && rc != ERROR_FILE_NOT_FOUND)
          return fail("cannot delete " + ToUtf8(path) + " (error " + std::to_string(rc) + ")");
        haveKey = false;
      } else {
        uint32_t rc = registry.CreateKey(root, key, RegView::Default);
        if (rc != ERROR_SUCCESS)
          return fail("cannot create " + ToUtf8(path) + " (error " + std::to_string(rc) + ")");
        haveKey = true;
      }
      continue;
    }
    if (!haveKey) return fail("value outside a key");
    String name;
    size_t at = 0;
    if (line[0] == u'@') {
      at = 1;
    } else if (line[0] != u'"' || !ParseQuoted(line, at, name)) {
      return fail("bad value name");
    }
    if (at >= line.size() || line[at] != u'=') return fail("'=' missing");
    String data = line.substr(at + 1);
    uint32_t rc;
    if (data == u"-") {
      rc = registry.DeleteValue(root, key, name, RegView::Default);
      if (rc == ERROR_FILE_NOT_FOUND) rc = ERROR_SUCCESS;
    } else {
      RegValue value;
      if (!ParseData(data, value)) return fail("bad data for value \"" + ToUtf8(name) + "\"");
      rc = registry.SetValue(root, key, name, value, RegView::Default);
    }
    if (rc != ERROR_SUCCESS)
      return fail("cannot set \"" + ToUtf8(name) + "\" (error " + std::to_string(rc) + ")");
  }
  if (!sawHeader) {
    error = "line 1: not a registry editor file (header missing)";
    return false;
  }
  return true;
}

}  // namespace tc
