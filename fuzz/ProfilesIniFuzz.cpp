// profiles.ini of Firefox and Netscape 8: any file gives a list of profiles, never a failure.
// Seeds: realworld/*profiles.ini tools/demo/tree/*profiles.ini
// Options: -max_len=512
#include <cstdlib>

#include "browsers/TC_BrowserFuncs.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/memory/MemoryPlatform.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static tc::MemoryWindows mem = [] {
    tc::MemoryWindows m = tc::MakeMemoryWindows();
    tc::SetServices(m.Platform);
    return m;
  }();
  const tc::String appData = tc::GetAppDataDir();
  const tc::Bytes bytes(data, data + size);
  tc::TBrowserProfileList list;
  for (const tc::String& file : {appData + u"Mozilla\\Firefox\\profiles.ini",
                                appData + u"Netscape\\NSB\\profiles.ini"}) {
    mem.Files->RemoveFile(file);
    mem.Files->AddFile(file, bytes);
  }
  tc::GetFirefoxProfiles(list);
  tc::GetNetscape8Profiles(list);
  if (list.size() > size) std::abort();  // a profile needs at least a section line
  return 0;
}
