// What this backend reads of the regf file format itself, outside hivex: the base block
// (is this a clean hive?) and the cell heap (wiping freed cells).
#pragma once
#include <cstdint>
#include <string>

namespace tc {

inline constexpr size_t kHiveBaseBlockSize = 4096;

// Checks that the file is a complete NT registry hive without pending log data. Returns ""
// when it is, otherwise the reason in words ("is truncated ...").
std::string CheckHiveFile(const std::string& path);
std::string CheckHiveHeader(const uint8_t* data, size_t size, uint64_t fileSize);

// Overwrites the contents of every free cell of the hive file with zeros, so that deleted
// keys and values cannot be read back from it. Returns 0 or an errno value.
int ZeroFreeCells(int fd);
// The same on a hive image in memory; returns how many cells held data.
size_t ZeroFreeCells(uint8_t* data, size_t size);

// Writes a new, empty hive (root key `rootName`, full access for everyone) to `path`,
// which hivex can then fill. Returns 0 or an errno value.
int WriteEmptyHive(const std::string& path, const std::string& rootName);

}  // namespace tc
