// Whole-file reads and all-or-nothing rewrites over IFileSystem.
#pragma once
#include "platform/FileSystem.h"

namespace tc {

struct FileContents {
  static uint32_t Read(IFileSystem& files, const String& path, Bytes& data);
  // Writes `data` to a new file beside `path` (its name, ".~tc" and six digits), flushes it
  // and renames it over `path`, then gives it the original's attributes. Any failure removes
  // the new file and leaves the original as it was.
  static uint32_t Replace(IFileSystem& files, const String& path, const Bytes& data);
  // Creates the new file of a rewrite of `path`: beside it, named after it with ".~tc" and
  // six digits that no other file there has, so two writers never share one.
  static uint32_t CreateTemp(IFileSystem& files, const String& path, String& temp,
                             std::unique_ptr<IFileHandle>& file);
};

}  // namespace tc
