// Every named filter on a 1920 × 1080 bitmap with the settings a filter
// layer starts from, and, where libvips has the same operation, libvips on
// the same pixels: Gaussian blur, sharpening, Sobel edges and pixelation (a
// block-average shrink and a nearest-neighbour zoom).
#include <benchmark/benchmark.h>

#include <string>

#include "platform/filters/image_with_filter.h"
#include "platform/values/bitmap.h"

#ifdef PAINTDOC_HAVE_VIPS
#include <vips/vips.h>
#endif

namespace paintdoc {
namespace {

constexpr int kWidth = 1920, kHeight = 1080;

std::shared_ptr<Bitmap> TestImage() {
  auto bitmap = Bitmap::create(kWidth, kHeight);
  for (int row = 0; row < kHeight; ++row) {
    uint8_t* p = bitmap->rowAt(row);
    for (int x = 0; x < kWidth; ++x, p += 4) {
      const bool band = (x / 64 + row / 48) % 2 == 0;
      const uint8_t alpha = band ? 255 : 160;
      p[Bitmap::kAlpha] = alpha;
      p[Bitmap::kRed] = static_cast<uint8_t>(std::min<int>(alpha, (x * 13) % 256));
      p[Bitmap::kGreen] = static_cast<uint8_t>(std::min<int>(alpha, (row * 7) % 256));
      p[Bitmap::kBlue] = static_cast<uint8_t>(band ? 200 : 20);
    }
  }
  return bitmap;
}

struct Case {
  const char* filter;
  FilterSettings settings;
  bool clamp;
};

void BM_Filter(benchmark::State& state, Case c) {
  auto input = TestImage();
  for (auto _ : state) benchmark::DoNotOptimize(ImageWithFilter(input, c.filter, c.clamp, &c.settings));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kWidth * kHeight);
}

#define FILTER_BENCH(label, ...)                                                                     \
  BENCHMARK_CAPTURE(BM_Filter, label, Case{__VA_ARGS__})->Unit(benchmark::kMillisecond)->UseRealTime()

FILTER_BENCH(GaussianBlur_4, "CIGaussianBlur", {{"inputRadius", 4}}, true);
FILTER_BENCH(GaussianBlur_40, "CIGaussianBlur", {{"inputRadius", 40}}, true);
FILTER_BENCH(SharpenLuminance, "CISharpenLuminance", {{"inputSharpness", 0.4}}, false);
FILTER_BENCH(ColorControls, "CIColorControls", {{"inputSaturation", 1.5}, {"inputContrast", 1.2}}, false);
FILTER_BENCH(ExposureAdjust, "CIExposureAdjust", {{"inputEV", 0.5}}, false);
FILTER_BENCH(HighlightShadowAdjust, "CIHighlightShadowAdjust", {{"inputShadowAmount", 0.5}}, false);
FILTER_BENCH(SepiaTone, "CISepiaTone", {{"inputIntensity", 1}}, false);
FILTER_BENCH(HueAdjust, "CIHueAdjust", {{"inputAngle", 1}}, false);
FILTER_BENCH(GammaAdjust, "CIGammaAdjust", {{"inputPower", 1.5}}, false);
FILTER_BENCH(Crystallize, "CICrystallize", {{"inputRadius", 10}}, true);
FILTER_BENCH(Edges, "CIEdges", {{"inputIntensity", 50}}, false);
FILTER_BENCH(EdgeWork, "CIEdgeWork", {{"inputRadius", 0.5}}, true);
FILTER_BENCH(Pixellate, "CIPixellate", {{"inputScale", 5}}, true);
FILTER_BENCH(Pointillize, "CIPointillize", {{"inputRadius", 2}}, true);
FILTER_BENCH(ColorInvert, "CIColorInvert", {}, false);

#ifdef PAINTDOC_HAVE_VIPS
// One libvips operation from the bitmap's memory to new memory (the same
// work as a filter answering a new bitmap), the cache off.
template <class Operation>
void BM_Vips(benchmark::State& state, Operation operation) {
  static bool started = VIPS_INIT("bench_image_filters") == 0;
  if (!started) {
    state.SkipWithError("libvips did not start");
    return;
  }
  vips_cache_set_max(0);
  auto original = TestImage();
  for (auto _ : state) {
    VipsImage* input = vips_image_new_from_memory(original->data(), original->byteCount(), kWidth, kHeight, 4,
                                                  VIPS_FORMAT_UCHAR);
    VipsImage* output = nullptr;
    if (operation(input, &output) != 0) {
      state.SkipWithError(vips_error_buffer());
      g_object_unref(input);
      return;
    }
    size_t length = 0;
    void* pixels = vips_image_write_to_memory(output, &length);
    benchmark::DoNotOptimize(pixels);
    g_free(pixels);
    g_object_unref(output);
    g_object_unref(input);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kWidth * kHeight);
}

#define VIPS_BENCH(label, body) \
  BENCHMARK_CAPTURE(BM_Vips, label, [](VipsImage* in, VipsImage** out) { return body; }) \
      ->Unit(benchmark::kMillisecond)->UseRealTime()

VIPS_BENCH(gaussblur_4, vips_gaussblur(in, out, 4.0, nullptr));
VIPS_BENCH(gaussblur_40, vips_gaussblur(in, out, 40.0, nullptr));
// Sharpening works in Lab, so the pixels are tagged as sRGB first.
VIPS_BENCH(sharpen, ([&] {
             VipsImage* tagged = nullptr;
             if (vips_copy(in, &tagged, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr) != 0) return -1;
             int result = vips_sharpen(tagged, out, nullptr);
             g_object_unref(tagged);
             return result;
           })());
VIPS_BENCH(sobel, vips_sobel(in, out, nullptr));
VIPS_BENCH(pixelate_5, ([&] {
             VipsImage* small = nullptr;
             if (vips_shrink(in, &small, 5.0, 5.0, nullptr) != 0) return -1;
             int result = vips_zoom(small, out, 5, 5, nullptr);
             g_object_unref(small);
             return result;
           })());
#endif

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
