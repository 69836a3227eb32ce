#include "raster/bitmap_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/graphics_context.h"
#include "platform/log.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::PixelAt;

constexpr Rgba8 kTransparent{0, 0, 0, 0};
constexpr Rgba8 kOpaqueRed{255, 0, 0, 255};

// A bitmap whose pixel (x, y), counted from the lower left, is opaque with
// red = x and green = y: every pixel says where it came from.
std::shared_ptr<Bitmap> PositionCodedBitmap(int width, int height) {
  return test::MakeImage(width, height, [](int x, int y) {
    return Rgba8{static_cast<uint8_t>(x), static_cast<uint8_t>(y), 0, 255};
  });
}

TEST(InitImageRep, TruncatesTheSizeAndStartsTransparent) {
  auto bitmap = InitImageRep(10.9, 3.2);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->pixelsWide(), 10);
  EXPECT_EQ(bitmap->pixelsHigh(), 3);
  EXPECT_EQ(bitmap->size(), MakeSize(10, 3));
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 10; ++x) EXPECT_EQ(PixelAt(*bitmap, x, y), kTransparent);
  }
}

TEST(InitImageRep, RefusesNegativeInvalidAndOversizedSizesWithALoggedError) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double huge = 1e300;
  for (auto [width, height] : {std::pair{-1.0, 5.0}, {5.0, nan}, {huge, 5.0}, {5.0, 40000.0}}) {
    LogCapture log;
    EXPECT_FALSE(InitImageRep(width, height)) << width << " x " << height;
    EXPECT_TRUE(log.contains("Error: ")) << width << " x " << height;
  }
}

TEST(BitmapFocus, NestedFocusDrawsIntoTheInnermostBitmapAndComesBack) {
  auto outer = InitImageRep(4, 4);
  auto inner = InitImageRep(4, 4);
  WTLockFocus(outer);
  WTLockFocus(inner);
  GraphicsContext::current()->setFillColor(Color::redColor());
  GraphicsContext::current()->fillRect(MakeRect(0, 0, 4, 4));
  WTUnlockFocus(inner);
  GraphicsContext::current()->setFillColor(Color::blueColor());
  GraphicsContext::current()->fillRect(MakeRect(0, 0, 2, 2));
  WTUnlockFocus(outer);
  EXPECT_EQ(GraphicsContext::current(), nullptr);

  EXPECT_EQ(PixelAt(*inner, 3, 3), kOpaqueRed);
  EXPECT_EQ(PixelAt(*outer, 0, 0), (Rgba8{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(*outer, 3, 3), kTransparent);
}

TEST(ClearImageInRect, ClearsExactlyTheRectangleCountedFromTheLowerLeft) {
  auto bitmap = test::MakeImage(6, 4, [](int, int) { return kOpaqueRed; });
  ClearImageInRect(bitmap, MakeRect(1, 0, 2, 3));
  auto expected = test::MakeImage(6, 4, [](int x, int y) {
    return x >= 1 && x < 3 && y < 3 ? kTransparent : kOpaqueRed;
  });
  EXPECT_TRUE(test::ImagesMatch(*bitmap, *expected, 0, "clear_image_in_rect"));

  ClearImage(bitmap);
  auto empty = test::MakeImage(6, 4, [](int, int) { return kTransparent; });
  EXPECT_TRUE(test::ImagesMatch(*bitmap, *empty, 0, "clear_image"));
  // Missing bitmaps are ignored.
  ClearImage(nullptr);
  ClearImageInRect(nullptr, MakeRect(0, 0, 1, 1));
}

TEST(CropImage, MovesTheRectanglesCornerToTheOriginAndLeavesOutsidePartsTransparent) {
  auto source = PositionCodedBitmap(8, 6);
  // Two columns hang over the right edge, one row over the top.
  auto cropped = CropImage(source, MakeRect(5, 2, 5, 5));
  ASSERT_TRUE(cropped);
  auto expected = test::MakeImage(5, 5, [](int x, int y) {
    const int sourceX = x + 5, sourceY = y + 2;
    if (sourceX >= 8 || sourceY >= 6) return kTransparent;
    return Rgba8{static_cast<uint8_t>(sourceX), static_cast<uint8_t>(sourceY), 0, 255};
  });
  EXPECT_TRUE(test::ImagesMatch(*cropped, *expected, 0, "crop_image"));
}

TEST(CropImage, UsesPixelsEvenWhenTheSourceCarriesAResolution) {
  auto source = PositionCodedBitmap(8, 6);
  source->setSizeWithDPI(144);  // 4 by 3 points
  auto cropped = CropImage(source, MakeRect(2, 1, 3, 3));
  ASSERT_TRUE(cropped);
  EXPECT_EQ(PixelAt(*cropped, 0, 0), (Rgba8{2, 1, 0, 255}));
  EXPECT_EQ(PixelAt(*cropped, 2, 2), (Rgba8{4, 3, 0, 255}));
}

TEST(CropImage, RefusesRectanglesBelowOnePixelAndMissingBitmaps) {
  auto source = PositionCodedBitmap(4, 4);
  EXPECT_FALSE(CropImage(source, MakeRect(0, 0, 0.5, 3)));
  EXPECT_FALSE(CropImage(source, MakeRect(0, 0, 3, 0.99)));
  EXPECT_FALSE(CropImage(source, MakeRect(0, 0, std::nan(""), 3)));
  EXPECT_FALSE(CropImage(nullptr, MakeRect(0, 0, 3, 3)));
  EXPECT_TRUE(CropImage(source, MakeRect(0, 0, 1, 1)));
}

TEST(ImageRectByTrimEmpty, BoundsTheVisiblePixelsInLowerLeftCoordinates) {
  auto bitmap = InitImageRep(10, 8);
  // Storage row 1 is y = 6; storage row 4 is y = 3. Alpha 1 is visible.
  bitmap->setPixelAt(2, 1, {0, 0, 0, 1});
  bitmap->setPixelAt(7, 4, {9, 9, 9, 255});
  EXPECT_EQ(ImageRectByTrimEmpty(bitmap), MakeRect(2, 3, 6, 4));
}

TEST(ImageRectByTrimEmpty, VisiblePixelInTheTopRowGivesTheTopmostY) {
  auto bitmap = InitImageRep(5, 4);
  bitmap->setPixelAt(3, 0, {1, 1, 1, 255});
  EXPECT_EQ(ImageRectByTrimEmpty(bitmap), MakeRect(3, 3, 1, 1));
}

TEST(ImageRectByTrimEmpty, TransparentBitmapsGiveZeroExceptTheSinglePixelOne) {
  EXPECT_EQ(ImageRectByTrimEmpty(InitImageRep(2, 2)), ZeroRect());
  // The search starts at the last column and row; one pixel cannot miss them.
  EXPECT_EQ(ImageRectByTrimEmpty(InitImageRep(1, 1)), MakeRect(0, 0, 1, 1));
  EXPECT_EQ(ImageRectByTrimEmpty(InitImageRep(0, 0)), ZeroRect());
  EXPECT_EQ(ImageRectByTrimEmpty(nullptr), ZeroRect());
}

}  // namespace
}  // namespace paintdoc
