// Saved-password files of both kinds: a rewrite reads back to the same entries and bytes.
// Seeds: tools/demo/tree/*signons*.txt tools/demo/tree/*.s
#include <cstdlib>
#include <string>

#include "browsers/TC_MozillaBrowser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  for (auto type : {tc::MT_MozillaNetscape, tc::MT_Firefox}) {
    tc::TMozillaSavedPasswordList first, second;
    if (!tc::ParseSavedPasswordText(input, type, first)) return 0;
    const std::string written = tc::FormatSavedPasswordText(first);
    if (!tc::ParseSavedPasswordText(written, type, second) || second.size() != first.size() ||
        tc::FormatSavedPasswordText(second) != written)
      std::abort();
  }
  return 0;
}
