// The community rules file (winapp2.ini): its entries read into plain records, nothing
// expanded or looked up yet.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// A registry place a rule names: a key, or one value of it.
struct TRuleRegPlace {
  HKEY Root = 0;
  String Key;        // below the root, no leading or trailing backslash
  String ValueName;  // with HasValue only
  bool HasValue = false;
  int Line = 0;
};

// FileKeyN=PATH|MASKS[|RECURSE|REMOVESELF]
struct TRuleFileKey {
  String Path;   // as written, variables unexpanded, no trailing backslash
  String Masks;  // ';'-separated
  bool Recurse = false;
  bool RemoveSelf = false;  // implies Recurse
  int Line = 0;
};

// ExcludeKeyN=FILE|PATH\|MASKS, PATH|PATH\[|MASKS] or REG|KEY[|VALUE]
struct TRuleExclude {
  enum class Kind : uint8_t { File, Path, Reg };
  Kind What = Kind::File;
  String Path;   // File and Path: the folder, unexpanded, no trailing backslash
  String Masks;  // File and Path
  TRuleRegPlace Reg;
  int Line = 0;
};

struct TRuleDetectFile {
  String Path;  // unexpanded; wildcards allowed in any component
  int Line = 0;
};

struct TRulesEntry {
  String Name;  // between the brackets, without a trailing " *"
  int Line = 0; // of the [Name] line
  String Section;  // Section= as written
  int LangSecRef = 0;
  std::vector<TRuleRegPlace> Detect;
  std::vector<TRuleDetectFile> DetectFiles;
  // DetectOS=MIN|MAX: Windows versions as major * 100 + minor ("6.1" = 601), both ends held.
  int MinOS = 0;
  int MaxOS = 1 << 30;
  String Warning;
  std::vector<TRuleFileKey> FileKeys;
  std::vector<TRuleRegPlace> RegKeys;
  std::vector<TRuleExclude> Excludes;
};

// Reads a rules file's bytes (UTF-8 with or without BOM, UTF-16 with BOM, else
// Windows-1252). False when the bytes are no text. An entry with an unknown key or a
// malformed line is left out with a warning "NAME:LINE: ..."; the others are kept.
bool ParseRulesFile(const String& name, const Bytes& data, std::vector<TRulesEntry>& entries,
                    StringList& warnings);

// "6.1" -> 601, "10" -> 1000; false for anything else.
bool ParseRuleVersion(const String& text, int& version);

// "HKCU\Software\X" or "HKEY_CURRENT_USER\Software\X|Value"; false for an unknown root.
bool ParseRulePlace(const String& text, bool allowValue, TRuleRegPlace& place);

}  // namespace tc
