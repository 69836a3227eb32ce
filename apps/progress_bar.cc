#include "progress_bar.h"

#include <unistd.h>

#include <cstdio>

namespace paintdoc::cli {

namespace {

constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
constexpr size_t kBarWidth = 40;

}  // namespace

ProgressBar::ProgressBar(size_t total) : total_(total), enabled_(isatty(STDERR_FILENO) == 1) {}

void ProgressBar::update(size_t done) {
  if (!enabled_) return;
  const auto now = std::chrono::steady_clock::now();
  if (drawn_ && now - lastDrawn_ < kRedrawInterval) return;
  lastDrawn_ = now;
  draw(done);
}

void ProgressBar::printLine(const std::string& line) {
  erase();
  std::fprintf(stderr, "%s\n", line.c_str());
  if (enabled_ && drawn_) draw(lastDone_);
}

void ProgressBar::finish() {
  erase();
  drawn_ = false;
}

void ProgressBar::draw(size_t done) {
  lastDone_ = done;
  const size_t filled = total_ == 0 ? kBarWidth : done * kBarWidth / total_;
  const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
  std::fprintf(stderr, "\r[%s] %zu/%zu", bar.c_str(), done, total_);
  std::fflush(stderr);
  drawn_ = true;
}

void ProgressBar::erase() {
  if (!enabled_ || !drawn_) return;
  // Carriage return, then clear to the end of the line.
  std::fputs("\r\033[K", stderr);
}

}  // namespace paintdoc::cli
