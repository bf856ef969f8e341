// Offsets of the "Client UrlCache MMF Ver 5.2" index that the reader and writer share.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>

#include "platform/WinTypes.h"

namespace tc::indexdat {

static_assert(std::endian::native == std::endian::little, "fields are read in place");

inline constexpr char kSignature[] = "Client UrlCache MMF Ver 5.2";  // with its NUL: 28 bytes
inline constexpr uint32_t kFileSizeAt = 0x1C;
inline constexpr uint32_t kHashTableAt = 0x20;
inline constexpr uint32_t kTotalBlocksAt = 0x24;
inline constexpr uint32_t kAllocatedBlocksAt = 0x28;
inline constexpr uint32_t kCacheLimitAt = 0x30;
inline constexpr uint32_t kDirectoryCountAt = 0x48;
inline constexpr uint32_t kDirectoriesAt = 0x4C;  // 12 bytes each: file count, 8-byte name
inline constexpr uint32_t kMaxDirectories = 32;
inline constexpr uint32_t kBitmapAt = 0x250;
inline constexpr uint32_t kFirstBlock = 0x4000;
inline constexpr uint32_t kBlockSize = 128;
// The bitmap runs up to the first block, which bounds the records to about 16 MiB.
inline constexpr uint32_t kMaxBlocks = (kFirstBlock - kBitmapAt) * 8;

// Hash table: "HASH", block count, next table's offset, sequence; then (key, offset) slots.
inline constexpr uint32_t kHashSlotsAt = 16;
inline constexpr uint32_t kHashTableBlocks = 32;
inline constexpr uint32_t kSlotNeverUsed = 3;  // key and offset both 3
inline constexpr uint32_t kSlotFreed = 1;      // key 1: the record was deleted
inline constexpr uint32_t kSlotFlagBits = 0x1F;

// URL record of version 5.2.
inline constexpr uint32_t kRecordBlocksAt = 4;
inline constexpr uint32_t kRecordFileSizeAt = 0x20;
inline constexpr uint32_t kRecordLocationAt = 0x34;
inline constexpr uint32_t kRecordDirectoryAt = 0x38;
inline constexpr uint32_t kRecordFileNameAt = 0x3C;
inline constexpr uint32_t kRecordEntryTypeAt = 0x40;
inline constexpr uint32_t kRecordDataAt = 0x44;  // offset and size of the header data
inline constexpr uint32_t kRecordDataSizeAt = 0x48;
inline constexpr uint32_t kRecordHead = 0x68;
inline constexpr uint8_t kNoDirectory = 0xFE;

inline uint32_t Get32(const Bytes& d, size_t at) {
  uint32_t v = 0;
  if (at + 4 <= d.size()) std::memcpy(&v, d.data() + at, 4);
  return v;
}
inline void Put32(Bytes& d, size_t at, uint32_t v) { std::memcpy(d.data() + at, &v, 4); }
inline void Put64(Bytes& d, size_t at, uint64_t v) { std::memcpy(d.data() + at, &v, 8); }
inline bool HasTag(const Bytes& d, size_t at, const char* tag) {
  return at + 4 <= d.size() && std::memcmp(d.data() + at, tag, 4) == 0;
}

}  // namespace tc::indexdat
