// Area-averaging resampling and the fitting of thumbnails into a square.
#include <gtest/gtest.h>

#include "platform/values/bitmap.h"
#include "preview/bitmap_scaling.h"

namespace paintdoc {
namespace {

TEST(FitIntoSquare, KeepsTheAspectRatioAndNeverEnlarges) {
  EXPECT_EQ(FitIntoSquare(640, 480, 256), (PixelSize{256, 192}));
  EXPECT_EQ(FitIntoSquare(480, 640, 256), (PixelSize{192, 256}));
  EXPECT_EQ(FitIntoSquare(2000, 1500, 128), (PixelSize{128, 96}));
  EXPECT_EQ(FitIntoSquare(100, 50, 256), (PixelSize{100, 50}));
  EXPECT_EQ(FitIntoSquare(256, 256, 256), (PixelSize{256, 256}));
  // A very thin content keeps at least one pixel.
  EXPECT_EQ(FitIntoSquare(10000, 3, 100), (PixelSize{100, 1}));
}

std::shared_ptr<Bitmap> Filled(int wide, int high, Rgba8 (*pixel)(int x, int y)) {
  auto bitmap = Bitmap::create(wide, high);
  for (int y = 0; y < high; ++y)
    for (int x = 0; x < wide; ++x) bitmap->setPixelAt(x, y, pixel(x, y));
  return bitmap;
}

TEST(ScaleBitmapByArea, HalvingAveragesEachBlockOfFour) {
  // A checkerboard of black and white averages to mid grey: no aliasing.
  auto checker = Filled(8, 8, [](int x, int y) {
    const uint8_t v = (x + y) % 2 ? 255 : 0;
    return Rgba8{v, v, v, 255};
  });
  auto half = ScaleBitmapByArea(*checker, 4, 4);
  ASSERT_NE(half, nullptr);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x) EXPECT_EQ(half->pixelAt(x, y), (Rgba8{128, 128, 128, 255}));
}

TEST(ScaleBitmapByArea, FractionalFootprintsWeighByCoveredArea) {
  // Three columns 0, 90, 180 into two: each output covers 1.5 input columns.
  auto row = Filled(3, 1, [](int x, int) {
    const uint8_t v = static_cast<uint8_t>(90 * x);
    return Rgba8{v, v, v, 255};
  });
  auto two = ScaleBitmapByArea(*row, 2, 1);
  // (0 + 0.5 * 90) / 1.5 = 30 and (0.5 * 90 + 180) / 1.5 = 150.
  EXPECT_EQ(two->pixelAt(0, 0), (Rgba8{30, 30, 30, 255}));
  EXPECT_EQ(two->pixelAt(1, 0), (Rgba8{150, 150, 150, 255}));
}

TEST(ScaleBitmapByArea, TransparentPixelsDoNotDarkenTheirNeighbours) {
  auto half = Filled(2, 1, [](int x, int) { return x == 0 ? Rgba8{255, 0, 0, 255} : Rgba8{}; });
  auto one = ScaleBitmapByArea(*half, 1, 1);
  // Premultiplied averaging: half-covered pure red, not a dark red.
  const Rgba8 pixel = one->pixelAt(0, 0);
  EXPECT_EQ(pixel.alpha, 128);
  EXPECT_EQ(UnpremultiplySample(pixel.red, pixel.alpha), 255);
  EXPECT_EQ(pixel.green, 0);
}

TEST(ScaleBitmapByArea, RefusesSizesBelowOne) {
  auto bitmap = Bitmap::create(4, 4);
  EXPECT_EQ(ScaleBitmapByArea(*bitmap, 0, 4), nullptr);
  EXPECT_EQ(ScaleBitmapByArea(*Bitmap::create(0, 0), 1, 1), nullptr);
}

}  // namespace
}  // namespace paintdoc
