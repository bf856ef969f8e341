// One test at a time on the parts of the live system that every test process shares
// (PendingFileRenameOperations, the URL cache, the recycle bin): a named mutex, held for
// the life of the object, across the processes ctest runs side by side.
#pragma once
#include <windows.h>

namespace tc {

class LiveSystemLock {
 public:
  LiveSystemLock() : mutex_(CreateMutexW(nullptr, FALSE, L"Local\\TraceCleanerLiveSystem")) {
    if (mutex_) WaitForSingleObject(mutex_, INFINITE);
  }
  ~LiveSystemLock() {
    if (mutex_) {
      ReleaseMutex(mutex_);
      CloseHandle(mutex_);
    }
  }
  LiveSystemLock(const LiveSystemLock&) = delete;
  LiveSystemLock& operator=(const LiveSystemLock&) = delete;

 private:
  HANDLE mutex_;
};

}  // namespace tc
