// Plug-ins for the Mozilla suite and Netscape 6/7: cache, cookies, history, form data and
// saved passwords, five per profile named in the application registry.
#pragma once
#include "plugins/NetscapeProfilePlugins.h"

namespace tc {

class TTCPNetscapecache : public TNetscapeCachePlugin {
 public:
  TTCPNetscapecache(const String& Folder, const String& Name);
};

class TTCPNetscapeCookies : public TNetscapeCookiesPlugin {
 public:
  TTCPNetscapeCookies(const String& Folder, const String& Name);
};

class TTCPNetscapeHistory : public TNetscapeHistoryPlugin {
 public:
  TTCPNetscapeHistory(const String& Folder, const String& Name);
};

class TTCPNetscapeFormdata : public TNetscapeFormdataPlugin {
 public:
  TTCPNetscapeFormdata(const String& Folder, const String& Name);
};

class TTCPNetscapePasswords : public TNetscapePasswordsPlugin {
 public:
  TTCPNetscapePasswords(const String& Folder, const String& Name);
};

// Filled at start-up: whether Netscape 7 is installed and how many profiles were found.
extern TNetscapeEdition Netscape7;

void TCP_Netscape7_Initialization();
void TCP_Netscape7_Finalization();

}  // namespace tc
