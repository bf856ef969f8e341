// The Chromium-family browsers (Chrome, Edge, Brave, Vivaldi, Opera 15 and later): where
// each keeps its "User Data", which profiles it holds, whether it is running.
#pragma once
#include <string_view>

#include "browsers/TC_BrowserFuncs.h"

namespace tc {

struct TChromiumBrowser {
  String ID;          // plug-in ID prefix: "Chrome", "Edge", "Brave", "Vivaldi", "OperaStable"
  String Caption;     // "Google Chrome", ...
  String KeepListName;  // what the user types after --browser: "chrome", ...
  bool Roaming;       // under the roaming application data folder (Opera), else the local one
  String Folder;      // below that folder: "Google\Chrome\User Data", ...
  bool SingleProfile;  // the folder is the one profile (Opera) instead of holding profiles
};

// The five browsers in plug-in order.
const std::vector<TChromiumBrowser>& ChromiumBrowsers();
// The browser's "User Data" folder with trailing delimiter ("" without app-data folders).
String ChromiumUserData(const TChromiumBrowser& Browser);
// Its profiles: those "Local State" lists in profile.info_cache, then any other "Default" or
// "Profile N" folder; only folders that exist, each Path with trailing delimiter.
TBrowserProfileList GetChromiumProfiles(const TChromiumBrowser& Browser);
// The profile folders and display names of a "Local State" file; false when it is no JSON
// or lists none. Names that are not a plain folder name (separators, "..") are skipped.
bool ParseLocalStateProfiles(std::string_view Json, TBrowserProfileList& Profiles);
// True while the browser holds its profile lock ("lockfile", "SingletonLock").
bool IsChromiumRunning(const TChromiumBrowser& Browser);

}  // namespace tc
