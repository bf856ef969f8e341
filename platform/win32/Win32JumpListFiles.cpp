#include "platform/win32/Win32JumpListFiles.h"

#include <cstring>

#include "platform/helpers/ShellItemList.h"
#include "platform/win32/ComApartment.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <shlwapi.h>

namespace tc {

namespace {

// Releases a COM interface when it goes out of scope.
template <class T>
struct Com {
  T* p = nullptr;
  ~Com() {
    if (p) p->Release();
  }
  T** operator&() { return &p; }
  T* operator->() const { return p; }
};

// Header size 0x4C and the shell link class id, as every link file starts.
constexpr uint8_t kLinkHeader[] = {0x4C, 0, 0, 0, 0x01, 0x14, 0x02, 0, 0, 0, 0, 0,
                                   0xC0, 0,    0,    0, 0,    0,    0, 0x46};

bool ReadWhole(IStream* stream, uint64_t size, Bytes& out) {
  out.assign(size, 0);
  ULONG done = 0;
  return size == 0 ||
         (SUCCEEDED(stream->Read(out.data(), ULONG(size), &done)) && done == size);
}

}  // namespace

uint32_t Win32JumpListFiles::ReadStreams(const Bytes& compoundFile,
                                         std::vector<NamedStream>& streams) {
  streams.clear();
  ComApartment com;
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, compoundFile.empty() ? 1 : compoundFile.size());
  if (!memory) return ERROR_NOT_ENOUGH_MEMORY;
  if (void* at = GlobalLock(memory)) {
    if (!compoundFile.empty()) std::memcpy(at, compoundFile.data(), compoundFile.size());
    GlobalUnlock(memory);
  }
  Com<ILockBytes> bytes;
  if (FAILED(CreateILockBytesOnHGlobal(memory, TRUE, &bytes))) {
    GlobalFree(memory);
    return ERROR_NOT_ENOUGH_MEMORY;
  }
  ULARGE_INTEGER size;
  size.QuadPart = compoundFile.size();
  bytes->SetSize(size);
  Com<IStorage> storage;
  Com<IEnumSTATSTG> entries;
  if (StgIsStorageILockBytes(bytes.p) != S_OK ||
      FAILED(StgOpenStorageOnILockBytes(bytes.p, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE,
                                        nullptr, 0, &storage)) ||
      FAILED(storage->EnumElements(0, nullptr, 0, &entries)))
    return ERROR_INVALID_DATA;
  uint32_t rc = ERROR_SUCCESS;
  STATSTG entry;
  while (rc == ERROR_SUCCESS && entries->Next(1, &entry, nullptr) == S_OK) {
    if (entry.type == STGTY_STREAM) {
      Com<IStream> stream;
      NamedStream read;
      read.Name = FromWide(entry.pwcsName);
      if (FAILED(storage->OpenStream(entry.pwcsName, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE,
                                     0, &stream)) ||
          !ReadWhole(stream.p, entry.cbSize.QuadPart, read.Data))
        rc = ERROR_INVALID_DATA;
      else
        streams.push_back(std::move(read));
    }
    CoTaskMemFree(entry.pwcsName);
  }
  if (rc != ERROR_SUCCESS) streams.clear();
  return rc;
}

uint32_t Win32JumpListFiles::ReadLink(const Bytes& link, String& target) {
  target.clear();
  if (link.size() < 0x4C || std::memcmp(link.data(), kLinkHeader, sizeof kLinkHeader) != 0)
    return ERROR_INVALID_DATA;
  ComApartment com;
  Com<IShellLinkW> shellLink;
  Com<IPersistStream> persist;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                              reinterpret_cast<void**>(&shellLink))) ||
      FAILED(shellLink->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist))))
    return ERROR_NOT_SUPPORTED;
  Com<IStream> stream;
  stream.p = SHCreateMemStream(link.data(), UINT(link.size()));
  if (!stream.p) return ERROR_NOT_ENOUGH_MEMORY;
  if (FAILED(persist->Load(stream.p))) return ERROR_INVALID_DATA;
  wchar_t path[4 * MAX_PATH] = {};
  if (shellLink->GetPath(path, int(std::size(path)), nullptr, SLGP_RAWPATH) == S_OK && path[0]) {
    target = FromWide(path);
    return ERROR_SUCCESS;
  }
  PIDLIST_ABSOLUTE pidl = nullptr;
  if (items_ && SUCCEEDED(shellLink->GetIDList(&pidl)) && pidl) {
    const auto* raw = reinterpret_cast<const uint8_t*>(pidl);
    Bytes list(raw, raw + ILGetSize(pidl));
    StringList names;
    if (items_->ItemNames(list, names) == ERROR_SUCCESS) target = JoinItemNames(names);
  }
  CoTaskMemFree(pidl);
  return ERROR_SUCCESS;
}

}  // namespace tc
