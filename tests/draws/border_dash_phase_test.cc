// The border-dash phase task started by the one-time class set-up.
#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <thread>

#include "draws/draw_base.h"

namespace paintdoc {
namespace {

TEST(BorderDashPhase, AdvancesByWholeStepsAndWrapsBelowEight) {
  DrawBase::initialize();
  DrawBase::initialize();  // a second set-up starts no second task
  std::set<double> seen;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  // Nine steps or more pass through the wrap at least once.
  while (seen.size() < 8 && std::chrono::steady_clock::now() < deadline) {
    seen.insert(fBorderDashPhaseStart.load());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(seen, (std::set<double>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(BorderDashPhase, StepsAboutTenTimesASecond) {
  DrawBase::initialize();
  // Count changes over one second; with a single task that is about 10
  // (a second task would double it). Generous bounds for a loaded machine.
  int changes = 0;
  double last = fBorderDashPhaseStart.load();
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  while (std::chrono::steady_clock::now() < end) {
    const double now = fBorderDashPhaseStart.load();
    if (now != last) ++changes;
    last = now;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_GE(changes, 5);
  EXPECT_LE(changes, 12);
}

}  // namespace
}  // namespace paintdoc
