// Documents with a background and image layers previewed as a tool does:
// read from the file's bytes, drawn at full size exactly as the canvas
// composes itself, and as thumbnails drawn at their own size, where the
// images are resampled with a filter that averages (a one-pixel checkerboard
// turns grey), not picked pixel by pixel.
#include <gtest/gtest.h>

#include "document/paint_manager.h"
#include "preview/bitmap_scaling.h"
#include "preview/document_container.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"
#include "raster/draw_image.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::MakeImage;

std::shared_ptr<Bitmap> Checkerboard(int width, int height) {
  return MakeImage(width, height, [](int x, int y) {
    return (x + y) % 2 ? Rgba8{255, 255, 255, 255} : Rgba8{0, 0, 0, 255};
  });
}

std::shared_ptr<PaintManager> ImageCanvas() {
  auto canvas = PaintManager::withSize({256, 192});
  canvas->setBackgroundImage(Checkerboard(256, 192));
  auto stripes = DrawImage::withImage(MakeImage(40, 30, [](int x, int) {
    return x % 2 ? Rgba8{255, 0, 0, 255} : Rgba8{0, 0, 255, 255};
  }));
  stripes->setBezierPathWithBounds(MakeRect(40, 30, 120, 90));
  stripes->setOpacity(0.6f);
  stripes->setRotateDegree(15);
  stripes->setEnableShadow(true);
  stripes->setShadow(Shadow(Color::calibratedWhite(0, 0.5), {6, -6}, 4));
  canvas->addDraw(stripes);
  auto cutout = DrawImage::withImage(MakeImage(32, 32, [](int x, int y) {
    return x >= 8 && x < 24 && y >= 8 && y < 24 ? Rgba8{0, 160, 0, 255} : Rgba8{};
  }));
  cutout->setBezierPathWithBounds(MakeRect(170, 100, 64, 64));
  cutout->setEnableInnerShadow(true);
  cutout->setInnerShadow(DrawBase::defaultInnerShadow());
  canvas->addDraw(cutout);
  canvas->setMaskBackground(true);
  return canvas;
}

std::shared_ptr<Bitmap> Preview(const std::vector<uint8_t>& file, int fitInto) {
  BitmapPreviewRequest request;
  const PreviewOutcome outcome = DrawPreviewSource(
      request,
      ReadPreviewSourceFromBytes(SharedBytes::copyOf(file), PreviewKind::Preview, {}, fitInto),
      fitInto);
  EXPECT_TRUE(outcome.drawn) << outcome.diagnosis;
  return request.flushedContext();
}

TEST(ImageLayersPreview, FullSizeIsTheComposedCanvas) {
  const auto canvas = ImageCanvas();
  const auto drawn = Preview(WriteDocumentContainer(*canvas), 0);
  ASSERT_TRUE(drawn);
  EXPECT_TRUE(test::ImagesMatch(*drawn, *canvas->image(), 0, "image_layers_preview"));
}

TEST(ImageLayersPreview, ThumbnailsResampleTheImagesByArea) {
  const auto canvas = ImageCanvas();
  const auto file = WriteDocumentContainer(*canvas);
  const auto full = canvas->image();
  for (int size : {128, 64, 32}) {
    SCOPED_TRACE(size);
    const auto thumbnail = Preview(file, size);
    ASSERT_TRUE(thumbnail);
    const PixelSize fitted = FitIntoSquare(256, 192, size);
    ASSERT_EQ(thumbnail->pixelsWide(), fitted.width);
    ASSERT_EQ(thumbnail->pixelsHigh(), fitted.height);
    const auto expected = ScaleBitmapByArea(*full, fitted.width, fitted.height);
    const auto difference = CompareBitmaps(*thumbnail, *expected);
    ASSERT_TRUE(difference);
    // Picking pixels would show the checkerboard black or white (a mean
    // difference near 128 over the background); averaging shows it grey.
    EXPECT_LE(difference->mean, 3.0) << "max " << difference->max;
    const Rgba8 corner = test::PixelAt(*thumbnail, 2, fitted.height - 3);
    EXPECT_NEAR(corner.red, 128, 8);
    EXPECT_NEAR(corner.green, 128, 8);
  }
}

}  // namespace
}  // namespace paintdoc
