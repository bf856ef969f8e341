// One entry of a rules file as a plug-in: files by folder and mask, registry keys and
// values, what to keep, and the test of whether its application is there.
#pragma once
#include <set>

#include "engine/TC_BasePlugin.h"
#include "plugins/RuleFolders.h"
#include "plugins/RulesFile.h"

namespace tc {

struct TRuleFileSet {
  TRulePath Folder;
  TWildcardMatcher Matcher;
  bool Recurse = false;
  bool RemoveSelf = false;
  bool Wide = false;  // it would take every file of the folder, or its sub-folders too
};

// Files kept: in the folder the pattern names (with Below, also in its sub-folders).
struct TRuleFileExclusion {
  StringList Pattern;  // upper-cased components from the drive on; may hold wildcards
  TWildcardMatcher Masks;
  bool Below = false;
};

class TTCPRulesEntry : public TTCPlugin {
 public:
  // `id` is the plug-in's ID ("W2_7_Zip").
  explicit TTCPRulesEntry(const String& id);

  std::vector<TRuleFileSet> Files;
  std::vector<TRuleRegPlace> RegKeys;
  std::vector<TRuleFileExclusion> KeptFiles;
  std::vector<TRuleRegPlace> KeptRegistry;
  std::vector<TRuleRegPlace> DetectKeys;
  std::vector<TRulePath> DetectPaths;
  bool HasDetection = false;  // the entry names a test (whether or not it resolved)
  bool OSMatches = true;      // its Windows version range holds
  // The folders no wide file set may take (a wildcard can reach them); owned by the catalogue.
  const TRuleFolders* Guard = nullptr;

  // The application is there: any test passes (no test at all counts as passing).
  bool Detected() const;
  void Scan() override;
  void Clean() override;

 private:
  // Calls `visit` with each folder's matching files (full paths), sub-folders first, and
  // `done` after each folder of the set's tree.
  void WalkFiles(const TRuleFileSet& set, const String& folder,
                 const std::function<void(const StringList&)>& visit,
                 const std::function<void(const String&)>& done);
  bool FileKept(const String& folder, const String& name) const;
  // The set's folders, without the protected ones a wide set reached through a wildcard.
  StringList FoldersOf(const TRuleFileSet& set);
  // Calls `visit` for each registry trace: a key (empty value name, isKey) or a value.
  void WalkRegistry(
      const std::function<void(const TTraceSourceData&, bool isKey)>& visit);
  void WalkKeyExcept(HKEY root, const String& key,
                     const std::function<void(const TTraceSourceData&, bool isKey)>& visit);
  bool RegKept(HKEY root, const String& key, const String* value) const;
  bool HoldsKept(HKEY root, const String& key) const;
  bool CoveredByKey(size_t index) const;
};

// The folders a rule path names: every match of its wildcard components, never through a
// link. With `lastMayBeFile`, the last component may name a file too.
StringList ResolveRulePath(const TRulePath& path, bool lastMayBeFile);

}  // namespace tc
