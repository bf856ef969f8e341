// Jump list files: what each entry points at and whether the user pinned it.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

struct DestListEntry {
  uint32_t Stream = 0;  // the entry's link stream, named by this number in hexadecimal
  bool Pinned = false;
  String Path;
};

struct JumpListEntry {
  String Target;
  bool Pinned = false;
};

// The entries of a DestList stream (format 1 of Windows 7 and 8, 3 and 4 of Windows 10);
// false when the stream is cut short or of another format.
bool ParseDestList(const Bytes& stream, std::vector<DestListEntry>& entries);

// Reads an automatic jump list (a compound file: DestList and one link stream per entry)
// or a custom one (links one after the other). False when the file cannot be read or an
// automatic one is damaged.
bool ReadJumpListFile(const String& path, std::vector<JumpListEntry>& entries);

}  // namespace tc
