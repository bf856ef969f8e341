// Recycle-bin helpers of the host's shared controls package, over the recycle-bin service.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// Items and total bytes over all drives' recycle bins; both 0 when the bins cannot be read.
void GetRecycleBinsInfo(int64_t& items, int64_t& size);
// Empties every recycle bin without asking.
void EmptyRecycleBin();

}  // namespace tc
