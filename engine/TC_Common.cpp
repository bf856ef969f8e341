#include "engine/TC_Common.h"

#include <cfenv>
#include <cmath>
#include <cstdio>

#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

bool StopWorking = false;
bool StopAtOnce = false;

int64_t RoundHalfEven(long double v) {
  long double r = std::rintl(v);  // default rounding mode: nearest, ties to even (no fenv save)
  return static_cast<int64_t>(r);
}

TProgressManager::~TProgressManager() { Clear(); }

void TProgressManager::AddItem(const String& Name, int Count, int Weight) {
  Items_.push_back(std::make_unique<Item>(Item{Count, Weight, 0}));
  ItemsByName_[Name] = Items_.back().get();
  TotalItems_ += Count;
  TotalWeight_ += Weight;
}

void TProgressManager::SetProgress(const String& Name, int Promille) {
  auto it = ItemsByName_.find(Name);
  if (it != ItemsByName_.end()) it->second->Progress = Promille;
}

void TProgressManager::Clear() {
  ItemsByName_.clear();
  Items_.clear();
  TotalWeight_ = 0;
}

int TProgressManager::DoneItems() const {
  int64_t done = 0;
  for (const auto& item : Items_)
    done += RoundHalfEven(item->Progress * (static_cast<long double>(item->Count) / 1000));
  return static_cast<int>(done);
}

int TProgressManager::TotalProgress() const {
  int64_t s = 0;
  for (const auto& item : Items_)
    s += RoundHalfEven((static_cast<long double>(item->Weight) / 1000) * item->Progress);
  if (TotalWeight_ <= 0) return 0;
  return static_cast<int>(RoundHalfEven((1000.0L / TotalWeight_) * s));
}

void TProgressManager::BeginItem(const String&) {
  StartTicks_ = static_cast<uint32_t>(Services().Clock->TickCount());
}

void TProgressManager::EndItem(const String& Name) {
  auto it = ItemsByName_.find(Name);
  if (it == ItemsByName_.end()) return;
  uint32_t now = static_cast<uint32_t>(Services().Clock->TickCount());
  double perWeight = 0;
  if (it->second->Weight >= 1)
    perWeight = static_cast<double>(static_cast<uint32_t>(now - StartTicks_)) / it->second->Weight;
  char line[256];
  std::snprintf(line, sizeof line, "%-30s     %6d    %10f", ToUtf8(Name).c_str(),
                it->second->Weight, perWeight);
  Log_.push_back(FromUtf8(line));
}

}  // namespace tc
