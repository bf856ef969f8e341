// The plug-ins made from rules files: one per entry, owned here, registered in Plugins.
#pragma once
#include <memory>
#include <set>

#include "plugins/RulePlugin.h"

namespace tc {

class TRulesCatalogue {
 public:
  // Needs the platform and the started package (Plugins).
  TRulesCatalogue();
  // Frees the plug-ins; call it before the package stops.
  ~TRulesCatalogue();
  TRulesCatalogue(const TRulesCatalogue&) = delete;
  TRulesCatalogue& operator=(const TRulesCatalogue&) = delete;

  // Adds a plug-in for each good entry of the file `name` holds. An entry that is bad or
  // reaches too far is left out with a warning naming the file and line. False when the
  // bytes are no text (nothing added).
  bool Load(const String& name, const Bytes& data, StringList& warnings);
  const std::vector<std::unique_ptr<TTCPRulesEntry>>& Entries() const { return plugins_; }

  // "W2_" + the entry's name with every character but ASCII letters and digits as '_'.
  static String IdOf(const String& entryName);
  // Section= as written, else the caption of the LangSecRef number.
  static String SectionOf(const TRulesEntry& entry);

 private:
  // Fills the plug-in from the entry; false with `why` (and the line) for a bad entry.
  bool Build(const TRulesEntry& entry, TTCPRulesEntry& plugin, String& why, int& line);

  std::unique_ptr<TRuleFolders> folders_;
  int windowsVersion_ = -1;  // major * 100 + minor; -1 when the system does not say
  std::vector<std::unique_ptr<TTCPRulesEntry>> plugins_;
  std::set<String> ids_;  // of every plug-in in Plugins, to refuse a second entry's ID
};

}  // namespace tc
