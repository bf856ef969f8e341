#include "host/Runner.h"

#include <unistd.h>

#include <iostream>
#include <map>

#include "engine/Orvitracecleaner.h"
#include "engine/TC_Common.h"
#include "host/Progress.h"
#include "platform/Orvishredderclass.h"
#include "platform/TextCodec.h"

namespace tc::host {

namespace {

PluginRecord RecordOf(const TTCPlugin& p) {
  PluginRecord r;
  r.ID = p.ID;
  r.Section = p.Section;
  r.App = p.AppCaption;
  r.Caption = p.Caption;
  r.Active = p.Active;
  r.TraceCount = p.TraceCount;
  return r;
}

// Switches exactly the named plug-ins on; false (and `error`) for an unknown ID.
bool ChoosePlugins(const Options& options, std::string& error) {
  if (!options.PluginsGiven) return true;
  for (const auto& id : options.PluginIDs) {
    TTCPlugin* found = nullptr;
    if (!GetPluginByID(FromUtf8(id), found)) {
      error = "unknown plug-in ID " + id + " (see tracecleaner list)";
      return false;
    }
  }
  SetAllPluginStatus(false);
  for (const auto& id : options.PluginIDs) SetPluginStatus(FromUtf8(id), true, -1);
  return true;
}

// One scan through the host component, collecting every reported trace per plug-in.
class Scanner {
 public:
  explicit Scanner(bool showProgress) : bar_(showProgress) {}

  void Run(TOrviMRU& mru, std::map<const TTCPlugin*, std::vector<TraceRecord>>& traces) {
    traces.clear();
    int total = 0;
    for (TTCPlugin* p : *Plugins) total += p->Active ? 1 : 0;
    int started = 0;
    const TTCPlugin* current = nullptr;
    mru.SetOnScanTraceFound([&](TTCPlugin* sender, TTraceSourceType source,
                                const TTraceSourceData& where, TTraceTargetType target,
                                TTraceFlags flags, const String& data) {
      traces[sender].push_back({source, where, target, flags, data});
    });
    // The component lets messages run before each plug-in (and inside file walks): the
    // bar names the next active plug-in that has not started yet.
    auto ui = Services().UI;
    size_t next = 0;
    Services().UI = std::make_shared<HookedUI>(ui, [&] {
      while (next < size_t(Plugins->Count()) && !Plugins->Get(int(next))->Active) ++next;
      if (next < size_t(Plugins->Count()) && Plugins->Get(int(next)) != current) {
        current = Plugins->Get(int(next));
        bar_.Show(started++, total, ToUtf8(current->AppCaption + u" - " + current->Caption));
        ++next;
      }
    });
    mru.Scan();
    Services().UI = ui;
    bar_.Done();
  }

 private:
  ProgressBar bar_;
};

bool AskToClean(int traces, int plugins) {
  std::cerr << "Clean " << traces << (traces == 1 ? " trace" : " traces") << " of " << plugins
            << (plugins == 1 ? " plug-in" : " plug-ins") << "? This cannot be undone. [y/N] "
            << std::flush;
  std::string answer;
  if (!std::getline(std::cin, answer)) return false;
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "j" || answer == "ja";
}

}  // namespace

ExitCode RunCommand(const Options& options, Session& session, RunReport& report,
                    std::string& error) {
  report.What = options.What;
  report.Source = session.Describe();
  report.Warnings = session.Warnings();
  report.WithTraces = options.Traces;
  Plugins->Sort();
  if (!ChoosePlugins(options, error)) return kExitUsage;

  const bool progress = !options.Json && isatty(STDERR_FILENO);
  if (options.What == Command::List) {
    for (TTCPlugin* p : *Plugins) report.Plugins.push_back(RecordOf(*p));
    return kExitDone;
  }

  CatchInterrupt();
  TOrviMRU mru;
  std::map<const TTCPlugin*, std::vector<TraceRecord>> traces;
  Scanner(progress).Run(mru, traces);
  for (const auto& f : mru.Failures) report.Failures.emplace_back(f.PluginID, f.Message);
  const size_t scanFailures = mru.Failures.size();
  std::map<const TTCPlugin*, PluginRecord*> recordOf;  // IDs of per-profile plug-ins repeat
  for (TTCPlugin* p : *Plugins) {
    report.Plugins.push_back(RecordOf(*p));
    if (options.Traces) report.Plugins.back().Traces = traces[p];
  }
  for (int i = 0; i < Plugins->Count(); ++i) recordOf[Plugins->Get(i)] = &report.Plugins[size_t(i)];
  report.Stopped = StopWorking;
  if (options.What == Command::Scan || StopWorking) return kExitDone;

  // Clean: every active plug-in that found something.
  std::vector<TTCPlugin*> chosen;
  int total = 0;
  for (TTCPlugin* p : *Plugins) {
    if (p->Active && p->TraceCount > 0) {
      chosen.push_back(p);
      total += p->TraceCount;
    }
  }
  if (!chosen.empty() && !options.Yes && isatty(STDIN_FILENO) &&
      !AskToClean(total, int(chosen.size()))) {
    report.Declined = true;
    return kExitDone;
  }
  TDeleteMethod method{};
  bool haveMethod = !options.Method.empty() &&
                    TOrviShredderClass::MethodFromName(FromUtf8(options.Method), method);
  ProgressBar bar(progress);
  int done = 0;
  auto ui = Services().UI;  // Ctrl+C reaches the engine whenever it lets messages run
  Services().UI = std::make_shared<HookedUI>(ui, nullptr);
  for (TTCPlugin* p : chosen) {
    if (InterruptRequested()) StopWorking = true;
    if (StopWorking) break;
    bar.Show(done++, int(chosen.size()), ToUtf8(p->AppCaption + u" - " + p->Caption));
    if (haveMethod) p->ShredMethod = method;
    if (options.Passes > 0) p->ShredRecurrence = options.Passes;
    StringList datas;
    for (const auto& t : traces[p]) datas.push_back(t.Data);
    mru.CleanPlugin(*p, datas);
    recordOf[p]->Cleaned = true;
  }
  bar.Done();
  Services().UI = ui;
  mru.Fix();
  if (!session.Flush(error)) return kExitCannotOpen;
  for (size_t i = scanFailures; i < mru.Failures.size(); ++i)
    report.Failures.emplace_back(mru.Failures[i].PluginID, mru.Failures[i].Message);
  for (TTCPlugin* p : *Plugins) report.RebootRequired = report.RebootRequired || p->RebootRequired;
  for (const auto& n : Plugins->NotCleanedTraces)
    report.NotCleaned.emplace_back(n.PluginID, n.Count);
  report.Stopped = StopWorking;
  if (StopWorking) return kExitDone;

  // The "after" count: a fresh scan of the same plug-ins.
  for (TTCPlugin* p : *Plugins) p->Active = recordOf[p]->Active;
  std::map<const TTCPlugin*, std::vector<TraceRecord>> after;
  Scanner(progress).Run(mru, after);
  for (TTCPlugin* p : *Plugins)
    if (recordOf[p]->Active) recordOf[p]->Remaining = p->TraceCount;
  return kExitDone;
}

}  // namespace tc::host
