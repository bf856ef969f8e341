// Makes the n-th file call of this process fail, for crash-point sweeps of code that writes
// through the C library (hivex included): mkostemp, open, write, pwrite, fsync, fchmod,
// rename and close are counted; the failing one answers EIO and does nothing (close still
// releases its descriptor, as a close that reports a late write error does).
#pragma once
#include <cstdint>

namespace tc::test {

void FailNthFileCall(uint64_t n);  // 1 = the next call; 0 switches it off
bool FileCallFailurePending();

}  // namespace tc::test
