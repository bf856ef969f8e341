// Windows error codes in words, for reports that name why something failed.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// "access denied", "in use by another process (sharing violation)", ...; codes without a
// text of their own read "Windows error N".
String SysErrorMessage(uint32_t Code);

}  // namespace tc
