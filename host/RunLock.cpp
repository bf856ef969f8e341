#include "host/RunLock.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#endif

namespace tc::host {

#ifdef _WIN32

RunLock::~RunLock() {
  if (mutex_) {
    ReleaseMutex(mutex_);
    CloseHandle(mutex_);
  }
}

bool RunLock::Take(const std::string&, bool, const std::function<void()>& waiting,
                   std::string& error) {
  // One live system, whoever runs: the global name where the session may make one.
  HANDLE m = CreateMutexW(nullptr, FALSE, L"Global\\TraceCleanerRun");
  if (!m) m = CreateMutexW(nullptr, FALSE, L"Local\\TraceCleanerRun");
  if (!m) {
    error = "cannot make the lock that keeps runs apart (error " +
            std::to_string(GetLastError()) + ")";
    return false;
  }
  DWORD got = WaitForSingleObject(m, 0);
  if (got == WAIT_TIMEOUT) {
    if (waiting) waiting();
    got = WaitForSingleObject(m, INFINITE);
  }
  if (got != WAIT_OBJECT_0 && got != WAIT_ABANDONED) {  // abandoned: its run ended anyhow
    CloseHandle(m);
    error = "cannot take the lock that keeps runs apart";
    return false;
  }
  mutex_ = m;
  return true;
}

#else

RunLock::~RunLock() {
  if (fd_ >= 0) close(fd_);
}

bool RunLock::Take(const std::string& image, bool exclusive,
                   const std::function<void()>& waiting, std::string& error) {
  // The folder itself carries the lock: nothing is written into the image for it.
  int fd = open(image.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) {
    error = image + " cannot be opened (" + std::strerror(errno) + ")";
    return false;
  }
  const int mode = exclusive ? LOCK_EX : LOCK_SH;
  int rc = flock(fd, mode | LOCK_NB);
  if (rc != 0 && errno == EWOULDBLOCK) {
    if (waiting) waiting();
    while ((rc = flock(fd, mode)) != 0 && errno == EINTR) {
    }
  }
  if (rc != 0) {
    error = image + " cannot be locked against other runs (" + std::strerror(errno) + ")";
    close(fd);
    return false;
  }
  fd_ = fd;
  return true;
}

#endif

}  // namespace tc::host
