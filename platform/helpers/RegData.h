// Building and reading registry value data ({type, raw bytes}) the way Windows stores it.
#pragma once
#include <string_view>

#include "platform/Registry.h"

namespace tc {

struct RegData {
  // Strings are stored as UTF-16LE with their terminating NUL.
  static RegValue Sz(std::u16string_view text);
  static RegValue ExpandSz(std::u16string_view text);
  // Each line NUL-terminated, then one more NUL that ends the list.
  static RegValue MultiSz(const StringList& lines);
  static RegValue Dword(uint32_t value);
  static RegValue Qword(uint64_t value);
  static RegValue Binary(Bytes data);

  // The text up to the first NUL (or the whole data when there is none).
  static String Text(const RegValue& value);
  // The lines of a multi-string, up to the first empty one (the list terminator).
  static StringList Lines(const RegValue& value);
  // Every NUL-terminated string of the data, empty ones included; an unterminated tail
  // counts as one more string. Used where empty strings carry meaning.
  static StringList AllStrings(const Bytes& data);
  // Joins strings, each followed by a NUL, with no list terminator added.
  static Bytes JoinStrings(const StringList& strings);
  // The little-endian number of a REG_DWORD (or any data of at least four bytes).
  static bool Number(const RegValue& value, uint32_t& number);
};

}  // namespace tc
