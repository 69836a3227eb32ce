// Image layers: decoding the bitmaps of a document (an 8-bit RGBA TIFF as
// the platform writes it, 24 megapixels), and drawing a 6000 × 4000 image
// layer as a thumbnail drawn at its own size, straight with the filter and
// averaged down in blocks first, at full size and turned.
#include <benchmark/benchmark.h>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/codecs/image_codecs.h"
#include "platform/graphics/graphics_context.h"
#include "raster/draw_image.h"

namespace paintdoc {
namespace {

constexpr int kWidth = 6000, kHeight = 4000;

const std::shared_ptr<Bitmap>& Photo() {
  static const std::shared_ptr<Bitmap> photo = [] {
    auto bitmap = Bitmap::create(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
      uint8_t* row = bitmap->rowAt(y);
      for (int x = 0; x < kWidth; ++x, row += 4) {
        row[Bitmap::kRed] = static_cast<uint8_t>(x * 7 + y);
        row[Bitmap::kGreen] = static_cast<uint8_t>(x ^ y);
        row[Bitmap::kBlue] = static_cast<uint8_t>(y * 3);
        row[Bitmap::kAlpha] = 255;
      }
    }
    return bitmap;
  }();
  return photo;
}

void BM_DecodeArchivedBitmap(benchmark::State& state) {
  KeyedArchiver archiver;
  archiver.encodeBitmapForKey(Photo(), "Image");
  const SharedBytes archive(archiver.finishEncoding());
  for (auto _ : state) {
    KeyedUnarchiver coder(archive);
    benchmark::DoNotOptimize(coder.decodeBitmapForKey("Image"));
  }
  state.SetItemsProcessed(state.iterations() * int64_t{kWidth} * kHeight);
}
BENCHMARK(BM_DecodeArchivedBitmap)->Unit(benchmark::kMillisecond);

// The layer drawn into a bitmap of `side` pixels across showing the whole
// canvas, as a thumbnail is; `reduce` 0 draws the image as it is.
void BM_DrawImageLayer(benchmark::State& state) {
  const int side = static_cast<int>(state.range(0));
  const bool reduce = state.range(1) != 0;
  const int high = side * kHeight / kWidth;
  auto layer = DrawImage::withImage(Photo());
  for (auto _ : state) {
    auto target = Bitmap::create(side, high);
    target->setSize({double(kWidth), double(kHeight)});
    BitmapFocus focus(target);
    GraphicsContext& context = focus.context();
    context.setImageInterpolation(ImageInterpolation::High);
    const Rect destination = MakeRect(0, 0, kWidth, kHeight);
    if (reduce) {
      const ImageForDevice drawn = ImageForDevice::reducedFor(context, Photo(), destination);
      context.drawBitmap(*drawn.bitmap, destination, drawn.source, CompositingOperation::SourceOver,
                         1.0);
    } else {
      context.drawBitmap(*Photo(), destination, ZeroRect(), CompositingOperation::SourceOver, 1.0);
    }
  }
}
BENCHMARK(BM_DrawImageLayer)
    ->ArgsProduct({{256, 1024, 2048}, {0, 1}})
    ->ArgNames({"side", "reduce"})
    ->Unit(benchmark::kMillisecond);

// The whole layer's _draw at full size, turned by 10 degrees.
void BM_DrawTurnedLayerAtFullSize(benchmark::State& state) {
  auto layer = DrawImage::withImage(Photo());
  layer->setRotateDegree(10);
  for (auto _ : state) {
    auto target = Bitmap::create(kWidth, kHeight);
    BitmapFocus focus(target);
    layer->draw();
  }
}
BENCHMARK(BM_DrawTurnedLayerAtFullSize)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
