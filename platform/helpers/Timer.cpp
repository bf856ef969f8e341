#include "platform/helpers/Timer.h"

#include "platform/Platform.h"

namespace tc {

TTimer::~TTimer() {
  if (id_ && HasServices()) Services().UI->KillTimer(id_);
}

void TTimer::SetEnabled(bool enabled) {
  if (id_) {
    Services().UI->KillTimer(id_);
    id_ = 0;
  }
  if (enabled) {
    id_ = Services().UI->StartTimer(Interval, [this] {
      if (OnTimer) OnTimer();
    });
  }
}

}  // namespace tc
