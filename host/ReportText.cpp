// The text form of a report.
#include <ostream>

#include "host/Readable.h"
#include "host/Report.h"

namespace tc::host {

namespace {

std::string Count(int64_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

void PrintTraces(const PluginRecord& p, std::ostream& out) {
  for (const auto& t : p.Traces) {
    out << "      " << TraceLocation(t);
    String data = PreviewData(t.Target, t.Data);
    if (!data.empty()) out << " = " << Readable(data);
    if (t.Size >= 0) out << " (" << FormatBytes(t.Size) << ")";
    out << "\n";
  }
}

void PrintCleanLine(const RunReport& r, const PluginRecord& p, std::ostream& out) {
  out << ": " << OutcomeName(p.Outcome);
  const int removed = p.Remaining >= 0 ? std::max(0, p.TraceCount - p.Remaining) : 0;
  if (p.Cleaned) {
    out << ", " << removed << " of " << p.TraceCount << " removed";
    if (p.RemovedBytes > 0) out << " (" << FormatBytes(p.RemovedBytes) << " of files)";
    if (p.Left > 0) out << ", " << p.Left << " left";
  } else if (p.TraceCount > 0) {
    out << ", " << Count(p.TraceCount, "trace", "traces") << " not touched";
  }
  if (!p.Error.empty()) out << ": " << p.Error;
  if (!p.Note.empty()) out << " (" << Readable(p.Note) << ")";
  out << "\n";
  for (const auto& f : r.Failures) {
    if (f.PluginID != p.ID || (f.Plugin && p.Object && f.Plugin != p.Object)) continue;
    if (f.Scheduled)
      out << "      removed at the next start of Windows: " << TraceLocation(f.Trace) << "\n";
    else
      out << "      not removed: " << TraceLocation(f.Trace) << " (" << f.Operation << ": "
          << f.Reason << ")\n";
  }
  if (p.Kept > 0) out << "      kept on purpose (keep-list): " << p.Kept << "\n";
}

void PrintCleanSummary(const RunReport& r, std::ostream& out) {
  int total = 0, removed = 0, kept = 0, left = 0, scheduled = 0;
  int64_t bytes = 0;
  for (const auto& p : r.Plugins) {
    if (!p.Ran) continue;
    total += p.TraceCount;
    if (p.Remaining >= 0) removed += std::max(0, p.TraceCount - p.Remaining);
    kept += p.Kept;
    left += p.Left;
    scheduled += p.Scheduled;
    bytes += p.RemovedBytes;
  }
  out << "Removed " << removed << " of " << Count(total, "trace", "traces") << " ("
      << FormatBytes(bytes) << " of files)";
  if (kept) out << "; " << kept << " kept on purpose";
  if (left) out << "; " << left << " left (named above)";
  if (r.Stopped) out << "; " << total - removed << " remain";
  out << ".\n";
  if (scheduled || r.RebootRequired) {
    out << (r.Offline ? "The image's Windows removes the files in use at its next start.\n"
                      : "Restart Windows to finish: files in use are removed at its next start.\n");
  }
}

}  // namespace

void PrintText(const RunReport& r, std::ostream& out) {
  if (!r.Source.empty()) out << r.Source << "\n";
  String section;
  bool first = true;
  int total = 0, ran = 0;
  int64_t bytes = 0;
  for (const auto& p : r.Plugins) {
    if (!Listed(r, p)) continue;
    if (first || p.Section != section) {
      out << "\n" << Readable(p.Section) << "\n";
      section = p.Section;
      first = false;
    }
    out << "  " << Readable(p.ID) << "  " << Readable(p.App) << " - " << Readable(p.Caption);
    switch (r.What) {
      case Command::List:
        out << (p.Active ? "" : "  (off)") << "\n";
        break;
      case Command::Scan:
        out << ": " << Count(p.TraceCount, "trace", "traces");
        if (!p.Note.empty()) out << " (" << Readable(p.Note) << ")";
        if (p.Bytes > 0) out << " (" << FormatBytes(p.Bytes) << " of files)";
        if (!p.Ran) out << " (off)";
        out << "\n";
        break;
      default:
        PrintCleanLine(r, p, out);
        break;
    }
    if (!p.Note.empty() && r.What == Command::List) out << "      note: " << Readable(p.Note) << "\n";
    if (p.Ran) {
      total += p.TraceCount;
      ++ran;
      bytes += p.Bytes > 0 ? p.Bytes : 0;
    }
    PrintTraces(p, out);
  }
  out << "\n";
  if (r.What == Command::Scan) {
    out << "Found " << Count(total, "trace", "traces") << " in "
        << Count(ran, "plug-in", "plug-ins");
    if (bytes > 0) out << " (" << FormatBytes(bytes) << " of files)";
    out << ".\n";
    if (r.Off > 0)
      out << Count(r.Off, "plug-in is", "plug-ins are")
          << " off (application not found or switched off): 'tracecleaner list' names them, "
             "--plugins ID,... switches them on.\n";
  }
  if (r.What == Command::Clean) {
    if (r.Declined) out << "Nothing changed.\n";
    else PrintCleanSummary(r, out);
  }
  if (r.Stopped) out << "Stopped by the user (Ctrl+C): the rest is as it was.\n";
  for (const auto& [id, message] : r.PluginErrors)
    out << "Plug-in " << Readable(id) << " failed: " << message << "\n";
  if (!r.Fatal.empty()) {
    out << "tracecleaner: " << r.Fatal << "\n";
    out << "Already changed on the disk:\n";
    int64_t files = 0;
    for (const auto& p : r.Plugins) {
      for (const auto& f : p.RemovedFiles)
        out << "  removed " << Readable(f) << " (" << Readable(p.ID) << ")\n";
      if (p.RemovedFileCount > static_cast<int64_t>(p.RemovedFiles.size()))
        out << "  removed " << p.RemovedFileCount - static_cast<int64_t>(p.RemovedFiles.size())
            << " more files (" << Readable(p.ID) << ")\n";
      files += p.RemovedFileCount;
    }
    for (const auto& h : r.HivesWritten) out << "  written " << h << "\n";
    if (files == 0 && r.HivesWritten.empty()) out << "  nothing\n";
    out << "Not changed (these hives keep what they held, registry removals included):\n";
    for (const auto& h : r.HivesNotWritten) out << "  " << h << "\n";
  }
}

}  // namespace tc::host
