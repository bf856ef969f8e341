// Shell folders and change notification through shell32.
#pragma once
#include "platform/Shell.h"

namespace tc {

class Win32Shell : public IShell {
 public:
  uint32_t GetSpecialFolder(int csidl, String& path) override;
  uint32_t GetKnownFolder(const String& folderId, String& path) override;
  void ChangeNotify(int32_t eventId, uint32_t flags, const String& path) override;
};

}  // namespace tc
