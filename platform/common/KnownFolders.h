// Known folders of Windows Vista and later, as shell folders of the older kind.
#pragma once
#include "platform/Shell.h"

namespace tc {

// The folder of a known-folder id, found through `shell`'s special folders (backends
// without the known-folder API answer GetKnownFolder with this).
uint32_t KnownFolderFromSpecialFolders(IShell& shell, const String& folderId, String& path);

}  // namespace tc
