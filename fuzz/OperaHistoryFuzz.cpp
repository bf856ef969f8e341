// Opera's global_history.dat: one address per block of four lines, never more.
// Seeds: realworld/opera/global_history.dat tools/demo/tree/*global_history.dat
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "browsers/TC_OperaBrowser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const tc::Bytes bytes(data, data + size);
  const size_t lines = static_cast<size_t>(std::count(bytes.begin(), bytes.end(), uint8_t{'\n'})) + 1;
  if (tc::OperaHistoryAddresses(bytes).size() > (lines + 3) / 4) std::abort();
  return 0;
}
