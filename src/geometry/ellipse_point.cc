#include "geometry/exact_float_arithmetic.h"
#include "geometry/ellipse_point.h"

#include <cmath>

namespace paintdoc {
namespace {

// Within this many degrees an angle counts as one of the four axis directions.
constexpr double kAxisTolerance = 0.01;
// Beyond this many turns the angle is reduced with fmod instead of stepping.
constexpr float kSteppedRange = 360.0f * 1000.0f;

// Brings the angle into [0, 360) by whole turns, stepping in single precision
// as the original arithmetic does; far-out angles are reduced directly so the
// loop stays short.
float NormalizedDegrees(float t) {
  if (std::fabs(t) > kSteppedRange) t = std::fmod(t, 360.0f);
  while (t < 0) t += 360.0f;
  while (t >= 360.0f) t -= 360.0f;
  return t;
}

// Pulls t toward the nearer end of the major axis inside the sectors around
// it; r = minor / major radius.
float CorrectForFlattening(float t, float a, float b, float r) {
  float goal = -1;
  if (a <= b) {
    if (t > 45 && t < 135) goal = 90;
    else if (t > 225 && t < 315) goal = 270;
  } else {
    if (t > 135 && t < 225) goal = 180;
    else if (t > 315) goal = 360;
    else if (t < 45) return t - (1.0f - r) * t;
  }
  if (goal < 0) return t;
  return t + (goal - t) * (1.0f - r);
}

bool Near(float t, double direction) { return std::fabs(t - direction) < kAxisTolerance; }

}  // namespace

Point GetPointInEllipse(float degrees, const Rect& rect) {
  const double x = rect.origin.x;
  const double y = rect.origin.y;
  const double w = rect.size.width;
  const double h = rect.size.height;
  const double a = w / 2;
  const double b = h / 2;
  const Point center{x + w / 2, y + h / 2};
  if (a < 1 || b < 1 || !std::isfinite(degrees)) return center;
  const float af = static_cast<float>(a);
  const float bf = static_cast<float>(b);

  float t = NormalizedDegrees(degrees);
  float r = af / bf;
  if (r > 1) r = 1.0f / r;
  if (r <= 0.99 && static_cast<int>(t) % 90 != 0) t = CorrectForFlattening(t, af, bf, r);

  if (Near(t, 0)) return {x + w, y + h / 2};
  if (Near(t, 90)) return {x + w / 2, y + h};
  if (Near(t, 180)) return {x, y + h / 2};
  if (Near(t, 270)) return {x + w / 2, y};

  const float radians = t / 180.0f * 3.1415926f;
  const float q = static_cast<float>(std::tan(static_cast<double>(radians)));
  float p = std::sqrt(1.0f / (q * q / (bf * bf) + 1.0f / (af * af)));
  if (t > 90 && t < 270) p = -p;
  return {x + a + p, y + b + static_cast<double>(q * p)};
}

}  // namespace paintdoc
