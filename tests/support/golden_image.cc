#include "support/golden_image.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <sstream>

#include "platform/values/file_bytes.h"
#include "platform/codecs/image_codecs.h"
#include "support/test_paths.h"

namespace paintdoc {
std::ostream& operator<<(std::ostream& out, const Rgba8& pixel) {
  return out << "(" << int{pixel.red} << ", " << int{pixel.green} << ", " << int{pixel.blue}
             << ", " << int{pixel.alpha} << ")";
}
}  // namespace paintdoc

namespace paintdoc::test {

uint8_t ToByte(double value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0));
}

Rgba8 Premultiplied(double red, double green, double blue, double alpha) {
  return {ToByte(red * alpha), ToByte(green * alpha), ToByte(blue * alpha), ToByte(alpha)};
}

Rgba8 PixelAt(const Bitmap& bitmap, int x, int y) {
  return bitmap.pixelAt(x, bitmap.pixelsHigh() - 1 - y);
}

std::shared_ptr<Bitmap> MakeImage(int width, int height,
                                  const std::function<Rgba8(int x, int y)>& expected) {
  auto bitmap = Bitmap::create(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) bitmap->setPixelAt(x, height - 1 - y, expected(x, y));
  }
  return bitmap;
}

namespace {

void WriteForInspection(const Bitmap& bitmap, const std::string& path) {
  if (auto png = WritePNG(bitmap)) WriteFileBytes(path, *png);
}

int ChannelDifference(Rgba8 a, Rgba8 b) {
  return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green),
                   std::abs(a.blue - b.blue), std::abs(a.alpha - b.alpha)});
}

}  // namespace

::testing::AssertionResult ImagesMatch(const Bitmap& actual, const Bitmap& expected,
                                       int tolerance, const std::string& name,
                                       const std::function<bool(int x, int y)>& ignore) {
  if (actual.pixelsWide() != expected.pixelsWide() ||
      actual.pixelsHigh() != expected.pixelsHigh()) {
    return ::testing::AssertionFailure()
           << name << ": size " << actual.pixelsWide() << "x" << actual.pixelsHigh()
           << ", expected " << expected.pixelsWide() << "x" << expected.pixelsHigh();
  }
  int worst = 0, worstX = 0, worstY = 0;
  long differing = 0;
  for (int y = 0; y < actual.pixelsHigh(); ++y) {
    for (int x = 0; x < actual.pixelsWide(); ++x) {
      if (ignore && ignore(x, y)) continue;
      int difference = ChannelDifference(PixelAt(actual, x, y), PixelAt(expected, x, y));
      if (difference > tolerance) ++differing;
      if (difference > worst) {
        worst = difference;
        worstX = x;
        worstY = y;
      }
    }
  }
  if (differing == 0) return ::testing::AssertionSuccess();
  std::string base = OutputPath("golden/" + name);
  WriteForInspection(actual, base + ".actual.png");
  WriteForInspection(expected, base + ".expected.png");
  return ::testing::AssertionFailure()
         << name << ": " << differing << " pixels differ by more than " << tolerance
         << "; worst at (" << worstX << ", " << worstY << ") from the lower left: actual "
         << PixelAt(actual, worstX, worstY) << ", expected " << PixelAt(expected, worstX, worstY)
         << ". Images written to " << base << ".{actual,expected}.png";
}

}  // namespace paintdoc::test
