// UserAssist value names as a person reads them.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// Letters a-z and A-Z rotated by 13 within their case; ROT13 is its own inverse.
String Rot13(const String& s);
// The name ROT13-decoded, with a known-folder id at its start ("{6D809377-...}\x.exe")
// replaced by that folder's path; ids the shell does not know stay as they are.
String ReadableUserAssistName(const String& valueName);

}  // namespace tc
