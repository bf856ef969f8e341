#include "platform/win32/Win32UserInterface.h"

#include <set>

#include "platform/win32/Win32Text.h"

#include <windows.h>

namespace tc {

Win32UserInterface::~Win32UserInterface() {
  for (const auto& t : timers_) ::KillTimer(nullptr, t.first);
}

void Win32UserInterface::ProcessMessages() {
  std::set<uintptr_t> fired;  // each timer at most once per call
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    if (msg.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(msg.wParam));  // leave it for the host's own loop
      break;
    }
    if (msg.message == WM_TIMER && msg.hwnd == nullptr) {
      auto it = timers_.find(msg.wParam);
      if (it != timers_.end() && fired.insert(msg.wParam).second) {
        auto handler = it->second;  // the handler may kill its own timer
        handler();
      }
      continue;
    }
    TranslateMessage(&msg);
    DispatchMessageW(&msg);
  }
}

uint32_t Win32UserInterface::StartTimer(uint32_t intervalMs, std::function<void()> onTimer) {
  const UINT_PTR id = ::SetTimer(nullptr, 0, intervalMs, nullptr);
  if (id == 0) return 0;
  timers_[id] = std::move(onTimer);
  return static_cast<uint32_t>(id);
}

void Win32UserInterface::KillTimer(uint32_t id) {
  auto it = timers_.find(id);
  if (it == timers_.end()) return;
  ::KillTimer(nullptr, it->first);
  timers_.erase(it);
}

int Win32UserInterface::ShowMessage(const String& text, const String& caption, uint32_t flags) {
  return MessageBoxW(nullptr, Wide(text), Wide(caption), flags);
}

}  // namespace tc
