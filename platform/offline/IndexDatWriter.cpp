#include <algorithm>
#include <map>
#include <set>

#include "platform/helpers/TextCodec.h"
#include "platform/offline/IndexDat.h"
#include "platform/offline/IndexDatLayout.h"

namespace tc {

namespace {

using namespace indexdat;

// What the header, the bitmap and the hash tables say about the blocks of one index.
class Layout {
 public:
  explicit Layout(Bytes& data) : d_(data) {}

  bool Read(std::string& error) {
    if (d_.size() < kFirstBlock || std::memcmp(d_.data(), kSignature, sizeof kSignature) != 0)
      return Fail(error, "not an index of version 5.2");
    if (Get32(d_, kFileSizeAt) > d_.size()) return Fail(error, "the index is cut short");
    blocks_ = std::min<uint64_t>({Get32(d_, kTotalBlocksAt), (d_.size() - kFirstBlock) / kBlockSize,
                                  kMaxBlocks});
    keep_.assign(blocks_, false);
    for (uint32_t b = 0; b < blocks_; ++b) keep_[b] = Allocated(b);
    std::set<uint32_t> seen;
    for (uint32_t at = Get32(d_, kHashTableAt); at != 0; at = Get32(d_, at + 8)) {
      uint32_t count = Get32(d_, at + 4);
      if (!Block(at) || !seen.insert(at).second || !HasTag(d_, at, "HASH") || count == 0 ||
          !Span(at, count))
        return Fail(error, "a hash table of the index is damaged");
      Keep(at, count);
      for (uint32_t slot = at + kHashSlotsAt; slot + 8 <= at + count * kBlockSize; slot += 8) {
        uint32_t key = Get32(d_, slot), offset = Get32(d_, slot + 4);
        uint32_t flags = key & kSlotFlagBits;
        if (key == offset || flags == kSlotFreed || flags == kSlotNeverUsed || !Block(offset))
          continue;
        slots_[offset].push_back(slot);
        // A record the hash table still points to is kept whatever the bitmap says.
        uint32_t recordBlocks = Get32(d_, offset + kRecordBlocksAt);
        if (recordBlocks > 0 && Span(offset, recordBlocks)) Keep(offset, recordBlocks);
      }
    }
    return true;
  }

  // Frees one URL record; false (nothing changed yet) when it is no record of this index.
  bool CanFree(uint32_t at) const {
    uint32_t count = Get32(d_, at + kRecordBlocksAt);
    if (!Block(at) || !HasTag(d_, at, "URL ") || count == 0 || !Span(at, count)) return false;
    for (uint32_t b = Index(at); b < Index(at) + count; ++b)
      if (!Allocated(b)) return false;
    return true;
  }

  void Free(uint32_t at) {
    uint32_t count = Get32(d_, at + kRecordBlocksAt);
    uint8_t dir = d_[at + kRecordDirectoryAt];
    uint32_t dirs = std::min(Get32(d_, kDirectoryCountAt), kMaxDirectories);
    if (dir < dirs) {
      uint32_t files = Get32(d_, kDirectoriesAt + 12 * dir);
      if (files > 0) Put32(d_, kDirectoriesAt + 12 * dir, files - 1);
    }
    std::fill(d_.begin() + at, d_.begin() + at + count * kBlockSize, 0);
    for (uint32_t b = Index(at); b < Index(at) + count; ++b) {
      d_[kBitmapAt + b / 8] &= static_cast<uint8_t>(~(1u << (b % 8)));
      keep_[b] = false;
    }
    uint32_t allocated = Get32(d_, kAllocatedBlocksAt);
    Put32(d_, kAllocatedBlocksAt, allocated > count ? allocated - count : 0);
    for (uint32_t slot : slots_[at]) {
      Put32(d_, slot, kSlotFreed);
      Put32(d_, slot + 4, kSlotFreed);
    }
  }

  // Zeroes what no bitmap bit, hash table or live record holds, up to the end of the file.
  void WipeFreeSpace() {
    for (uint64_t at = kFirstBlock; at < d_.size(); at += kBlockSize) {
      uint64_t b = (at - kFirstBlock) / kBlockSize;
      if (b < blocks_ && keep_[b]) continue;
      std::fill(d_.begin() + at, d_.begin() + std::min<uint64_t>(at + kBlockSize, d_.size()), 0);
    }
  }

 private:
  static bool Fail(std::string& error, const char* why) {
    error = why;
    return false;
  }
  static uint32_t Index(uint32_t at) { return (at - kFirstBlock) / kBlockSize; }
  bool Block(uint32_t at) const {
    return at >= kFirstBlock && (at - kFirstBlock) % kBlockSize == 0 && Index(at) < blocks_;
  }
  bool Span(uint32_t at, uint32_t count) const {
    return count <= blocks_ && Index(at) + uint64_t{count} <= blocks_;
  }
  bool Allocated(uint32_t b) const { return (d_[kBitmapAt + b / 8] >> (b % 8)) & 1; }
  void Keep(uint32_t at, uint32_t count) {
    std::fill(keep_.begin() + Index(at), keep_.begin() + Index(at) + count, true);
  }

  Bytes& d_;
  uint64_t blocks_ = 0;
  std::vector<bool> keep_;
  std::map<uint32_t, std::vector<uint32_t>> slots_;  // record offset -> hash slots naming it
};

// A hash key for a URL: not WinINet's own function, but with the flag bits clear as a
// live URL slot has them.
uint32_t KeyOf(const String& url) {
  uint32_t h = 2166136261u;
  for (char16_t c : url) h = (h ^ c) * 16777619u;
  h &= ~0x3Fu;
  return h ? h : 0x40;
}

uint32_t Blocks(size_t bytes) { return static_cast<uint32_t>((bytes + kBlockSize - 1) / kBlockSize); }

}  // namespace

bool FreeIndexDatRecords(Bytes& data, const std::vector<uint32_t>& offsets, std::string& error) {
  Bytes work = data;
  Layout layout(work);
  if (!layout.Read(error)) return false;
  std::set<uint32_t> unique(offsets.begin(), offsets.end());
  for (uint32_t at : unique) {
    if (!layout.CanFree(at)) {
      error = "no URL record at offset " + std::to_string(at);
      return false;
    }
  }
  for (uint32_t at : unique) layout.Free(at);
  layout.WipeFreeSpace();
  data.swap(work);
  return true;
}

bool BuildIndexDat(const std::vector<IndexDatEntry>& entries, Bytes& data, std::string& error) {
  StringList dirs;
  std::vector<std::string> urls(entries.size()), names(entries.size());
  uint64_t recordBlocks = 0;
  for (size_t i = 0; i < entries.size(); ++i) {
    const auto& e = entries[i];
    if (!e.Directory.empty() && std::find(dirs.begin(), dirs.end(), e.Directory) == dirs.end()) {
      if (e.Directory.size() > 8 || dirs.size() == kMaxDirectories) {
        error = "cache subfolder names have at most 8 characters, and there are at most 32";
        return false;
      }
      dirs.push_back(e.Directory);
    }
    urls[i] = ToAnsi(e.Url);
    names[i] = ToAnsi(e.FileName);
    recordBlocks += Blocks(kRecordHead + urls[i].size() + 1 + (names[i].empty() ? 0 : names[i].size() + 1));
  }
  const uint32_t slotsPerTable = (kHashTableBlocks * kBlockSize - kHashSlotsAt) / 8;
  const uint32_t tables = std::max<uint32_t>(1, Blocks(entries.size() * kBlockSize) / slotsPerTable + 1);
  const uint64_t used = recordBlocks + uint64_t{tables} * kHashTableBlocks;
  if (used > kMaxBlocks) {
    error = "the entries need more room than one index has";
    return false;
  }
  // Files grow in steps of 16 KiB, as WinINet's do.
  const uint64_t size = kFirstBlock + ((used * kBlockSize + 0x3FFF) & ~uint64_t{0x3FFF});
  data.assign(size, 0);
  std::memcpy(data.data(), kSignature, sizeof kSignature);
  Put32(data, kFileSizeAt, static_cast<uint32_t>(size));
  Put32(data, kHashTableAt, kFirstBlock);
  Put32(data, kTotalBlocksAt, static_cast<uint32_t>((size - kFirstBlock) / kBlockSize));
  Put32(data, kAllocatedBlocksAt, static_cast<uint32_t>(used));
  Put32(data, kCacheLimitAt, 0x03200000);
  Put32(data, kDirectoryCountAt, static_cast<uint32_t>(dirs.size()));
  for (size_t i = 0; i < dirs.size(); ++i) {
    std::string name = ToAnsi(dirs[i]);
    std::memcpy(data.data() + kDirectoriesAt + 12 * i + 4, name.data(), name.size());
  }
  for (uint64_t b = 0; b < used; ++b) data[kBitmapAt + b / 8] |= static_cast<uint8_t>(1u << (b % 8));

  for (uint32_t t = 0; t < tables; ++t) {
    uint32_t at = kFirstBlock + t * kHashTableBlocks * kBlockSize;
    std::memcpy(data.data() + at, "HASH", 4);
    Put32(data, at + 4, kHashTableBlocks);
    Put32(data, at + 8, t + 1 < tables ? at + kHashTableBlocks * kBlockSize : 0);
    Put32(data, at + 12, t);
    for (uint32_t s = 0; s < slotsPerTable; ++s) {
      Put32(data, at + kHashSlotsAt + 8 * s, kSlotNeverUsed);
      Put32(data, at + kHashSlotsAt + 8 * s + 4, kSlotNeverUsed);
    }
  }
  uint32_t at = kFirstBlock + tables * kHashTableBlocks * kBlockSize;
  for (size_t i = 0; i < entries.size(); ++i) {
    const auto& e = entries[i];
    uint32_t count = Blocks(kRecordHead + urls[i].size() + 1 + (names[i].empty() ? 0 : names[i].size() + 1));
    std::memcpy(data.data() + at, "URL ", 4);
    Put32(data, at + kRecordBlocksAt, count);
    Put64(data, at + kRecordFileSizeAt, e.FileSize);
    Put32(data, at + kRecordLocationAt, kRecordHead);
    auto dir = std::find(dirs.begin(), dirs.end(), e.Directory);
    data[at + kRecordDirectoryAt] =
        e.Directory.empty() ? kNoDirectory : static_cast<uint8_t>(dir - dirs.begin());
    if (!e.Directory.empty()) {
      uint32_t slot = kDirectoriesAt + 12 * static_cast<uint32_t>(dir - dirs.begin());
      Put32(data, slot, Get32(data, slot) + 1);
    }
    Put32(data, at + kRecordEntryTypeAt, e.EntryType);
    std::memcpy(data.data() + at + kRecordHead, urls[i].data(), urls[i].size());
    if (!names[i].empty()) {
      uint32_t nameAt = kRecordHead + static_cast<uint32_t>(urls[i].size()) + 1;
      Put32(data, at + kRecordFileNameAt, nameAt);
      std::memcpy(data.data() + at + nameAt, names[i].data(), names[i].size());
    }
    uint32_t table = static_cast<uint32_t>(i / slotsPerTable);
    uint32_t slot = kFirstBlock + table * kHashTableBlocks * kBlockSize + kHashSlotsAt +
                    8 * static_cast<uint32_t>(i % slotsPerTable);
    Put32(data, slot, KeyOf(e.Url));
    Put32(data, slot + 4, at);
    at += count * kBlockSize;
  }
  return true;
}

}  // namespace tc
