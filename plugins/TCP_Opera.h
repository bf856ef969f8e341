// Opera's traces, one plug-in per kind and profile: the cache, cookies (with the user's
// keep-list), the history of visited pages and the typed addresses.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

// A plug-in of one Opera profile.
class TOperaProfilePlugin : public TTCPlugin {
 public:
  String ProfileFolder;
  String ProfileName;

 protected:
  TOperaProfilePlugin(const String& className, String folder, String name);
};

class TTCPOperaCache : public TOperaProfilePlugin {
 public:
  TTCPOperaCache(const String& ProfileFolder, const String& ProfileName);
};

class TTCPOperaCookies : public TOperaProfilePlugin {
 public:
  TTCPOperaCookies(const String& ProfileFolder, const String& ProfileName);
  void Scan() override;
  // Removes the cookies of every host the keep-list does not keep; kept ones are reported
  // as not cleaned.
  void Clean() override;
};

class TTCPOperaHistory : public TOperaProfilePlugin {
 public:
  TTCPOperaHistory(const String& ProfileFolder, const String& ProfileName);
  void Scan() override;
  void Clean() override;
};

class TTCPOperaTypedURLs : public TOperaProfilePlugin {
 public:
  TTCPOperaTypedURLs(const String& ProfileFolder, const String& ProfileName);
  void Scan() override;
  void Clean() override;
};

// The keep-list section and value name of a host's cookies in a profile.
inline const String kOperaKeepSection = u"Cookies\\OPERA";
inline String OperaKeepName(const String& ProfileName, const String& Host) {
  return ProfileName + u"-" + Host;
}

void TCP_Opera_Initialization();
void TCP_Opera_Finalization();

}  // namespace tc
