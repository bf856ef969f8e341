#include "platform/helpers/ShellItemList.h"

namespace tc {

namespace {

uint16_t Le16(const Bytes& d, size_t at) { return uint16_t(d[at] | d[at + 1] << 8); }

bool IsDriveRoot(const String& name) {
  return name.size() == 3 && name[1] == u':' && name[2] == u'\\';
}

}  // namespace

bool SplitItemList(const Bytes& data, size_t offset, std::vector<Bytes>& items) {
  items.clear();
  size_t pos = offset;
  while (pos + 2 <= data.size()) {
    const size_t size = Le16(data, pos);
    if (size == 0) break;
    if (size < 3 || pos + size > data.size()) {
      items.clear();
      return false;
    }
    items.emplace_back(data.begin() + long(pos), data.begin() + long(pos + size));
    pos += size;
  }
  return !items.empty();
}

size_t ItemListSize(const Bytes& data, size_t offset) {
  std::vector<Bytes> items;
  if (!SplitItemList(data, offset, items)) return 0;
  size_t size = 2;
  for (const auto& item : items) size += item.size();
  return size;
}

String JoinItemNames(const StringList& names) {
  String path;
  for (const String& name : names) {
    if (IsDriveRoot(name) || path.empty()) {
      path = name;
    } else {
      if (path.back() != u'\\') path += u'\\';
      path += name;
    }
  }
  return path;
}

}  // namespace tc
