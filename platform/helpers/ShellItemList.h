// The layout of shell item lists, shared by every reader of them.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// The bytes of each item of the item list that starts at `offset`, without the closing
// zero size; false when an item runs past the end, has a size below 3, or there is none.
bool SplitItemList(const Bytes& data, size_t offset, std::vector<Bytes>& items);
// The byte count of the item list at `offset` with its closing zero size (0 when invalid).
size_t ItemListSize(const Bytes& data, size_t offset);
// Item names as one path: what comes before a drive root ("C:\") is dropped.
String JoinItemNames(const StringList& names);

}  // namespace tc
