// The clean: ask, check the hives, clean each chosen plug-in, fix, write the hives, scan
// again, and judge each plug-in by what is left.
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <set>

#include "engine/TC_Common.h"
#include "host/Progress.h"
#include "host/Runner.h"
#include "platform/helpers/ErrorText.h"
#include "platform/helpers/Orvishredderclass.h"
#include "platform/helpers/TextCodec.h"

namespace tc::host {

namespace {

bool AskToClean(int traces, int plugins) {
  std::cerr << "Clean " << traces << (traces == 1 ? " trace" : " traces") << " of " << plugins
            << (plugins == 1 ? " plug-in" : " plug-ins") << "? This cannot be undone. [y/N] "
            << std::flush;
  std::string answer;
  if (!std::getline(std::cin, answer)) return false;
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "j" || answer == "ja";
}

bool IsRegistry(TTraceSourceType t) { return t == TST_Registry_Value || t == TST_Registry_Key; }

// The hive files a plug-in's clean may write: those of its registry locations and traces.
std::set<std::string> HivesTouched(const Session& session, const TTCPlugin& p,
                                   const std::vector<TraceRecord>& traces) {
  std::set<std::string> hives;
  auto add = [&](HKEY root, const String& key) {
    for (auto& h : session.HivesOf(root, key)) hives.insert(std::move(h));
  };
  for (const auto& loc : p.TraceLocations) {
    switch (loc->LocationType) {
      case TLT_Registry_AllValues: add(loc->As<TLD_Registry_AllValues>().RootKey, loc->As<TLD_Registry_AllValues>().Key); break;
      case TLT_Registry_AllKeys: add(loc->As<TLD_Registry_AllKeys>().RootKey, loc->As<TLD_Registry_AllKeys>().Key); break;
      case TLT_Registry_NumberedNames: add(loc->As<TLD_Registry_NumberedNames>().RootKey, loc->As<TLD_Registry_NumberedNames>().Key); break;
      case TLT_Registry_NumberedKeys: add(loc->As<TLD_Registry_NumberedKeys>().RootKey, loc->As<TLD_Registry_NumberedKeys>().Key); break;
      case TLT_Registry_StringValue: add(loc->As<TLD_Registry_StringValue>().RootKey, loc->As<TLD_Registry_StringValue>().Key); break;
      case TLT_Registry_MRUList:
      case TLT_Registry_MRUListEx: {
        const auto place = MRUListPlace(*loc);
        add(place.RootKey, place.Key);
        break;
      }
      case TLT_FileSystem_Files: break;
    }
  }
  for (const auto& t : traces)
    if (IsRegistry(t.Source)) add(t.Where.RootKey, t.Where.Key);
  return hives;
}

// A registry trace of `p` in one of `hives` named as not removed, for `reason`.
void FailRegistryTraces(const Session& session, const TTCPlugin& p,
                        const std::vector<TraceRecord>& traces, const std::set<std::string>& hives,
                        const std::string& operation, const std::string& reason,
                        RunReport& report) {
  for (const auto& t : traces) {
    if (!IsRegistry(t.Source)) continue;
    for (const auto& h : session.HivesOf(t.Where.RootKey, t.Where.Key))
      if (hives.count(h)) {
        report.Failures.push_back({p.ID, &p, t, operation, ERROR_CANTWRITE, reason, false});
        break;
      }
  }
}

int KeptOf(const TTCPlugin* p) {
  int kept = 0;
  for (const auto& n : Plugins->NotCleanedTraces) kept += n.Plugin == p ? n.Count : 0;
  return kept;
}

}  // namespace

ExitCode RunClean(const Options& options, Session& session, TOrviMRU& mru, TraceMap& traces,
                  RunReport& report) {
  const bool progress = isatty(STDERR_FILENO);
  std::vector<TTCPlugin*> chosen;
  int total = 0;
  for (TTCPlugin* p : *Plugins) {
    if (p->Active && p->TraceCount > 0) {
      chosen.push_back(p);
      total += p->TraceCount;
    }
  }
  auto recordOf = [&](const TTCPlugin* p) -> PluginRecord& {
    return report.Plugins[size_t(Plugins->IndexOf(p))];
  };
  // Entries of a rules file may say what to mind before they clean.
  for (TTCPlugin* p : chosen)
    if (!p->Warning.empty())
      std::cerr << "warning: " << ToUtf8(p->ID) << " (" << ToUtf8(p->AppCaption)
                << "): " << ToUtf8(p->Warning) << "\n";
  if (!chosen.empty() && !options.Yes && !AskToClean(total, int(chosen.size()))) {
    report.Declined = true;
    report.Stopped = Interrupts() > 0;
    return report.Stopped ? kExitInterrupted : kExitUsage;
  }

  // Hives that cannot be replaced keep every plug-in that would change them from starting,
  // so no file is shredded for a clean whose registry half would be lost.
  std::map<std::string, std::string> refused;  // hive file -> why
  for (const auto& h : session.UnwritableHives()) refused[h.Path] = h.Error;
  std::set<std::string> blockedHives;
  TDeleteMethod method{};
  const bool haveMethod = !options.Method.empty() &&
                          TOrviShredderClass::MethodFromName(FromUtf8(options.Method), method);
  ProgressBar bar(progress);
  std::vector<TTCPlugin*> cleaned;
  const TTCPlugin* interrupted = nullptr;  // the plug-in a stop request cut short
  for (size_t i = 0; i < chosen.size(); ++i) {
    TTCPlugin* p = chosen[i];
    if (StopWorking) break;
    PluginRecord& r = recordOf(p);
    if (!refused.empty()) {
      std::set<std::string> blocked;
      for (const auto& h : HivesTouched(session, *p, traces[p]))
        if (refused.count(h)) blocked.insert(h);
      if (!blocked.empty()) {
        r.Error = "not cleaned, as its hive cannot be written";
        r.Left = p->TraceCount;
        FailRegistryTraces(session, *p, traces[p], blocked, "write hive",
                           refused[*blocked.begin()], report);
        blockedHives.insert(blocked.begin(), blocked.end());
        continue;
      }
    }
    int64_t bytes = 0;
    for (const auto& t : traces[p]) bytes += t.Size > 0 ? t.Size : 0;
    bar.StartPlugin(int(i), int(chosen.size()), ToUtf8(p->AppCaption + u" - " + p->Caption),
                    p->TraceCount, bytes);
    if (haveMethod) p->ShredMethod = method;
    if (options.Passes > 0) p->ShredRecurrence = options.Passes;
    p->OnCleanProgress = [&](TTCPlugin* sender, int, const String&, const String&, bool) {
      ++sender->CleanPosition;
      bar.Item();
    };
    p->OnSecureDelete = [&](TTCPlugin* sender, int percent) {
      bar.Bytes(sender->RemovedBytes + sender->ShredTotalSize * percent / 100);
    };
    StringList folders;  // each reported trace's data: PrepareToClean selects by it
    for (const auto& t : traces[p]) folders.push_back(t.Data);
    const size_t errorsBefore = mru.Failures.size();
    const bool ok = mru.CleanPlugin(*p, folders);
    p->OnCleanProgress = nullptr;
    p->OnSecureDelete = nullptr;
    r.Cleaned = true;
    r.Note = p->Note;  // what the clean left alone, and why
    if (!ok && mru.Failures.size() > errorsBefore) {
      r.Error = ToUtf8(mru.Failures.back().Message);
      report.PluginErrors.emplace_back(p->ID, r.Error);
    }
    cleaned.push_back(p);
    if (StopWorking) interrupted = p;
  }
  bar.Done();
  report.Stopped = StopWorking;
  for (const auto& h : blockedHives) {
    report.HivesNotWritten.push_back(refused[h]);
    report.Fatal = refused[h] + "; the plug-ins that change it were not cleaned";
  }

  // A plain stop still repairs the lists and writes what was removed; an insisting one does not.
  bool hivesLost = false;
  if (!StopAtOnce) {
    StopWorking = false;
    mru.Fix();
    std::string error;
    std::vector<HiveState> hives;
    if (!session.Flush(error, hives)) {
      report.Fatal = error;
      hivesLost = true;
      std::set<std::string> lost;
      for (const auto& h : hives) {
        if (h.Written) report.HivesWritten.push_back(h.Path);
        else {
          lost.insert(h.Path);
          report.HivesNotWritten.push_back(h.Error.empty() ? h.Path : h.Error);
        }
      }
      for (TTCPlugin* p : cleaned)
        FailRegistryTraces(session, *p, traces[p], lost, "write hive", error, report);
    } else {
      for (const auto& h : hives) report.HivesWritten.push_back(h.Path);
    }
  }

  for (const auto& f : Plugins->CleanFailures) {
    TraceRecord where{f.SourceType, f.Source, TTT_Unknown, 0, {}, -1};
    report.Failures.push_back({f.PluginID, f.Plugin, where, ToUtf8(f.Operation), f.ErrorCode,
                               ToUtf8(f.Reason), f.Scheduled});
  }
  for (TTCPlugin* p : *Plugins) report.RebootRequired = report.RebootRequired || p->RebootRequired;
  for (const auto& n : Plugins->NotCleanedTraces) report.NotCleaned.emplace_back(n.PluginID, n.Count);

  // The "after" count: a fresh scan of the plug-ins that finished their clean, unless the
  // hives are lost (the memory holds removals the disk does not) or the user insisted on
  // stopping. The one a stop cut short is judged by the files it removed, to end quickly.
  if (!hivesLost && !StopAtOnce && !cleaned.empty()) {
    std::vector<bool> active;
    for (TTCPlugin* p : *Plugins) active.push_back(p->Active);
    for (TTCPlugin* p : *Plugins) p->Active = false;
    for (TTCPlugin* p : cleaned) p->Active = p != interrupted;
    TraceMap after;
    if (cleaned.size() > (interrupted ? 1u : 0u)) ScanAll(mru, false, progress, after);
    for (TTCPlugin* p : cleaned)
      if (p != interrupted) recordOf(p).Remaining = p->TraceCount;
    for (size_t i = 0; i < active.size(); ++i) Plugins->Get(int(i))->Active = active[i];
  }
  report.Stopped = report.Stopped || Interrupts() > 0;

  bool left = false;
  for (TTCPlugin* p : chosen) {
    PluginRecord& r = recordOf(p);
    r.Kept = KeptOf(p);
    r.RemovedFiles = p->RemovedFiles;
    r.RemovedFileCount = p->RemovedFileCount;
    r.RemovedBytes = p->RemovedBytes;
    int unscheduled = 0;
    for (const auto& f : report.Failures) {
      if (f.Plugin != p) continue;
      r.Scheduled += f.Scheduled;
      unscheduled += !f.Scheduled;
    }
    if (r.Cleaned && r.Remaining < 0)
      r.Remaining = std::max<int64_t>(0, r.TraceCount - r.RemovedFileCount);
    if (r.Cleaned) r.Left = std::max(unscheduled, r.Remaining - r.Kept - r.Scheduled);
    r.Outcome = CleanOutcome(r.Cleaned, !r.Error.empty() && r.Cleaned, r.TraceCount, r.Left);
    if (p == interrupted || (report.Stopped && !r.Cleaned) || StopAtOnce) {
      // Not reached is no failure: only what failed counts as left.
      r.Left = unscheduled;
      const bool removed = r.Remaining < r.TraceCount;
      r.Outcome = r.Left > 0 ? r.Outcome : removed ? CO_PartlyCleaned : CO_Skipped;
    }
    left = left || r.Left > 0;
  }
  if (report.Stopped) return kExitInterrupted;
  if (!report.Fatal.empty()) return kExitCannotOpen;
  return left ? kExitTracesLeft : kExitDone;
}

}  // namespace tc::host
