// One Mozilla-family profile folder (Firefox, Mozilla suite, Netscape 6/7/8) and the trace
// files in it: cookies, cache, history, form data, saved passwords and preferences.
#pragma once
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/WinTypes.h"
#include "platform/helpers/Orvishredderclass.h"

namespace tc {

enum TMozillaType : uint8_t { MT_MozillaNetscape, MT_Firefox };

// One line of "cookies.txt".
struct TMozillaCookieEntry {
  String Domain;
  bool DomainFlag = false;
  String Path;
  bool Secure = false;
  int64_t Expiry = 0;  // seconds since 1970-01-01
  String Name;
  String Value;
  bool Deleted = false;  // left out when the file is written
};

struct TMozillaCookieList : std::vector<TMozillaCookieEntry> {
  String Header;  // comment and empty lines before the first cookie, each ending in LF
};

// A group of cookies the user decides on together: indexes into the cookie list.
struct TMozillaCookie {
  String Name;
  std::vector<size_t> Entries;
};

struct TMozillaHistoryEntry {
  String URL;        // column 82
  String LastVisit;  // column 84
};
using TMozillaHistoryList = std::vector<TMozillaHistoryEntry>;

struct TMozillaFormDataEntry {
  String Name;
  String Value;
};
using TMozillaFormDataList = std::vector<TMozillaFormDataEntry>;

struct TMozillaSavedPasswordEntry {
  String Host;      // first line of the block
  String UserName;  // decoded, Mozilla/Netscape only
  String Password;  // decoded, Mozilla/Netscape only
  String Block;     // every line of the block, each ending in LF, without the closing "."
  bool Deleted = false;
};

struct TMozillaSavedPasswordList : std::vector<TMozillaSavedPasswordEntry> {
  String Header;  // every line before the first ".", each ending in LF
};

class TMozillaBrowser {
 public:
  TMozillaBrowser(const String& ProfileFolder, TMozillaType BrowserType);

  TMozillaType BrowserType() const { return Type_; }
  const String& ProfileFolder() const { return Folder_; }  // with trailing delimiter
  const String& ProfileName() const { return Name_; }
  static String ExtractProfilename(const String& Folder);

  TMozillaCookieList Cookies;
  TMozillaFormDataList FormData;
  TMozillaHistoryList History;
  TMozillaSavedPasswordList SavedPasswords;
  std::vector<TMozillaCookie> CookieGroups;  // emptied by EnumCookies, filled by no one
  // How the files this object deletes are overwritten (a plug-in passes its own choice on).
  TDeleteMethod ShredMethod = TDeleteMethod::dmZeros;
  int ShredRecurrence = 1;

  // Cookies ("cookies.txt").
  bool EnumCookies();
  TMozillaCookieEntry* GetCookieEntry(const String& Domain, const String& Name, const String& Path);
  String GetCookie(const String& Domain, const String& Name, const String& Path);
  bool CookieExists(const String& Domain, const String& Name);
  void SetCookie(const String& Domain, bool DomainFlag, const String& Path, const String& Name,
                 const String& Value);
  bool UpdateCookies();
  // Why the last read refused the file ("" when it was read or is missing).
  const String& CookieError() const { return CookieError_; }

  // Disk cache.
  String GetCachefileDirectory();
  int64_t GetCacheSize();
  int GetCacheFileCount();
  // Every entry of the cache folder, sub-folders included (they are counted, never removed).
  std::vector<FileInfo> GetCacheEntries();
  bool DeleteCache(StringList& Failed);

  // History ("history.dat").
  bool EnumHistory();
  bool DeleteHistory();

  // Form data: Firefox "formhistory.dat", Mozilla/Netscape the file prefs.js names.
  bool EnumFormData();
  bool EnumFormData_Firefox(const String& FileName);
  bool EnumFormData_MozillaNetscape(const String& FileName);
  bool DeleteFormData();
  String FormDataFileName();

  // Saved passwords: Firefox "signons.txt", Mozilla/Netscape the file prefs.js names.
  bool EnumSavedPasswords();
  bool UpdateSavedPasswords();
  String SavedPasswordsFileName();
  const String& PasswordError() const { return PasswordError_; }

  // A setting of "prefs.js"; Value is Default when the file or the setting is missing.
  void GetPrefsJsSetting(const String& Name, const String& Default, String& Value);

 private:
  // Overwrites and removes one file; false, with the OS error left set, when that fails.
  bool ShredFile(const String& Path);

  TMozillaType Type_;
  String Folder_;
  String Name_;
  String CookieError_;
  String PasswordError_;
  bool CookiesRefused_ = false;
  bool PasswordsRefused_ = false;
};

// Cuts S after the first delimiter that no unescaped "\" precedes (a one-character
// delimiter) or after its first plain occurrence (a longer one); Before gets the text before.
// False, with S unchanged and Before empty, when there is none.
bool Parse_StripThrough(String& S, const String& Delimiter, String& Before);
bool Parse_StripThrough(String& S, const String& Delimiter);

// The file formats, for the store and its fuzz targets. A text file holding a NUL byte is no
// text: the parsers refuse it (false) and the store never rewrites it.
bool ParseCookieText(std::string_view Data, TMozillaCookieList& List);
std::string FormatCookieText(const TMozillaCookieList& List);
bool ParseSavedPasswordText(std::string_view Data, TMozillaType Type,
                            TMozillaSavedPasswordList& List);
std::string FormatSavedPasswordText(const TMozillaSavedPasswordList& List);
// The raw value of setting Name in prefs.js lines; false when no line sets it.
bool FindPrefsSetting(const StringList& Lines, const String& Name, String& Value);
// Field names and values of a Mozilla/Netscape form data file.
void ParseSchemaValueText(std::string_view Data, TMozillaFormDataList& List);

}  // namespace tc
