// Opera's profile store: the binary cookie file "cookies4.dat", read into cookie records and
// written back without the cookies marked deleted, and the history and typed-address lists.
#pragma once
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/WinTypes.h"

namespace tc {

// A number in the cookie file that cannot be read; the parse stops there.
class EOperaCookieFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct TOperaCookieEntry {
  String Domain;          // the domain components, innermost first, joined with "."
  String Path;            // the current path when the cookie started
  double Expires = 0;     // date-time (days since 1899-12-30), 0 when the file gives 0
  double LastUsed = 0;
  String Name;
  String Value;
  bool Tag99 = false, Tag9B = false, Tag9C = false, TagA0 = false, TagA2 = false,
       TagA3 = false, TagA4 = false;
  bool Deleted = false;   // marked for removal by the cookie plug-in
  int64_t StartPos = 0;   // 1-based position of the cookie record's tag in the file image
  int64_t EndPos = 0;     // its last byte; 0 while the cookie is still open
};

// All cookies of one host key.
struct TOperaCookie {
  String Host;
  std::vector<TOperaCookieEntry*> Entries;  // owned by TOperaBrowser::Cookies
};

class TOperaBrowser {
 public:
  explicit TOperaBrowser(String ProfileFolder);

  // Parses the profile's "cookies4.dat"; the number of cookie entries.
  int EnumCookies();
  // Throws EOperaCookieFile on a number that cannot be read.
  void ParseOperaCookieFile(const String& FileName);
  TOperaCookieEntry& GetOperaCookieEntry(int Index) { return *Cookies.at(static_cast<size_t>(Index)); }
  void AddCookieEntryToMainCookieList(TOperaCookieEntry* Entry);
  bool i_in_Deleted_Cookie(int64_t Position) const;
  // Writes the file back without the deleted cookies' byte ranges, all or nothing; a file
  // whose header was refused is left alone. Throws std::runtime_error when it cannot write.
  void UpdateCookies();

  // Readers fill their list and say whether the file was read (false when it is missing or
  // cannot be read).
  // The profile's "global_history.dat": blocks of four lines (title, address, time, -1).
  bool EnumHistory();
  // The profile's "typed_history.xml": one item per typed address.
  bool EnumTypedURLs();
  // Removes every typed address and saves the file, all or nothing; false when it cannot be
  // read. Throws std::runtime_error when it cannot write.
  bool ClearTypedURLs();

  String CookieFile() const { return Folder_ + u"cookies4.dat"; }
  String HistoryFile() const { return Folder_ + u"global_history.dat"; }
  String VisitedLinksFile() const { return Folder_ + u"vlink4.dat"; }
  String TypedURLsFile() const { return Folder_ + u"typed_history.xml"; }

  String ProfileFolder;
  StringList History;    // addresses, one per history block
  StringList TypedURLs;  // typed addresses
  std::vector<std::unique_ptr<TOperaCookieEntry>> Cookies;
  std::vector<std::unique_ptr<TOperaCookie>> CookieHosts;
  std::string Image;  // the cookie file as read, one character per byte
  // Why the cookie file was not read ("cookie file version 2001 is not read"); empty when
  // it was read or is missing.
  String Refusal;

 private:
  String Folder_;  // the profile folder with its trailing delimiter
  std::unordered_map<String, TOperaCookie*> HostIndex_;
};

// The addresses of a "global_history.dat": the second line of every block of four.
StringList OperaHistoryAddresses(const Bytes& data);
// The host key a cookie is filed under: domain and path (unless "/"), a leading "." and
// everything up to a "www." (then "www1." ... "www9.", then "www") cut off.
String OperaHostKey(const String& Domain, const String& Path);

}  // namespace tc
