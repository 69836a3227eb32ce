#include "geometry/value_comparison.h"

#include <cmath>
#include <vector>

namespace paintdoc {

namespace {

constexpr double kColorComponentTolerance = 0.003;
constexpr double kAlphaTolerance = 0.01;
constexpr double kBlurTolerance = 0.1;
constexpr double kStopLocationTolerance = 0.001;

bool LessApart(double a, double b, double tolerance) { return std::fabs(a - b) < tolerance; }
bool AtMostApart(double a, double b, double tolerance) { return std::fabs(a - b) <= tolerance; }

}  // namespace

bool wt_isEqualWithColor(const Color& color, const std::optional<Color>& other) {
  if (!other) return false;
  if (color == *other) return true;
  const RGBA a = color.toCalibratedRGB();
  const RGBA b = other->toCalibratedRGB();
  return LessApart(a.red, b.red, kColorComponentTolerance) &&
         LessApart(a.green, b.green, kColorComponentTolerance) &&
         LessApart(a.blue, b.blue, kColorComponentTolerance) &&
         LessApart(a.alpha, b.alpha, kAlphaTolerance);
}

bool wt_isEqualWithShadow(const Shadow& shadow, const std::optional<Shadow>& other) {
  if (!other) return false;
  if (shadow == *other) return true;
  return shadow.shadowOffset() == other->shadowOffset() &&
         AtMostApart(shadow.shadowBlurRadius(), other->shadowBlurRadius(), kBlurTolerance) &&
         wt_isEqualWithColor(shadow.shadowColor(), other->shadowColor());
}

bool wt_isEqualWithGradient(const Gradient& gradient, const std::optional<Gradient>& other) {
  if (!other) return false;
  if (gradient == *other) return true;
  if (gradient.numberOfColorStops() != other->numberOfColorStops()) return false;
  for (size_t i = 0; i < gradient.numberOfColorStops(); ++i) {
    const GradientStop& a = gradient.stopAt(i);
    const GradientStop& b = other->stopAt(i);
    if (!AtMostApart(a.location, b.location, kStopLocationTolerance)) return false;
    if (!wt_isEqualWithColor(a.color, b.color)) return false;
  }
  return true;
}

float averageOpacity(const Gradient& gradient) {
  if (gradient.numberOfColorStops() == 0) return 0;
  float sum = 0;
  for (const GradientStop& stop : gradient.stops()) {
    sum += static_cast<float>(stop.color.alphaComponent());
  }
  return sum / static_cast<float>(gradient.numberOfColorStops());
}

std::optional<Gradient> gradientWithOpacity(const Gradient& gradient, float opacity) {
  if (gradient.numberOfColorStops() == 0) return std::nullopt;
  std::vector<Color> colors;
  std::vector<double> locations;
  for (const GradientStop& stop : gradient.stops()) {
    colors.push_back(stop.color.withAlphaComponent(opacity));
    locations.push_back(stop.location);
  }
  return Gradient::withColors(colors, locations, ColorSpaceKind::SRGB);
}

}  // namespace paintdoc
