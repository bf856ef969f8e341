// The files of Firefox 3 and later, as stores of the Firefox plug-ins, and the two plug-ins
// only they have: the cache2 folder and the saved sessions.
#pragma once
#include "plugins/MozillaCookieKeepList.h"
#include "plugins/TCP_Firefox.h"

namespace tc {

class TTCPFirefoxCache : public TTCPFirefoxPlugin {
 public:
  TTCPFirefoxCache();
};

class TTCPFirefoxSessions : public TTCPFirefoxPlugin {
 public:
  TTCPFirefoxSessions();
};

// Adds places.sqlite, cookies.sqlite, formhistory.sqlite and logins.json beside the older
// files, and lets the keep-list read cookies.sqlite.
void AddModernFirefoxStores(TTCPFirefoxPlugin& Cookies, TTCPFirefoxPlugin& History,
                            TTCPFirefoxPlugin& FormData, TTCPFirefoxPlugin& Passwords,
                            TMozillaCookieKeepList& KeepList);

}  // namespace tc
