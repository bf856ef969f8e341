// What a run found and did, ready to be printed as text or JSON.
#pragma once
#include <iosfwd>
#include <string>
#include <vector>

#include "engine/TC_BasePlugin.h"
#include "host/Options.h"

namespace tc::host {

// Bumped when a field changes meaning or goes away; new fields keep the number.
inline constexpr int kSchemaVersion = 1;

enum ExitCode {
  kExitDone = 0,
  kExitUsage = 1,        // usage error, or nothing done on purpose (declined)
  kExitCannotOpen = 2,   // an image, hive or profile could not be opened or written
  kExitTracesLeft = 3,   // the clean left traces it should have removed
  kExitInterrupted = 130
};

struct TraceRecord {
  TTraceSourceType Source = TST_Unknown;
  TTraceSourceData Where;
  TTraceTargetType Target = TTT_Unknown;
  TTraceFlags Flags = 0;
  String Data;
  int64_t Size = -1;  // a file's bytes; -1 for registry traces
};

struct FailureRecord {
  String PluginID;
  const TTCPlugin* Plugin = nullptr;  // per-profile plug-ins share an ID
  TraceRecord Trace;  // where
  std::string Operation;
  uint32_t ErrorCode = 0;
  std::string Reason;
  bool Scheduled = false;
};

struct PluginRecord {
  const TTCPlugin* Object = nullptr;  // the plug-in while the engine runs
  String ID, Section, App, Caption;
  String Note;         // the plug-in's word on what it left alone
  bool Active = false;  // on after the scan (which turns absent plug-ins off); list: on
  bool Ran = false;     // scanned in this run
  int TraceCount = 0;
  int64_t Bytes = -1;  // bytes of the files among its traces, when the preview knows them
  std::vector<TraceRecord> Traces;
  // clean
  bool Cleaned = false;   // its clean was called
  std::string Error;      // what its clean raised, or why it was not cleaned
  int Remaining = -1;     // a second scan's count; -1 when not scanned again
  int Kept = 0;           // kept on purpose (keep-lists)
  int Left = 0;           // should have gone and did not
  int Scheduled = 0;      // removed at the next start of Windows
  StringList RemovedFiles;  // the first names of them, for the report of a fatal stop
  int64_t RemovedFileCount = 0;
  int64_t RemovedBytes = 0;
  TCleanOutcome Outcome = CO_Skipped;
};

struct RunReport {
  Command What = Command::List;
  std::string Source;  // what was worked on, in words
  bool Offline = false;
  std::vector<std::string> Warnings;
  std::vector<PluginRecord> Plugins;
  bool WithTraces = false;
  bool All = false;       // list the plug-ins that did not run too
  int Off = 0;            // plug-ins that are off on a default run
  bool RebootRequired = false;
  bool Stopped = false;   // Ctrl+C
  bool Declined = false;  // the user answered no
  std::vector<std::pair<String, int>> NotCleaned;
  std::vector<FailureRecord> Failures;
  std::vector<std::pair<String, std::string>> PluginErrors;  // plug-ins that raised
  // A hive that could not be written, and what that left on the disk.
  std::string Fatal;
  std::vector<std::string> HivesWritten, HivesNotWritten;
  int Exit = kExitDone;
};

void PrintText(const RunReport& report, std::ostream& out);
void PrintJson(const RunReport& report, std::ostream& out);
// The one JSON document of a run that ended in an error.
void PrintJsonError(const std::string& kind, const std::string& message, int exitCode,
                    std::ostream& out);

// "HKEY_CURRENT_USER\key : value" or the file name, as the preview shows it.
std::string TraceLocation(const TraceRecord& trace);
// "12.3 KB".
std::string FormatBytes(int64_t bytes);
const char* OutcomeName(TCleanOutcome outcome);
// Whether the report lists the plug-in.
bool Listed(const RunReport& report, const PluginRecord& plugin);

}  // namespace tc::host
