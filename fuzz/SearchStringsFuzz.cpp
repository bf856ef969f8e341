// eMule's AC_SearchStrings.dat reader: any bytes give a count no larger than the lines.
// Seeds: tools/demo/tree/*AC_SearchStrings.dat realworld/filesharing/*
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "plugins/TCP_FileSharing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tc::Bytes bytes(data, data + size);
  int count = tc::CountSearchStringLines(bytes);
  if (count < 0 || static_cast<size_t>(count) > size) std::abort();
  return 0;
}
