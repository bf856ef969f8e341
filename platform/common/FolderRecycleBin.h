// The recycle bins as folders on each drive: "$Recycle.Bin" (Vista and later) or
// "RECYCLER" (XP), one sub-folder per user SID.
#pragma once
#include <memory>

#include "platform/FileSystem.h"
#include "platform/RecycleBin.h"

namespace tc {

class FolderRecycleBin : public IRecycleBin {
 public:
  // `driveRoots` like u"C:\\"; empty means every drive the file system calls fixed.
  explicit FolderRecycleBin(std::shared_ptr<IFileSystem> files, StringList driveRoots = {});

  // An item is a "$R..." entry of a SID folder ("$I..." companions and desktop.ini are not
  // counted); on XP every entry but INFO2 and desktop.ini. A folder item is one item with
  // the size of all files below it. Links are counted, never entered.
  uint32_t Query(uint64_t& items, uint64_t& bytes) override;
  // Removes every item with its "$I" companion (XP: and INFO2, which names the originals).
  // Goes on past failures and answers the first one.
  uint32_t Empty() override;

 private:
  enum class Style : uint8_t { Vista, Xp };
  struct Bin {
    String Folder;  // a SID folder
    Style Kind;
  };
  std::vector<Bin> Bins();
  StringList Roots();
  static bool IsItem(const FileInfo& entry, Style kind);
  uint64_t TreeSize(const String& folder);
  uint32_t RemoveTree(const String& path, const FileInfo& info);

  std::shared_ptr<IFileSystem> files_;
  StringList roots_;
};

}  // namespace tc
