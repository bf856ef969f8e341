#include "platform/helpers/Stringhelper.h"

#include <limits>

#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

String ParamX(const String& s, char16_t sep, int n) {
  if (n < 1) return {};
  size_t start = 0;
  for (int i = 1; i < n; ++i) {
    size_t p = s.find(sep, start);
    if (p == String::npos) return {};
    start = p + 1;
  }
  size_t end = s.find(sep, start);
  return s.substr(start, end == String::npos ? String::npos : end - start);
}

int ParamXCount(const String& s, char16_t sep) {
  if (s.empty()) return 0;
  int count = 1;
  for (char16_t c : s) count += (c == sep);
  return count;
}

String GetRestX(const String& s, char16_t sep, int n) {
  if (n < 1) return {};
  size_t start = 0;
  for (int i = 1; i < n; ++i) {
    size_t p = s.find(sep, start);
    if (p == String::npos) return {};
    start = p + 1;
  }
  return s.substr(start);
}

String Param(const String& s, int n) {
  int word = 0;
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && s[i] == u' ') ++i;
    if (i >= s.size()) break;
    size_t start = i;
    while (i < s.size() && s[i] != u' ') ++i;
    if (++word == n) return s.substr(start, i - start);
  }
  return {};
}

String Replace(const String& s, const String& from, const String& to) {
  if (from.empty()) return s;
  String out;
  size_t pos = 0;
  for (;;) {
    size_t p = s.find(from, pos);
    if (p == String::npos) break;
    out.append(s, pos, p - pos);
    out += to;
    pos = p + from.size();
  }
  out.append(s, pos, String::npos);
  return out;
}

String Right(const String& s, size_t n) { return n >= s.size() ? s : s.substr(s.size() - n); }

String Trim(const String& s) {
  size_t b = 0, e = s.size();
  while (b < e && s[b] <= u' ') ++b;
  while (e > b && s[e - 1] <= u' ') --e;
  return s.substr(b, e - b);
}

namespace {
// Whole-string conversion to a number of at most `maxValue` (its negative one further).
bool TryStrToNumber(const String& s, uint64_t maxValue, int64_t& value) {
  size_t i = 0;
  while (i < s.size() && s[i] == u' ') ++i;
  bool neg = false;
  if (i < s.size() && (s[i] == u'-' || s[i] == u'+')) neg = s[i++] == u'-';
  int base = 10;
  if (i < s.size() && s[i] == u'$') {
    base = 16;
    ++i;
  } else if (i + 1 < s.size() && s[i] == u'0' && (s[i + 1] == u'x' || s[i + 1] == u'X')) {
    base = 16;
    i += 2;
  }
  if (i >= s.size()) return false;
  uint64_t v = 0;
  for (; i < s.size(); ++i) {
    char16_t c = s[i];
    int d;
    if (c >= u'0' && c <= u'9') d = c - u'0';
    else if (base == 16 && c >= u'a' && c <= u'f') d = c - u'a' + 10;
    else if (base == 16 && c >= u'A' && c <= u'F') d = c - u'A' + 10;
    else return false;
    if (v > (maxValue + 1 - d) / base) return false;
    v = v * base + d;
  }
  if (!neg && v > maxValue) return false;
  value = neg ? static_cast<int64_t>(0 - v) : static_cast<int64_t>(v);
  return true;
}
}  // namespace

bool TryStrToInt(const String& s, int64_t& value) {
  return TryStrToNumber(s, std::numeric_limits<int32_t>::max(), value);
}

int64_t StrToInt64Def(const String& s, int64_t def) {
  int64_t v;
  return TryStrToNumber(s, std::numeric_limits<int64_t>::max(), v) ? v : def;
}

int64_t StrToIntDef(const String& s, int64_t def) {
  int64_t v;
  return TryStrToInt(s, v) ? v : def;
}

String IntToStr(int64_t v) { return FromUtf8(std::to_string(v)); }

bool LoadFileIntoString(const String& fileName, String& text) {
  std::unique_ptr<IFileHandle> f;
  if (Services().Files->Open(fileName, OpenMode::Read, f) != ERROR_SUCCESS) return false;
  uint64_t size = 0;
  if (f->GetSize(size) != ERROR_SUCCESS) return false;
  std::string bytes(size, '\0');
  size_t done = 0;
  if (size && (f->Read(0, bytes.data(), bytes.size(), done) != ERROR_SUCCESS || done != size))
    return false;
  text = FromAnsi(bytes);
  return true;
}

String IncludeTrailingPathDelimiter(const String& path) {
  if (!path.empty() && path.back() == kPathDelim) return path;
  return path + kPathDelim;
}

String ExcludeTrailingPathDelimiter(const String& path) {
  if (!path.empty() && path.back() == kPathDelim) return path.substr(0, path.size() - 1);
  return path;
}

String ExtractFilePath(const String& path) {
  size_t p = path.find_last_of(u"\\:");
  return p == String::npos ? String() : path.substr(0, p + 1);
}

String ExtractFileName(const String& path) {
  size_t p = path.find_last_of(u"\\:");
  return p == String::npos ? path : path.substr(p + 1);
}

}  // namespace tc
