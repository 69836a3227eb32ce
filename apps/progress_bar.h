// A one-line progress bar on standard error for long batches, drawn only
// when standard error is a terminal so that logs and pipes get none.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace paintdoc::cli {

class ProgressBar {
 public:
  // `total`: how many steps make 100 %. Draws nothing unless stderr is a
  // terminal.
  explicit ProgressBar(size_t total);

  // Redraws for `done` steps, at most ten times a second.
  void update(size_t done);
  // Prints one line of text above the bar (or just the line, without a bar).
  void printLine(const std::string& line);
  // Removes the bar, leaving the terminal as it was.
  void finish();

 private:
  void draw(size_t done);
  void erase();

  size_t total_;
  bool enabled_;
  bool drawn_ = false;
  size_t lastDone_ = 0;
  std::chrono::steady_clock::time_point lastDrawn_{};
};

}  // namespace paintdoc::cli
