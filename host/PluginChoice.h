// Which plug-ins a run works with: IDs and shell-style patterns, sections.
#pragma once
#include <string>

#include "host/Options.h"
#include "platform/WinTypes.h"

namespace tc::host {

// Switches on exactly the plug-ins that --plugins and --sections name (both given: those
// named by both); without either, leaves every plug-in as it is. False with `error` for an
// ID, pattern or section that names no plug-in (the nearest ID suggested).
bool ChoosePlugins(const Options& options, std::string& error);

// `*` any run of characters, `?` one; letters match in any case.
bool MatchesPattern(const String& text, const String& pattern);

// The known plug-in ID closest to `id`, "" when none is close.
std::string NearestPluginID(const std::string& id);

}  // namespace tc::host
