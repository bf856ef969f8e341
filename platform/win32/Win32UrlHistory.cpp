#include "platform/win32/Win32UrlHistory.h"

#include "platform/win32/ComApartment.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <shlguid.h>
#include <urlhist.h>

namespace tc {

namespace {

// Releases the interface on scope exit.
template <class T>
class ComRef {
 public:
  ComRef() = default;
  ComRef(const ComRef&) = delete;
  ComRef& operator=(const ComRef&) = delete;
  ~ComRef() {
    if (p_) p_->Release();
  }
  T** Out() { return &p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};

uint32_t Failure(HRESULT hr) {
  return FAILED(hr) ? MapNativeError(static_cast<uint32_t>(hr)) : ERROR_NOT_SUPPORTED;
}

uint32_t OpenStore(ComRef<IUrlHistoryStg2>& store) {
  const HRESULT hr = CoCreateInstance(CLSID_CUrlHistory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IUrlHistoryStg2, reinterpret_cast<void**>(store.Out()));
  return SUCCEEDED(hr) && store ? ERROR_SUCCESS : Failure(hr);
}

}  // namespace

uint32_t Win32UrlHistory::Enumerate(std::vector<UrlHistoryEntry>& entries) {
  entries.clear();
  ComApartment com;
  ComRef<IUrlHistoryStg2> store;
  if (uint32_t rc = OpenStore(store)) return rc;
  ComRef<IEnumSTATURL> walk;
  const HRESULT hr = store->EnumUrls(walk.Out());
  if (FAILED(hr) || !walk) return Failure(hr);
  for (;;) {
    STATURL item{};
    item.cbSize = sizeof(item);
    ULONG fetched = 0;
    if (walk->Next(1, &item, &fetched) != S_OK || fetched != 1) break;
    UrlHistoryEntry e;
    e.Url = FromWide(item.pwcsUrl);
    e.Title = FromWide(item.pwcsTitle);
    e.Kind = static_cast<int>(item.dwFlags & (STATURLFLAG_ISCACHED | STATURLFLAG_ISTOPLEVEL));
    CoTaskMemFree(item.pwcsUrl);
    CoTaskMemFree(item.pwcsTitle);
    entries.push_back(std::move(e));
  }
  return ERROR_SUCCESS;
}

uint32_t Win32UrlHistory::DeleteUrl(const String& url) {
  ComApartment com;
  ComRef<IUrlHistoryStg2> store;
  if (uint32_t rc = OpenStore(store)) return rc;
  const HRESULT hr = store->DeleteUrl(Wide(url), 0);
  return SUCCEEDED(hr) ? ERROR_SUCCESS : Failure(hr);
}

}  // namespace tc
