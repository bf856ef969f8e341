// Chromium's "Local State" profile walk: any bytes give only plain folder names.
// Seeds: realworld/profiles/*Local?State tools/demo/tree/*Local?State
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "browsers/ChromiumProfiles.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tc::TBrowserProfileList profiles;
  tc::ParseLocalStateProfiles(std::string_view(reinterpret_cast<const char*>(data), size), profiles);
  for (const auto& p : profiles)
    if (p.Path.empty() || p.Path == u".." || p.Path.find_first_of(u"\\/:") != tc::String::npos)
      std::abort();
  return 0;
}
