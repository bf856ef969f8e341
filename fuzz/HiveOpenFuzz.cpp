// Hive files: any bytes are refused with a reason or open and enumerate without crashing.
// Seeds: realworld/hives/*
// Options: -max_len=65536
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/offline/Hive.h"

namespace {
void Walk(tc::Hive& hive, tc::Hive::Node node, int depth) {
  const std::vector<tc::RegNamedValue>* values = nullptr;
  hive.Values(node, values);
  tc::StringList names;
  if (depth > 32 || hive.ChildNames(node, names) != 0) return;
  for (const auto& name : names) {
    if (tc::Hive::Node child = hive.Child(node, name)) Walk(hive, child, depth + 1);
  }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  char path[] = "/tmp/hivefuzz-XXXXXX";
  int fd = mkstemp(path);
  if (fd < 0) return 0;
  if (write(fd, data, size) != static_cast<ssize_t>(size)) std::abort();
  close(fd);
  std::string error;
  if (auto hive = tc::Hive::Open(path, error)) {
    Walk(*hive, hive->Root(), 0);
  } else if (error.empty()) {
    std::abort();  // a refusal always says why
  }
  unlink(path);
  return 0;
}
