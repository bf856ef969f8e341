// The browsers whose cookies a user may choose to keep. Each browser unit registers one
// provider at start-up; the host lists hosts and writes keep/unkeep choices through them, into
// the product settings exactly where that browser's store reads them.
#pragma once
#include <memory>
#include <vector>

#include "platform/WinTypes.h"

namespace tc {

struct TCookieHostInfo {
  String Host;        // as the user sees and types it (the store's normalised host)
  String Profile;     // the profile's text where the browser has several, else empty
  int32_t Count = 0;  // cookies of this host (in this profile)
  bool Kept = false;  // the keep-list keeps them from the next clean
};

class ICookieKeepList {
 public:
  virtual ~ICookieKeepList() = default;
  // Short name the user types after --browser ("ie", "opera", "firefox", "chrome", ...).
  virtual String Browser() const = 0;
  // Caption for listings ("Internet Explorer", "Opera", ...).
  virtual String Caption() const = 0;
  // False where the browser's clean ignores the keep-list by design; `why` says so.
  virtual bool HonoursKeepList(String& why) const = 0;
  // The hosts that have cookies now, in the store's order. False with `error` set when the
  // cookie store cannot be read (corrupt file, refused version).
  virtual bool Hosts(std::vector<TCookieHostInfo>& hosts, String& error) = 0;
  // Writes the choice for `host` (in every profile that has cookies of it, or in every
  // profile when none has) into the product settings. Returns a Windows error code.
  virtual uint32_t SetKept(const String& host, bool kept) = 0;
};

// Providers in registration order. Units add theirs in their initialisation and remove them
// in their finalisation.
const std::vector<ICookieKeepList*>& CookieKeepLists();
void RegisterCookieKeepList(ICookieKeepList* provider);
void UnregisterCookieKeepList(ICookieKeepList* provider);
// The provider answering to `browser` (case-insensitive), or nullptr.
ICookieKeepList* FindCookieKeepList(const String& browser);

}  // namespace tc
