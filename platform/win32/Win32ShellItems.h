// Shell item lists named by the shell itself.
#pragma once
#include "platform/ShellItems.h"

namespace tc {

class Win32ShellItems : public IShellItems {
 public:
  uint32_t ItemNames(const Bytes& itemList, StringList& names) override;
};

}  // namespace tc
