// Large images read for a thumbnail: JPEG photos decoded at the smallest DCT
// scale that still covers the thumbnail, PNG rows averaged by a whole factor
// as they decode; either bitmap stands for the whole image in points.
#include <gtest/gtest.h>

#include "platform/codecs/image_codecs.h"
#include "platform/codecs/row_shrinker.h"
#include "support/image_test_files.h"

namespace paintdoc {
namespace {

TEST(JpegShrinkOnLoad, DecodesTheFewestPixelsThatCoverTheThumbnail) {
  const struct Case {
    int shrinkToFit, dotsPerInch, turned;
    int wide, high;        // pixels decoded
    double pointsWide, pointsHigh;
  } cases[] = {
      {0, 0, 0, 640, 480, 640, 480},      // the whole image
      {1000, 0, 0, 640, 480, 640, 480},   // a box larger than the image
      {320, 0, 0, 320, 240, 640, 480},    // exactly half
      {321, 0, 0, 640, 480, 640, 480},    // one pixel more than half: whole
      {80, 0, 0, 80, 60, 640, 480},       // an eighth, the smallest scale
      {16, 0, 0, 80, 60, 640, 480},       // never below an eighth
      {160, 144, 0, 160, 120, 320, 240},  // a resolution halves the points
      {160, 0, 6, 120, 160, 480, 640},    // turned upright by its Exif orientation
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shrinkToFit);
    const auto jpeg = test::EncodeJpeg(
        640, 480, [](int x, int y) { return Rgba8{uint8_t(x), uint8_t(y), 90, 255}; }, c.turned,
        c.dotsPerInch);
    ImageReadOptions options;
    options.shrinkToFit = c.shrinkToFit;
    const ImageResult image = ReadJPEG(jpeg, options);
    ASSERT_TRUE(image) << image.reason();
    EXPECT_EQ(image->bitmap->pixelsWide(), c.wide);
    EXPECT_EQ(image->bitmap->pixelsHigh(), c.high);
    EXPECT_EQ(image->bitmap->size(), (Size{c.pointsWide, c.pointsHigh}));
  }
}

TEST(RowShrinker, FactorIsTheLargestThatStillCoversTheFittedImage) {
  const struct { uint64_t wide, high; int box, most, factor; } cases[] = {
      {4000, 3000, 256, 256, 15},  // 267 x 200 covers 256 x 192; 16 gives 250
      {4000, 3000, 0, 256, 1},     // no thumbnail asked for
      {200, 100, 256, 256, 1},     // smaller than the box
      {4000, 3000, 256, 8, 8},     // capped
      {3000, 4000, 256, 256, 15},  // the long side may be either
      {1000, 1, 100, 256, 10},     // a one-row image keeps its row
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.wide << " x " << c.high << " in " << c.box);
    EXPECT_EQ(ShrinkFactorToCover(c.wide, c.high, c.box, c.most), c.factor);
  }
}

// Blocks are averaged on premultiplied values: a transparent pixel adds no
// colour; the last block of a row and of a column may be narrower.
TEST(RowShrinker, AveragesEachBlockIncludingThePartialOnesAtTheEdges) {
  // 3 x 3 source, factor 2: blocks of 4, 2, 2 and 1 pixels.
  const uint8_t rows[3][12] = {{200, 0, 0, 255, 100, 0, 0, 255, 0, 0, 90, 255},
                               {0, 0, 0, 0, 100, 0, 0, 255, 0, 0, 30, 255},
                               {0, 60, 0, 255, 0, 20, 0, 255, 0, 0, 0, 0}};
  auto target = Bitmap::create(2, 2);
  RowShrinker shrinker(target, 3, 3, 2);
  for (const auto& row : rows) shrinker.addRow(row);
  const struct { int x, y; Rgba8 premultiplied; } expected[] = {
      {0, 0, {100, 0, 0, 191}},  // (200 + 100 + 100 + 0) / 4, alpha 3 × 255 / 4
      {1, 0, {0, 0, 60, 255}},   // (90 + 30) / 2
      {0, 1, {0, 40, 0, 255}},   // (60 + 20) / 2
      {1, 1, {0, 0, 0, 0}},
  };
  for (const auto& e : expected) {
    uint8_t pixel[8];
    target->readRGBARow(e.y, pixel, AlphaMode::Premultiplied);
    const uint8_t* p = pixel + e.x * 4;
    EXPECT_EQ((Rgba8{p[0], p[1], p[2], p[3]}), e.premultiplied) << e.x << ", " << e.y;
  }
}

TEST(PngShrinkOnLoad, ThumbnailRowsAreShrunkWhileDecoding) {
  auto full = Bitmap::create(600, 400);
  for (int y = 0; y < 400; ++y)
    for (int x = 0; x < 600; ++x) full->setPixelAt(x, y, Rgba8{uint8_t(x), uint8_t(y), 40, 255});
  const auto png = *WritePNG(*full);
  ImageReadOptions options;
  options.shrinkToFit = 100;
  const ImageResult image = ReadPNG(png, options);
  ASSERT_TRUE(image) << image.reason();
  EXPECT_EQ(image->bitmap->pixelsWide(), 100);  // factor 6
  EXPECT_EQ(image->bitmap->pixelsHigh(), 67);
  EXPECT_EQ(image->bitmap->size(), (Size{600, 400}));
  // Block (2, 3) averages x 12…17 and y 18…23: 14.5 and 20.5 rounded up.
  EXPECT_EQ(image->bitmap->pixelAt(2, 3), (Rgba8{15, 21, 40, 255}));
}

}  // namespace
}  // namespace paintdoc
