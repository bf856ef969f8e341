// Typing times of Internet Explorer as the preview shows them, at the ends of their range.
#include <gtest/gtest.h>

#include "platform/helpers/TextCodec.h"
#include "plugins/TCP_ModernWindowsTraces.h"

namespace tc {
namespace {

Bytes LittleEndian(uint64_t n) {
  Bytes b;
  for (int i = 0; i < 8; ++i) b.push_back(uint8_t(n >> (8 * i)));
  return b;
}

TEST(ModernWindowsTracesTest, FileTimeText) {
  const struct {
    Bytes data;
    const char* text;
  } cases[] = {
      {LittleEndian(0x01D21EED89794BBBULL), "2016-10-05 09:47:50"},
      {LittleEndian(1), "1601-01-01 00:00:00"},
      {LittleEndian(265046774400ULL * 10000000 - 1), "9999-12-31 23:59:59"},
      {LittleEndian(265046774400ULL * 10000000), ""},  // year 10000 is no time Windows writes
      {LittleEndian(~0ULL), ""},
      {LittleEndian(0), ""},
      {Bytes{1, 2, 3, 4}, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(c.text, ToUtf8(FileTimeText(c.data)));
}

}  // namespace
}  // namespace tc
