// Rules files: any bytes read without crashing; every entry kept has a name and every
// warning names the file and a line; the entries become plug-ins on the in-memory Windows.
// Seeds: tests/acceptance/data/rules.ini
// Options: -max_len=1024
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "engine/Traces.h"
#include "platform/Platform.h"
#include "platform/memory/MemoryPlatform.h"
#include "plugins/RulesCatalogue.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool started = [] {
    tc::SetServices(tc::MakeMemoryPlatform());
    tc::Initialize();
    return true;
  }();
  (void)started;
  const tc::Bytes bytes(data, data + size);
  std::vector<tc::TRulesEntry> entries;
  tc::StringList warnings;
  const bool text = tc::ParseRulesFile(u"f.ini", bytes, entries, warnings);
  for (const auto& e : entries)
    if (e.Name.empty() || e.Line < 1) std::abort();
  for (const auto& w : warnings)
    if (w.rfind(u"f.ini:", 0) != 0) std::abort();
  tc::TRulesCatalogue catalogue;
  tc::StringList said;
  if (catalogue.Load(u"f.ini", bytes, said) != text) std::abort();
  if (catalogue.Entries().size() > entries.size()) std::abort();
  for (const auto& p : catalogue.Entries()) p->Scan();
  return 0;
}
