// The Mork reader: any bytes, read as history and as form history, give at most one row per
// "]" and never fail.
// Seeds: realworld/mork/* realworld/mozilla-suite/history.dat tools/demo/tree/*.dat
// Options: -max_len=16384
#include <algorithm>
#include <cstdlib>
#include <string>

#include "browsers/MorkReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const size_t rowEnds = static_cast<size_t>(std::count(input.begin(), input.end(), ']'));
  for (auto kind : {tc::TMorkKind::History, tc::TMorkKind::FormHistory}) {
    std::string scratch = input;
    if (tc::ReadMorkRows(scratch, kind).size() > rowEnds) std::abort();
  }
  return 0;
}
