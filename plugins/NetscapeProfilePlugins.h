// What the Netscape 6/7 and Netscape 8 plug-ins share: one plug-in object per trace kind and
// profile folder, each reading a fresh profile object on every scan and clean.
#pragma once
#include "browsers/TC_MozillaBrowser.h"
#include "engine/TC_BasePlugin.h"

namespace tc {

// The texts and settings that tell one Netscape generation from the other.
struct TNetscapeEdition {
  String AppCaption;
  String KeepListSection;  // product settings section of the cookie keep-list
  bool Installed = false;
  size_t ProfileCount = 0;  // captions name the profile when there are several
};

class TNetscapeProfilePlugin : public TTCPlugin {
 public:
  String Folder;  // the profile's folder, "" when no profile was found
  String ProfileName;

 protected:
  // `Caption` is the one-profile caption, `Captions` the "%s" form for several profiles.
  TNetscapeProfilePlugin(const String& ClassName, const TNetscapeEdition& Edition,
                         const String& Folder, const String& Name, const String& Caption,
                         const String& Captions, const String& Description);
  TMozillaBrowser Profile() const;
};

class TNetscapeCachePlugin : public TNetscapeProfilePlugin {
 public:
  using TNetscapeProfilePlugin::TNetscapeProfilePlugin;
  void Scan() override;
  void Clean() override;
};

// The clean asks the keep-list about each cookie group; as no group is ever filled, every
// cookie stays and the file is written back whole.
class TNetscapeCookiesPlugin : public TNetscapeProfilePlugin {
 public:
  TNetscapeCookiesPlugin(const String& ClassName, const TNetscapeEdition& Edition,
                         const String& Folder, const String& Name, const String& Caption,
                         const String& Captions, const String& Description);
  void Scan() override;
  void Clean() override;

 private:
  String keepListSection_;
};

// Netscape 8's clean only runs with a profile folder and asks for a restart when the file
// could not go.
class TNetscapeHistoryPlugin : public TNetscapeProfilePlugin {
 public:
  using TNetscapeProfilePlugin::TNetscapeProfilePlugin;
  void Scan() override;
  void Clean() override;

 protected:
  bool RestartWhenLocked = false;
};

class TNetscapeFormdataPlugin : public TNetscapeProfilePlugin {
 public:
  using TNetscapeProfilePlugin::TNetscapeProfilePlugin;
  void Scan() override;
  void Clean() override;
};

// Every entry is marked deleted: the file keeps its header and one "." line.
class TNetscapePasswordsPlugin : public TNetscapeProfilePlugin {
 public:
  using TNetscapeProfilePlugin::TNetscapeProfilePlugin;
  void Scan() override;
  void Clean() override;
};

}  // namespace tc
