// The event-log component: lists the machine's logs, opens one by name, counts and clears
// its records. Failures of the service leave the component inactive and count nothing.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

class TNTEventLog {
 public:
  explicit TNTEventLog(void* AOwner = nullptr);

  // Fills `Logs` with the names of the machine's event logs (application, security and
  // system first); empty where the system keeps none.
  void GetEventLogs(StringList& Logs);

  // The log that SetActive(true) opens.
  const String& Log() const { return Log_; }
  void SetLog(const String& Name);

  // Opening a log that does not exist leaves the component inactive.
  void SetActive(bool Value);
  bool Active() const { return Active_; }

  // Records in the open log; 0 while inactive.
  int GetCount();
  // Empties the open log; false when inactive or when the service refused.
  bool Clear();
  // Why the last SetActive or Clear failed (a Windows error code; 0 after success).
  uint32_t LastError() const { return LastError_; }

 private:
  String Log_;
  bool Active_ = false;
  uint32_t LastError_ = 0;
};

}  // namespace tc
