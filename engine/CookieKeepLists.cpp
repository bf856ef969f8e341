#include "engine/CookieKeepLists.h"

#include <algorithm>

#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {
std::vector<ICookieKeepList*>& Providers() {
  static std::vector<ICookieKeepList*> providers;
  return providers;
}
}  // namespace

const std::vector<ICookieKeepList*>& CookieKeepLists() { return Providers(); }

void RegisterCookieKeepList(ICookieKeepList* provider) {
  auto& all = Providers();
  if (provider && std::find(all.begin(), all.end(), provider) == all.end()) all.push_back(provider);
}

void UnregisterCookieKeepList(ICookieKeepList* provider) {
  auto& all = Providers();
  all.erase(std::remove(all.begin(), all.end(), provider), all.end());
}

ICookieKeepList* FindCookieKeepList(const String& browser) {
  for (auto* p : Providers())
    if (SameText(p->Browser(), browser)) return p;
  return nullptr;
}

}  // namespace tc
