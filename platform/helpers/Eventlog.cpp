#include "platform/helpers/Eventlog.h"

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
  LastError_ = Services().EventLogs->CountRecords(Log_, count);
  Active_ = LastError_ == ERROR_SUCCESS;
}

int TNTEventLog::GetCount() {
  if (!Active_) return 0;
  uint32_t count = 0;
  if (Services().EventLogs->CountRecords(Log_, count) != ERROR_SUCCESS) return 0;
  return static_cast<int>(count);
}

bool TNTEventLog::Clear() {
  if (!Active_) return false;
  LastError_ = Services().EventLogs->ClearLog(Log_);
  return LastError_ == ERROR_SUCCESS;
}

}  // namespace tc
