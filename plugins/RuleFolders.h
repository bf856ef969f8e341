// The folders a rules file names through %Variables%, and the folders no rule may wipe.
#pragma once
#include <map>
#include <set>

#include "platform/WinTypes.h"

namespace tc {

// A rule's path after its variables: `Base` is the folder the system gave (or a drive root),
// `Parts` the components the rule itself wrote, which may hold '*' and '?'.
struct TRulePath {
  String Base;
  StringList Parts;
  // Base and the parts up to the first one with a wildcard.
  String FixedFolder() const;
  String Text() const;
};

class TRuleFolders {
 public:
  // Asks the shell service and the folder helpers once for every variable.
  TRuleFolders();

  enum class Result : uint8_t { Ok, UnknownVariable, NotAbsolute };
  // Expands a rule's path into one path per value of its variables (%ProgramFiles% stands
  // for both program folders). A variable the system has no folder for gives no path.
  // UnknownVariable names the variable in `detail`; NotAbsolute is a path that does not
  // start at a drive, holds "." or ".." or characters no name may hold.
  Result Expand(const String& text, std::vector<TRulePath>& out, String& detail) const;
  // A drive root, the Windows folder, a profile, the profiles' folder or a program-files or
  // application-data root: folders no rule may empty as a whole.
  bool IsProtected(const String& folder) const;

 private:
  void Add(const char16_t* name, const String& folder);
  std::map<String, StringList> values_;  // upper-cased name -> folders
  std::set<String> protected_;           // WinPath keys
};

}  // namespace tc
