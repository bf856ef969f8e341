// Deletion at the next start through MoveFileEx, which records the file in the system's
// PendingFileRenameOperations.
#pragma once
#include "platform/RebootDeleter.h"

namespace tc {

class Win32RebootDeleter : public IRebootDeleter {
 public:
  uint32_t Schedule(const String& path) override;
  // The deletions the system has recorded (renames are left out), without "\??\".
  uint32_t Pending(StringList& paths) override;
};

}  // namespace tc
