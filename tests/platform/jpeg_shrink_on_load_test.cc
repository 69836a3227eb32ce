// JPEG photos read for a thumbnail: decoded at the smallest DCT scale that
// still covers the thumbnail, standing for the whole image in points.
#include <gtest/gtest.h>

#include "platform/codecs/image_codecs.h"
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

}  // namespace
}  // namespace paintdoc
