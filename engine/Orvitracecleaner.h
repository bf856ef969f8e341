// The host-facing component: scans and fixes all active plug-ins and hands one trace-found
// handler to all of them.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

// A plug-in whose operation raised; the run went on with the next one.
struct TPluginFailure {
  String PluginID;
  String Message;
};

class TOrviMRU {
 public:
  explicit TOrviMRU(void* AOwner = nullptr);

  // Processes messages before each plug-in, stops when StopWorking is set, scans the
  // active plug-ins in list order.
  void Scan();
  // The same walk without processing messages, calling Fix.
  void Fix();
  // InitClean, PrepareToClean once per folder, Clean: one chosen plug-in's cleaning.
  bool CleanPlugin(TTCPlugin& Plugin, const StringList& Folders);

  // Stores the handler and copies it into every plug-in now in Plugins.
  void SetOnScanTraceFound(const TScanTraceFoundEvent& Handler);
  const TScanTraceFoundEvent& OnScanTraceFound() const { return OnScanTraceFound_; }

  // Plug-ins that raised during the last calls; cleared by Scan.
  std::vector<TPluginFailure> Failures;

 private:
  bool Guarded(TTCPlugin& Plugin, void (TTCPlugin::*Operation)());
  TScanTraceFoundEvent OnScanTraceFound_;
};

// Registers the component on the designer palette page "Halvane" (a no-op outside one).
void Register();
// The palette page the component is registered on.
String RegisteredPalettePage();

}  // namespace tc
