#include "platform/helpers/JumpLists.h"

#include <algorithm>

#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"
#include "platform/Platform.h"

namespace tc {

namespace {

constexpr uint8_t kCompoundFileMagic[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr uint8_t kLinkHeader[] = {0x4C, 0, 0, 0, 0x01, 0x14, 0x02, 0, 0, 0, 0, 0,
                                   0xC0, 0,    0,    0, 0,    0,    0, 0x46};
constexpr size_t kDestListHeader = 32;

uint32_t Le32(const Bytes& d, size_t at) {
  return uint32_t(d[at]) | uint32_t(d[at + 1]) << 8 | uint32_t(d[at + 2]) << 16 |
         uint32_t(d[at + 3]) << 24;
}

String HexName(uint32_t n) {
  static const char16_t digits[] = u"0123456789abcdef";
  String s;
  do {
    s.insert(s.begin(), digits[n % 16]);
    n /= 16;
  } while (n);
  return s;
}

bool StartsWith(const Bytes& data, size_t at, const uint8_t* magic, size_t size) {
  return data.size() >= at + size && std::equal(magic, magic + size, data.begin() + long(at));
}

bool ReadAutomatic(IJumpListFiles& reader, const Bytes& data, std::vector<JumpListEntry>& out) {
  std::vector<NamedStream> streams;
  if (reader.ReadStreams(data, streams) != ERROR_SUCCESS) return false;
  auto stream = [&](const String& name) -> const Bytes* {
    for (const auto& s : streams)
      if (SameText(s.Name, name)) return &s.Data;
    return nullptr;
  };
  const Bytes* destList = stream(u"DestList");
  std::vector<DestListEntry> entries;
  if (!destList || !ParseDestList(*destList, entries)) return false;
  for (const auto& e : entries) {
    JumpListEntry entry{e.Path, e.Pinned};
    String target;
    if (const Bytes* link = stream(HexName(e.Stream));
        link && reader.ReadLink(*link, target) == ERROR_SUCCESS && !target.empty())
      entry.Target = target;
    out.push_back(std::move(entry));
  }
  return true;
}

void ReadCustom(IJumpListFiles& reader, const Bytes& data, std::vector<JumpListEntry>& out) {
  auto at = data.begin();
  while ((at = std::search(at, data.end(), std::begin(kLinkHeader), std::end(kLinkHeader))) !=
         data.end()) {
    String target;
    if (reader.ReadLink(Bytes(at, data.end()), target) == ERROR_SUCCESS && !target.empty())
      out.push_back({target, false});
    at += sizeof kLinkHeader;
  }
}

}  // namespace

bool ParseDestList(const Bytes& stream, std::vector<DestListEntry>& entries) {
  entries.clear();
  if (stream.size() < kDestListHeader) return false;
  const uint32_t version = Le32(stream, 0);
  const uint32_t count = Le32(stream, 4);
  if (version != 1 && version != 3 && version != 4) return false;
  // Format 1 keeps the path's length at 112; the later ones at 128 and end with 4 bytes.
  const size_t lengthAt = version == 1 ? 112 : 128;
  const size_t tail = version == 1 ? 0 : 4;
  size_t pos = kDestListHeader;
  for (uint32_t i = 0; i < count; ++i) {
    if (pos + lengthAt + 2 > stream.size()) return false;
    const size_t chars = size_t(stream[pos + lengthAt] | stream[pos + lengthAt + 1] << 8);
    const size_t end = pos + lengthAt + 2 + 2 * chars + tail;
    if (end > stream.size()) return false;
    DestListEntry e;
    e.Stream = Le32(stream, pos + 88);
    e.Pinned = Le32(stream, pos + 108) != 0xFFFFFFFFu;
    e.Path = FromUtf16LE(stream.data() + pos + lengthAt + 2, 2 * chars);
    entries.push_back(std::move(e));
    pos = end;
  }
  return true;
}

bool ReadJumpListFile(const String& path, std::vector<JumpListEntry>& entries) {
  entries.clear();
  Platform& p = Services();
  Bytes data;
  if (!p.JumpLists || FileContents::Read(*p.Files, path, data) != ERROR_SUCCESS) return false;
  if (StartsWith(data, 0, kCompoundFileMagic, sizeof kCompoundFileMagic))
    return ReadAutomatic(*p.JumpLists, data, entries);
  ReadCustom(*p.JumpLists, data, entries);
  return true;
}

}  // namespace tc
