// Gaussian blur of a 1920 × 1080 RGBA image at σ 4 and 40, side by side with
// libvips' gaussblur of the same pixels when libvips is available. libvips
// runs at its default kernel truncation (min_ampl 0.2, about ±1.8σ) and at
// min_ampl 0.01 (about ±3σ, comparable in reach with ours). Under load on a
// shared machine compare the CPU column: it is the whole process's CPU time.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "platform/graphics/gaussian_blur.h"

#ifdef PAINTDOC_HAVE_VIPS
#include <vips/vips.h>
#endif

namespace paintdoc {
namespace {

constexpr int kWidth = 1920, kHeight = 1080;

// Bands of colour with sharp edges and some texture.
std::shared_ptr<Bitmap> TestImage() {
  auto bitmap = Bitmap::create(kWidth, kHeight);
  for (int row = 0; row < kHeight; ++row) {
    uint8_t* p = bitmap->rowAt(row);
    for (int x = 0; x < kWidth; ++x, p += 4) {
      bool band = (x / 64 + row / 48) % 2 == 0;
      p[Bitmap::kAlpha] = band ? 255 : 128;
      p[Bitmap::kRed] = static_cast<uint8_t>(band ? (x * 13) % 256 : 40);
      p[Bitmap::kGreen] = static_cast<uint8_t>(band ? (row * 7) % 256 : 90);
      p[Bitmap::kBlue] = static_cast<uint8_t>(band ? 200 : 20);
      if (p[Bitmap::kRed] > p[Bitmap::kAlpha]) p[Bitmap::kRed] = p[Bitmap::kAlpha];
      if (p[Bitmap::kGreen] > p[Bitmap::kAlpha]) p[Bitmap::kGreen] = p[Bitmap::kAlpha];
      if (p[Bitmap::kBlue] > p[Bitmap::kAlpha]) p[Bitmap::kBlue] = p[Bitmap::kAlpha];
    }
  }
  return bitmap;
}

void SetPixels(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kWidth * kHeight);
}

// Each iteration blurs a fresh copy (the copy is timed too, as libvips also
// writes a new image).
void BM_PaintdocBlur(benchmark::State& state) {
  auto original = TestImage();
  auto work = original->copy();
  double sigma = static_cast<double>(state.range(0));
  for (auto _ : state) {
    std::memcpy(work->data(), original->data(), original->byteCount());
    GaussianBlur(*work, sigma, BlurEdges::Clamp);
    benchmark::ClobberMemory();
  }
  SetPixels(state);
}
BENCHMARK(BM_PaintdocBlur)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void BM_PaintdocBlurOneChannel(benchmark::State& state) {
  std::vector<uint8_t> original(kWidth * kHeight), work(kWidth * kHeight);
  for (size_t i = 0; i < original.size(); ++i) original[i] = (i / 64 + i / kWidth / 48) % 2 ? 255 : 0;
  double sigma = static_cast<double>(state.range(0));
  for (auto _ : state) {
    std::memcpy(work.data(), original.data(), original.size());
    GaussianBlurChannel(work.data(), kWidth, kHeight, kWidth, sigma, BlurEdges::Transparent);
    benchmark::ClobberMemory();
  }
  SetPixels(state);
}
BENCHMARK(BM_PaintdocBlurOneChannel)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

#ifdef PAINTDOC_HAVE_VIPS
void VipsBlur(benchmark::State& state, double minimumAmplitude) {
  static bool started = VIPS_INIT("bench_drawing_blur") == 0;
  if (!started) {
    state.SkipWithError("libvips did not start");
    return;
  }
  vips_cache_set_max(0);  // never answer a repeated call from the cache
  auto original = TestImage();
  VipsImage* input = vips_image_new_from_memory(original->data(), original->byteCount(), kWidth,
                                                kHeight, 4, VIPS_FORMAT_UCHAR);
  double sigma = static_cast<double>(state.range(0));
  for (auto _ : state) {
    VipsImage* output = nullptr;
    if (vips_gaussblur(input, &output, sigma, "min_ampl", minimumAmplitude, nullptr) != 0) {
      state.SkipWithError(vips_error_buffer());
      break;
    }
    size_t length = 0;
    void* pixels = vips_image_write_to_memory(output, &length);
    benchmark::DoNotOptimize(pixels);
    g_free(pixels);
    g_object_unref(output);
  }
  g_object_unref(input);
  SetPixels(state);
}

void BM_VipsGaussBlurDefault(benchmark::State& state) { VipsBlur(state, 0.2); }
BENCHMARK(BM_VipsGaussBlurDefault)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void BM_VipsGaussBlurWide(benchmark::State& state) { VipsBlur(state, 0.01); }
BENCHMARK(BM_VipsGaussBlurWide)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
#endif

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
