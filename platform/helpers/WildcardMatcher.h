// File-name matching against include and exclude mask lists ("*.tmp;*.log").
#pragma once
#include "platform/WinTypes.h"

namespace tc {

class TWildcardMatcher {
 public:
  // Kind 0 adds include masks, kind 1 exclude masks; masks are separated by ';' or ','.
  void AddSearchMask(const String& masks, int kind);
  // True when the name matches an include mask (or no include mask was given) and no
  // exclude mask. Case-insensitive; "*.*" matches every name, as in Windows.
  bool Match(const String& fileName) const;

  // `mask` must already be upper-cased.
  static bool MatchMask(const String& name, const String& mask);

 private:
  StringList includes_;
  StringList excludes_;
};

}  // namespace tc
