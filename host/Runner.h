// list, scan and clean over the engine's plug-ins.
#pragma once
#include <map>
#include <string>

#include "engine/Orvitracecleaner.h"
#include "host/Options.h"
#include "host/Report.h"
#include "host/Session.h"

namespace tc::host {

// Runs list, scan or clean on the started session and fills the report, its exit code
// included. On a usage error (an unknown plug-in ID) `error` says why.
ExitCode RunCommand(const Options& options, Session& session, RunReport& report,
                    std::string& error);

using TraceMap = std::map<const TTCPlugin*, std::vector<TraceRecord>>;

// One scan of the active plug-ins through the host component, collecting every reported
// trace; with `preview` also the traces the scan only counts, and file sizes.
void ScanAll(TOrviMRU& mru, bool preview, bool progress, TraceMap& traces);

// The clean of a run whose scan is done: asks, checks the hives, cleans, fixes, writes the
// hives, scans again and judges each plug-in.
ExitCode RunClean(const Options& options, Session& session, TOrviMRU& mru, TraceMap& traces,
                  RunReport& report);

}  // namespace tc::host
