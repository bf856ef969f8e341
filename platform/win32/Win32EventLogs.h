// The system's event logs through the event-log API.
#pragma once
#include "platform/EventLogs.h"

namespace tc {

class Win32EventLogs : public IEventLogs {
 public:
  // "Application", "Security" and "System" where they can be opened, in that order, then
  // every other log the event-log service has registered.
  uint32_t ListLogs(StringList& names) override;
  uint32_t CountRecords(const String& log, uint32_t& count) override;
  uint32_t ClearLog(const String& log) override;

 private:
  // The event-log service opens the Application log for a name it does not know, so the
  // name is checked against the list first.
  bool Known(const String& log);
};

}  // namespace tc
