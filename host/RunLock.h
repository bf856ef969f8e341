// Keeps runs on one Windows apart: two runs on the same offline image, or on the live
// system, never read and write its hives at the same time.
#pragma once
#include <functional>
#include <string>

namespace tc::host {

class RunLock {
 public:
  RunLock() = default;
  ~RunLock();
  RunLock(const RunLock&) = delete;
  RunLock& operator=(const RunLock&) = delete;

  // Locks the image folder `image` ("" for the live system): `exclusive` for a run that
  // writes, shared for one that only reads. When another run holds it, `waiting` is called
  // once and the lock is then waited for. False (with `error`) when it cannot be taken.
  bool Take(const std::string& image, bool exclusive, const std::function<void()>& waiting,
            std::string& error);

 private:
#ifdef _WIN32
  void* mutex_ = nullptr;
#else
  int fd_ = -1;
#endif
};

}  // namespace tc::host
