#include "plugins/MozillaCookieKeepList.h"

#include "browsers/TC_MozillaBrowser.h"
#include "platform/Platform.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

void TMozillaCookieKeepList::CountHost(std::vector<TCookieHostInfo>& Hosts, const String& Host) {
  for (auto& h : Hosts) {
    if (SameText(h.Host, Host)) {
      ++h.Count;
      return;
    }
  }
  Hosts.push_back({Host, u"", 1, false});
}

TMozillaCookieKeepList::TMozillaCookieKeepList(String Browser, String Caption, String Section,
                                               String WhyIgnored,
                                               std::function<TBrowserProfileList()> Profiles)
    : browser_(std::move(Browser)),
      caption_(std::move(Caption)),
      section_(std::move(Section)),
      why_(std::move(WhyIgnored)),
      profiles_(std::move(Profiles)) {
  readers_.push_back(CookiesTxtHosts);
}

String TMozillaCookieKeepList::HostOfDomain(const String& Domain) {
  return !Domain.empty() && Domain[0] == u'.' ? Domain.substr(1) : Domain;
}

bool TMozillaCookieKeepList::CookiesTxtHosts(const TBrowserProfile& Profile,
                                             std::vector<TCookieHostInfo>& Hosts, String& Error) {
  TMozillaBrowser browser(Profile.Path, MT_MozillaNetscape);
  if (!browser.EnumCookies() && !browser.CookieError().empty()) {
    Error = Profile.Path + u": " + browser.CookieError();
    return false;
  }
  for (const auto& c : browser.Cookies) CountHost(Hosts, HostOfDomain(c.Domain));
  return true;
}

bool TMozillaCookieKeepList::HonoursKeepList(String& why) const {
  why = why_;
  return why_.empty();
}

bool TMozillaCookieKeepList::Hosts(std::vector<TCookieHostInfo>& hosts, String& error) {
  hosts.clear();
  const TBrowserProfileList profiles = profiles_();
  for (const auto& profile : profiles) {
    std::vector<TCookieHostInfo> found;
    for (const auto& reader : readers_)
      if (!reader(profile, found, error)) return false;
    for (auto& h : found) {
      h.Profile = profiles.size() > 1 ? profile.Name : String();
      h.Kept = !GetProductRegSetting(section_, profile.Path + u"-" + h.Host, true, 0);
      hosts.push_back(std::move(h));
    }
  }
  return true;
}

uint32_t TMozillaCookieKeepList::SetKept(const String& host, bool kept) {
  const TBrowserProfileList profiles = profiles_();
  if (profiles.empty()) return ERROR_PATH_NOT_FOUND;
  TBrowserProfileList having;
  for (const auto& profile : profiles) {
    std::vector<TCookieHostInfo> found;
    String error;
    for (const auto& reader : readers_) reader(profile, found, error);
    for (const auto& h : found)
      if (SameText(h.Host, host)) {
        having.push_back(profile);
        break;
      }
  }
  for (const auto& profile : having.empty() ? profiles : having) {
    uint32_t rc = Services().ProductSettings->WriteBool(section_, profile.Path + u"-" + host, !kept);
    if (rc != ERROR_SUCCESS) return rc;
  }
  return ERROR_SUCCESS;
}

}  // namespace tc
