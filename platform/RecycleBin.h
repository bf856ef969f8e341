// The recycle bins of all drives.
#pragma once
#include "WinTypes.h"

namespace tc {

// Contract: Query sums items and bytes over every drive's bin (an empty or missing bin adds
// nothing); Empty empties all of them without asking, showing progress or playing a sound.
class IRecycleBin {
 public:
  virtual ~IRecycleBin() = default;
  virtual uint32_t Query(uint64_t& items, uint64_t& bytes) = 0;
  virtual uint32_t Empty() = 0;
};

}  // namespace tc
