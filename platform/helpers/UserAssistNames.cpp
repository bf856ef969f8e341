#include "platform/helpers/UserAssistNames.h"

#include "platform/Platform.h"

namespace tc {

String Rot13(const String& s) {
  String out(s);
  for (auto& c : out) {
    if (c >= u'a' && c <= u'z') c = u'a' + (c - u'a' + 13) % 26;
    else if (c >= u'A' && c <= u'Z') c = u'A' + (c - u'A' + 13) % 26;
  }
  return out;
}

String ReadableUserAssistName(const String& valueName) {
  String name = Rot13(valueName);
  constexpr size_t kGuidLength = 38;  // "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}"
  if (name.size() < kGuidLength || name[0] != u'{' || name[kGuidLength - 1] != u'}')
    return name;
  String folder;
  if (Services().Shell->GetKnownFolder(name.substr(0, kGuidLength), folder) != ERROR_SUCCESS)
    return name;
  return folder + name.substr(kGuidLength);
}

}  // namespace tc
