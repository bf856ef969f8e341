#include "host/Runner.h"

#include <unistd.h>

#include <set>

#include "engine/TC_Common.h"
#include "host/PluginChoice.h"
#include "host/Progress.h"
#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"

namespace tc::host {

namespace {

PluginRecord RecordOf(const TTCPlugin& p) {
  PluginRecord r;
  r.Object = &p;
  r.ID = p.ID;
  r.Section = p.Section;
  r.App = p.AppCaption;
  r.Caption = p.Caption;
  r.Active = p.Active;
  r.TraceCount = p.TraceCount;
  r.Note = p.Note;
  return r;
}

std::string Label(const TTCPlugin& p) { return ToUtf8(p.AppCaption + u" - " + p.Caption); }

}  // namespace

void ScanAll(TOrviMRU& mru, bool preview, bool progress, TraceMap& traces) {
  traces.clear();
  ProgressBar bar(progress);
  std::map<const TTCPlugin*, int> order;  // position among the active plug-ins
  for (TTCPlugin* p : *Plugins)
    if (p->Active) order.emplace(p, int(order.size()));
  const TTCPlugin* current = nullptr;
  // Without a preview, files keep only their distinct data (what the clean is given): memory
  // stays flat however many files a folder holds; registry traces stay whole for the report.
  std::set<std::pair<const TTCPlugin*, String>> seen;
  mru.SetOnScanTraceFound([&](TTCPlugin* sender, TTraceSourceType source,
                              const TTraceSourceData& where, TTraceTargetType target,
                              TTraceFlags flags, const String& data) {
    if (!preview && source == TST_FileSystem_File) {
      if (seen.insert({sender, data}).second)
        traces[sender].push_back({source, {}, target, flags, data, -1});
      return;
    }
    TraceRecord r{source, where, target, flags, data, -1};
    FileInfo info;
    if (preview && source == TST_FileSystem_File &&
        Services().Files->GetInfo(where.FileName, info) == ERROR_SUCCESS)
      r.Size = static_cast<int64_t>(info.Size);
    traces[sender].push_back(std::move(r));
  });
  for (TTCPlugin* p : *Plugins) {
    if (preview)
      p->OnPreviewTrace = [&](TTCPlugin* sender, TTraceSourceType source,
                              const TTraceSourceData& where, TTraceTargetType target,
                              TTraceFlags flags, const String& data, int64_t size) {
        traces[sender].push_back({source, where, target, flags, data, size});
      };
    p->OnScanProgress = [&](TTCPlugin* sender, int, const String&, bool) {
      if (sender != current) {
        current = sender;
        bar.StartPlugin(order.count(sender) ? order[sender] : 0, int(order.size()),
                        Label(*sender), 0, 0);
      }
      bar.Item();
    };
  }
  mru.Scan();
  for (TTCPlugin* p : *Plugins) {
    p->OnPreviewTrace = nullptr;
    p->OnScanProgress = nullptr;
  }
  bar.Done();
}

ExitCode RunCommand(const Options& options, Session& session, RunReport& report,
                    std::string& error) {
  report.What = options.What;
  report.Source = session.Describe();
  report.Offline = session.Offline();
  report.Warnings = session.Warnings();
  report.WithTraces = options.Traces;
  report.All = options.All;
  Plugins->Sort();
  if (!ChoosePlugins(options, error)) return kExitUsage;

  if (options.What == Command::List) {
    for (TTCPlugin* p : *Plugins) report.Plugins.push_back(RecordOf(*p));
    return kExitDone;
  }

  CatchInterrupt();
  const bool defaultRun = !options.PluginsGiven && options.Sections.empty();
  std::map<const TTCPlugin*, bool> ran;
  for (TTCPlugin* p : *Plugins) {
    ran[p] = p->Active;
    report.Off += defaultRun && !p->Active;
  }
  TOrviMRU mru;
  TraceMap traces;
  ScanAll(mru, options.Traces, isatty(STDERR_FILENO), traces);
  for (const auto& f : mru.Failures) report.PluginErrors.emplace_back(f.PluginID, ToUtf8(f.Message));
  for (TTCPlugin* p : *Plugins) {
    PluginRecord r = RecordOf(*p);  // Active: after the scan, which turns absent ones off
    r.Ran = ran[p];
    r.Traces = traces[p];
    if (options.Traces) {
      r.Bytes = 0;
      std::set<String> files;  // records of one database count its bytes once
      for (const auto& t : r.Traces)
        if (t.Size > 0 && files.insert(UpperCase(t.Where.FileName)).second) r.Bytes += t.Size;
    }
    if (!options.Traces) r.Traces.clear();
    report.Plugins.push_back(std::move(r));
  }
  report.Stopped = StopWorking;
  if (report.Stopped) return kExitInterrupted;
  if (options.What == Command::Scan) return kExitDone;
  return RunClean(options, session, mru, traces, report);
}

}  // namespace tc::host
