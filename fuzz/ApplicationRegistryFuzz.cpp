// The Mozilla application registry ("registry.dat"): any bytes give profiles whose folders
// exist, never a failure.
// Seeds: realworld/mozilla-suite/appreg tools/demo/tree/*registry.dat
// Options: -max_len=16384
#include <cstdlib>

#include "browsers/TC_BrowserFuncs.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/memory/MemoryPlatform.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static tc::MemoryWindows mem = [] {
    tc::MemoryWindows m = tc::MakeMemoryWindows();
    tc::SetServices(m.Platform);
    m.Files->AddFolder(u"C:\\P\\default\\a.slt");
    return m;
  }();
  const tc::String file = tc::MozillaBaseFolder() + u"registry.dat";
  mem.Files->RemoveFile(file);
  mem.Files->AddFile(file, tc::Bytes(data, data + size));
  tc::TBrowserProfileList list;
  tc::GetNetscape_MozillaProfiles(list);
  for (const auto& p : list)
    if (!tc::DirExists(p.Path)) std::abort();
  return 0;
}
