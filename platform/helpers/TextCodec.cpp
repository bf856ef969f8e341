#include "platform/helpers/TextCodec.h"

#include <algorithm>

namespace tc {

namespace {

// Windows-1252 code points for bytes 0x80..0x9F; 0 marks an unassigned byte.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

}  // namespace

std::string ToUtf8(std::u16string_view s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    char32_t c = s[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 &&
        s[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (s[i + 1] - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;  // lone surrogate
    }
    AppendUtf8(out, c);
  }
  return out;
}

String FromUtf8(std::string_view s) {
  String out;
  out.reserve(s.size());
  size_t i = 0;
  while (i < s.size()) {
    unsigned char b = static_cast<unsigned char>(s[i]);
    char32_t cp;
    size_t len;
    if (b < 0x80) {
      cp = b;
      len = 1;
    } else if ((b & 0xE0) == 0xC0) {
      cp = b & 0x1F;
      len = 2;
    } else if ((b & 0xF0) == 0xE0) {
      cp = b & 0x0F;
      len = 3;
    } else if ((b & 0xF8) == 0xF0) {
      cp = b & 0x07;
      len = 4;
    } else {
      out += u'\uFFFD';
      ++i;
      continue;
    }
    if (i + len > s.size()) {
      out += u'\uFFFD';
      break;
    }
    bool ok = true;
    for (size_t k = 1; k < len; ++k) {
      unsigned char cb = static_cast<unsigned char>(s[i + k]);
      if ((cb & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      cp = (cp << 6) | (cb & 0x3F);
    }
    if (!ok) {
      out += u'\uFFFD';
      ++i;
      continue;
    }
    i += len;
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out += static_cast<char16_t>(0xD800 + (cp >> 10));
      out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    } else {
      out += static_cast<char16_t>(cp);
    }
  }
  return out;
}

String FromUtf8Lossless(std::string_view s) {
  String out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    const unsigned char b = static_cast<unsigned char>(s[i]);
    const size_t len = b < 0x80 ? 1 : (b & 0xE0) == 0xC0 ? 2 : (b & 0xF0) == 0xE0 ? 3
                       : (b & 0xF8) == 0xF0 ? 4 : 0;
    char32_t cp = len == 1 ? b : len == 2 ? (b & 0x1F) : len == 3 ? (b & 0x0F) : (b & 0x07);
    bool ok = len > 0 && i + len <= s.size();
    for (size_t k = 1; ok && k < len; ++k) {
      const unsigned char cb = static_cast<unsigned char>(s[i + k]);
      ok = (cb & 0xC0) == 0x80;
      cp = (cp << 6) | (cb & 0x3F);
    }
    // Overlong forms, encoded surrogates and code points past U+10FFFF are no UTF-8.
    static const char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    ok = ok && cp >= kLeast[len] && !(cp >= 0xD800 && cp <= 0xDFFF) && cp <= 0x10FFFF;
    if (!ok) {
      out += static_cast<char16_t>(0xDC00 + b);
      ++i;
      continue;
    }
    i += len;
    if (cp >= 0x10000) {
      out += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
    } else {
      out += static_cast<char16_t>(cp);
    }
  }
  return out;
}

std::string ToUtf8Lossless(std::u16string_view s) {
  std::string out;
  out.reserve(s.size());
  size_t from = 0;
  for (size_t i = 0; i < s.size(); ++i) {
    const char16_t c = s[i];
    const bool paired = c >= 0xD800 && c <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 &&
                        s[i + 1] <= 0xDFFF;
    if (paired) {
      ++i;
    } else if (c >= 0xDC80 && c <= 0xDCFF) {
      out += ToUtf8(s.substr(from, i - from));
      out += static_cast<char>(c - 0xDC00);
      from = i + 1;
    }
  }
  out += ToUtf8(s.substr(from));
  return out;
}

std::string ToAnsi(std::u16string_view s) {
  std::string out(s.size(), '?');
  char* o = out.data();
  for (char16_t c : s) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
      *o++ = static_cast<char>(c);
      continue;
    }
    auto it = std::find(std::begin(kCp1252High), std::end(kCp1252High), c);
    if (c != 0 && it != std::end(kCp1252High))
      *o++ = static_cast<char>(0x80 + (it - std::begin(kCp1252High)));
    else if (c >= 0x80 && c < 0xA0 && kCp1252High[c - 0x80] == 0)
      *o++ = static_cast<char>(c);  // the five unassigned bytes come back as they were read
    else
      *o++ = '?';
  }
  return out;
}

String FromAnsi(std::string_view s) {
  String out(s.size(), u'\0');
  char16_t* o = out.data();
  for (char ch : s) {
    const unsigned char b = static_cast<unsigned char>(ch);
    const char16_t high = (b >= 0x80 && b < 0xA0) ? kCp1252High[b - 0x80] : 0;
    *o++ = high ? high : static_cast<char16_t>(b);
  }
  return out;
}

Bytes ToUtf16LE(std::u16string_view s) {
  Bytes out;
  out.reserve(s.size() * 2);
  for (char16_t c : s) {
    out.push_back(static_cast<uint8_t>(c & 0xFF));
    out.push_back(static_cast<uint8_t>(c >> 8));
  }
  return out;
}

String FromUtf16LE(const uint8_t* data, size_t size) {
  String out;
  out.reserve(size / 2);
  for (size_t i = 0; i + 1 < size; i += 2) {
    out += static_cast<char16_t>(data[i] | (data[i + 1] << 8));
  }
  return out;
}

char16_t UpCaseAscii(char16_t c) { return (c >= u'a' && c <= u'z') ? c - 32 : c; }

char16_t UpCaseChar(char16_t c) {
  if (c < 0x80) return UpCaseAscii(c);
  if ((c >= 0xE0 && c <= 0xFE && c != 0xF7)) return c - 32;
  if (c == 0xFF) return 0x178;
  if (c >= 0x100 && c <= 0x17F) {
    // Latin Extended-A pairs upper/lower on even/odd code points, with a few exceptions.
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return (c % 2 == 0) ? c - 1 : c;
    if (c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
    return (c % 2 == 1) ? c - 1 : c;
  }
  if (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) return c - 32;  // Greek
  if (c >= 0x430 && c <= 0x44F) return c - 32;                // Cyrillic
  if (c >= 0x450 && c <= 0x45F) return c - 80;
  return c;
}

String UpperCase(std::u16string_view s) {
  String out(s);
  for (auto& c : out) c = UpCaseChar(c);
  return out;
}

String LowerCase(std::u16string_view s) {
  String out(s);
  for (auto& c : out) {
    if (c >= u'A' && c <= u'Z') {
      c += 32;
    } else if (c >= 0xC0 && c <= 0xDE && c != 0xD7) {
      c += 32;
    } else if (c >= 0x100 && c <= 0x17F && UpCaseChar(c) == c) {
      char16_t lower = ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) ? c + 1 : c + 1;
      if (UpCaseChar(lower) == c && lower != c) c = lower;
    } else if (c >= 0x391 && c <= 0x3A9) {
      c += 32;
    } else if (c >= 0x410 && c <= 0x42F) {
      c += 32;
    }
  }
  return out;
}

bool SameText(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (UpCaseChar(a[i]) != UpCaseChar(b[i])) return false;
  }
  return true;
}

namespace {

// Primary collation weight: accented Latin letters sort with their base letter.
char16_t BaseLetter(char16_t c) {
  c = UpCaseChar(c);
  static const char16_t* kBase =
      u"AAAAAAACEEEEIIII"  // C0-CF
      u"DNOOOOO*OUUUUYTS"; // D0-DF (D7 is the multiplication sign)
  if (c >= 0xC0 && c <= 0xDF && c != 0xD7) return kBase[c - 0xC0];
  return c;
}

}  // namespace

int CompareText(std::u16string_view a, std::u16string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    char16_t x = BaseLetter(a[i]), y = BaseLetter(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  // Same letters: accents decide.
  for (size_t i = 0; i < n; ++i) {
    char16_t x = UpCaseChar(a[i]), y = UpCaseChar(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  return 0;
}

int CompareTextOrdinal(std::u16string_view a, std::u16string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    char16_t x = UpCaseAscii(a[i]), y = UpCaseAscii(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

}  // namespace tc
