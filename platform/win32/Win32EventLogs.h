// The system's event logs through the event-log API.
#pragma once
#include "platform/EventLogs.h"

namespace tc {

class Win32EventLogs : public IEventLogs {
 public:
  // How a log is opened: OpenEventLogW, or a stand-in that refuses some logs in tests.
  using Opener = void* (__stdcall*)(const wchar_t* server, const wchar_t* log);
  explicit Win32EventLogs(Opener open = nullptr);

  // "Application", "Security" and "System" in that order, whether or not they can be opened,
  // then every other log the event-log service has registered.
  uint32_t ListLogs(StringList& names) override;
  uint32_t CountRecords(const String& log, uint32_t& count) override;
  uint32_t ClearLog(const String& log) override;

 private:
  // The event-log service opens the Application log for a name it does not know, so the
  // name is checked against the list first.
  bool Known(const String& log);

  Opener open_;
};

}  // namespace tc
