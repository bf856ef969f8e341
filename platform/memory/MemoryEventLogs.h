// Event logs as named record counters.
#pragma once
#include "platform/EventLogs.h"

namespace tc {

class MemoryEventLogs : public IEventLogs {
 public:
  // "Application", "Security" and "System", each without records.
  MemoryEventLogs();

  uint32_t ListLogs(StringList& names) override;
  uint32_t CountRecords(const String& log, uint32_t& count) override;
  uint32_t ClearLog(const String& log) override;

  // Adds the log (at the end) or changes its record count.
  void SetLog(const String& log, uint32_t records);
  void RemoveLog(const String& log);
  // Record count of the log; 0 when it does not exist.
  uint32_t Records(const String& log) const;
  // Counting and clearing this log answers `code` (the security log for a normal user).
  void SetAccessError(const String& log, uint32_t code = ERROR_ACCESS_DENIED);
  // Every call answers `code` (ERROR_NOT_SUPPORTED: no event logs); 0 makes it work again.
  void SetUnavailable(uint32_t code = ERROR_NOT_SUPPORTED) { failure_ = code; }

 private:
  struct Log {
    String Name;
    uint32_t Records = 0;
    uint32_t AccessError = ERROR_SUCCESS;
  };
  Log* Find(const String& log);
  const Log* Find(const String& log) const;

  std::vector<Log> logs_;  // in the order added
  uint32_t failure_ = ERROR_SUCCESS;
};

}  // namespace tc
