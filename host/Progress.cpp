#include "host/Progress.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

#include "engine/TC_Common.h"
#include "host/Report.h"

namespace tc::host {

namespace {

volatile std::sig_atomic_t interrupts = 0;

extern "C" void OnInterrupt(int) {
  interrupts = interrupts + 1;
  StopWorking = true;  // at once: every item asks for it
  if (interrupts >= 2) StopAtOnce = true;
  if (interrupts >= 3) _exit(kExitInterrupted);
#ifdef _WIN32
  std::signal(SIGINT, OnInterrupt);  // the handler is reset after each signal there
#endif
}

std::string Clock(double seconds) {
  int s = static_cast<int>(seconds + 0.5);
  char buf[16];
  std::snprintf(buf, sizeof buf, "%d:%02d", s / 60, s % 60);
  return buf;
}

constexpr int kLine = 110;

}  // namespace

void CatchInterrupt() {
#ifdef _WIN32
  std::signal(SIGINT, OnInterrupt);
#else
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  sigemptyset(&action.sa_mask);
  action.sa_flags = 0;  // no restart: a prompt waiting for an answer ends too
  sigaction(SIGINT, &action, nullptr);
#endif
}

int Interrupts() { return interrupts; }

void HookedUI::ProcessMessages() {
  if (hook_) hook_();
  inner_->ProcessMessages();
}

void ProgressBar::StartPlugin(int index, int count, const std::string& label, int items,
                              int64_t bytes) {
  index_ = index;
  count_ = count;
  label_ = label;
  items_ = items;
  bytes_ = bytes;
  itemsDone_ = 0;
  bytesDone_ = 0;
  started_ = std::chrono::steady_clock::now();
  Draw(true);
}

void ProgressBar::Item() {
  ++itemsDone_;
  Draw(false);
}

void ProgressBar::Bytes(int64_t done) {
  bytesDone_ = done;
  Draw(false);
}

void ProgressBar::Draw(bool force) {
  if (!enabled_ || count_ <= 0) return;
  auto now = std::chrono::steady_clock::now();
  if (!force && now - drawn_ < std::chrono::milliseconds(100)) return;
  drawn_ = now;
  constexpr int kWidth = 20;
  std::string bar(size_t(index_ * kWidth / count_), '#');
  bar.resize(kWidth, '.');
  std::string text = label_;
  if (text.size() > 36) {
    size_t cut = 35;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    text = text.substr(0, cut) + "~";
  }
  std::string detail;
  if (itemsDone_ > 0) {
    detail = std::to_string(itemsDone_) + (items_ > 0 ? "/" + std::to_string(items_) : "") + " items";
    if (bytesDone_ > 0)
      detail += ", " + FormatBytes(bytesDone_) + (bytes_ > 0 ? "/" + FormatBytes(bytes_) : "");
    double elapsed = std::chrono::duration<double>(now - started_).count();
    double share = bytes_ > 0 && bytesDone_ > 0 ? double(bytesDone_) / double(bytes_)
                   : items_ > 0                 ? double(itemsDone_) / items_
                                                : 0;
    if (share > 0.01 && share < 1 && elapsed > 1) detail += ", ~" + Clock(elapsed / share - elapsed) + " left";
  }
  char line[256];
  std::snprintf(line, sizeof line, "\r[%s] %d/%d %-36s %s", bar.c_str(), index_ + 1, count_,
                text.c_str(), detail.c_str());
  std::fprintf(stderr, "%-*.*s", kLine, kLine, line);
  std::fflush(stderr);
  shown_ = true;
}

void ProgressBar::Done() {
  if (!shown_) return;
  std::fprintf(stderr, "\r%*s\r", kLine, "");
  std::fflush(stderr);
  shown_ = false;
}

}  // namespace tc::host
