// What a shape with shadows costs on a 4K canvas: a filled shape with a drop
// shadow, a gradient in a transparency layer with a drop shadow (as shapes
// with gradient fills draw), and the inner-shadow idiom.
#include <benchmark/benchmark.h>

#include "platform/graphics/graphics_context.h"

namespace paintdoc {
namespace {

constexpr int kWidth = 3840, kHeight = 2160;
const Rect kShape = MakeRect(1200, 800, 400, 300);

void BM_ShadowedFill4K(benchmark::State& state) {
  auto canvas = Bitmap::create(kWidth, kHeight);
  GraphicsContext gc(canvas);
  BezierPath path = BezierPath::withRoundedRect(kShape, 30, 30);
  for (auto _ : state) {
    gc.saveGraphicsState();
    gc.setShadow(Shadow(Color::calibratedWhite(0, 0.5), {8, -8}, static_cast<double>(state.range(0))));
    gc.setFillColor(Color::calibratedRGB(0.9, 0.4, 0.1, 1));
    gc.fill(path);
    gc.restoreGraphicsState();
    gc.flush();
  }
}
BENCHMARK(BM_ShadowedFill4K)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_ShadowedGradientLayer4K(benchmark::State& state) {
  auto canvas = Bitmap::create(kWidth, kHeight);
  GraphicsContext gc(canvas);
  BezierPath path = BezierPath::withRoundedRect(kShape, 30, 30);
  Gradient gradient = Gradient::withStartingColor(Color::redColor(), Color::blueColor());
  for (auto _ : state) {
    gc.saveGraphicsState();
    gc.setShadow(Shadow(Color::calibratedWhite(0, 0.5), {8, -8}, static_cast<double>(state.range(0))));
    gc.beginTransparencyLayer();
    gc.drawGradient(gradient, path, 30.0);
    gc.endTransparencyLayer();
    gc.restoreGraphicsState();
    gc.flush();
  }
}
BENCHMARK(BM_ShadowedGradientLayer4K)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_InnerShadow4K(benchmark::State& state) {
  auto canvas = Bitmap::create(kWidth, kHeight);
  GraphicsContext gc(canvas);
  BezierPath path = BezierPath::withOvalInRect(kShape);
  Color color = Color::calibratedRGB(0.2, 0.1, 0.5, 0.8);
  for (auto _ : state) {
    gc.saveGraphicsState();
    gc.clipToRect(path.bounds());
    gc.setAlpha(color.alphaComponent());
    gc.beginTransparencyLayer();
    gc.setShadow(Shadow(color.withAlphaComponent(1), {5, -5}, 10));
    gc.setBlendMode(BlendMode::SourceOut);
    gc.beginTransparencyLayer();
    gc.setFillColor(color.withAlphaComponent(1));
    gc.fill(path);
    gc.endTransparencyLayer();
    gc.endTransparencyLayer();
    gc.restoreGraphicsState();
    gc.flush();
  }
}
BENCHMARK(BM_InnerShadow4K)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
