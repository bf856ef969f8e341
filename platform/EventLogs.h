// The system's event logs.
#pragma once
#include "WinTypes.h"

namespace tc {

// Contract: ListLogs gives the log names, "Application", "Security" and "System" first in
// that order where they exist, a log this user may not open included; a backend without
// event logs answers ERROR_NOT_SUPPORTED. An unknown log name is ERROR_FILE_NOT_FOUND; a log
// the user may not open or clear answers ERROR_ACCESS_DENIED for counting and clearing.
class IEventLogs {
 public:
  virtual ~IEventLogs() = default;
  virtual uint32_t ListLogs(StringList& names) = 0;
  virtual uint32_t CountRecords(const String& log, uint32_t& count) = 0;
  virtual uint32_t ClearLog(const String& log) = 0;
};

}  // namespace tc
