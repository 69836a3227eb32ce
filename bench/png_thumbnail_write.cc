// PNG encoding of a 256 × 192 thumbnail at each zlib level: what the
// thumbnail writers' compression level costs and saves. The picture is the
// thumbnail in PAINTDOC_THUMBNAIL_PNG (bench/compare-peers passes the one it
// drew) or, without it, a drawn-like picture of flat areas and gradients.
// Levels 0 to 3 filter rows with Sub only, 4 and up try every filter.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "platform/codecs/image_codecs.h"
#include "platform/values/bitmap.h"

namespace paintdoc {
namespace {

// Flat bands with a gradient across, like a thumbnail of drawn shapes.
std::shared_ptr<Bitmap> SyntheticThumbnail() {
  std::shared_ptr<Bitmap> bitmap = Bitmap::create(256, 192);
  for (int y = 0; y < 192; ++y) {
    uint8_t* row = bitmap->rowAt(y);
    for (int x = 0; x < 256; ++x) {
      const bool inShape = (x / 64 + y / 48) % 2 == 0;
      row[x * 4 + Bitmap::kRed] = inShape ? static_cast<uint8_t>(x) : 255;
      row[x * 4 + Bitmap::kGreen] = inShape ? static_cast<uint8_t>(y) : 255;
      row[x * 4 + Bitmap::kBlue] = inShape ? 128 : 255;
      row[x * 4 + Bitmap::kAlpha] = 255;
    }
  }
  return bitmap;
}

const Bitmap& Thumbnail() {
  static const std::shared_ptr<Bitmap> bitmap = [] {
    if (const char* path = std::getenv("PAINTDOC_THUMBNAIL_PNG")) {
      if (std::shared_ptr<Bitmap> read = ReadImageFile(path)->bitmap) return read;
    }
    return SyntheticThumbnail();
  }();
  return *bitmap;
}

void BM_WriteThumbnailPng(benchmark::State& state) {
  const Bitmap& thumbnail = Thumbnail();
  PngMetadata metadata;
  metadata.keepAlphaChannel = true;
  size_t bytes = 0;
  for (auto _ : state) {
    auto png = WritePNG(thumbnail, {.compressionLevel = static_cast<int>(state.range(0))}, metadata);
    bytes = png ? png->size() : 0;
    benchmark::DoNotOptimize(png);
  }
  state.counters["bytes"] = static_cast<double>(bytes);
  state.SetLabel(std::to_string(thumbnail.pixelsWide()) + "x" + std::to_string(thumbnail.pixelsHigh()));
}
BENCHMARK(BM_WriteThumbnailPng)->Arg(0)->Arg(1)->Arg(3)->Arg(4)->Arg(6)->Arg(9)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
