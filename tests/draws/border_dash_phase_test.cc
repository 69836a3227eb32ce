// The border-dash phase task started by the one-time class set-up.
#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <thread>

#include "draws/draw_base.h"

namespace paintdoc {
namespace {

// Changes are counted over the first second: about 10 with a single task, twice
// that with two (generous bounds for a loaded machine). Watching goes on for up
// to 5 s until every phase was seen: whole steps that wrap below eight.
TEST(BorderDashPhase, StepsAboutTenTimesASecondThroughTheWholeStepsBelowEight) {
  using Clock = std::chrono::steady_clock;
  DrawBase::initialize();
  DrawBase::initialize();  // a second set-up starts no second task
  std::set<double> seen;
  int changes = 0;
  double last = fBorderDashPhaseStart.load();
  const auto start = Clock::now();
  for (auto elapsed = Clock::duration(); elapsed < std::chrono::seconds(5);
       elapsed = Clock::now() - start) {
    const bool firstSecond = elapsed < std::chrono::seconds(1);
    if (!firstSecond && seen.size() == 8) break;
    const double now = fBorderDashPhaseStart.load();
    seen.insert(now);
    if (firstSecond && now != last) ++changes;
    last = now;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(seen, (std::set<double>{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_GE(changes, 5);
  EXPECT_LE(changes, 12);
}

}  // namespace
}  // namespace paintdoc
