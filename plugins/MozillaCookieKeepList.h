// The cookie keep-list of a Mozilla-family browser: the hosts in its profiles' cookie files,
// and the choices in the product settings, named profile folder + "-" + host.
#pragma once
#include <functional>

#include "browsers/TC_BrowserFuncs.h"
#include "engine/CookieKeepLists.h"

namespace tc {

class TMozillaCookieKeepList : public ICookieKeepList {
 public:
  // Adds the hosts of one profile (Profile left empty) to `hosts`, counting repeats; false
  // with `error` set when a store of the profile cannot be read.
  using HostReader = std::function<bool(const TBrowserProfile& Profile,
                                        std::vector<TCookieHostInfo>& Hosts, String& Error)>;

  // `whyIgnored` empty means the browser's clean honours the list.
  TMozillaCookieKeepList(String Browser, String Caption, String Section, String WhyIgnored,
                         std::function<TBrowserProfileList()> Profiles);

  // Reads another cookie store of each profile beside "cookies.txt".
  void AddHostReader(HostReader Reader) { readers_.push_back(std::move(Reader)); }
  void SetWhyIgnored(String WhyIgnored) { why_ = std::move(WhyIgnored); }

  String Browser() const override { return browser_; }
  String Caption() const override { return caption_; }
  bool HonoursKeepList(String& why) const override;
  bool Hosts(std::vector<TCookieHostInfo>& hosts, String& error) override;
  // ERROR_PATH_NOT_FOUND when the browser has no profile to keep cookies in.
  uint32_t SetKept(const String& host, bool kept) override;

  // Adds one cookie of `Host` to the list: a new row, or one more on the host's row.
  static void CountHost(std::vector<TCookieHostInfo>& Hosts, const String& Host);
  // The host a cookie's domain column stands for: without its leading dot.
  static String HostOfDomain(const String& Domain);
  // The "cookies.txt" reader every Mozilla-family profile starts with.
  static bool CookiesTxtHosts(const TBrowserProfile& Profile, std::vector<TCookieHostInfo>& Hosts,
                              String& Error);

 private:
  String browser_, caption_, section_, why_;
  std::function<TBrowserProfileList()> profiles_;
  std::vector<HostReader> readers_;
};

}  // namespace tc
