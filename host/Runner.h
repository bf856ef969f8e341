// list, scan and clean over the engine's plug-ins.
#pragma once
#include <string>

#include "host/Options.h"
#include "host/Report.h"
#include "host/Session.h"

namespace tc::host {

enum ExitCode { kExitDone = 0, kExitUsage = 1, kExitCannotOpen = 2 };

// Runs the command on the started session and fills the report. On a usage error (an
// unknown plug-in ID) or a hive that cannot be written, `error` says why.
ExitCode RunCommand(const Options& options, Session& session, RunReport& report,
                    std::string& error);

}  // namespace tc::host
