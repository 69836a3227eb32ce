#include "platform/values/bitmap.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include "platform/values/log.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

TEST(Bitmap, NewBitmapIsClearedWithPointSizeOfItsPixels) {
  auto bitmap = Bitmap::create(7, 3);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->pixelsWide(), 7);
  EXPECT_EQ(bitmap->pixelsHigh(), 3);
  EXPECT_EQ(bitmap->bytesPerRow(), 28u);
  EXPECT_EQ(bitmap->size(), MakeSize(7, 3));
  for (size_t i = 0; i < bitmap->byteCount(); ++i) ASSERT_EQ(bitmap->data()[i], 0);
}

TEST(Bitmap, ImpossibleSizesAreRefusedWithAnError) {
  LogCapture log;
  EXPECT_FALSE(Bitmap::create(-1, 5));
  for (int side : {Bitmap::kMaxDimension - 1, Bitmap::kMaxDimension, Bitmap::kMaxDimension + 1}) {
    const bool fits = side <= Bitmap::kMaxDimension;
    EXPECT_EQ(Bitmap::create(side, 1) != nullptr, fits) << side;
    EXPECT_EQ(Bitmap::create(1, side) != nullptr, fits) << side;
  }
  EXPECT_TRUE(log.contains("Error: "));
  auto empty = Bitmap::create(0, 4);
  ASSERT_TRUE(empty);
  EXPECT_TRUE(empty->isEmpty());
}

// The channel offsets must name the bytes cairo writes: paint a known colour
// with cairo itself and read it back through the offsets.
TEST(Bitmap, ChannelOffsetsMatchCairosNativeLayout) {
  auto bitmap = Bitmap::create(2, 2);
  cairo_surface_t* surface = cairo_image_surface_create_for_data(
      bitmap->data(), CAIRO_FORMAT_ARGB32, 2, 2, static_cast<int>(bitmap->bytesPerRow()));
  ASSERT_EQ(cairo_format_stride_for_width(CAIRO_FORMAT_ARGB32, 2),
            static_cast<int>(bitmap->bytesPerRow()));
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgba(cr, 1.0, 0.4, 0.2, 0.8);
  cairo_paint(cr);
  cairo_destroy(cr);
  cairo_surface_destroy(surface);
  // Premultiplied by 0.8: red 204, green 81.6, blue 40.8 (cairo truncates or rounds).
  Rgba8 pixel = bitmap->pixelAt(1, 1);
  EXPECT_EQ(pixel.alpha, 204);
  EXPECT_EQ(pixel.red, 204);
  EXPECT_NEAR(pixel.green, 82, 1);
  EXPECT_NEAR(pixel.blue, 41, 1);
}

TEST(Bitmap, StraightAlphaConvertsBothWays) {
  auto bitmap = Bitmap::create(3, 1);
  const uint8_t straight[] = {200, 100, 50, 128, 10, 20, 30, 0, 255, 128, 0, 255};
  bitmap->writeRGBARow(0, straight, AlphaMode::Straight);
  // round(c × a / 255)
  EXPECT_EQ(bitmap->pixelAt(0, 0), (Rgba8{100, 50, 25, 128}));
  EXPECT_EQ(bitmap->pixelAt(1, 0), (Rgba8{0, 0, 0, 0}));
  EXPECT_EQ(bitmap->pixelAt(2, 0), (Rgba8{255, 128, 0, 255}));
  uint8_t back[12];
  bitmap->readRGBARow(0, back, AlphaMode::Straight);
  EXPECT_NEAR(back[0], 200, 1);
  EXPECT_NEAR(back[1], 100, 1);
  EXPECT_NEAR(back[2], 50, 2);
  EXPECT_EQ(back[3], 128);
  EXPECT_EQ(back[7], 0);
}

TEST(Bitmap, PremultipliedRoundTripThroughStraightIsExact) {
  // Every premultiplied value under every alpha survives unpremultiply + premultiply.
  for (int alpha = 1; alpha < 256; ++alpha) {
    for (int value = 0; value <= alpha; ++value) {
      uint8_t straight = UnpremultiplySample(static_cast<uint8_t>(value), static_cast<uint8_t>(alpha));
      ASSERT_EQ(PremultiplySample(straight, static_cast<uint8_t>(alpha)), value) << alpha;
    }
  }
}

TEST(Bitmap, PremultipliedInputWithColourAboveAlphaIsClamped) {
  auto bitmap = Bitmap::create(1, 1);
  const uint8_t bad[] = {250, 10, 90, 80};
  bitmap->writeRGBARow(0, bad, AlphaMode::Premultiplied);
  EXPECT_EQ(bitmap->pixelAt(0, 0), (Rgba8{80, 10, 80, 80}));
}

TEST(Bitmap, ResolutionSetsPointSizeWithCeiling) {
  auto bitmap = Bitmap::create(100, 51);
  bitmap->setSizeWithDPI(144);
  EXPECT_EQ(bitmap->size(), MakeSize(50, 26));
  EXPECT_EQ(bitmap->dpi(), 144.0f);
  bitmap->setSizeWithDPI(0);
  EXPECT_EQ(bitmap->size(), MakeSize(50, 26));
}

TEST(Bitmap, CopyIsIndependentAndKeepsPointSize) {
  auto bitmap = Bitmap::create(2, 2);
  bitmap->setPixelAt(1, 0, {1, 2, 3, 4});
  bitmap->setSize({4, 4});
  auto copy = bitmap->copy();
  EXPECT_TRUE(copy->samePixels(*bitmap));
  EXPECT_EQ(copy->size(), MakeSize(4, 4));
  copy->clear();
  EXPECT_EQ(bitmap->pixelAt(1, 0), (Rgba8{1, 2, 3, 4}));
  EXPECT_FALSE(copy->samePixels(*bitmap));
}

}  // namespace
}  // namespace paintdoc
