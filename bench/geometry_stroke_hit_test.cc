// Picking a stroke with the pointer: one hit-test against a simple line and
// against a long curved outline.
#include <benchmark/benchmark.h>

#include "geometry/stroke_hit_test.h"

namespace paintdoc {
namespace {

void BM_HitTestLine(benchmark::State& state) {
  BezierPath line;
  line.moveTo({0, 0});
  line.lineTo({300, 120});
  line.setLineWidth(3);
  bool hit = false;
  for (auto _ : state) {
    hit = containsPointInStroking(line, {150, 61}, 1.0f);
    benchmark::DoNotOptimize(hit);
  }
  state.counters["hit"] = hit;
}
BENCHMARK(BM_HitTestLine);

// A closed wave of 200 curves with round joins.
void BM_HitTestCurvedOutline(benchmark::State& state) {
  BezierPath path;
  path.moveTo({0, 0});
  for (int i = 0; i < 200; ++i) {
    const double x = 10.0 * i;
    path.curveTo({x + 10, 0}, {x + 3, 8}, {x + 7, -8});
  }
  path.closePath();
  path.setLineWidth(2);
  path.setLineJoinStyle(LineJoinStyle::Round);
  for (auto _ : state) {
    benchmark::DoNotOptimize(containsPointInStroking(path, {1005, 2}, 1.0f));
  }
}
BENCHMARK(BM_HitTestCurvedOutline);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
