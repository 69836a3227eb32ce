// Comparing rendered bitmaps with expected ones built from formulas.
//
// Positions are in drawing coordinates: x from the left, y from the BOTTOM
// (pixel (x, y) covers [x, x+1] × [y, y+1] of a context locked on the bitmap).
// On a mismatch the actual and expected images are written as PNG into the
// test-output folder, side by side under the comparison's name.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/values/bitmap.h"

namespace paintdoc::test {

// A premultiplied pixel from straight components in [0, 1].
Rgba8 Premultiplied(double red, double green, double blue, double alpha);
// Rounds a [0, 1] value to a byte.
uint8_t ToByte(double value);

// The pixel at (x, y) counted from the lower left.
Rgba8 PixelAt(const Bitmap& bitmap, int x, int y);

// A bitmap whose pixel (x, y) (lower-left origin) is expected(x, y).
std::shared_ptr<Bitmap> MakeImage(int width, int height,
                                  const std::function<Rgba8(int x, int y)>& expected);

// Succeeds when both have the same size and every channel of every pixel is
// within `tolerance`. Otherwise fails with the worst pixel and the number of
// differing pixels, and writes <name>.actual.png and <name>.expected.png.
// `ignore(x, y)`, when given, excludes pixels (e.g. antialiased edges whose
// exact coverage no formula pins down).
::testing::AssertionResult ImagesMatch(const Bitmap& actual, const Bitmap& expected,
                                       int tolerance, const std::string& name,
                                       const std::function<bool(int x, int y)>& ignore = {});

}  // namespace paintdoc::test

// operator<< for readable failures of Rgba8 comparisons.
namespace paintdoc {
std::ostream& operator<<(std::ostream& out, const Rgba8& pixel);
}
