#include "platform/win32/Win32ProtectedStorage.h"

#include <algorithm>

#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <pstore.h>

namespace tc {

namespace {

using CreateInstanceFn = HRESULT(WINAPI*)(IPStore**, PST_PROVIDERID*, void*, DWORD);

GUID NativeGuid(const Guid& g) {
  GUID n;
  n.Data1 = g.Data1;
  n.Data2 = g.Data2;
  n.Data3 = g.Data3;
  std::copy(g.Data4.begin(), g.Data4.end(), n.Data4);
  return n;
}

// Reading and deleting never show a prompt.
PST_PROMPTINFO NoPrompt() {
  PST_PROMPTINFO p{};
  p.cbSize = sizeof(p);
  p.dwPromptFlags = PST_PF_NEVER_SHOW;
  return p;
}

IPStore* Store(void* store) { return static_cast<IPStore*>(store); }

}  // namespace

Win32ProtectedStorage::Win32ProtectedStorage(String library) : library_(std::move(library)) {}

Win32ProtectedStorage::~Win32ProtectedStorage() {
  if (store_) Store(store_)->Release();
  if (module_) FreeLibrary(static_cast<HMODULE>(module_));
}

uint32_t Win32ProtectedStorage::Open() {
  if (store_) return ERROR_SUCCESS;
  if (!module_) {
    module_ = LoadLibraryW(Wide(library_));
    if (!module_) return ERROR_MOD_NOT_FOUND;
  }
  auto create = reinterpret_cast<CreateInstanceFn>(
      reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module_), "PStoreCreateInstance")));
  if (!create) return ERROR_PROC_NOT_FOUND;
  IPStore* store = nullptr;
  const HRESULT hr = create(&store, nullptr, nullptr, 0);
  if (FAILED(hr) || !store) return FAILED(hr) ? MapNativeError(static_cast<uint32_t>(hr))
                                              : ERROR_NOT_SUPPORTED;
  store_ = store;
  return ERROR_SUCCESS;
}

uint32_t Win32ProtectedStorage::EnumItems(const Guid& type, const Guid& subtype,
                                          StringList& names) {
  names.clear();
  if (uint32_t rc = Open()) return rc;
  GUID t = NativeGuid(type), s = NativeGuid(subtype);
  IEnumPStoreItems* items = nullptr;
  const HRESULT hr = Store(store_)->EnumItems(PST_KEY_CURRENT_USER, &t, &s, 0, &items);
  if (FAILED(hr) || !items)
    return FAILED(hr) ? MapNativeError(static_cast<uint32_t>(hr)) : ERROR_FILE_NOT_FOUND;
  for (;;) {
    LPWSTR name = nullptr;
    DWORD fetched = 0;
    if (items->Next(1, &name, &fetched) != S_OK || fetched != 1) {
      CoTaskMemFree(name);
      break;
    }
    names.push_back(FromWide(name));
    CoTaskMemFree(name);
  }
  items->Release();
  return ERROR_SUCCESS;
}

uint32_t Win32ProtectedStorage::ReadItem(const Guid& type, const Guid& subtype,
                                         const String& name, Bytes& data) {
  data.clear();
  if (uint32_t rc = Open()) return rc;
  GUID t = NativeGuid(type), s = NativeGuid(subtype);
  PST_PROMPTINFO prompt = NoPrompt();
  DWORD size = 0;
  BYTE* bytes = nullptr;
  const HRESULT hr = Store(store_)->ReadItem(PST_KEY_CURRENT_USER, &t, &s, Wide(name), &size,
                                             &bytes, &prompt, 0);
  if (SUCCEEDED(hr) && bytes) data.assign(bytes, bytes + size);
  CoTaskMemFree(bytes);
  return SUCCEEDED(hr) ? ERROR_SUCCESS : MapNativeError(static_cast<uint32_t>(hr));
}

uint32_t Win32ProtectedStorage::DeleteItem(const Guid& type, const Guid& subtype,
                                           const String& name) {
  if (uint32_t rc = Open()) return rc;
  GUID t = NativeGuid(type), s = NativeGuid(subtype);
  PST_PROMPTINFO prompt = NoPrompt();
  const HRESULT hr = Store(store_)->DeleteItem(PST_KEY_CURRENT_USER, &t, &s, Wide(name), &prompt, 0);
  return SUCCEEDED(hr) ? ERROR_SUCCESS : MapNativeError(static_cast<uint32_t>(hr));
}

}  // namespace tc
