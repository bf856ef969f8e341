// Registry editor files: any bytes either import or stop with a message, never crash.
// Seeds: tools/demo/registry/*.reg
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/memory/MemoryRegistry.h"
#include "platform/offline/RegFileImport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tc::MemoryRegistry registry;
  std::string error;
  bool ok = tc::ImportRegFile(registry, {reinterpret_cast<const char*>(data), size}, error);
  if (!ok && error.empty()) std::abort();  // a refusal always says why
  return 0;
}
