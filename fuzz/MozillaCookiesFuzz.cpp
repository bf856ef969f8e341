// "cookies.txt": whatever is read is written so that reading it again gives the same file.
// Seeds: realworld/*cookies*.txt tools/demo/tree/*cookies.txt tests/browsers/data/*
#include <cstdlib>
#include <string>

#include "browsers/TC_MozillaBrowser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  tc::TMozillaCookieList first, second;
  if (!tc::ParseCookieText(input, first)) return 0;
  const std::string written = tc::FormatCookieText(first);
  if (!tc::ParseCookieText(written, second) || tc::FormatCookieText(second) != written ||
      second.size() != first.size())
    std::abort();
  return 0;
}
