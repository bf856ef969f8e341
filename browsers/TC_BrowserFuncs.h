// Which browsers this user has and where their profiles lie: Firefox, the Mozilla suite and
// Netscape 6/7, Netscape 8, the fixed Opera profile; plus two hexadecimal string converters.
#pragma once
#include <vector>

#include "platform/WinTypes.h"

namespace tc {

// One discovered profile: its display name and its folder (absolute, backslashes, no
// trailing delimiter added).
struct TBrowserProfile {
  String Name;
  String Path;
};

// Owned by the caller; the Get... functions append to it.
using TBrowserProfileList = std::vector<TBrowserProfile>;

// The Mozilla suite / Netscape 7 profiles named in "Mozilla\registry.dat" whose folders exist.
void GetNetscape_MozillaProfiles(TBrowserProfileList& List);
// Every section but "General" of "Netscape\NSB\profiles.ini", unchecked.
void GetNetscape8Profiles(TBrowserProfileList& List);
// Every section with a "Path" of "Mozilla\Firefox\profiles.ini", unchecked.
void GetFirefoxProfiles(TBrowserProfileList& List);
// The one Opera profile "default", whether or not Opera is there.
void GetOperaProfiles(TBrowserProfileList& List);
void DisposeProfileList(TBrowserProfileList& List);

// The key names under HKLM\Software\Mozilla of the installed Firefox, Mozilla and Netscape 7
// (a key whose bin\PathToExe names an existing file); empty where none.
void IsFirefoxMozillaNetscapeInstalled(String& Firefox, String& Mozilla, String& Netscape7);
bool IsNetscape8Installen();
bool IsOperaInstalled();
bool IsTOnline50Installed();
bool IsAOLInstalled();

// Blanks are ignored and an odd last digit dropped; throws std::invalid_argument on a
// character that is not a hexadecimal digit.
String HexToStr(const String& S);
// Upper-case hexadecimal, at least two digits per character.
String StrToHex(const String& S);

// The folders the discovery reads, with trailing delimiter ("" without an app-data folder).
String MozillaBaseFolder();
String FirefoxBaseFolder();

}  // namespace tc
