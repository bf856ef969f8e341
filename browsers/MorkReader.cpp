#include "browsers/MorkReader.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>

#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

using View = std::string_view;

char UpAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c; }

// Atom ids compare without regard to case, as the string list holding them does.
struct IdHash {
  size_t operator()(View s) const {
    size_t h = 14695981039346656037ull;
    for (char c : s) h = (h ^ static_cast<unsigned char>(UpAscii(c))) * 1099511628211ull;
    return h;
  }
};
struct IdEqual {
  bool operator()(View a, View b) const {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
      if (UpAscii(a[i]) != UpAscii(b[i])) return false;
    return true;
  }
};

// The atom table. Mork numbers its atoms in hexadecimal, mostly densely: such ids index an
// array (a row's atoms were written just before it, so look-ups stay in the cache); any
// other id goes to a hash map.
class AtomTable {
 public:
  explicit AtomTable(size_t fileSize) : limit_(fileSize / 8 + 65536) {}

  void Set(View id, View value) {
    size_t n;
    if (!Number(id, n)) {
      other_.insert_or_assign(id, value);
    } else {
      if (n >= dense_.size()) dense_.resize(std::max(n + 1, dense_.size() * 2));
      dense_[n] = value;
    }
  }
  View Get(View id) const {
    size_t n;
    if (Number(id, n)) return n < dense_.size() ? dense_[n] : View();
    auto it = other_.find(id);
    return it == other_.end() ? View() : it->second;
  }

 private:
  // A hexadecimal id without leading zero whose value fits the array's limit.
  bool Number(View id, size_t& n) const {
    if (id.empty() || id.size() > 8 || (id[0] == '0' && id.size() > 1)) return false;
    n = 0;
    for (char c : id) {
      int d = (c >= '0' && c <= '9') ? c - '0'
              : (c >= 'A' && c <= 'F') ? c - 'A' + 10
              : (c >= 'a' && c <= 'f') ? c - 'a' + 10
                                       : -1;
      if (d < 0) return false;
      n = n * 16 + static_cast<size_t>(d);
    }
    return n < limit_;
  }

  size_t limit_;
  std::vector<View> dense_;
  std::unordered_map<View, View, IdHash, IdEqual> other_;
};

View TrimView(View s) {
  size_t b = 0, e = s.size();
  while (b < e && static_cast<unsigned char>(s[b]) <= ' ') ++b;
  while (e > b && static_cast<unsigned char>(s[e - 1]) <= ' ') --e;
  return s.substr(b, e - b);
}

const char* Find(const char* from, const char* end, char c) {
  const void* p = std::memchr(from, c, static_cast<size_t>(end - from));
  return p ? static_cast<const char*>(p) : end;
}

// The lines joined without their breaks (CR, LF or CR LF); a line ending in "\" loses it.
void JoinLines(std::string& d) {
  char* const base = d.data();
  const char* const end = base + d.size();
  const char* r = base;
  char* w = base;
  const char* cr = Find(r, end, '\r');
  const char* lf = Find(r, end, '\n');
  while (r < end) {
    const char* brk = cr < lf ? cr : lf;
    const char* keep = brk;
    if (keep > r && keep[-1] == '\\') --keep;
    if (w != r) std::memmove(w, r, static_cast<size_t>(keep - r));
    w += keep - r;
    if (brk == end) break;
    r = brk + 1;
    if (cr == brk) cr = Find(r, end, '\r');
    if (lf == brk) lf = Find(r, end, '\n');
  }
  d.resize(static_cast<size_t>(w - base));
}

// Position after the first delimiter from `from` on that no unescaped "\" precedes, or
// `from` itself when there is none.
size_t StripThrough(View s, size_t from, char delim) {
  bool escaped = false;
  for (size_t i = from; i < s.size(); ++i) {
    if (escaped) {
      escaped = false;
    } else if (s[i] == '\\') {
      escaped = true;
    } else if (s[i] == delim) {
      return i + 1;
    }
  }
  return from;
}

// The header up to the end of the column dictionary: "< ", "<", ">", ">".
size_t SkipHeader(View s) {
  size_t at = s.find("< ");
  at = at == View::npos ? 0 : at + 2;
  at = StripThrough(s, at, '<');
  at = StripThrough(s, at, '>');
  return StripThrough(s, at, '>');
}

String FormValue(View raw) { return UrlDecode(Replace(FromAnsi(raw), u"%00", u"")); }

}  // namespace

std::vector<std::pair<String, String>> ReadMorkRows(std::string& Data, TMorkKind Kind) {
  JoinLines(Data);
  const bool form = Kind == TMorkKind::FormHistory;
  const View first = form ? "83" : "82";
  const View second = form ? "82" : "84";
  std::vector<std::pair<String, String>> rows;
  rows.reserve(Data.size() / 256);  // a history row with its atoms takes about 200 bytes
  AtomTable atoms(Data.size());
  char* const buf = Data.data();
  const char* const end = buf + Data.size();
  const char* p = buf + SkipHeader(View(buf, Data.size()));

  // Each loop below is one state of the machine; characters no rule names are skipped.
  while (p < end) {
    const char c = *p++;
    if (c == '<') {  // a dictionary: "(id=value)" atoms up to ">"
      while (p < end) {
        const char d = *p++;
        if (d == '>') break;
        if (d != '(') continue;
        const char* eq = Find(p, end, '=');
        if (eq == end) return rows;
        const View id = TrimView(View(p, static_cast<size_t>(eq - p)));
        // The value runs to the first ")" no "\" escapes; escapes are resolved in place.
        char* const start = buf + (eq + 1 - buf);
        char* w = start;
        const char* r = start;
        for (;;) {
          const char* close = Find(r, end, ')');
          const char* esc = Find(r, close, '\\');
          if (w != r) std::memmove(w, r, static_cast<size_t>(esc - r));
          if (form)  // escaped characters stay as they are
            for (char* q = w; q < w + (esc - r); ++q)
              if (*q == '$') *q = '%';
          w += esc - r;
          if (esc == close) {
            r = close;
            break;
          }
          if (esc + 1 >= end) return rows;  // the file ends inside the value
          *w++ = esc[1];                    // the escaped character, whatever it is
          r = esc + 2;
        }
        if (r == end) return rows;
        atoms.Set(id, View(start, static_cast<size_t>(w - start)));
        p = r + 1;
      }
    } else if (c == '[') {  // a row: "(^column^atom)" or "(^column=atom)" cells up to "]"
      View cellFirst, cellSecond;
      bool closed = false;
      while (p < end && !closed) {
        const char d = *p++;
        if (d == ']') closed = true;
        if (d != '(') continue;
        // Inside a cell: "^" starts the column, "=" or "^" the value, ")" ends the cell.
        const char* colStart = nullptr;
        View column;
        const char* cellStart = nullptr;
        while (p < end) {
          const char e = *p++;
          if (e == ']') {
            closed = true;
            break;
          }
          if (cellStart) {
            if (e != ')') continue;
            const View cell(cellStart, static_cast<size_t>(p - 1 - cellStart));
            if (column == first) cellFirst = cell;
            else if (column == second) cellSecond = cell;
            break;
          }
          if (e == ')') break;
          if (!colStart) {
            if (e == '^') colStart = p;
          } else if (e == '=' || e == '^') {
            column = View(colStart, static_cast<size_t>(p - 1 - colStart));
            cellStart = p;
          }
        }
      }
      if (!closed || cellFirst.empty() || cellSecond.empty()) continue;
      const View a = atoms.Get(cellFirst), b = atoms.Get(cellSecond);
      if (form)
        rows.emplace_back(FormValue(a), FormValue(b));
      else
        rows.emplace_back(FromAnsi(a), FromAnsi(b));
    }
  }
  return rows;
}

}  // namespace tc
