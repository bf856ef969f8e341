#include "browsers/ChromiumStores.h"
#include "platform/helpers/Orviregistry.h"

namespace tc {

void ScanChromiumSessions(const String& Profile, TChromiumTraces& Traces) {
  StringList names;
  if (EnumFiles(Profile + u"Sessions", names, u"*"))
    for (const String& n : names) Traces.push_back({n, Profile + u"Sessions\\" + n});
  for (const char16_t* name : {u"Current Session", u"Current Tabs", u"Last Session", u"Last Tabs"})
    if (OrviFileExists(Profile + name)) Traces.push_back({name, Profile + name});
}

}  // namespace tc
