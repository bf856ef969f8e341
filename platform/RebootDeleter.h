// Deletion of files at the next start of the system.
#pragma once
#include "WinTypes.h"

namespace tc {

// Contract: Schedule records the file for deletion at the next start (as
// PendingFileRenameOperations does, appended in call order); Pending lists what is
// recorded, oldest first, as the paths were given.
class IRebootDeleter {
 public:
  virtual ~IRebootDeleter() = default;
  virtual uint32_t Schedule(const String& path) = 0;
  virtual uint32_t Pending(StringList& paths) = 0;
};

}  // namespace tc
