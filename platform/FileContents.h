// Whole-file reads and all-or-nothing rewrites over IFileSystem.
#pragma once
#include "platform/FileSystem.h"

namespace tc {

struct FileContents {
  static uint32_t Read(IFileSystem& files, const String& path, Bytes& data);
  // Writes `data` to a new file beside `path`, flushes it and renames it over `path`, then
  // gives it the original's attributes. Any failure removes the new file and leaves the
  // original as it was.
  static uint32_t Replace(IFileSystem& files, const String& path, const Bytes& data);
  // The name of the new file Replace writes before the rename.
  static String TempName(const String& path);
};

}  // namespace tc
