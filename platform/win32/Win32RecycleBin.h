// The recycle bins of all drives through the shell.
#pragma once
#include "platform/RecycleBin.h"

namespace tc {

class Win32RecycleBin : public IRecycleBin {
 public:
  uint32_t Query(uint64_t& items, uint64_t& bytes) override;
  uint32_t Empty() override;
};

}  // namespace tc
