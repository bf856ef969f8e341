// OpenOffice's settings files: the line walk finds entries in ascending, separate line
// ranges; removing the URLs the XML walk found leaves a file that reads again without them.
// Seeds: realworld/office/* tools/demo/tree/*.xcu
// Options: -max_len=8192
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/helpers/TextCodec.h"
#include "platform/memory/MemoryPlatform.h"
#include "plugins/TCP_OpenOffice.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static tc::MemoryWindows mem = [] {
    tc::MemoryWindows m = tc::MakeMemoryWindows();
    tc::SetServices(m.Platform);
    return m;
  }();
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  tc::StringList lines;
  for (size_t start = 0; start <= text.size();) {
    size_t end = std::min(text.find('\n', start), text.size());
    lines.push_back(tc::FromUtf8(text.substr(start, end - start)));
    start = end + 1;
  }
  int32_t after = 0;
  for (const auto& e : tc::WalkPickListLines(lines, 0)) {
    if (e.FirstLine <= after || e.LastLine <= e.FirstLine ||
        static_cast<size_t>(e.LastLine) >= lines.size())
      std::abort();
    after = e.LastLine;
  }

  const tc::String file = u"C:\\oo\\registrymodifications.xcu";
  mem.Files->RemoveFile(file);
  mem.Files->AddFile(file, text);
  auto doc = tc::Services().Xml->Create();
  if (!doc->Load(file)) return 0;
  tc::StringList urls;
  for (const auto& e : tc::WalkPickListItems(*doc, 2)) urls.push_back(e.ItemURL);
  if (urls.empty()) return 0;
  if (tc::RemoveHistoryItems(*doc, urls) < urls.size() || !doc->Save(file)) std::abort();
  auto again = tc::Services().Xml->Create();
  if (!again->Load(file) || !tc::WalkPickListItems(*again, 2).empty()) std::abort();
  return 0;
}
