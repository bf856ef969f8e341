// Plug-ins for the Chromium-family browsers: history, cookies, form data, cache, sessions and
// saved passwords of every profile of Google Chrome, Microsoft Edge, Brave, Vivaldi and Opera
// (15 and later). One object per browser and store; IDs are browser + store ("ChromeHistory").
#pragma once
#include "browsers/ChromiumProfiles.h"
#include "browsers/ChromiumStores.h"
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPChromiumPlugin : public TTCPlugin {
 public:
  void Scan() override;
  void Clean() override;
  const TChromiumBrowser& Browser;

 protected:
  TTCPChromiumPlugin(const TChromiumBrowser& Browser, const String& Store, int IconId,
                     const String& Caption, const String& Description, bool NeedsDatabases);
  // One profile's traces; false with Error when a store of it cannot be read.
  virtual bool ScanProfile(const TBrowserProfile& Profile, TChromiumTraces& Traces,
                           String& Error) = 0;
  virtual bool CleanProfile(const TBrowserProfile& Profile, String& Error) = 0;
  // Adds a sentence to Note once.
  void Tell(const String& Text);

 private:
  bool needsDatabases_;
};

class TTCPChromiumHistory : public TTCPChromiumPlugin {
 public:
  explicit TTCPChromiumHistory(const TChromiumBrowser& Browser);
  bool ScanProfile(const TBrowserProfile& Profile, TChromiumTraces& Traces, String& Error) override;
  bool CleanProfile(const TBrowserProfile& Profile, String& Error) override;
};

// Cookies of hosts on the keep-list stay and are reported as not cleaned.
class TTCPChromiumCookies : public TTCPChromiumPlugin {
 public:
  explicit TTCPChromiumCookies(const TChromiumBrowser& Browser);
  void Clean() override;
  bool ScanProfile(const TBrowserProfile& Profile, TChromiumTraces& Traces, String& Error) override;
  bool CleanProfile(const TBrowserProfile& Profile, String& Error) override;

 private:
  int kept_ = 0;
};

class TTCPChromiumFormData : public TTCPChromiumPlugin {
 public:
  explicit TTCPChromiumFormData(const TChromiumBrowser& Browser);
  bool ScanProfile(const TBrowserProfile& Profile, TChromiumTraces& Traces, String& Error) override;
  bool CleanProfile(const TBrowserProfile& Profile, String& Error) override;
};

class TTCPChromiumCache : public TTCPChromiumPlugin {
 public:
  explicit TTCPChromiumCache(const TChromiumBrowser& Browser);
  bool ScanProfile(const TBrowserProfile& Profile, TChromiumTraces& Traces, String& Error) override;
  bool CleanProfile(const TBrowserProfile& Profile, String& Error) override;
};

class TTCPChromiumSessions : public TTCPChromiumPlugin {
 public:
  explicit TTCPChromiumSessions(const TChromiumBrowser& Browser);
  bool ScanProfile(const TBrowserProfile& Profile, TChromiumTraces& Traces, String& Error) override;
  bool CleanProfile(const TBrowserProfile& Profile, String& Error) override;
};

// Off by default: saved logins are rarely what a user wants gone.
class TTCPChromiumPasswords : public TTCPChromiumPlugin {
 public:
  explicit TTCPChromiumPasswords(const TChromiumBrowser& Browser);
  bool ScanProfile(const TBrowserProfile& Profile, TChromiumTraces& Traces, String& Error) override;
  bool CleanProfile(const TBrowserProfile& Profile, String& Error) override;
};

// The product-settings section of a browser's cookie keep-list ("Cookies\Chrome").
String ChromiumKeepSection(const TChromiumBrowser& Browser);

void TCP_Chromium_Initialization();
void TCP_Chromium_Finalization();

}  // namespace tc
