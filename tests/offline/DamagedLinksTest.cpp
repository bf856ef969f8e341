// Links and jump lists from an image are read through liblnk and libolecf over bytes in
// memory: a damaged one that asks for more than it holds is refused before they allocate
// or read what it asks for.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>

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

// A compound file header of 512-byte sectors whose table counts are these, then `sectors`
// empty sectors.
Bytes Compound(uint32_t tableSectors, uint32_t shortSectors, uint32_t masterSectors, int sectors) {
  Bytes b(512 * (1 + sectors), 0);
  const uint8_t magic[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
  std::memcpy(b.data(), magic, 8);
  b[0x1A] = 0x3E;
  b[0x1C] = 0xFE;
  b[0x1D] = 0xFF;
  b[0x1E] = 9;
  b[0x20] = 6;
  std::memcpy(b.data() + 0x2C, &tableSectors, 4);
  std::memcpy(b.data() + 0x40, &shortSectors, 4);
  std::memcpy(b.data() + 0x48, &masterSectors, 4);
  return b;
}

TEST(DamagedLinks, SizesAndTablesBeyondTheDataAreRefused) {
  Bytes cut = Compound(1, 0, 0, 0);
  cut.resize(300);
  struct Case {
    const char* what;
    Bytes bytes;
    bool link;  // else a jump list
  } cases[] = {
      {"link information of 512 MiB", Link(0x2, {0x04, 0x00, 0x00, 0x20, 0x1C, 0, 0, 0}), true},
      {"an item list longer than the file", Link(0x1, {0xFF, 0xFF, 0x14, 0x00}), true},
      {"a name of 65,535 characters", Link(0x4, {0xFF, 0xFF, 'a', 0}), true},
      {"an extra block of 4 GiB", Link(0x0, {0xFB, 0xFF, 0xFF, 0xFF, 0x02, 0x00, 0x00, 0xA0}), true},
      {"a master table of 6.9 million sectors", Compound(1, 0, 0x00690067, 2), false},
      {"an allocation table of 4 billion sectors", Compound(0xFFFFFFF0, 0, 0, 2), false},
      {"a short-sector table of 16 million sectors", Compound(1, 0x01000000, 0, 2), false},
      {"shorter than its header", cut, false},
      {},
  };
  // The demo's jump list with its stream "1" (directory entry 1) claiming 4 GiB.
  std::ifstream in(TC_DEMO_DIR "/tree/Users/Demo/AppData/Roaming/Microsoft/Windows/"
                   "Recent/AutomaticDestinations/1b4dd67f29cb1962.automaticDestinations-ms",
                   std::ios::binary);
  Bytes huge((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  ASSERT_EQ(13824u, huge.size());
  std::memset(huge.data() + 0x480 + 0x78, 0xFF, 4);
  cases[std::size(cases) - 1] = {"a stream of 4 GiB", huge, false};
  LibJumpListFiles reader(std::make_shared<LibShellItems>());
  for (const auto& c : cases) {
    String target;
    std::vector<NamedStream> streams;
    EXPECT_NE(0u, c.link ? reader.ReadLink(c.bytes, target) : reader.ReadStreams(c.bytes, streams))
        << c.what;
    EXPECT_TRUE(target.empty() && streams.empty()) << c.what;
  }
}

}  // namespace
}  // namespace tc
