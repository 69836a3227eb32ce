// Measuring a long curved path and placing glyph positions along it, the way
// curved text lays out its glyphs: one search record shared by all glyphs.
#include <benchmark/benchmark.h>

#include <cmath>

#include "geometry/bezier_math.h"
#include "geometry/path_measure.h"

namespace paintdoc {
namespace {

constexpr int kCurveCount = 1000;
constexpr int kGlyphCount = 1000;

// A wave of `count` cubic curves, each about 40 units long.
BezierPath WavyPath(int count) {
  BezierPath path;
  path.moveTo({0, 0});
  for (int i = 0; i < count; ++i) {
    const double x = 30.0 * i;
    const double bend = (i % 2 == 0) ? 20.0 : -20.0;
    path.curveTo({x + 30, 0}, {x + 8, bend}, {x + 22, -bend * 0.5});
  }
  return path;
}

void BM_CubicBezierLength(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(CubicBezierLength({0, 0}, {8, 20}, {22, -10}, {30, 0}));
  }
}
BENCHMARK(BM_CubicBezierLength);

void BM_PathLineLength(benchmark::State& state) {
  const BezierPath path = WavyPath(kCurveCount);
  for (auto _ : state) benchmark::DoNotOptimize(pathLineLength(path));
  state.counters["curves"] = kCurveCount;
}
BENCHMARK(BM_PathLineLength)->Unit(benchmark::kMillisecond);

// Glyph i sits at the middle of its advance: fraction (i + 0.5) / count.
void LayOutGlyphs(const BezierPath& path, BezierFindPointDetails& record) {
  for (int i = 0; i < kGlyphCount; ++i) {
    const double fraction = (i + 0.5) / kGlyphCount;
    benchmark::DoNotOptimize(pointAtPercent(path, fraction, &record));
  }
}

// The record carries the path's length, measured once before the layout.
void BM_LayOutGlyphsSharedRecord(benchmark::State& state) {
  const BezierPath path = WavyPath(kCurveCount);
  for (auto _ : state) {
    BezierFindPointDetails record;
    record.totalLength = pathLineLength(path);
    LayOutGlyphs(path, record);
  }
  state.counters["glyphs"] = kGlyphCount;
  state.SetItemsProcessed(state.iterations() * kGlyphCount);
}
BENCHMARK(BM_LayOutGlyphsSharedRecord)->Unit(benchmark::kMillisecond);

// A zeroed record: every search measures the whole path again first.
void BM_LayOutGlyphsSharedRecordUnmeasured(benchmark::State& state) {
  const BezierPath path = WavyPath(kCurveCount);
  for (auto _ : state) {
    BezierFindPointDetails record;
    LayOutGlyphs(path, record);
  }
  state.SetItemsProcessed(state.iterations() * kGlyphCount);
}
BENCHMARK(BM_LayOutGlyphsSharedRecordUnmeasured)->Unit(benchmark::kMillisecond)->Iterations(1);

// A fresh record per glyph: every search walks the path from its start.
void BM_LayOutGlyphsFreshRecords(benchmark::State& state) {
  const BezierPath path = WavyPath(kCurveCount);
  const double total = pathLineLength(path);
  for (auto _ : state) {
    for (int i = 0; i < kGlyphCount; ++i) {
      BezierFindPointDetails record;
      record.totalLength = total;
      benchmark::DoNotOptimize(pointAtPercent(path, (i + 0.5) / kGlyphCount, &record));
    }
  }
  state.SetItemsProcessed(state.iterations() * kGlyphCount);
}
BENCHMARK(BM_LayOutGlyphsFreshRecords)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
