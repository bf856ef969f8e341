// Protected Storage through "pstorec.dll", loaded when first opened: systems since
// Windows Vista no longer ship it, and then opening fails as the contract says.
#pragma once
#include "platform/ProtectedStorage.h"

namespace tc {

class Win32ProtectedStorage : public IProtectedStorage {
 public:
  // `library` is the DLL to load; tests name a missing one.
  explicit Win32ProtectedStorage(String library = u"pstorec.dll");
  ~Win32ProtectedStorage() override;
  Win32ProtectedStorage(const Win32ProtectedStorage&) = delete;
  Win32ProtectedStorage& operator=(const Win32ProtectedStorage&) = delete;

  uint32_t Open() override;
  uint32_t EnumItems(const Guid& type, const Guid& subtype, StringList& names) override;
  uint32_t ReadItem(const Guid& type, const Guid& subtype, const String& name,
                    Bytes& data) override;
  uint32_t DeleteItem(const Guid& type, const Guid& subtype, const String& name) override;

 private:
  String library_;
  void* module_ = nullptr;  // HMODULE
  void* store_ = nullptr;   // IPStore*
};

}  // namespace tc
