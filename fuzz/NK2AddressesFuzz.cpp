// Outlook's *.NK2 address estimate: any bytes give one part more than '@' signs, or none.
// Seeds: realworld/*.NK2 tools/demo/tree/*.NK2
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "plugins/TCP_MSOffice.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tc::Bytes bytes(data, data + size);
  int count = tc::CountNK2Addresses(bytes);
  size_t ats = static_cast<size_t>(std::count(bytes.begin(), bytes.end(), uint8_t{'@'}));
  if (static_cast<size_t>(count) != (size ? ats + 1 : 0)) std::abort();
  return 0;
}
