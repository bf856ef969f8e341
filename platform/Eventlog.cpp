#include "platform/Eventlog.h"

#include "platform/Platform.h"

namespace tc {

TNTEventLog::TNTEventLog(void* /*AOwner*/) {}

void TNTEventLog::GetEventLogs(StringList& Logs) {
  Logs.clear();
  if (Services().EventLogs->ListLogs(Logs) != ERROR_SUCCESS) Logs.clear();
}

void TNTEventLog::SetLog(const String& Name) {
  // Switching logs closes the open one, as reopening under a new name would.
  if (Name != Log_) Active_ = false;
  Log_ = Name;
}

void TNTEventLog::SetActive(bool Value) {
  if (!Value || Log_.empty()) {
    Active_ = false;
    return;
  }
  uint32_t count = 0;
  Active_ = Services().EventLogs->CountRecords(Log_, count) == ERROR_SUCCESS;
}

int TNTEventLog::GetCount() {
  if (!Active_) return 0;
  uint32_t count = 0;
  if (Services().EventLogs->CountRecords(Log_, count) != ERROR_SUCCESS) return 0;
  return static_cast<int>(count);
}

bool TNTEventLog::Clear() {
  if (!Active_) return false;
  return Services().EventLogs->ClearLog(Log_) == ERROR_SUCCESS;
}

}  // namespace tc
