#include "platform/common/TextIniFiles.h"

#include <optional>

#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

enum class Encoding : uint8_t { Ansi, Utf16, Utf8 };

struct Line {
  Bytes Raw;    // exactly as in the file, line end included
  String Text;  // decoded, without line end
  String Eol;   // u"\r\n", u"\n" or u"" for a last line without one
};

// What Windows trims around names and values: a lone CR at the end of a file's last line too,
// which a later line end would otherwise turn into part of a CR LF.
bool IsBlank(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

std::u16string_view Trim(std::u16string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

// The section a header line names, if it is one.
std::optional<String> SectionOf(const String& text) {
  std::u16string_view t = Trim(text);
  if (t.empty() || t.front() != u'[') return std::nullopt;
  t.remove_prefix(1);
  size_t close = t.rfind(u']');
  if (close != std::u16string_view::npos) t = t.substr(0, close);
  return String(Trim(t));
}

struct KeyLine {
  String Name;   // as written
  String Value;  // trimmed, quotes still on
};

std::optional<KeyLine> KeyOf(const String& text) {
  std::u16string_view t = Trim(text);
  if (t.empty() || t.front() == u';') return std::nullopt;
  size_t eq = t.find(u'=');
  if (eq == std::u16string_view::npos) return std::nullopt;
  KeyLine k{String(Trim(t.substr(0, eq))), String(Trim(t.substr(eq + 1)))};
  if (k.Name.empty()) return std::nullopt;
  return k;
}

String Unquote(const String& v) {
  if (v.size() >= 2 && (v.front() == u'"' || v.front() == u'\'') && v.back() == v.front()) {
    return v.substr(1, v.size() - 2);
  }
  return v;
}

}  // namespace

struct TextIniFiles::Document {
  Encoding Enc = Encoding::Ansi;
  Bytes Bom;
  std::vector<Line> Lines;

  Bytes Encode(const String& text) const {
    switch (Enc) {
      case Encoding::Utf16:
        return ToUtf16LE(text);
      case Encoding::Utf8: {
        std::string s = ToUtf8(text);
        return Bytes(s.begin(), s.end());
      }
      case Encoding::Ansi:
        break;
    }
    std::string s = ToAnsi(text);
    return Bytes(s.begin(), s.end());
  }

  String PreferredEol() const {
    bool lf = false;
    for (const Line& l : Lines) {
      if (l.Eol == u"\r\n") return u"\r\n";
      if (l.Eol == u"\n") lf = true;
    }
    return lf ? u"\n" : u"\r\n";
  }

  Line Make(const String& text, const String& eol) const {
    Line l{Encode(text + eol), text, eol};
    return l;
  }

  void Replace(size_t index, const String& text) { Lines[index] = Make(text, Lines[index].Eol); }

  size_t RawSize() const {
    size_t n = 0;
    for (const Line& l : Lines) n += l.Raw.size();
    return n;
  }

  // Before inserting after `index`, a last line without line end gets one, after its bytes
  // as they are: decoding and encoding again would change bytes that are no valid text.
  void EndLine(size_t index) {
    Line& l = Lines[index];
    if (!l.Eol.empty()) return;
    l.Eol = PreferredEol();
    // A UTF-16 file cut after an odd byte: the byte no reader sees goes, so that what
    // follows stays aligned.
    if (Enc == Encoding::Utf16 && (Bom.size() + RawSize()) % 2 != 0) l.Raw.pop_back();
    const Bytes eol = Encode(l.Eol);
    l.Raw.insert(l.Raw.end(), eol.begin(), eol.end());
  }

  // Index range [first, end) of the first section of that name, header included.
  bool FindSection(const String& section, size_t& first, size_t& end) const {
    for (size_t i = 0; i < Lines.size(); ++i) {
      auto name = SectionOf(Lines[i].Text);
      if (!name || !SameText(*name, section)) continue;
      first = i;
      end = i + 1;
      while (end < Lines.size() && !SectionOf(Lines[end].Text)) ++end;
      return true;
    }
    return false;
  }

  std::optional<size_t> FindKey(size_t first, size_t end, const String& key) const {
    for (size_t i = first + 1; i < end; ++i) {
      auto k = KeyOf(Lines[i].Text);
      if (k && SameText(k->Name, key)) return i;
    }
    return std::nullopt;
  }
};

namespace {

void SplitLines(const Bytes& raw, size_t start, Encoding enc, std::vector<Line>& lines) {
  // Copies of named strings, not literals: GCC 12 at -O3 warns falsely on the literal form.
  static const String kLf = u"\n", kCrLf = u"\r\n";
  const size_t unit = enc == Encoding::Utf16 ? 2 : 1;
  size_t begin = start;
  while (begin < raw.size()) {
    size_t pos = begin;
    bool found = false;
    while (pos + unit <= raw.size()) {
      if (raw[pos] == '\n' && (unit == 1 || raw[pos + 1] == 0)) {
        found = true;
        break;
      }
      pos += unit;
    }
    size_t end = found ? pos + unit : raw.size();
    Line l;
    l.Raw.assign(raw.begin() + begin, raw.begin() + end);
    size_t textEnd = found ? pos : raw.size();
    if (found) {
      l.Eol = kLf;
      if (textEnd >= begin + unit && raw[textEnd - unit] == '\r' &&
          (unit == 1 || raw[textEnd - 1] == 0)) {
        textEnd -= unit;
        l.Eol = kCrLf;
      }
    }
    const uint8_t* p = raw.data() + begin;
    const size_t n = textEnd - begin;
    switch (enc) {
      case Encoding::Utf16:
        l.Text = FromUtf16LE(p, n);
        break;
      case Encoding::Utf8:
        l.Text = FromUtf8(std::string_view(reinterpret_cast<const char*>(p), n));
        break;
      case Encoding::Ansi:
        l.Text = FromAnsi(std::string_view(reinterpret_cast<const char*>(p), n));
        break;
    }
    lines.push_back(std::move(l));
    begin = end;
  }
}

}  // namespace

TextIniFiles::TextIniFiles(std::shared_ptr<IFileSystem> files) : files_(std::move(files)) {}

uint32_t TextIniFiles::Load(const String& file, Document& doc) {
  Bytes raw;
  if (uint32_t rc = FileContents::Read(*files_, file, raw)) return rc;
  size_t start = 0;
  if (raw.size() >= 2 && raw[0] == 0xFF && raw[1] == 0xFE) {
    doc.Enc = Encoding::Utf16;
    start = 2;
  } else if (raw.size() >= 3 && raw[0] == 0xEF && raw[1] == 0xBB && raw[2] == 0xBF) {
    doc.Enc = Encoding::Utf8;
    start = 3;
  }
  doc.Bom.assign(raw.begin(), raw.begin() + start);
  SplitLines(raw, start, doc.Enc, doc.Lines);
  return ERROR_SUCCESS;
}

uint32_t TextIniFiles::Save(const String& file, const Document& doc) {
  Bytes out = doc.Bom;
  for (const Line& l : doc.Lines) out.insert(out.end(), l.Raw.begin(), l.Raw.end());
  return FileContents::Replace(*files_, file, out);
}

String TextIniFiles::ReadString(const String& file, const String& section, const String& key,
                                const String& defaultValue) {
  Document doc;
  size_t first, end;
  if (Load(file, doc) != ERROR_SUCCESS || !doc.FindSection(section, first, end)) {
    return defaultValue;
  }
  auto index = doc.FindKey(first, end, key);
  if (!index) return defaultValue;
  return Unquote(KeyOf(doc.Lines[*index].Text)->Value);
}

uint32_t TextIniFiles::ReadSections(const String& file, StringList& sections) {
  sections.clear();
  Document doc;
  if (uint32_t rc = Load(file, doc)) return rc;
  for (const Line& l : doc.Lines) {
    auto name = SectionOf(l.Text);
    if (!name) continue;
    bool seen = false;
    for (const String& s : sections) seen = seen || SameText(s, *name);
    if (!seen) sections.push_back(*name);
  }
  return ERROR_SUCCESS;
}

uint32_t TextIniFiles::ReadKeys(const String& file, const String& section, StringList& keys) {
  keys.clear();
  Document doc;
  if (uint32_t rc = Load(file, doc)) return rc;
  size_t first, end;
  if (!doc.FindSection(section, first, end)) return ERROR_SUCCESS;
  for (size_t i = first + 1; i < end; ++i) {
    auto k = KeyOf(doc.Lines[i].Text);
    if (!k) continue;
    bool seen = false;
    for (const String& s : keys) seen = seen || SameText(s, k->Name);
    if (!seen) keys.push_back(k->Name);
  }
  return ERROR_SUCCESS;
}

uint32_t TextIniFiles::WriteString(const String& file, const String& section, const String& key,
                                   const String& value) {
  Document doc;
  uint32_t rc = Load(file, doc);
  if (rc != ERROR_SUCCESS && rc != ERROR_FILE_NOT_FOUND) return rc;
  size_t first, end;
  if (doc.FindSection(section, first, end)) {
    if (auto index = doc.FindKey(first, end, key)) {
      KeyLine old = *KeyOf(doc.Lines[*index].Text);
      if (old.Value == value) return ERROR_SUCCESS;  // nothing to change
      doc.Replace(*index, old.Name + u"=" + value);
    } else {
      size_t after = first;
      for (size_t i = first + 1; i < end; ++i) {
        if (!Trim(doc.Lines[i].Text).empty()) after = i;
      }
      doc.EndLine(after);
      const String eol = doc.PreferredEol();
      doc.Lines.insert(doc.Lines.begin() + after + 1, doc.Make(key + u"=" + value, eol));
    }
  } else {
    if (!doc.Lines.empty()) doc.EndLine(doc.Lines.size() - 1);
    const String eol = doc.PreferredEol();
    doc.Lines.push_back(doc.Make(u"[" + section + u"]", eol));
    doc.Lines.push_back(doc.Make(key + u"=" + value, eol));
  }
  return Save(file, doc);
}

uint32_t TextIniFiles::DeleteKey(const String& file, const String& section, const String& key) {
  Document doc;
  uint32_t rc = Load(file, doc);
  if (rc == ERROR_FILE_NOT_FOUND || rc == ERROR_PATH_NOT_FOUND) return ERROR_SUCCESS;
  if (rc != ERROR_SUCCESS) return rc;
  size_t first, end;
  if (!doc.FindSection(section, first, end)) return ERROR_SUCCESS;
  auto index = doc.FindKey(first, end, key);
  if (!index) return ERROR_SUCCESS;
  doc.Lines.erase(doc.Lines.begin() + *index);
  return Save(file, doc);
}

}  // namespace tc
