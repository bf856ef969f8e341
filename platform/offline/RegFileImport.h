// Registry editor files ("Windows Registry Editor Version 5.00", UTF-8 or UTF-16LE),
// applied to any registry: how images are made from readable text.
#pragma once
#include <string>
#include <string_view>

#include "platform/Registry.h"

namespace tc {

// Applies every key and value of the file's text: "[KEY]" creates, "[-KEY]" deletes a key
// tree, "NAME"=- deletes a value; values are strings, dword:, hex:, hex(N):. Stops at
// the first line it cannot apply and says which ("line 12: ...") in `error`.
bool ImportRegFile(IRegistry& registry, std::string_view fileBytes, std::string& error);

}  // namespace tc
