// Plug-ins for Internet Explorer: typed addresses, cookies, history, form data and saved
// passwords in Protected Storage, temporary internet files.
#pragma once
#include "engine/TC_BasePlugin.h"
#include "platform/UrlCache.h"

namespace tc {

// Previews a URL cache entry a scan counts: its local file, its address and its size.
void PreviewCacheEntry(TTCPlugin& Plugin, const UrlCacheEntry& Entry);

// The numbered "url" values of "TypedURLs".
class TTCPIETypedURLs : public TTCPlugin {
 public:
  TTCPIETypedURLs();
};

// Cookie entries of the URL cache; cookies of hosts on the keep-list stay and are reported.
class TTCPIECookies : public TTCPlugin {
 public:
  TTCPIECookies();
  void Scan() override;
  void Clean() override;
};

// Top-level pages of the URL history (kinds 2 and 3).
class TTCPIEHistory : public TTCPlugin {
 public:
  TTCPIEHistory();
  void Scan() override;
  void Clean() override;
};

// Protected Storage form-data items not keyed by a web address.
class TTCPIEAutoComplete : public TTCPlugin {
 public:
  TTCPIEAutoComplete();
  void Scan() override;
  void Clean() override;
};

// Protected Storage log-ins: older log-in items, and form-data items keyed by a web address.
class TTCPIESavedPasswords : public TTCPlugin {
 public:
  TTCPIESavedPasswords();
  void Scan() override;
  void Clean() override;
};

// Every URL cache entry that is no cookie.
class TTCPIETempInternetFiles : public TTCPlugin {
 public:
  TTCPIETempInternetFiles();
  void Scan() override;
  void Clean() override;
};

// Form data as the form-data scan counts it: the fields of one ":StringData" item.
int CountAutoCompleteFields(const Bytes& data);

void TCP_InternetExplorer_Initialization();
void TCP_InternetExplorer_Finalization();

}  // namespace tc
