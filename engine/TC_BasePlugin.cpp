// The plug-in object, its progress reporters and the global plug-in registry.
#include "engine/TC_BasePlugin.h"

#include <algorithm>

#include "engine/TC_Common.h"
#include "platform/helpers/ErrorText.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

TPluginList* Plugins = nullptr;
TPluginGroupList* PluginGroups = nullptr;

TTCPlugin::TTCPlugin(const String& className)
    : ID(className.size() > 4 ? className.substr(4) : String()) {
  ShredTimer.Interval = 2000;
  ShredTimer.OnTimer = [this] { OnTimer(); };
  if (Plugins) Plugins->Add(this);
}

TTCPlugin::~TTCPlugin() {
  if (Plugins) Plugins->Remove(this);
}

void TTCPlugin::Describe(const String& SectionText, const String& App, int IconId,
                         const String& CaptionText, const String& DescriptionText) {
  Section = SectionText;
  AppCaption = App;
  IconFile = FileNameByID(IconId, 27);
  Caption = CaptionText;
  Description = DescriptionText;
}

void TTCPlugin::AddTraceLocation(TTraceLocationType LocationType, TLD_Base* Data,
                                 TTraceTargetType TargetType, TTraceFlags Flags) {
  auto loc = std::make_unique<TTraceLocation>();
  loc->LocationType = LocationType;
  loc->Data.reset(Data);
  loc->TargetType = TargetType;
  loc->Flags = Flags;
  TraceLocations.push_back(std::move(loc));
}

bool TTCPlugin::ShowScanItem(const String& DisplayString, bool MustDisplay) {
  if (StopWorking) return false;
  ++ScanPosition;
  if (OnScanProgress)
    OnScanProgress(this, static_cast<int>(RoundHalfEven(ScanPosition * (long double)ProgressFactor)),
                   DisplayString, MustDisplay);
  return true;
}

bool TTCPlugin::ShowCleanItem(const String& ActionCaption, const String& SubCaption,
                              bool MustDisplay) {
  if (StopWorking) return false;
  if (OnCleanProgress)
    OnCleanProgress(this,
                    static_cast<int>(RoundHalfEven(CleanPosition * (long double)ProgressFactor)),
                    ActionCaption, SubCaption, MustDisplay);
  return true;
}

void TTCPlugin::AddCleanFailure(TTraceSourceType SourceType, const TTraceSourceData& Source,
                                const String& Operation, uint32_t ErrorCode, bool Scheduled) {
  if (!Plugins) return;
  Plugins->CleanFailures.push_back(TCleanFailure{ID, this, SourceType, Source, Operation,
                                                 ErrorCode, SysErrorMessage(ErrorCode),
                                                 Scheduled});
}

void TTCPlugin::AddFileCleanFailure(const String& FileName, const String& Operation,
                                    uint32_t ErrorCode, bool Scheduled) {
  AddCleanFailure(TST_FileSystem_File, {kNoRootKey, {}, {}, FileName}, Operation, ErrorCode,
                  Scheduled);
}

TCleanOutcome CleanOutcome(bool Ran, bool Raised, int Before, int Left) {
  if (!Ran) return CO_Skipped;
  if (Left <= 0 && !Raised) return CO_Cleaned;
  return Left < Before ? CO_PartlyCleaned : CO_Failed;
}

void TTCPlugin::ReportTrace(TTraceSourceType type, const TTraceSourceData& source,
                            TTraceTargetType target, TTraceFlags flags, const String& data) {
  if (OnScanTraceFound) OnScanTraceFound(this, type, source, target, flags, data);
}

bool IsNumberedName(const String& Name, const String& Prefix, int64_t& Number) {
  Number = -1;
  if (Name.size() < Prefix.size() || !SameText(Name.substr(0, Prefix.size()), Prefix))
    return false;
  if (!TryStrToInt(Name.substr(Prefix.size()), Number)) Number = -1;
  return Number >= 0;
}

void TPluginList::Remove(TTCPlugin* Plugin) {
  // From the back: plug-ins made last (thousands from a rules file) go first.
  auto it = std::find(Items_.rbegin(), Items_.rend(), Plugin);
  if (it != Items_.rend()) Items_.erase(std::next(it).base());
}

int TPluginList::IndexOf(const TTCPlugin* Plugin) const {
  auto it = std::find(Items_.begin(), Items_.end(), Plugin);
  return it == Items_.end() ? -1 : static_cast<int>(it - Items_.begin());
}

void TPluginList::AddNotCleanedTrace(TTCPlugin* Plugin, int Count) {
  NotCleanedTraces.push_back(TNotDeletedTraces{Plugin->ID, Plugin->Caption, Count, Plugin});
}

int TPluginList::CountNotCleanedTraces(const TTCPlugin* Plugin) const {
  for (const auto& r : NotCleanedTraces) {
    if (r.PluginID == Plugin->ID) return r.Count;
  }
  return 0;
}

int TPluginList::CountCleanFailures(const TTCPlugin* Plugin, bool unscheduledOnly) const {
  int n = 0;
  for (const auto& f : CleanFailures)
    n += f.Plugin == Plugin && !(unscheduledOnly && f.Scheduled);
  return n;
}

void TPluginList::Sort() {
  std::sort(Items_.begin(), Items_.end(), [](const TTCPlugin* a, const TTCPlugin* b) {
    if (a->SortOrder != b->SortOrder) return a->SortOrder < b->SortOrder;
    if (int c = CompareText(a->Section, b->Section)) return c < 0;
    if (int c = CompareText(a->AppCaption, b->AppCaption)) return c < 0;
    return CompareTextOrdinal(a->Caption, b->Caption) < 0;
  });
}

void TPluginList::SortAppCaption() {
  std::sort(Items_.begin(), Items_.end(), [](const TTCPlugin* a, const TTCPlugin* b) {
    if (a->SortOrder != b->SortOrder) return a->SortOrder < b->SortOrder;
    if (int c = CompareText(a->AppCaption, b->AppCaption)) return c < 0;
    return CompareText(a->Caption, b->Caption) < 0;
  });
}

bool GetPluginByID(const String& ID, TTCPlugin*& Plugin) {
  if (Plugins) {
    for (TTCPlugin* p : *Plugins) {
      if (p->ID == ID) {
        Plugin = p;
        return true;
      }
    }
  }
  Plugin = nullptr;
  return false;
}

void SetPluginStatus(const String& ID, bool Active, int32_t Order) {
  TTCPlugin* p;
  if (!GetPluginByID(ID, p)) return;
  p->Active = Active;
  if (Order >= 0) p->SortOrder = Order;
}

void SetAllPluginStatus(bool Active) {
  if (!Plugins) return;
  for (TTCPlugin* p : *Plugins) p->Active = Active;
}

void TC_BasePlugin_Initialization() { Plugins = new TPluginList; }

void TC_BasePlugin_Finalization() {
  delete Plugins;
  Plugins = nullptr;
}

}  // namespace tc
