// Shell item lists: the binary folder and file paths Explorer keeps in the registry.
#pragma once
#include "WinTypes.h"

namespace tc {

// Contract: ItemNames gives the name of each item of an item list, first to last. An item
// list is a run of items, each led by its 16-bit little-endian size (which counts the size
// field), ended by a zero size or by the end of the data. A file or folder gives its long
// name, a drive its root ("C:\"), a network place its path; an item the backend cannot
// name gives "?". Data that is no item list (an item running past the end, a size below 3,
// no item at all) is ERROR_INVALID_DATA with `names` empty.
class IShellItems {
 public:
  virtual ~IShellItems() = default;
  virtual uint32_t ItemNames(const Bytes& itemList, StringList& names) = 0;
};

}  // namespace tc
