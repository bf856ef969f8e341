#include "host/Progress.h"

#include <csignal>
#include <cstdio>

#include "engine/TC_Common.h"

namespace tc::host {

namespace {
volatile std::sig_atomic_t interrupted = 0;
extern "C" void OnInterrupt(int) { interrupted = 1; }
}  // namespace

void CatchInterrupt() { std::signal(SIGINT, OnInterrupt); }

bool InterruptRequested() { return interrupted != 0; }

void HookedUI::ProcessMessages() {
  if (InterruptRequested()) StopWorking = true;
  if (hook_) hook_();
  inner_->ProcessMessages();
}

void ProgressBar::Show(int done, int total, const std::string& label) {
  if (!enabled_ || total <= 0) return;
  constexpr int kWidth = 30;
  int filled = done * kWidth / total;
  std::string bar(size_t(filled), '#');
  bar.resize(kWidth, '.');
  std::string text = label;
  if (text.size() > 40) {
    size_t cut = 39;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    text = text.substr(0, cut) + "~";
  }
  std::fprintf(stderr, "\r[%s] %3d/%-3d %-40s", bar.c_str(), done, total, text.c_str());
  std::fflush(stderr);
  shown_ = true;
}

void ProgressBar::Done() {
  if (!shown_) return;
  std::fprintf(stderr, "\r%*s\r", 30 + 2 + 9 + 40 + 1, "");
  std::fflush(stderr);
  shown_ = false;
}

}  // namespace tc::host
