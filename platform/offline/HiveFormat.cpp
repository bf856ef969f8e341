#include "platform/offline/HiveFormat.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <algorithm>
#include <cstring>
#include <vector>

namespace tc {

namespace {

uint32_t Le32(const uint8_t* p) {
  return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

// XOR of the first 127 dwords, with the two values Windows reserves mapped away.
uint32_t BaseBlockChecksum(const uint8_t* data) {
  uint32_t sum = 0;
  for (size_t i = 0; i < 508; i += 4) sum ^= Le32(data + i);
  if (sum == 0xFFFFFFFFu) sum = 0xFFFFFFFEu;
  if (sum == 0) sum = 1;
  return sum;
}

bool ReadAll(int fd, uint64_t offset, uint8_t* buf, size_t size) {
  size_t done = 0;
  while (done < size) {
    ssize_t n = pread(fd, buf + done, size - done, off_t(offset + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += size_t(n);
  }
  return true;
}

bool WriteAll(int fd, uint64_t offset, const uint8_t* buf, size_t size) {
  size_t done = 0;
  while (done < size) {
    ssize_t n = pwrite(fd, buf + done, size - done, off_t(offset + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += size_t(n);
  }
  return true;
}

// Wipes the free cells of one hbin (`bin` points at its "hbin" header). Returns the
// number of cells wiped; stops at the first cell whose size does not fit the bin.
size_t ZeroFreeCellsOfBin(uint8_t* bin, size_t binSize) {
  size_t wiped = 0;
  size_t pos = 32;  // the hbin header
  while (pos + 4 <= binSize) {
    int32_t cellSize = int32_t(Le32(bin + pos));
    uint32_t length = cellSize < 0 ? uint32_t(-int64_t(cellSize)) : uint32_t(cellSize);
    if (length < 8 || length % 8 != 0 || length > binSize - pos) break;
    if (cellSize > 0) {
      uint8_t* body = bin + pos + 4;
      size_t bodySize = length - 4;
      bool dirty = false;
      for (size_t i = 0; i < bodySize && !dirty; ++i) dirty = body[i] != 0;
      if (dirty) {
        std::memset(body, 0, bodySize);
        ++wiped;
      }
    }
    pos += length;
  }
  return wiped;
}

void Put16(uint8_t* p, uint16_t v) {
  p[0] = uint8_t(v);
  p[1] = uint8_t(v >> 8);
}

void Put32(uint8_t* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = uint8_t(v >> (8 * i));
}

void Put64(uint8_t* p, uint64_t v) {
  for (int i = 0; i < 8; ++i) p[i] = uint8_t(v >> (8 * i));
}

}  // namespace

std::string CheckHiveHeader(const uint8_t* data, size_t size, uint64_t fileSize) {
  if (size >= 4 && std::memcmp(data, "CREG", 4) == 0)
    return "is a Windows 95/98/Me registry file (CREG), not a Windows NT hive";
  if (size < 4 || std::memcmp(data, "regf", 4) != 0)
    return "is not a registry hive (no regf signature)";
  if (size < kHiveBaseBlockSize || fileSize < kHiveBaseBlockSize)
    return "is truncated (shorter than the hive's base block)";
  uint32_t seq1 = Le32(data + 4), seq2 = Le32(data + 8);
  if (seq1 != seq2)
    return "has unapplied transaction logs (header sequence numbers " + std::to_string(seq1) +
           " and " + std::to_string(seq2) +
           "); start that Windows once, or replay its .LOG files, before cleaning it";
  if (Le32(data + 508) != BaseBlockChecksum(data))
    return "has a damaged base block (checksum mismatch)";
  uint64_t binsSize = Le32(data + 40);
  if (binsSize == 0 || binsSize % 4096 != 0) return "has a damaged base block (hive size)";
  if (fileSize < kHiveBaseBlockSize + binsSize)
    return "is truncated (the header promises " + std::to_string(kHiveBaseBlockSize + binsSize) +
           " bytes, the file has " + std::to_string(fileSize) + ")";
  return "";
}

std::string CheckHiveFile(const std::string& path) {
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::string("cannot be opened: ") + std::strerror(errno);
  struct stat st {};
  std::vector<uint8_t> head(kHiveBaseBlockSize);
  std::string result;
  if (fstat(fd, &st) != 0) {
    result = std::string("cannot be read: ") + std::strerror(errno);
  } else if (!S_ISREG(st.st_mode)) {
    result = "is not a regular file";
  } else {
    size_t n = size_t(std::min<uint64_t>(uint64_t(st.st_size), kHiveBaseBlockSize));
    if (!ReadAll(fd, 0, head.data(), n))
      result = std::string("cannot be read: ") + std::strerror(errno);
    else
      result = CheckHiveHeader(head.data(), n, uint64_t(st.st_size));
  }
  close(fd);
  return result;
}

size_t ZeroFreeCells(uint8_t* data, size_t size) {
  if (size < kHiveBaseBlockSize) return 0;
  uint64_t end = std::min<uint64_t>(size, kHiveBaseBlockSize + uint64_t(Le32(data + 40)));
  size_t wiped = 0;
  uint64_t pos = kHiveBaseBlockSize;
  while (pos + 32 <= end && std::memcmp(data + pos, "hbin", 4) == 0) {
    uint32_t binSize = Le32(data + pos + 8);
    if (binSize < 4096 || binSize % 4096 != 0 || binSize > end - pos) break;
    wiped += ZeroFreeCellsOfBin(data + pos, binSize);
    pos += binSize;
  }
  return wiped;
}

int ZeroFreeCells(int fd) {
  uint8_t head[kHiveBaseBlockSize];
  if (!ReadAll(fd, 0, head, sizeof head)) return errno ? errno : EIO;
  uint64_t pos = kHiveBaseBlockSize;
  uint64_t end = kHiveBaseBlockSize + uint64_t(Le32(head + 40));
  std::vector<uint8_t> bin;
  // Bin by bin, so a large hive is never held twice in memory.
  while (pos + 32 <= end) {
    uint8_t binHead[32];
    if (!ReadAll(fd, pos, binHead, sizeof binHead)) return errno ? errno : EIO;
    if (std::memcmp(binHead, "hbin", 4) != 0) break;
    uint32_t binSize = Le32(binHead + 8);
    if (binSize < 4096 || binSize % 4096 != 0 || binSize > end - pos) break;
    bin.resize(binSize);
    if (!ReadAll(fd, pos, bin.data(), binSize)) return errno ? errno : EIO;
    if (ZeroFreeCellsOfBin(bin.data(), binSize) > 0 && !WriteAll(fd, pos, bin.data(), binSize))
      return errno ? errno : EIO;
    pos += binSize;
  }
  return 0;
}

int WriteEmptyHive(const std::string& path, const std::string& rootName) {
  constexpr uint64_t kStamp = 129067776000000000ULL;  // 2010-01-01, so output is reproducible
  constexpr uint32_t kNone = 0xFFFFFFFFu;
  std::vector<uint8_t> file(2 * kHiveBaseBlockSize, 0);
  uint8_t* base = file.data();
  std::memcpy(base, "regf", 4);
  Put32(base + 4, 1);
  Put32(base + 8, 1);
  Put64(base + 12, kStamp);
  Put32(base + 20, 1);  // format version 1.3
  Put32(base + 24, 3);
  Put32(base + 32, 1);
  Put32(base + 36, 0x20);  // root key cell
  Put32(base + 40, 4096);  // one bin
  Put32(base + 44, 1);

  uint8_t* bin = base + kHiveBaseBlockSize;
  std::memcpy(bin, "hbin", 4);
  Put32(bin + 8, 4096);
  Put64(bin + 20, kStamp);

  // Root key (nk) with an ASCII name, then its security cell, then one free cell.
  size_t nameLen = std::min<size_t>(rootName.size(), 255);
  uint32_t nkCell = 0x20;
  uint32_t nkSize = uint32_t((4 + 76 + nameLen + 7) / 8 * 8);
  uint32_t skCell = nkCell + nkSize;
  uint8_t* nk = bin + nkCell;
  Put32(nk, uint32_t(-int32_t(nkSize)));
  std::memcpy(nk + 4, "nk", 2);
  Put16(nk + 6, 0x2C);  // hive entry, not deletable, compressed name
  Put64(nk + 8, kStamp);
  Put32(nk + 20, kNone);  // parent
  Put32(nk + 32, kNone);  // sub-key list
  Put32(nk + 36, kNone);
  Put32(nk + 44, kNone);  // value list
  Put32(nk + 48, skCell);
  Put32(nk + 52, kNone);  // class name
  Put16(nk + 76, uint16_t(nameLen));
  std::memcpy(nk + 80, rootName.data(), nameLen);

  // Self-relative security descriptor with a NULL DACL: full access for everyone.
  constexpr uint32_t kDescriptorSize = 20;
  uint32_t skSize = (4 + 20 + kDescriptorSize + 7) / 8 * 8;
  uint8_t* sk = bin + skCell;
  Put32(sk, uint32_t(-int32_t(skSize)));
  std::memcpy(sk + 4, "sk", 2);
  Put32(sk + 8, skCell);   // flink: the only sk cell points at itself
  Put32(sk + 12, skCell);  // blink
  Put32(sk + 16, 1);       // reference count
  Put32(sk + 20, kDescriptorSize);
  sk[24] = 1;                  // revision
  Put16(sk + 26, 0x8004);      // self-relative, DACL present (NULL)

  uint32_t freeCell = skCell + skSize;
  Put32(bin + freeCell, 4096 - freeCell);
  Put32(base + 508, BaseBlockChecksum(base));

  int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return errno;
  int err = WriteAll(fd, 0, file.data(), file.size()) && fsync(fd) == 0 ? 0 : (errno ? errno : EIO);
  close(fd);
  return err;
}

}  // namespace tc
