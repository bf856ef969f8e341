#include "engine/Orvitracecleaner.h"

#include <exception>

#include "engine/TC_Common.h"
#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {
String palettePage;

void RecordFailure(std::vector<TPluginFailure>& failures, const TTCPlugin& p, const char* what) {
  failures.push_back({p.ID, FromUtf8(what)});
}
}  // namespace

TOrviMRU::TOrviMRU(void*) {}

bool TOrviMRU::Guarded(TTCPlugin& Plugin, void (TTCPlugin::*Operation)()) {
  try {
    (Plugin.*Operation)();
    return true;
  } catch (const std::exception& e) {
    RecordFailure(Failures, Plugin, e.what());
  } catch (...) {
    RecordFailure(Failures, Plugin, "unknown error");
  }
  return false;
}

void TOrviMRU::Scan() {
  Failures.clear();
  if (!Plugins) return;
  for (int i = 0; i < Plugins->Count(); ++i) {
    Services().UI->ProcessMessages();
    if (StopWorking) break;
    TTCPlugin* p = Plugins->Get(i);
    if (p->Active) Guarded(*p, &TTCPlugin::Scan);
  }
}

void TOrviMRU::Fix() {
  if (!Plugins) return;
  for (int i = 0; i < Plugins->Count(); ++i) {
    if (StopWorking) break;
    TTCPlugin* p = Plugins->Get(i);
    if (p->Active) Guarded(*p, &TTCPlugin::Fix);
  }
}

bool TOrviMRU::CleanPlugin(TTCPlugin& Plugin, const StringList& Folders) {
  try {
    Plugin.InitClean();
    for (const auto& f : Folders) Plugin.PrepareToClean(f);
    Plugin.Clean();
    return true;
  } catch (const std::exception& e) {
    RecordFailure(Failures, Plugin, e.what());
  } catch (...) {
    RecordFailure(Failures, Plugin, "unknown error");
  }
  return false;
}

void TOrviMRU::SetOnScanTraceFound(const TScanTraceFoundEvent& Handler) {
  OnScanTraceFound_ = Handler;
  if (!Plugins) return;
  for (TTCPlugin* p : *Plugins) p->OnScanTraceFound = Handler;
}

void Register() { palettePage = u"Halvane"; }

String RegisteredPalettePage() { return palettePage; }

}  // namespace tc
