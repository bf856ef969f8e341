#include "platform/helpers/RegData.h"

#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

RegValue TextValue(uint32_t type, std::u16string_view text) {
  RegValue v;
  v.Type = type;
  v.Data = ToUtf16LE(text);
  v.Data.push_back(0);
  v.Data.push_back(0);
  return v;
}

}  // namespace

RegValue RegData::Sz(std::u16string_view text) { return TextValue(REG_SZ, text); }

RegValue RegData::ExpandSz(std::u16string_view text) { return TextValue(REG_EXPAND_SZ, text); }

RegValue RegData::MultiSz(const StringList& lines) {
  RegValue v;
  v.Type = REG_MULTI_SZ;
  v.Data = JoinStrings(lines);
  v.Data.push_back(0);
  v.Data.push_back(0);
  return v;
}

RegValue RegData::Dword(uint32_t value) {
  RegValue v;
  v.Type = REG_DWORD;
  for (int i = 0; i < 4; ++i) v.Data.push_back(static_cast<uint8_t>(value >> (8 * i)));
  return v;
}

RegValue RegData::Qword(uint64_t value) {
  RegValue v;
  v.Type = REG_QWORD;
  for (int i = 0; i < 8; ++i) v.Data.push_back(static_cast<uint8_t>(value >> (8 * i)));
  return v;
}

RegValue RegData::Binary(Bytes data) {
  RegValue v;
  v.Type = REG_BINARY;
  v.Data = std::move(data);
  return v;
}

String RegData::Text(const RegValue& value) {
  String s = FromUtf16LE(value.Data.data(), value.Data.size());
  size_t nul = s.find(u'\0');
  if (nul != String::npos) s.resize(nul);
  return s;
}

StringList RegData::Lines(const RegValue& value) {
  StringList lines;
  for (String& s : AllStrings(value.Data)) {
    if (s.empty()) break;
    lines.push_back(std::move(s));
  }
  return lines;
}

StringList RegData::AllStrings(const Bytes& data) {
  String all = FromUtf16LE(data.data(), data.size());
  StringList out;
  size_t start = 0;
  while (start < all.size()) {
    size_t nul = all.find(u'\0', start);
    if (nul == String::npos) {
      out.push_back(all.substr(start));
      break;
    }
    out.push_back(all.substr(start, nul - start));
    start = nul + 1;
  }
  return out;
}

Bytes RegData::JoinStrings(const StringList& strings) {
  Bytes out;
  for (const String& s : strings) {
    Bytes b = ToUtf16LE(s);
    out.insert(out.end(), b.begin(), b.end());
    out.push_back(0);
    out.push_back(0);
  }
  return out;
}

bool RegData::Number(const RegValue& value, uint32_t& number) {
  if (value.Data.size() < 4) return false;
  number = 0;
  for (int i = 0; i < 4; ++i) number |= static_cast<uint32_t>(value.Data[i]) << (8 * i);
  return true;
}

}  // namespace tc
