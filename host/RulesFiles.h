// The rules files a run reads: each --rules FILE, else winapp2.ini in the user's
// configuration folder when there is one.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "host/Options.h"
#include "plugins/RulesCatalogue.h"

namespace tc::host {

// %APPDATA%\tracecleaner\winapp2.ini on Windows; $XDG_CONFIG_HOME/tracecleaner/winapp2.ini
// (or ~/.config/tracecleaner/winapp2.ini) elsewhere; "" when there is no such folder.
std::string DefaultRulesFile();

// Makes `catalogue` (when there is a file to read) and loads every file into it; warnings
// name the file and line of what was left out. False, with `error`, for a file that cannot
// be read or is no text.
bool LoadRulesFiles(const Options& options, std::unique_ptr<TRulesCatalogue>& catalogue,
                    std::vector<std::string>& warnings, std::string& error);

}  // namespace tc::host
