// cookies, keep and unkeep: the browsers' cookie keep-lists.
#pragma once
#include <functional>
#include <iosfwd>
#include <string>

#include "host/Options.h"
#include "host/Report.h"

namespace tc::host {

// Runs the command over the registered keep-list providers and prints its result (text or
// JSON) to `out`. `flush` makes keep/unkeep choices durable. A usage error (no such browser)
// comes back as kExitUsage with `error` set and nothing printed.
ExitCode RunCookieCommand(const Options& options, const std::string& source,
                          const std::function<bool(std::string&)>& flush, std::ostream& out,
                          std::string& error);

}  // namespace tc::host
