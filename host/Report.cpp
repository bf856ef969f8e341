// The JSON form of a report (its schema is in host/README.md) and the helpers both forms share.
#include "host/Report.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "host/Readable.h"

namespace tc::host {

namespace {

using nlohmann::json;

const char* RootName(HKEY root) {
  switch (root) {
    case kHKEY_CLASSES_ROOT: return "HKEY_CLASSES_ROOT";
    case kHKEY_CURRENT_USER: return "HKEY_CURRENT_USER";
    case kHKEY_LOCAL_MACHINE: return "HKEY_LOCAL_MACHINE";
    case kHKEY_USERS: return "HKEY_USERS";
    default: return "";
  }
}

const char* SourceName(TTraceSourceType t) {
  switch (t) {
    case TST_Registry_Value: return "registry-value";
    case TST_Registry_Key: return "registry-key";
    case TST_FileSystem_File: return "file";
    default: return "unknown";
  }
}

const char* TargetName(TTraceTargetType t) {
  static const char* const names[] = {"Unknown", "FileName", "ParamFileName",
                                      "FileOrFolderName", "RunCMD", "UserAssist", "URL"};
  return unsigned(t) < std::size(names) ? names[t] : "Unknown";
}

const char* CommandName(Command c) {
  static const char* const names[] = {"list", "scan", "clean", "cookies", "keep", "unkeep"};
  return names[static_cast<int>(c)];
}

json TraceJson(const TraceRecord& t) {
  json o = {{"source", SourceName(t.Source)},
            {"location", TraceLocation(t)},
            {"targetType", TargetName(t.Target)},
            {"flags", t.Flags},
            {"data", Readable(PreviewData(t.Target, t.Data))}};
  if (t.Source == TST_FileSystem_File) {
    o["fileName"] = Readable(t.Where.FileName);
    if (t.Size >= 0) o["size"] = t.Size;
  } else {
    o["rootKey"] = RootName(t.Where.RootKey);
    o["key"] = Readable(t.Where.Key);
    o["valueName"] = Readable(t.Where.ValueName);
  }
  return o;
}

json PluginJson(const RunReport& r, const PluginRecord& p) {
  json o = {{"id", Readable(p.ID)},           {"section", Readable(p.Section)},
            {"app", Readable(p.App)},         {"caption", Readable(p.Caption)},
            {"active", p.Active},             {"traceCount", p.TraceCount}};
  if (r.What != Command::List) o["ran"] = p.Ran;
  if (!p.Note.empty()) o["note"] = Readable(p.Note);
  if (p.Bytes >= 0) o["bytes"] = p.Bytes;
  if (r.What == Command::Clean) {
    o["outcome"] = OutcomeName(p.Outcome);
    o["cleaned"] = p.Outcome == CO_Cleaned;
    o["remaining"] = p.Remaining >= 0 ? json(p.Remaining) : json(nullptr);
    o["kept"] = p.Kept;
    o["left"] = p.Left;
    o["scheduled"] = p.Scheduled;
    o["removedFiles"] = p.RemovedFileCount;
    o["removedBytes"] = p.RemovedBytes;
    if (!p.Error.empty()) o["error"] = p.Error;
    if (!r.Fatal.empty()) {
      json files = json::array();
      for (const auto& f : p.RemovedFiles) files.push_back(Readable(f));
      o["removedFileNames"] = std::move(files);
      o["removedFileNamesLeftOut"] = p.RemovedFileCount - static_cast<int64_t>(p.RemovedFiles.size());
    }
  }
  if (r.WithTraces) {
    json traces = json::array();
    for (const auto& t : p.Traces) traces.push_back(TraceJson(t));
    o["traces"] = std::move(traces);
  }
  return o;
}

}  // namespace

std::string TraceLocation(const TraceRecord& trace) {
  if (trace.Source == TST_FileSystem_File || trace.Where.RootKey == kNoRootKey)
    return Readable(trace.Where.FileName);
  std::string s = RootName(trace.Where.RootKey);
  if (!trace.Where.Key.empty()) s += "\\" + Readable(trace.Where.Key);
  if (!trace.Where.ValueName.empty())
    s += " : " + Readable(PreviewValueName(trace.Target, trace.Where.ValueName));
  return s;
}

std::string FormatBytes(int64_t bytes) {
  static const char* const units[] = {"bytes", "KB", "MB", "GB", "TB"};
  if (bytes < 1024) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  double v = double(bytes);
  int u = 0;
  while (v >= 1024 && u < 4) {
    v /= 1024;
    ++u;
  }
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.1f %s", v, units[u]);
  return buf;
}

const char* OutcomeName(TCleanOutcome outcome) {
  switch (outcome) {
    case CO_Cleaned: return "cleaned";
    case CO_PartlyCleaned: return "partly cleaned";
    case CO_Failed: return "failed";
    default: return "skipped";
  }
}

bool Listed(const RunReport& r, const PluginRecord& p) {
  return r.What == Command::List || r.All || p.Ran;
}

void PrintJson(const RunReport& r, std::ostream& out) {
  json plugins = json::array();
  json totals = {{"plugins", 0}, {"traces", 0}};
  int64_t bytes = 0, removedBytes = 0;
  int remaining = 0, kept = 0, left = 0, scheduled = 0;
  int64_t removedFiles = 0;
  bool haveBytes = false;
  for (const auto& p : r.Plugins) {
    if (!Listed(r, p)) continue;
    plugins.push_back(PluginJson(r, p));
    if (!p.Ran) continue;
    totals["plugins"] = totals["plugins"].get<int>() + 1;
    totals["traces"] = totals["traces"].get<int>() + p.TraceCount;
    if (p.Bytes >= 0) {
      haveBytes = true;
      bytes += p.Bytes;
    }
    remaining += p.Remaining > 0 ? p.Remaining : 0;
    kept += p.Kept;
    left += p.Left;
    scheduled += p.Scheduled;
    removedFiles += p.RemovedFileCount;
    removedBytes += p.RemovedBytes;
  }
  if (haveBytes) totals["bytes"] = bytes;
  json doc = {{"schemaVersion", kSchemaVersion},
              {"command", CommandName(r.What)},
              {"source", r.Source},
              {"offline", r.Offline},
              {"warnings", r.Warnings},
              {"plugins", std::move(plugins)}};
  if (r.What == Command::Scan) totals["off"] = r.Off;
  if (r.What == Command::Clean) {
    totals["remaining"] = remaining;
    totals["kept"] = kept;
    totals["left"] = left;
    totals["scheduled"] = scheduled;
    totals["removedFiles"] = removedFiles;
    totals["removedBytes"] = removedBytes;
    json notCleaned = json::array();
    for (const auto& [id, count] : r.NotCleaned)
      notCleaned.push_back({{"id", Readable(id)}, {"count", count}});
    doc["rebootRequired"] = r.RebootRequired;
    doc["notCleaned"] = std::move(notCleaned);
    doc["declined"] = r.Declined;
    if (!r.Fatal.empty())
      doc["fatal"] = {{"message", r.Fatal},
                      {"hivesWritten", r.HivesWritten},
                      {"hivesNotWritten", r.HivesNotWritten}};
  }
  if (r.What != Command::List) {
    doc["totals"] = std::move(totals);
    doc["stopped"] = r.Stopped;
  }
  json errors = json::array();
  json failures = json::array();  // traces not removed and plug-ins that raised: {id, message} at least
  for (const auto& f : r.Failures) {
    const std::string where = TraceLocation(f.Trace);
    failures.push_back({{"id", Readable(f.PluginID)},
                        {"location", where},
                        {"source", SourceName(f.Trace.Source)},
                        {"operation", f.Operation},
                        {"errorCode", f.ErrorCode},
                        {"reason", f.Reason},
                        {"message", where + ": " + f.Operation + ": " + f.Reason},
                        {"scheduled", f.Scheduled}});
  }
  for (const auto& [id, message] : r.PluginErrors) {
    errors.push_back({{"id", Readable(id)}, {"message", message}});
    failures.push_back({{"id", Readable(id)}, {"message", message}});
  }
  if (r.What != Command::List) doc["failures"] = std::move(failures);
  doc["pluginErrors"] = std::move(errors);
  doc["exitCode"] = r.Exit;
  out << doc.dump(2, ' ', false, json::error_handler_t::replace) << "\n";
}

void PrintJsonError(const std::string& kind, const std::string& message, int exitCode,
                    std::ostream& out) {
  json doc = {{"schemaVersion", kSchemaVersion},
              {"error", {{"kind", kind}, {"message", message}}},
              {"exitCode", exitCode}};
  out << doc.dump(2, ' ', false, json::error_handler_t::replace) << "\n";
}

}  // namespace tc::host
