// Drawing bitmaps: scaled with opaque edges, from a source rectangle, with a
// fraction and an operation bounded by the destination rectangle, at the
// bitmaps' resolutions, with shadows of their own alpha.
#include <gtest/gtest.h>

#include "support/drawing_test_support.h"
#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

using test::Draw;
using test::ImagesMatch;
using test::Inside;
using test::MakeImage;
using test::PixelAt;
using test::PixelValue;

// 4 × 4, every pixel distinct and opaque; (x, y) from the lower left.
Rgba8 CardPixel(int x, int y) {
  return {static_cast<uint8_t>(40 + 60 * x), static_cast<uint8_t>(30 + 70 * y), 90, 255};
}
std::shared_ptr<Bitmap> Card() { return MakeImage(4, 4, CardPixel); }

std::shared_ptr<Bitmap> Solid(int w, int h, Rgba8 pixel) {
  return MakeImage(w, h, [=](int, int) { return pixel; });
}

TEST(ImageDrawing, ScaledWithoutInterpolationRepeatsEachPixel) {
  auto card = Card();
  auto bitmap = Draw(24, 24, [&](GraphicsContext& gc) {
    gc.setImageInterpolation(ImageInterpolation::None);
    gc.drawBitmap(*card, MakeRect(2, 2, 20, 20), ZeroRect(), CompositingOperation::SourceOver, 1.0);
  });
  auto expected = MakeImage(24, 24, [](int x, int y) {
    return Inside(x, y, 2, 2, 22, 22) ? CardPixel((x - 2) / 5, (y - 2) / 5) : Rgba8{};
  });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "image_scaled_nearest"));
}

TEST(ImageDrawing, ScaledImagesKeepOpaqueEdgesAtEveryQuality) {
  auto solid = Solid(4, 4, {200, 100, 50, 255});
  for (ImageInterpolation quality : {ImageInterpolation::Default, ImageInterpolation::High,
                                     ImageInterpolation::Low}) {
    auto bitmap = Draw(110, 110, [&](GraphicsContext& gc) {
      gc.setImageInterpolation(quality);
      gc.drawBitmap(*solid, MakeRect(5, 5, 100, 100), ZeroRect(), CompositingOperation::SourceOver, 1.0);
    });
    auto expected = MakeImage(110, 110, [](int x, int y) {
      return Inside(x, y, 5, 5, 105, 105) ? Rgba8{200, 100, 50, 255} : Rgba8{};
    });
    EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0,
                            "image_edges_" + std::to_string(static_cast<int>(quality))));
  }
}

TEST(ImageDrawing, SourceRectangleIsMeasuredFromTheLowerLeft) {
  auto card = Card();
  auto bitmap = Draw(4, 4, [&](GraphicsContext& gc) {
    gc.setImageInterpolation(ImageInterpolation::None);
    // The upper right quarter, doubled.
    gc.drawBitmap(*card, MakeRect(0, 0, 4, 4), MakeRect(2, 2, 2, 2), CompositingOperation::Copy, 1.0);
  });
  auto expected = MakeImage(4, 4, [](int x, int y) { return CardPixel(2 + x / 2, 2 + y / 2); });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "image_source_rect"));
}

TEST(ImageDrawing, FractionMultipliesAlphaAndCopyReplacesOnlyTheRectangle) {
  auto image = Solid(2, 2, test::Premultiplied(1, 0, 0, 0.8));
  const PixelValue white = PixelValue::straight(1, 1, 1, 1);
  const PixelValue source = PixelValue::straight(1, 0, 0, 0.8);
  for (CompositingOperation operation : {CompositingOperation::SourceOver, CompositingOperation::Copy,
                                         CompositingOperation::DestinationOut}) {
    auto bitmap = Draw(8, 4, [&](GraphicsContext& gc) {
      gc.setFillColor(Color::whiteColor());
      gc.fillRect(MakeRect(0, 0, 8, 4));
      gc.drawBitmap(*image, MakeRect(2, 0, 4, 4), ZeroRect(), operation, 0.5);
    });
    PixelValue inside;
    switch (operation) {
      case CompositingOperation::Copy: inside = source * 0.5; break;
      case CompositingOperation::DestinationOut: inside = white * (1 - 0.8 * 0.5); break;
      default: inside = test::SourceOver(source * 0.5, white); break;
    }
    auto expected = MakeImage(8, 4, [&](int x, int) {
      return (x >= 2 && x < 6 ? inside : white).toRgba8();
    });
    EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 1,
                            "image_fraction_op_" + std::to_string(static_cast<int>(operation))));
  }
}

TEST(ImageDrawing, PlainDrawCopiesPixelsAtTheBitmapsResolution) {
  // Both at 144 dpi: a point is two pixels in each, so the copy is 1:1.
  auto card = Card();
  card->setSizeWithDPI(144);  // 2 × 2 points
  auto bitmap = Bitmap::create(8, 8);
  bitmap->setSizeWithDPI(144);  // 4 × 4 points
  test::DrawInto(bitmap, [&](GraphicsContext& gc) { gc.drawBitmap(*card, Point{1, 1}); });
  auto expected = MakeImage(8, 8, [](int x, int y) {
    return Inside(x, y, 2, 2, 6, 6) ? CardPixel(x - 2, y - 2) : Rgba8{};
  });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "image_plain_copy"));
}

TEST(ImageDrawing, DrawingABitmapIntoItselfReadsTheOriginalPixels) {
  auto card = Card();
  test::DrawInto(card, [&](GraphicsContext& gc) { gc.drawBitmap(*card, Point{1, 0}); });  // shift right
  auto expected = MakeImage(4, 4, [](int x, int y) { return CardPixel(x == 0 ? 0 : x - 1, y); });
  EXPECT_TRUE(ImagesMatch(*card, *expected, 0, "image_into_itself"));
}

TEST(ImageDrawing, DrawImageUsesTheCurrentOperationAndAlpha) {
  auto image = Solid(1, 1, {0, 255, 0, 255});
  auto bitmap = Draw(4, 1, [&](GraphicsContext& gc) {
    gc.setFillColor(Color::blueColor());
    gc.fillRect(MakeRect(0, 0, 4, 1));
    gc.setAlpha(0.5);
    gc.setCompositingOperation(CompositingOperation::DestinationIn);
    gc.drawImage(*image, MakeRect(0, 0, 2, 1));
  });
  // DestinationIn with source alpha 0.5 halves the blue inside the rectangle only.
  EXPECT_EQ(PixelAt(*bitmap, 0, 0), (Rgba8{0, 0, 128, 128}));
  EXPECT_EQ(PixelAt(*bitmap, 3, 0), (Rgba8{0, 0, 255, 255}));
}

TEST(ImageDrawing, ImageShadowFollowsTheImagesAlpha) {
  // Left half transparent, right half opaque: only the right half casts.
  auto image = MakeImage(4, 4, [](int x, int) { return x < 2 ? Rgba8{} : Rgba8{0, 0, 255, 255}; });
  auto bitmap = Draw(8, 10, [&](GraphicsContext& gc) {
    gc.setShadow(Shadow(Color::blackColor(), {0, -4}, 0));
    gc.drawBitmap(*image, MakeRect(2, 5, 4, 4), ZeroRect(), CompositingOperation::SourceOver, 1.0);
  });
  auto expected = MakeImage(8, 10, [](int x, int y) {
    if (Inside(x, y, 4, 5, 6, 9)) return Rgba8{0, 0, 255, 255};
    if (Inside(x, y, 4, 1, 6, 5)) return Rgba8{0, 0, 0, 255};
    return Rgba8{};
  });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "image_shadow"));
}

}  // namespace
}  // namespace paintdoc
