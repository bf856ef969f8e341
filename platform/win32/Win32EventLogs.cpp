#include "platform/win32/Win32EventLogs.h"

#include <algorithm>

#include "platform/helpers/TextCodec.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>

namespace tc {

namespace {

// Closes the log on scope exit.
class OpenLog {
 public:
  OpenLog(Win32EventLogs::Opener open, const String& name) : h_(open(nullptr, Wide(name))) {}
  ~OpenLog() {
    if (h_) CloseEventLog(h_);
  }
  OpenLog(const OpenLog&) = delete;
  OpenLog& operator=(const OpenLog&) = delete;
  HANDLE Get() const { return h_; }

 private:
  HANDLE h_;
};

}  // namespace

Win32EventLogs::Win32EventLogs(Opener open) : open_(open ? open : &OpenEventLogW) {}

uint32_t Win32EventLogs::ListLogs(StringList& names) {
  // The classic three lead, in their fixed places, whether or not this user may open them.
  names = {u"Application", u"Security", u"System"};
  StringList registered;
  Win32Registry registry;
  registry.EnumKeys(kHKEY_LOCAL_MACHINE, u"SYSTEM\\CurrentControlSet\\Services\\EventLog",
                    registered, RegView::Native);
  for (const auto& name : registered) {
    const bool listed = std::any_of(names.begin(), names.end(),
                                    [&](const String& n) { return SameText(n, name); });
    if (!listed) names.push_back(name);
  }
  return ERROR_SUCCESS;
}

bool Win32EventLogs::Known(const String& log) {
  StringList names;
  ListLogs(names);
  return std::any_of(names.begin(), names.end(), [&](const String& n) { return SameText(n, log); });
}

uint32_t Win32EventLogs::CountRecords(const String& log, uint32_t& count) {
  count = 0;
  if (!Known(log)) return ERROR_FILE_NOT_FOUND;
  OpenLog h(open_, log);
  if (!h.Get()) return LastNativeError();
  DWORD n = 0;
  if (!GetNumberOfEventLogRecords(h.Get(), &n)) return LastNativeError();
  count = n;
  return ERROR_SUCCESS;
}

uint32_t Win32EventLogs::ClearLog(const String& log) {
  if (!Known(log)) return ERROR_FILE_NOT_FOUND;
  OpenLog h(open_, log);
  if (!h.Get()) return LastNativeError();
  return ClearEventLogW(h.Get(), nullptr) ? ERROR_SUCCESS : LastNativeError();
}

}  // namespace tc
