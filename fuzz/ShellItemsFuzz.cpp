// Shell item lists read with libfwsi: any bytes give a name per item or are refused whole.
// Seeds: realworld/windows/lnk/*
// Options: -max_len=4096
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/common/LibShellItems.h"
#include "platform/helpers/ShellItemList.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tc::Bytes bytes(data, data + size);
  tc::LibShellItems reader;
  tc::StringList names;
  const uint32_t rc = reader.ItemNames(bytes, names);
  std::vector<tc::Bytes> items;
  const bool valid = tc::SplitItemList(bytes, 0, items);
  if (valid != (rc == 0) || names.size() != items.size()) std::abort();
  for (const auto& name : names)
    if (name.empty()) std::abort();
  tc::JoinItemNames(names);
  return 0;
}
