#include "platform/graphics/bitmap_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/graphics/graphics_context.h"
#include "platform/values/log.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::MakeImage;
using test::PixelAt;

constexpr Rgba8 kTransparent{0, 0, 0, 0};
constexpr Rgba8 kOpaqueRed{255, 0, 0, 255};

// Pixel (x, y), counted from the lower left, is opaque with red = x, green = y.
Rgba8 PositionCode(int x, int y) { return {uint8_t(x), uint8_t(y), 0, 255}; }
Rgba8 Transparent(int, int) { return kTransparent; }

TEST(InitImageRep, TruncatesTheSizeStartsTransparentAndRefusesBadSizes) {
  auto bitmap = InitImageRep(10.9, 3.2);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->size(), MakeSize(10, 3));
  EXPECT_TRUE(test::ImagesMatch(*bitmap, *MakeImage(10, 3, Transparent),
                                0, "init_image_rep"));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (auto [width, height] : {std::pair{-1.0, 5.0}, {5.0, nan}, {1e300, 5.0}, {5.0, 40000.0}}) {
    LogCapture log;
    EXPECT_FALSE(InitImageRep(width, height)) << width << " x " << height;
    EXPECT_TRUE(log.contains("Error: ")) << width << " x " << height;
  }
}

TEST(BitmapFocus, NestedFocusDrawsIntoTheInnermostBitmapAndComesBack) {
  auto outer = InitImageRep(4, 4), inner = InitImageRep(4, 4);
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
  auto bitmap = MakeImage(6, 4, [](int, int) { return kOpaqueRed; });
  ClearImageInRect(bitmap, MakeRect(1, 0, 2, 3));
  auto expected = MakeImage(6, 4, [](int x, int y) {
    return x >= 1 && x < 3 && y < 3 ? kTransparent : kOpaqueRed;
  });
  EXPECT_TRUE(test::ImagesMatch(*bitmap, *expected, 0, "clear_image_in_rect"));
  ClearImage(bitmap);
  EXPECT_TRUE(test::ImagesMatch(*bitmap, *MakeImage(6, 4, Transparent), 0, "clear_image"));
  ClearImage(nullptr);  // missing bitmaps are ignored
  ClearImageInRect(nullptr, MakeRect(0, 0, 1, 1));
}

TEST(CropImage, MovesTheCornerToTheOriginInPixelsAndLeavesOutsidePartsTransparent) {
  auto source = MakeImage(8, 6, PositionCode);
  // Two columns hang over the right edge, one row over the top.
  auto cropped = CropImage(source, MakeRect(5, 2, 5, 5));
  ASSERT_TRUE(cropped);
  auto expected = MakeImage(5, 5, [](int x, int y) {
    return x + 5 >= 8 || y + 2 >= 6 ? kTransparent : PositionCode(x + 5, y + 2);
  });
  EXPECT_TRUE(test::ImagesMatch(*cropped, *expected, 0, "crop_image"));
  // A resolution on the source changes its point size, not what is cropped.
  source->setSizeWithDPI(144);
  cropped = CropImage(source, MakeRect(2, 1, 3, 3));
  ASSERT_TRUE(cropped);
  EXPECT_EQ(PixelAt(*cropped, 0, 0), PositionCode(2, 1));
  EXPECT_EQ(PixelAt(*cropped, 2, 2), PositionCode(4, 3));
}

TEST(CropImage, RefusesRectanglesBelowOnePixelAndMissingBitmaps) {
  auto source = MakeImage(4, 4, PositionCode);
  for (Rect rect : {MakeRect(0, 0, 0.5, 3), MakeRect(0, 0, 3, 0.99), MakeRect(0, 0, std::nan(""), 3)}) {
    EXPECT_FALSE(CropImage(source, rect)) << rect.size.width << " x " << rect.size.height;
  }
  EXPECT_FALSE(CropImage(nullptr, MakeRect(0, 0, 3, 3)));
  EXPECT_TRUE(CropImage(source, MakeRect(0, 0, 1, 1)));
}

TEST(ImageRectByTrimEmpty, BoundsTheVisiblePixelsInLowerLeftCoordinates) {
  auto bitmap = InitImageRep(10, 8);
  // Storage row 1 is y = 6; storage row 4 is y = 3. Alpha 1 is visible.
  bitmap->setPixelAt(2, 1, {0, 0, 0, 1});
  bitmap->setPixelAt(7, 4, {9, 9, 9, 255});
  EXPECT_EQ(ImageRectByTrimEmpty(bitmap), MakeRect(2, 3, 6, 4));
  auto topRow = InitImageRep(5, 4);
  topRow->setPixelAt(3, 0, {1, 1, 1, 255});
  EXPECT_EQ(ImageRectByTrimEmpty(topRow), MakeRect(3, 3, 1, 1));
  // Transparent bitmaps give zero, except the single pixel one: the search
  // starts at the last column and row, which one pixel cannot miss.
  EXPECT_EQ(ImageRectByTrimEmpty(InitImageRep(2, 2)), ZeroRect());
  EXPECT_EQ(ImageRectByTrimEmpty(InitImageRep(1, 1)), MakeRect(0, 0, 1, 1));
  EXPECT_EQ(ImageRectByTrimEmpty(InitImageRep(0, 0)), ZeroRect());
  EXPECT_EQ(ImageRectByTrimEmpty(nullptr), ZeroRect());
}

}  // namespace
}  // namespace paintdoc
