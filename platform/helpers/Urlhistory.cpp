#include "platform/helpers/Urlhistory.h"

#include "platform/Platform.h"

namespace tc {

TUrlHistory::~TUrlHistory() {
  if (changed_) Services().UrlHistory->Commit();
}

int TUrlHistory::Enumerate() {
  if (Services().UrlHistory->Enumerate(Items) != ERROR_SUCCESS) Items.clear();
  return static_cast<int>(Items.size());
}

bool TUrlHistory::DeleteUrl(const String& url) {
  changed_ = true;
  return Services().UrlHistory->DeleteUrl(url) == ERROR_SUCCESS;
}

}  // namespace tc
