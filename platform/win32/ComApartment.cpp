#include "platform/win32/ComApartment.h"

#include <objbase.h>

namespace tc {

ComApartment::ComApartment() {
  // S_FALSE (already initialised here) must be balanced too; RPC_E_CHANGED_MODE must not.
  balanced_ = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
}

ComApartment::~ComApartment() {
  if (balanced_) CoUninitialize();
}

}  // namespace tc
