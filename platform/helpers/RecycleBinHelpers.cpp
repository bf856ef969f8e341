#include "platform/helpers/RecycleBinHelpers.h"

#include "platform/Platform.h"

namespace tc {

void GetRecycleBinsInfo(int64_t& items, int64_t& size) {
  items = 0;
  size = 0;
  uint64_t n = 0, bytes = 0;
  if (Services().RecycleBin->Query(n, bytes) != ERROR_SUCCESS) return;
  items = static_cast<int64_t>(n);
  size = static_cast<int64_t>(bytes);
}

void EmptyRecycleBin() { Services().RecycleBin->Empty(); }

}  // namespace tc
