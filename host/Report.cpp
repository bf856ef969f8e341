#include "host/Report.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "platform/TextCodec.h"

namespace tc::host {

namespace {

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

std::string U8(const String& s) { return ToUtf8(s); }

std::string Count(int n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

}  // namespace

String TraceLocation(const TraceRecord& trace) {
  if (trace.Source == TST_FileSystem_File || trace.Where.RootKey == kNoRootKey)
    return trace.Where.FileName;
  String s = FromUtf8(RootName(trace.Where.RootKey));
  if (!trace.Where.Key.empty()) s += u"\\" + trace.Where.Key;
  if (!trace.Where.ValueName.empty()) s += u" : " + trace.Where.ValueName;
  return s;
}

void PrintText(const RunReport& r, std::ostream& out) {
  if (!r.Source.empty()) out << r.Source << "\n";
  String section;
  bool first = true;
  int total = 0, remaining = 0;
  for (const auto& p : r.Plugins) {
    if (r.What != Command::List && !p.Active && p.TraceCount == 0 && !p.Cleaned) continue;
    if (first || p.Section != section) {
      out << "\n" << U8(p.Section) << "\n";
      section = p.Section;
      first = false;
    }
    std::string line = "  " + U8(p.ID) + "  " + U8(p.App) + " - " + U8(p.Caption);
    switch (r.What) {
      case Command::List:
        out << line << (p.Active ? "" : "  (off)") << "\n";
        break;
      case Command::Scan:
        out << line << ": " << Count(p.TraceCount, "trace", "traces") << "\n";
        break;
      case Command::Clean:
        out << line << ": " << p.TraceCount;
        if (p.Remaining >= 0) out << " -> " << p.Remaining;
        out << (p.Cleaned || p.TraceCount == 0 ? "" : " (not cleaned)") << "\n";
        break;
    }
    total += p.TraceCount;
    remaining += p.Remaining > 0 ? p.Remaining : 0;
    for (const auto& t : p.Traces) {
      out << "      " << U8(TraceLocation(t));
      if (!t.Data.empty()) out << " = " << U8(t.Data);
      out << "\n";
    }
  }
  out << "\n";
  if (r.What == Command::Scan) out << "Found " << Count(total, "trace", "traces") << ".\n";
  if (r.What == Command::Clean) {
    if (r.Declined) {
      out << "Nothing changed.\n";
    } else {
      out << "Traces before: " << total << ", after: " << remaining << ".\n";
      for (const auto& [id, count] : r.NotCleaned)
        out << "Not cleaned: " << U8(id) << " (" << count << ")\n";
      out << (r.RebootRequired ? "Restart Windows to finish: files in use are deleted at its "
                                 "next start.\n"
                               : "No restart needed.\n");
    }
  }
  if (r.Stopped) out << "Stopped by the user.\n";
  for (const auto& [id, message] : r.Failures)
    out << "Plug-in " << U8(id) << " failed: " << U8(message) << "\n";
}

void PrintJson(const RunReport& r, std::ostream& out) {
  using nlohmann::json;
  json plugins = json::array();
  for (const auto& p : r.Plugins) {
    json o = {{"id", U8(p.ID)},       {"section", U8(p.Section)}, {"app", U8(p.App)},
              {"caption", U8(p.Caption)}, {"active", p.Active},   {"traceCount", p.TraceCount}};
    if (r.What == Command::Clean) {
      o["remaining"] = p.Remaining >= 0 ? json(p.Remaining) : json(nullptr);
      o["cleaned"] = p.Cleaned;
    }
    if (r.WithTraces) {
      json traces = json::array();
      for (const auto& t : p.Traces) {
        json to = {{"source", SourceName(t.Source)},
                   {"location", U8(TraceLocation(t))},
                   {"targetType", TargetName(t.Target)},
                   {"flags", t.Flags},
                   {"data", U8(t.Data)}};
        if (t.Source == TST_FileSystem_File) {
          to["fileName"] = U8(t.Where.FileName);
        } else {
          to["rootKey"] = RootName(t.Where.RootKey);
          to["key"] = U8(t.Where.Key);
          to["valueName"] = U8(t.Where.ValueName);
        }
        traces.push_back(std::move(to));
      }
      o["traces"] = std::move(traces);
    }
    plugins.push_back(std::move(o));
  }
  json doc = {{"command", r.What == Command::List   ? "list"
                          : r.What == Command::Scan ? "scan"
                                                    : "clean"},
              {"source", r.Source},
              {"warnings", r.Warnings},
              {"plugins", std::move(plugins)},
              {"stopped", r.Stopped}};
  if (r.What == Command::Clean) {
    json notCleaned = json::array();
    for (const auto& [id, count] : r.NotCleaned)
      notCleaned.push_back({{"id", U8(id)}, {"count", count}});
    doc["rebootRequired"] = r.RebootRequired;
    doc["notCleaned"] = std::move(notCleaned);
    doc["declined"] = r.Declined;
  }
  json failures = json::array();
  for (const auto& [id, message] : r.Failures)
    failures.push_back({{"id", U8(id)}, {"message", U8(message)}});
  doc["failures"] = std::move(failures);
  out << doc.dump(2, ' ', false, json::error_handler_t::replace) << "\n";
}

}  // namespace tc::host
