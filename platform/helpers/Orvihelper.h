// Small host helpers: deletion at the next start, the graphics catalogue, URL decoding.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// Registers the file for deletion at the next start of the system.
bool DeleteFileOnReboot(const String& fileName);
// File name of picture `id` of the host's graphics catalogue (plug-ins use category 27).
String FileNameByID(int id, int category);
// Decodes %XX escapes (as UTF-8 where the bytes form UTF-8, else Windows-1252) and '+'.
String UrlDecode(const String& s);

}  // namespace tc
