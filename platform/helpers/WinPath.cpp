#include "platform/helpers/WinPath.h"

#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

bool IsDelim(char16_t c) { return c == u'\\' || c == u'/'; }

bool ValidNameChar(char16_t c) {
  if (c < 0x20) return false;
  switch (c) {
    case u'<': case u'>': case u':': case u'"': case u'|': case u'?': case u'*':
      return false;
    default:
      return true;
  }
}

size_t LastDelim(std::u16string_view path) {
  for (size_t i = path.size(); i > 0; --i) {
    if (IsDelim(path[i - 1])) return i - 1;
  }
  return std::u16string_view::npos;
}

std::u16string_view TrimTrailingDelims(std::u16string_view path) {
  while (path.size() > 3 && IsDelim(path.back())) path.remove_suffix(1);
  return path;
}

}  // namespace

String WinPath::Join(std::u16string_view folder, std::u16string_view name) {
  String out(folder);
  while (!out.empty() && IsDelim(out.back())) out.pop_back();
  out += kPathDelim;
  while (!name.empty() && IsDelim(name.front())) name.remove_prefix(1);
  out += name;
  return out;
}

String WinPath::Parent(std::u16string_view path) {
  path = TrimTrailingDelims(path);
  size_t pos = LastDelim(path);
  if (pos == std::u16string_view::npos) return String();
  if (pos <= 2) return String(path.substr(0, pos + 1));  // keep "C:\"
  return String(path.substr(0, pos));
}

String WinPath::Name(std::u16string_view path) {
  path = TrimTrailingDelims(path);
  size_t pos = LastDelim(path);
  return String(pos == std::u16string_view::npos ? path : path.substr(pos + 1));
}

uint32_t WinPath::Split(std::u16string_view path, char16_t& drive, StringList& parts) {
  parts.clear();
  if (path.size() < 2 || path[1] != u':') return ERROR_INVALID_NAME;
  char16_t letter = UpCaseAscii(path[0]);
  if (letter < u'A' || letter > u'Z') return ERROR_INVALID_NAME;
  drive = letter;
  std::u16string_view rest = path.substr(2);
  if (!rest.empty() && !IsDelim(rest.front())) return ERROR_INVALID_NAME;  // "C:dir" is relative
  size_t i = 0;
  while (i < rest.size()) {
    while (i < rest.size() && IsDelim(rest[i])) ++i;
    size_t start = i;
    while (i < rest.size() && !IsDelim(rest[i])) {
      if (!ValidNameChar(rest[i])) return ERROR_INVALID_NAME;
      ++i;
    }
    if (i > start) {
      std::u16string_view part = rest.substr(start, i - start);
      if (part == u"." || part == u"..") return ERROR_INVALID_NAME;
      parts.emplace_back(part);
    }
  }
  return ERROR_SUCCESS;
}

String WinPath::Key(std::u16string_view path) {
  String out;
  out.reserve(path.size());
  for (char16_t c : path) {
    if (IsDelim(c)) {
      if (!out.empty() && out.back() == kPathDelim) continue;
      out += kPathDelim;
    } else {
      out += UpCaseChar(c);
    }
  }
  while (!out.empty() && out.back() == kPathDelim) out.pop_back();
  return out;
}

}  // namespace tc
