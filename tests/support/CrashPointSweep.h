// The crash-point sweep for a store's rewrite of one file on the in-memory Windows: the
// rewrite runs again and again with its first, second, third ... change to the volume
// failing, until a run meets no failure. After every run the file must hold either its
// old bytes or those of the run without failure, and its folder no name it did not hold.
//
//   std::string written = SweepCrashPoints(mem, u"C:\\App\\app.ini", [&] {
//     ini.WriteString(u"C:\\App\\app.ini", u"Section", u"Key", u"new");
//   });
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>

#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc::test {

// Runs `rewrite` (which starts from the file as it is on the volume) once per change it
// makes; returns the bytes the run without failure wrote.
inline std::string SweepCrashPoints(MemoryWindows& mem, const String& file,
                                    const std::function<void()>& rewrite) {
  const std::string before = mem.Files->Contents(file);
  const String folder = WinPath::Parent(file);
  const StringList names = mem.Files->Names(folder);
  auto restore = [&] {
    for (const String& name : mem.Files->Names(folder))
      if (std::find(names.begin(), names.end(), name) == names.end())
        mem.Files->RemoveFile(WinPath::Join(folder, name));
    std::unique_ptr<IFileHandle> f;
    if (mem.Files->Open(file, OpenMode::CreateAlways, f) == ERROR_SUCCESS)
      f->Write(0, before.data(), before.size());
  };
  std::map<uint64_t, std::string> afterFailure;
  for (uint64_t n = 1; n <= 10000; ++n) {
    mem.FileFaults->FailNthChange(n);
    rewrite();
    const bool failed = !mem.FileFaults->FailurePending();
    mem.FileFaults->ClearFaults();
    EXPECT_EQ(names, mem.Files->Names(folder)) << "change " << n << " failed: " << ToUtf8(folder);
    const std::string now = mem.Files->Contents(file);
    if (!failed) {
      EXPECT_GT(n, 1u) << "no change failed: the sweep proved nothing";
      EXPECT_NE(before, now) << "the rewrite changed nothing";
      for (const auto& [at, content] : afterFailure)
        EXPECT_TRUE(content == before || content == now)
            << "change " << at << " failed and left neither the old nor the new file";
      return now;
    }
    afterFailure[n] = now;
    restore();
  }
  ADD_FAILURE() << "the rewrite never ran without a failure";
  return before;
}

}  // namespace tc::test
