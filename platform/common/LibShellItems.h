// Shell item lists read with libfwsi, for the backends that run off Windows.
#pragma once
#include "platform/ShellItems.h"

namespace tc {

class LibShellItems : public IShellItems {
 public:
  uint32_t ItemNames(const Bytes& itemList, StringList& names) override;
};

}  // namespace tc
