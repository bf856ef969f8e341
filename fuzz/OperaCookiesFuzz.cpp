// Opera's cookies4.dat: any bytes are read, refused or stopped by the file's own error, and
// cutting every closed cookie leaves exactly the bytes outside their ranges.
// Seeds: realworld/opera/cookies4*.dat tools/demo/tree/*cookies4.dat
// Options: -max_len=8192
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "browsers/TC_OperaBrowser.h"
#include "platform/memory/MemoryPlatform.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static tc::MemoryWindows mem = [] {
    tc::MemoryWindows m = tc::MakeMemoryWindows();
    tc::SetServices(m.Platform);
    return m;
  }();
  const tc::String file = u"C:\\Opera\\cookies4.dat";
  mem.Files->RemoveFile(file);
  mem.Files->AddFile(file, std::string_view(reinterpret_cast<const char*>(data), size));
  tc::TOperaBrowser browser(u"C:\\Opera");
  try {
    browser.EnumCookies();
  } catch (const tc::EOperaCookieFile&) {
    return 0;
  }
  if (!browser.Refusal.empty()) {
    if (!browser.Cookies.empty()) std::abort();
    return 0;
  }
  int64_t cut = 0;
  for (auto& cookie : browser.Cookies) {
    if (cookie->StartPos < 13 || cookie->StartPos > static_cast<int64_t>(size)) std::abort();
    if (cookie->EndPos != 0 && (cookie->EndPos < cookie->StartPos || cookie->EndPos > static_cast<int64_t>(size)))
      std::abort();
    cookie->Deleted = true;
    if (cookie->EndPos != 0) cut += cookie->EndPos - cookie->StartPos + 1;
  }
  size_t groups = 0;
  for (const auto& host : browser.CookieHosts) groups += host->Entries.size();
  if (groups != browser.Cookies.size()) std::abort();
  browser.UpdateCookies();
  if (mem.Files->Contents(file).size() != size - static_cast<size_t>(cut)) std::abort();
  return 0;
}
