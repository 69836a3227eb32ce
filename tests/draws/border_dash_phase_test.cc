// The border-dash phase: its animation step, and the task started on first use.
#include <gtest/gtest.h>

#include "draws/draw_base.h"
#include "draws/draw_rectangle.h"
#include "support/thread_count.h"

namespace paintdoc {
namespace {

TEST(BorderDashPhase, StepsThroughTheWholeStepsBelowEightAndWraps) {
  const struct { double phase, next; } steps[] = {{0, 1}, {6, 7}, {7, 0}, {7.5, 0}, {8, 0}};
  for (const auto& step : steps) EXPECT_EQ(NextBorderDashPhase(step.phase), step.next) << step.phase;
}

using test::ThreadCount;

// Making and drawing draws starts no thread; the first read of the phase
// starts exactly one, and later reads no other.
TEST(BorderDashPhase, TaskStartsOnTheFirstReadOnly) {
  const int before = ThreadCount();
  auto draw = MakeDraw<DrawRectangle>();
  EXPECT_EQ(ThreadCount(), before);
  BorderDashPhaseStart();
  BorderDashPhaseStart();
  EXPECT_EQ(ThreadCount(), before + 1);
}

}  // namespace
}  // namespace paintdoc
