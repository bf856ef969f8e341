#include "browsers/TC_BrowserFuncs.h"

#include <stdexcept>

#include "platform/Platform.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

const String kMozillaKey = u"Software\\Mozilla";

String SlashesToBackslashes(const String& s) { return Replace(s, u"/", u"\\"); }

bool HasKey(const StringList& keys, const String& name) {
  for (const auto& k : keys)
    if (SameText(k, name)) return true;
  return false;
}

int IniInteger(const String& file, const String& section, const String& key) {
  return static_cast<int>(StrToIntDef(GetPPString(section, key, u"", file), 0));
}

// The file's bytes two to a character, low byte first, in a string as long as the file has
// bytes: only text stored as 16-bit characters can be found in it.
String PackedTwoBytesPerChar(const Bytes& data) {
  String s(data.size(), u'\0');
  for (size_t i = 0; i < data.size(); ++i)
    s[i / 2] |= static_cast<char16_t>(data[i] << ((i % 2) * 8));
  return s;
}

}  // namespace

String MozillaBaseFolder() { return GetAppDataDir() + u"Mozilla\\"; }
String FirefoxBaseFolder() { return MozillaBaseFolder() + u"Firefox\\"; }

void GetNetscape_MozillaProfiles(TBrowserProfileList& List) {
  const String file = MozillaBaseFolder() + u"registry.dat";
  if (!OrviFileExists(file)) return;
  Bytes data;
  if (FileContents::Read(*Services().Files, file, data) != ERROR_SUCCESS) return;
  const String s = PackedTwoBytesPerChar(data);
  const String token(u"directory\0", 10);
  for (size_t at = s.find(token); at != String::npos; at = s.find(token, at)) {
    at += token.size();
    size_t nul = s.find(u'\0', at);
    String path = nul == String::npos ? String() : s.substr(at, nul - at);
    TBrowserProfile p{ExtractFileName(ExcludeTrailingPathDelimiter(ExtractFilePath(path))), path};
    if (DirExists(p.Path)) List.push_back(std::move(p));
  }
}

void GetNetscape8Profiles(TBrowserProfileList& List) {
  const String file = GetAppDataDir() + u"Netscape\\NSB\\profiles.ini";
  if (!OrviFileExists(file)) return;
  StringList sections;
  Services().IniFiles->ReadSections(file, sections);
  for (const auto& section : sections) {
    if (section == u"General") continue;
    TBrowserProfile p;
    p.Name = GetPPString(section, u"Name", u"", file);
    p.Path = GetPPString(section, u"Path", u"", file);
    if (IniInteger(file, section, u"IsRelative") == 1) p.Path = ExtractFilePath(file) + p.Path;
    p.Path = SlashesToBackslashes(p.Path);
    List.push_back(std::move(p));
  }
}

void GetFirefoxProfiles(TBrowserProfileList& List) {
  const String base = FirefoxBaseFolder();
  const String file = base + u"profiles.ini";
  if (!DirExists(base) || !OrviFileExists(file)) return;
  StringList sections;
  Services().IniFiles->ReadSections(file, sections);
  for (const auto& section : sections) {
    StringList keys;
    Services().IniFiles->ReadKeys(file, section, keys);
    if (!HasKey(keys, u"Path")) continue;  // how "General" is passed over
    TBrowserProfile p;
    p.Path = GetPPString(section, u"Path", u"", file);
    p.Name = GetPPString(section, u"Name", u"", file);
    if (HasKey(keys, u"IsRelative") && IniInteger(file, section, u"IsRelative") == 1)
      p.Path = base + p.Path;
    p.Path = SlashesToBackslashes(p.Path);
    List.push_back(std::move(p));
  }
}

void GetOperaProfiles(TBrowserProfileList& List) {
  List.push_back({u"default", GetAppDataDir() + u"Opera\\Opera\\profile"});
}

void DisposeProfileList(TBrowserProfileList& List) { List.clear(); }

void IsFirefoxMozillaNetscapeInstalled(String& Firefox, String& Mozilla, String& Netscape7) {
  Firefox.clear();
  Mozilla.clear();
  Netscape7.clear();
  StringList products;
  if (!KeyExist(HKEY_LOCAL_MACHINE, kMozillaKey, RO_None)) return;
  EnumRegKeysEx(HKEY_LOCAL_MACHINE, kMozillaKey, products, RO_None);
  for (const auto& k : products) {
    const String bin = kMozillaKey + u"\\" + k + u"\\bin";
    if (!KeyExist(HKEY_LOCAL_MACHINE, bin, RO_None)) continue;
    if (!OrviFileExists(GetRegStringValueDef(HKEY_LOCAL_MACHINE, bin, u"PathToExe", u"", RO_None)))
      continue;
    const String upper = UpperCase(k);
    if (upper.find(u"FIREFOX") != String::npos)
      Firefox = k;
    else if (upper.find(u"NETSCAPE 7") != String::npos)
      Netscape7 = k;
    else
      Mozilla = k;
  }
}

bool IsNetscape8Installen() {
  String v = GetRegStringValueDef(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Netscape\\Netscape Browser",
                                  u"CurrentVersion", u"", RO_None);
  return !v.empty() && v[0] == u'8';
}

bool IsOperaInstalled() {
  String v = GetRegStringValueDef(HKEY_CURRENT_USER, u"Software\\Opera Software",
                                  u"Last Directory3", u"", RO_None);
  return !v.empty() && DirExists(IncludeTrailingPathDelimiter(v));
}

namespace {
// The key exists and its string value names an existing file.
bool NamesExistingFile(const String& key, const String& value) {
  if (!KeyExist(HKEY_LOCAL_MACHINE, key, RO_None)) return false;
  return OrviFileExists(GetRegStringValueDef(HKEY_LOCAL_MACHINE, key, value, u"", RO_None));
}
}  // namespace

bool IsTOnline50Installed() {
  return NamesExistingFile(u"SOFTWARE\\TOnline\\T-Online_Software_5\\Basis-Software", u"Exec");
}

bool IsAOLInstalled() {
  return NamesExistingFile(u"SOFTWARE\\America Online\\AOL\\CurrentVersion", u"AppPath");
}

namespace {
int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  throw std::invalid_argument("'" + ToUtf8(String(1, c)) + "' is not a valid hexadecimal digit");
}
}  // namespace

String HexToStr(const String& S) {
  const String digits = Replace(S, u" ", u"");
  String out;
  out.reserve(digits.size() / 2);
  for (size_t i = 0; i + 1 < digits.size(); i += 2)
    out += static_cast<char16_t>(HexDigit(digits[i]) * 16 + HexDigit(digits[i + 1]));
  return out;
}

String StrToHex(const String& S) {
  static const char16_t* hex = u"0123456789ABCDEF";
  String out;
  for (char16_t c : S) {
    String digits;
    for (unsigned v = c; v || digits.size() < 2; v >>= 4) digits.insert(digits.begin(), hex[v & 15]);
    out += digits;
  }
  return out;
}

}  // namespace tc
