// Layer tree operations on a large canvas: merging 10,000 top-level layers
// into one group and releasing them again.
#include <benchmark/benchmark.h>

#include "document/paint_manager.h"
#include "draws/draw_rectangle.h"

namespace paintdoc {
namespace {

constexpr int kLayerCount = 10'000;

std::shared_ptr<PaintManager> CanvasOfBoxes() {
  auto canvas = PaintManager::withSize({2000, 1500});
  for (int i = 0; i < kLayerCount; ++i) {
    auto box = MakeDraw<DrawRectangle>();
    box->setBezierPathWithBounds(MakeRect(i % 1900, (i / 19) % 1400, 100, 100));
    canvas->addDraw(box);
  }
  return canvas;
}

// Every layer but the bottom one merged into a group.
void BM_MergeDraws(benchmark::State& state) {
  auto canvas = CanvasOfBoxes();
  for (auto _ : state) {
    state.PauseTiming();
    const DrawList all = canvas->allDraws();
    const DrawList selection(all.begin() + 1, all.end());
    state.ResumeTiming();
    auto group = canvas->mergeDraws(selection);
    benchmark::DoNotOptimize(group);
    state.PauseTiming();
    canvas->unMergeDraws({group});
    state.ResumeTiming();
  }
}
BENCHMARK(BM_MergeDraws)->Unit(benchmark::kMillisecond);

void BM_UnMergeDraws(benchmark::State& state) {
  auto canvas = CanvasOfBoxes();
  for (auto _ : state) {
    state.PauseTiming();
    const DrawList all = canvas->allDraws();
    auto group = canvas->mergeDraws(DrawList(all.begin() + 1, all.end()));
    state.ResumeTiming();
    auto released = canvas->unMergeDraws({group});
    benchmark::DoNotOptimize(released);
  }
}
BENCHMARK(BM_UnMergeDraws)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
