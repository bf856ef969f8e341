// Links and jump lists from an image are read through liblnk and libolecf over bytes in
// memory: a damaged one that asks for more than it holds is refused before they allocate
// or read what it asks for.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/common/LibJumpListFiles.h"
#include "platform/common/LibShellItems.h"

namespace tc {
namespace {

// A link header (0x4C bytes, the shell link class) with these flags, then `rest`.
Bytes Link(uint32_t flags, const Bytes& rest) {
  Bytes b(0x4C + rest.size(), 0);
  b[0] = 0x4C;
  const uint8_t clsid[16] = {0x01, 0x14, 0x02, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
  std::memcpy(b.data() + 4, clsid, 16);
  std::memcpy(b.data() + 20, &flags, 4);
  if (!rest.empty()) std::memcpy(b.data() + 0x4C, rest.data(), rest.size());
  return b;
}

TEST(DamagedLinks, SizesBeyondTheDataAreRefused) {
  struct Case {
    const char* what;
    Bytes link;
  } cases[] = {
      {"link information of 512 MiB", Link(0x2, {0x04, 0x00, 0x00, 0x20, 0x1C, 0, 0, 0})},
      {"an item list longer than the file", Link(0x1, {0xFF, 0xFF, 0x14, 0x00})},
      {"a name of 65,535 characters", Link(0x4, {0xFF, 0xFF, 'a', 0})},
      {"an extra block of 4 GiB", Link(0x0, {0xFB, 0xFF, 0xFF, 0xFF, 0x02, 0x00, 0x00, 0xA0})},
  };
  LibJumpListFiles reader(std::make_shared<LibShellItems>());
  for (const auto& c : cases) {
    String target;
    EXPECT_NE(0u, reader.ReadLink(c.link, target)) << c.what;
    EXPECT_TRUE(target.empty()) << c.what;
  }
}

}  // namespace
}  // namespace tc
