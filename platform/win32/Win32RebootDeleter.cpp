#include "platform/win32/Win32RebootDeleter.h"

#include <memory>

#include "platform/common/PendingRenameRebootDeleter.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>

namespace tc {

uint32_t Win32RebootDeleter::Schedule(const String& path) {
  return MoveFileExW(Wide(path), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT) ? ERROR_SUCCESS
                                                                       : LastNativeError();
}

uint32_t Win32RebootDeleter::Pending(StringList& paths) {
  // The system keeps the list in the registry value the generic reader knows.
  return PendingRenameRebootDeleter(std::make_shared<Win32Registry>()).Pending(paths);
}

}  // namespace tc
