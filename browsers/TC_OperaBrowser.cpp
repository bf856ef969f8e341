#include "browsers/TC_OperaBrowser.h"

#include <algorithm>
#include <deque>
#include <string_view>

#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/Platform.h"

namespace tc {

namespace {

// Unix seconds as a date-time: days since 1899-12-30.
double UnixToDateTime(int64_t seconds) {
  return seconds == 0 ? 0.0 : 25569.0 + static_cast<double>(seconds) / 86400.0;
}

[[noreturn]] void Unreadable(int64_t pos) {
  throw EOperaCookieFile("cookies4.dat: the number at byte " + std::to_string(pos - 1) +
                         " cannot be read");
}

// The image's bytes from 1-based `pos` on, `len` of them or fewer at its end.
std::string_view Piece(const std::string& image, int64_t pos, int64_t len) {
  if (len <= 0 || pos < 1 || static_cast<uint64_t>(pos) > image.size()) return {};
  return std::string_view(image).substr(static_cast<size_t>(pos - 1), static_cast<size_t>(len));
}

// The piece's hexadecimal digits (two per byte) as a number of `bits` bits; a value that
// fills the top bit comes out negative, as the text-to-number routine wraps it.
int64_t ReadHex(const std::string& image, int64_t pos, int64_t len, int bits) {
  std::string_view piece = Piece(image, pos, len);
  if (piece.empty()) Unreadable(pos);
  uint64_t value = 0;
  for (unsigned char b : piece) {
    if ((value >> (bits - 8)) != 0) Unreadable(pos);
    value = (value << 8) | b;
  }
  if (bits == 32) return static_cast<int32_t>(static_cast<uint32_t>(value));
  return static_cast<int64_t>(value);
}

// The header's way: the piece's hexadecimal digits read as a decimal number (0x00001000 is
// 1000); a digit above 9 cannot be read.
int64_t ReadDecimal(const std::string& image, int64_t pos, int64_t len) {
  std::string_view piece = Piece(image, pos, len);
  if (piece.empty()) Unreadable(pos);
  int64_t value = 0;
  for (unsigned char b : piece) {
    if ((b >> 4) > 9 || (b & 15) > 9 || value > 0x7FFFFFFF / 100) Unreadable(pos);
    value = value * 100 + (b >> 4) * 10 + (b & 15);
  }
  if (value > 0x7FFFFFFF) Unreadable(pos);
  return value;
}

String Text(std::string_view bytes) { return FromAnsi(bytes); }

// Lines of UTF-8 text, split at LF or CR LF; a last line without its end counts.
StringList Utf8Lines(const Bytes& data) {
  StringList lines;
  std::string_view all(reinterpret_cast<const char*>(data.data()), data.size());
  for (size_t start = 0; start < all.size();) {
    size_t end = all.find('\n', start);
    if (end == std::string_view::npos) end = all.size();
    std::string_view line = all.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(FromUtf8(line));
    start = end + 1;
  }
  return lines;
}

}  // namespace

String OperaHostKey(const String& Domain, const String& Path) {
  String key = Domain;
  if (Path != u"/") key += Path;
  if (!key.empty() && key[0] == u'.') key.erase(0, 1);
  static const char16_t* const kCuts[] = {u"www.",  u"www1.", u"www2.", u"www3.",
                                          u"www4.", u"www5.", u"www6.", u"www7.",
                                          u"www8.", u"www9.", u"www"};
  for (const char16_t* cut : kCuts) {
    const String c(cut);
    size_t at = key.find(c);
    if (at != String::npos) key.erase(0, at + c.size());
  }
  return key;
}

StringList OperaHistoryAddresses(const Bytes& data) {
  StringList lines = Utf8Lines(data);
  while (!lines.empty() && Trim(lines.back()).empty()) lines.pop_back();
  StringList addresses;
  for (size_t i = 0; i < lines.size(); i += 4)
    addresses.push_back(i + 1 < lines.size() ? lines[i + 1] : String());
  return addresses;
}

TOperaBrowser::TOperaBrowser(String Folder)
    : ProfileFolder(std::move(Folder)), Folder_(IncludeTrailingPathDelimiter(ProfileFolder)) {}

int TOperaBrowser::EnumCookies() {
  ParseOperaCookieFile(CookieFile());
  return static_cast<int>(Cookies.size());
}

void TOperaBrowser::ParseOperaCookieFile(const String& FileName) {
  if (!OrviFileExists(FileName)) return;
  Bytes raw;
  if (FileContents::Read(*Services().Files, FileName, raw) != ERROR_SUCCESS)
    throw std::runtime_error("cannot read " + ToUtf8(FileName));
  Image.assign(raw.begin(), raw.end());
  Refusal.clear();

  const int64_t fileVersion = ReadDecimal(Image, 1, 4);
  const int64_t appVersion = ReadDecimal(Image, 5, 4);
  if (fileVersion != 1000) {
    Refusal = u"cookie file format " + IntToStr(fileVersion) + u" is not read";
    return;
  }
  if (appVersion != 2000) {
    Refusal = u"cookie file version " + IntToStr(appVersion) + u" is not read";
    return;
  }
  const int64_t tagLength = ReadDecimal(Image, 9, 2);
  const int64_t lengthLength = ReadDecimal(Image, 11, 2);

  std::deque<String> domain;  // innermost component first
  String path;
  Cookies.clear();
  CookieHosts.clear();
  HostIndex_.clear();
  TOperaCookieEntry* current = nullptr;
  auto close = [&](int64_t tagPos) {
    if (current && current->EndPos == 0) current->EndPos = tagPos - 1;
  };

  const int64_t size = static_cast<int64_t>(Image.size());
  int64_t pos = 13;
  while (size > pos + 1) {
    const int64_t tag = ReadHex(Image, pos, tagLength, 32);
    const int64_t tagPos = pos;
    pos += tagLength;
    int64_t payloadLength = 0;
    if (tag < 0x80) {
      // Containers (0 to 3): their length is passed over and their records walked into.
      if (tag > 3) payloadLength = ReadHex(Image, pos, lengthLength, 32);
      pos += lengthLength;
    }
    auto payload = [&] { return Piece(Image, pos, payloadLength); };
    auto time = [&] { return UnixToDateTime(ReadHex(Image, pos, payloadLength, 64)); };
    switch (tag) {
      case 0x03: {
        close(tagPos);
        String joined;
        for (const auto& part : domain) joined += (joined.empty() ? u"" : u".") + part;
        auto entry = std::make_unique<TOperaCookieEntry>();
        entry->Domain = joined;
        entry->Path = path;
        entry->StartPos = tagPos;
        current = entry.get();
        Cookies.push_back(std::move(entry));
        AddCookieEntryToMainCookieList(current);
        break;
      }
      case 0x1E: domain.push_front(Text(payload())); break;
      case 0x84: if (!domain.empty()) domain.pop_front(); break;
      case 0x1D: path = Text(payload()); break;
      case 0x85: path.clear(); close(tagPos); break;
      default: break;
    }
    if (current) {
      switch (tag) {
        case 0x10: current->Name = Text(payload()); break;
        case 0x11: current->Value = Text(payload()); break;
        case 0x12: current->Expires = time(); break;
        case 0x13: current->LastUsed = time(); break;
        case 0x99: current->Tag99 = true; break;
        case 0x9B: current->Tag9B = true; break;
        case 0x9C: current->Tag9C = true; break;
        case 0xA0: current->TagA0 = true; break;
        case 0xA2: current->TagA2 = true; break;
        case 0xA3: current->TagA3 = true; break;
        case 0xA4: current->TagA4 = true; break;
        default: break;
      }
    }
    if (payloadLength > 0) pos += payloadLength;
  }
}

void TOperaBrowser::AddCookieEntryToMainCookieList(TOperaCookieEntry* Entry) {
  const String key = OperaHostKey(Entry->Domain, Entry->Path);
  TOperaCookie*& group = HostIndex_[key];
  if (!group) {
    CookieHosts.push_back(std::make_unique<TOperaCookie>());
    group = CookieHosts.back().get();
    group->Host = key;
  }
  group->Entries.push_back(Entry);
}

bool TOperaBrowser::i_in_Deleted_Cookie(int64_t Position) const {
  for (const auto& c : Cookies)
    if (c->Deleted && c->StartPos <= Position && Position <= c->EndPos) return true;
  return false;
}

void TOperaBrowser::UpdateCookies() {
  if (Image.empty()) {
    Services().UI->ShowMessage(u"Opera UpdateCookies: Call EnumCookies first", u"", 0);
    return;
  }
  if (!Refusal.empty()) return;  // a file not read is not written either
  // The deleted ranges in file order; cookies never overlap, open ones are never cut.
  std::vector<std::pair<int64_t, int64_t>> cuts;
  for (const auto& c : Cookies)
    if (c->Deleted && c->EndPos >= c->StartPos) cuts.emplace_back(c->StartPos, c->EndPos);
  std::sort(cuts.begin(), cuts.end());
  Bytes out;
  out.reserve(Image.size());
  int64_t next = 1;  // the first position not yet copied or cut
  const int64_t size = static_cast<int64_t>(Image.size());
  for (const auto& [from, to] : cuts) {
    if (from > next) out.insert(out.end(), Image.begin() + (next - 1), Image.begin() + (from - 1));
    next = std::max(next, to + 1);
  }
  if (next <= size) out.insert(out.end(), Image.begin() + (next - 1), Image.end());
  if (FileContents::Replace(*Services().Files, CookieFile(), out) != ERROR_SUCCESS)
    throw std::runtime_error("cannot write " + ToUtf8(CookieFile()));
}

bool TOperaBrowser::EnumHistory() {
  History.clear();
  Bytes data;
  if (!OrviFileExists(HistoryFile()) ||
      FileContents::Read(*Services().Files, HistoryFile(), data) != ERROR_SUCCESS)
    return false;
  History = OperaHistoryAddresses(data);
  return true;
}

bool TOperaBrowser::EnumTypedURLs() {
  TypedURLs.clear();
  if (!OrviFileExists(TypedURLsFile())) return false;
  auto doc = Services().Xml->Create();
  if (!doc->Load(TypedURLsFile())) return false;
  for (XmlNode item : doc->Children(doc->DocumentElement()))
    if (doc->NodeName(item) == u"typed_history_item")
      TypedURLs.push_back(doc->Attribute(item, u"content"));
  return true;
}

bool TOperaBrowser::ClearTypedURLs() {
  if (!OrviFileExists(TypedURLsFile())) return false;
  auto doc = Services().Xml->Create();
  if (!doc->Load(TypedURLsFile())) return false;
  size_t removed = 0;
  for (XmlNode item : doc->Children(doc->DocumentElement())) {
    if (doc->NodeName(item) != u"typed_history_item") continue;
    doc->Remove(item);
    ++removed;
  }
  if (removed > 0 && !doc->Save(TypedURLsFile()))
    throw std::runtime_error("cannot write " + ToUtf8(TypedURLsFile()));
  return true;
}

}  // namespace tc
