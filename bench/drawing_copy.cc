// Copying and compositing a 4K bitmap through GraphicsContext, against a
// plain memcpy of the same bytes; and writing a full-HD preview as PNG.
#include <benchmark/benchmark.h>

#include <cstring>

#include "platform/graphics/graphics_context.h"
#include "platform/codecs/image_codecs.h"

namespace paintdoc {
namespace {

constexpr int kWidth = 3840, kHeight = 2160;

// Pixels with every alpha from opaque to clear, so SourceOver does real work.
std::shared_ptr<Bitmap> TestImage(int width, int height) {
  auto bitmap = Bitmap::create(width, height);
  for (int row = 0; row < height; ++row) {
    uint8_t* p = bitmap->rowAt(row);
    for (int x = 0; x < width; ++x, p += 4) {
      uint8_t alpha = static_cast<uint8_t>((x + row) * 7);
      p[Bitmap::kAlpha] = alpha;
      p[Bitmap::kRed] = static_cast<uint8_t>(alpha * (x % 256) / 255);
      p[Bitmap::kGreen] = static_cast<uint8_t>(alpha * (row % 256) / 255);
      p[Bitmap::kBlue] = static_cast<uint8_t>(alpha / 2);
    }
  }
  return bitmap;
}

void SetBytes(benchmark::State& state, const Bitmap& bitmap) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(bitmap.byteCount()));
}

void BM_Memcpy4K(benchmark::State& state) {
  auto source = TestImage(kWidth, kHeight), target = Bitmap::create(kWidth, kHeight);
  for (auto _ : state) {
    std::memcpy(target->data(), source->data(), source->byteCount());
    benchmark::ClobberMemory();
  }
  SetBytes(state, *source);
}
BENCHMARK(BM_Memcpy4K)->Unit(benchmark::kMillisecond);

void DrawRepeatedly(benchmark::State& state, CompositingOperation operation) {
  auto source = TestImage(kWidth, kHeight), target = TestImage(kWidth, kHeight);
  GraphicsContext gc(target);
  for (auto _ : state) {
    gc.drawBitmap(*source, Point{0, 0}, operation);
    gc.flush();
    benchmark::ClobberMemory();
  }
  SetBytes(state, *source);
}

void BM_CopyBitmap4K(benchmark::State& state) { DrawRepeatedly(state, CompositingOperation::Copy); }
BENCHMARK(BM_CopyBitmap4K)->Unit(benchmark::kMillisecond);

void BM_SourceOverBitmap4K(benchmark::State& state) {
  DrawRepeatedly(state, CompositingOperation::SourceOver);
}
BENCHMARK(BM_SourceOverBitmap4K)->Unit(benchmark::kMillisecond);

// Locking focus, copying and unlocking, as a composition step does.
void BM_LockFocusAndCopy4K(benchmark::State& state) {
  auto source = TestImage(kWidth, kHeight), target = Bitmap::create(kWidth, kHeight);
  for (auto _ : state) {
    BitmapFocus focus(target);
    focus.context().drawBitmap(*source, Point{0, 0});
  }
  SetBytes(state, *source);
}
BENCHMARK(BM_LockFocusAndCopy4K)->Unit(benchmark::kMillisecond);

void BM_WritePngFullHD(benchmark::State& state) {
  auto image = TestImage(1920, 1080);
  for (auto _ : state) benchmark::DoNotOptimize(WritePNG(*image));
  SetBytes(state, *image);
}
BENCHMARK(BM_WritePngFullHD)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
