// Private-profile files: any bytes read without crashing, and a key written into the first
// section reads back while every other key keeps its value.
// Seeds: realworld/*.ini tools/demo/tree/*.ini
// Options: -max_len=256
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/common/TextIniFiles.h"
#include "platform/helpers/TextCodec.h"
#include "platform/memory/MemoryFileSystem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto files = std::make_shared<tc::MemoryFileSystem>();
  const tc::String file = u"C:\\fuzz.ini";
  files->AddFile(file, tc::Bytes(data, data + size));
  tc::TextIniFiles ini(files);
  tc::StringList sections;
  if (ini.ReadSections(file, sections) != 0) std::abort();
  if (sections.empty()) return 0;
  const tc::String& first = sections.front();
  tc::StringList keys;
  ini.ReadKeys(file, first, keys);
  tc::StringList before;
  for (const auto& key : keys) before.push_back(ini.ReadString(file, first, key, u"<none>"));
  if (ini.WriteString(file, first, u"TcFuzzKey", u"written") != 0) return 0;
  if (ini.ReadString(file, first, u"TcFuzzKey", u"") != u"written") std::abort();
  for (size_t i = 0; i < keys.size(); ++i) {
    if (tc::SameText(keys[i], u"TcFuzzKey")) continue;
    if (ini.ReadString(file, first, keys[i], u"<none>") != before[i]) std::abort();
  }
  return 0;
}
