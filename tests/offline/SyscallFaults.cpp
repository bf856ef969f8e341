// Defined in the test program, these take the place of the C library's functions for every
// caller in the process; each passes the call on to the next definition unless it fails.
#include "SyscallFaults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<uint64_t> failIn{0};

bool FailsNow() {
  uint64_t n = failIn.load();
  if (n == 0) return false;
  failIn.store(n - 1);
  if (n != 1) return false;
  errno = EIO;
  return true;
}

template <typename F>
F Next(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

}  // namespace

namespace tc::test {

void FailNthFileCall(uint64_t n) { failIn.store(n); }
bool FileCallFailurePending() { return failIn.load() != 0; }

}  // namespace tc::test

extern "C" {

int mkostemp(char* pattern, int flags) {
  static auto next = Next<int (*)(char*, int)>("mkostemp");
  return FailsNow() ? -1 : next(pattern, flags);
}

int open(const char* path, int flags, ...) {
  static auto next = Next<int (*)(const char*, int, ...)>("open");
  mode_t mode = 0;
  if (flags & (O_CREAT | O_TMPFILE)) {
    va_list args;
    va_start(args, flags);
    mode = static_cast<mode_t>(va_arg(args, int));
    va_end(args);
  }
  return FailsNow() ? -1 : next(path, flags, mode);
}

ssize_t write(int fd, const void* data, size_t size) {
  static auto next = Next<ssize_t (*)(int, const void*, size_t)>("write");
  return FailsNow() ? -1 : next(fd, data, size);
}

ssize_t pwrite(int fd, const void* data, size_t size, off_t at) {
  static auto next = Next<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite");
  return FailsNow() ? -1 : next(fd, data, size, at);
}

int fsync(int fd) {
  static auto next = Next<int (*)(int)>("fsync");
  return FailsNow() ? -1 : next(fd);
}

int fchmod(int fd, mode_t mode) {
  static auto next = Next<int (*)(int, mode_t)>("fchmod");
  return FailsNow() ? -1 : next(fd, mode);
}

int rename(const char* from, const char* to) {
  static auto next = Next<int (*)(const char*, const char*)>("rename");
  return FailsNow() ? -1 : next(from, to);
}

int close(int fd) {
  static auto next = Next<int (*)(int)>("close");
  const bool fail = FailsNow();
  const int rc = next(fd);
  if (!fail) return rc;
  errno = EIO;
  return -1;
}

}  // extern "C"
