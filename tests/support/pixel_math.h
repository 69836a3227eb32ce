// Premultiplied colour arithmetic for computing expected images from the
// compositing formulas (in doubles, rounded once at the end).
#pragma once

#include <cmath>

#include "platform/values/bitmap.h"
#include "support/golden_image.h"

namespace paintdoc::test {

struct PixelValue {
  double red = 0, green = 0, blue = 0, alpha = 0;  // premultiplied, 0…1

  static PixelValue straight(double r, double g, double b, double a) {
    return {r * a, g * a, b * a, a};
  }
  PixelValue operator*(double k) const { return {red * k, green * k, blue * k, alpha * k}; }
  PixelValue operator+(const PixelValue& o) const {
    return {red + o.red, green + o.green, blue + o.blue, alpha + o.alpha};
  }
  Rgba8 toRgba8() const { return {ToByte(red), ToByte(green), ToByte(blue), ToByte(alpha)}; }
};

inline PixelValue SourceOver(const PixelValue& s, const PixelValue& d) { return s + d * (1 - s.alpha); }
// Mixes by coverage: where a shape covers a fraction `coverage` of a pixel.
inline PixelValue Mix(const PixelValue& from, const PixelValue& to, double coverage) {
  return from * (1 - coverage) + to * coverage;
}

// The standard normal distribution function.
inline double NormalCdf(double z) { return 0.5 * std::erfc(-z / std::sqrt(2.0)); }
// A 1-D box [from, to) blurred with a Gaussian of sigma, at the pixel centre x + 0.5.
inline double BlurredBox(int x, double from, double to, double sigma) {
  double centre = x + 0.5;
  if (sigma <= 0) return centre >= from && centre < to ? 1.0 : 0.0;
  return NormalCdf((centre - from) / sigma) - NormalCdf((centre - to) / sigma);
}

}  // namespace paintdoc::test
