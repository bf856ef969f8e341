// The live Windows platform: every service over the real Windows API.
#pragma once
#include <memory>

#include "platform/Platform.h"

namespace tc {

std::shared_ptr<Platform> MakeWin32Platform();

}  // namespace tc
