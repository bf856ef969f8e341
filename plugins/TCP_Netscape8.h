// Plug-ins for Netscape 8: cache, cookies, history, form data ("datacards") and saved
// passwords, five per profile of its profiles.ini.
#pragma once
#include "plugins/NetscapeProfilePlugins.h"

namespace tc {

class TTCPNetscape8cache : public TNetscapeCachePlugin {
 public:
  TTCPNetscape8cache(const String& Folder, const String& Name);
};

class TTCPNetscape8Cookies : public TNetscapeCookiesPlugin {
 public:
  TTCPNetscape8Cookies(const String& Folder, const String& Name);
};

class TTCPNetscape8History : public TNetscapeHistoryPlugin {
 public:
  TTCPNetscape8History(const String& Folder, const String& Name);
};

// Each file of the profile's "datacards" folder, counted by its line feeds.
class TTCPNetscape8Formdata : public TNetscapeProfilePlugin {
 public:
  TTCPNetscape8Formdata(const String& Folder, const String& Name);
  void Scan() override;
  void Clean() override;

 private:
  String DataCards() const;
};

class TTCPNetscape8Passwords : public TNetscapePasswordsPlugin {
 public:
  TTCPNetscape8Passwords(const String& Folder, const String& Name);
};

extern TNetscapeEdition Netscape8;

void TCP_Netscape8_Initialization();
void TCP_Netscape8_Finalization();

}  // namespace tc
