// What a run found and did, ready to be printed as text or JSON.
#pragma once
#include <iosfwd>
#include <string>
#include <vector>

#include "engine/TC_BasePlugin.h"
#include "host/Options.h"

namespace tc::host {

struct TraceRecord {
  TTraceSourceType Source = TST_Unknown;
  TTraceSourceData Where;
  TTraceTargetType Target = TTT_Unknown;
  TTraceFlags Flags = 0;
  String Data;
};

struct PluginRecord {
  String ID, Section, App, Caption;
  bool Active = false;
  int TraceCount = 0;
  int Remaining = -1;  // after clean; -1 when not scanned again
  bool Cleaned = false;
  std::vector<TraceRecord> Traces;
};

struct RunReport {
  Command What = Command::List;
  std::string Source;  // what was worked on, in words
  std::vector<std::string> Warnings;
  std::vector<PluginRecord> Plugins;
  bool WithTraces = false;
  bool RebootRequired = false;
  bool Stopped = false;    // Ctrl+C
  bool Declined = false;   // the user answered no
  std::vector<std::pair<String, int>> NotCleaned;
  std::vector<std::pair<String, String>> Failures;  // plug-in ID, message
};

void PrintText(const RunReport& report, std::ostream& out);
void PrintJson(const RunReport& report, std::ostream& out);

// "HKEY_CURRENT_USER\key : value" or the file name.
String TraceLocation(const TraceRecord& trace);

}  // namespace tc::host
