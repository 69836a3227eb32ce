#include "geometry/bezier_math.h"

#include <cmath>
#include <limits>

namespace paintdoc {
namespace {

// The sampling parameter of step i, computed in single precision.
float SampleParameter(uint64_t step) {
  return static_cast<float>(step) / static_cast<float>(kCubicBezierSampleSteps);
}

Point SamplePoint(uint64_t step, const Point& start, const Point& control1,
                  const Point& control2, const Point& end) {
  return CubicBezierPoint(SampleParameter(step), start, control1, control2, end);
}

// A curve's coordinate at s with every operation in single precision, left to
// right, as the tangent estimate of InterpolatePointFromElement needs it.
float CubicBezierSingle(float s, float a, float b, float c, float d) {
  const float u = 1.0f - s;
  const float w0 = u * u * u;
  const float w1 = 3.0f * u * u * s;
  const float w2 = 3.0f * u * s * s;
  const float w3 = s * s * s;
  return w0 * a + w1 * b + w2 * c + w3 * d;
}

}  // namespace

Point NullPoint() {
  constexpr double inf = std::numeric_limits<double>::infinity();
  return {inf, inf};
}

bool IsNullPoint(const Point& p) {
  return std::isinf(p.x) && p.x > 0 && std::isinf(p.y) && p.y > 0;
}

double PointDistanceFromPoint(const Point& a, const Point& b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  return std::sqrt(dx * dx + dy * dy);
}

float CubicBezier(float t, float a, float b, float c, float d) {
  const double s = t;
  const double u = 1.0 - s;
  const double value = u * u * u * a + 3.0 * u * u * s * b + 3.0 * u * s * s * c + s * s * s * d;
  return static_cast<float>(value);
}

Point CubicBezierPoint(double t, const Point& start, const Point& control1,
                       const Point& control2, const Point& end) {
  const float s = static_cast<float>(t);
  const float x = CubicBezier(s, static_cast<float>(start.x), static_cast<float>(control1.x),
                              static_cast<float>(control2.x), static_cast<float>(end.x));
  const float y = CubicBezier(s, static_cast<float>(start.y), static_cast<float>(control1.y),
                              static_cast<float>(control2.y), static_cast<float>(end.y));
  return {x, y};
}

double CubicBezierLength(const Point& start, const Point& control1, const Point& control2,
                         const Point& end) {
  double length = 0;
  Point previous = SamplePoint(0, start, control1, control2, end);
  for (uint64_t step = 1; step <= kCubicBezierSampleSteps; ++step) {
    const Point sample = SamplePoint(step, start, control1, control2, end);
    length += PointDistanceFromPoint(previous, sample);
    previous = sample;
  }
  return length;
}

double CubicBezierLengthTarget(const Point& start, const Point& control1,
                               const Point& control2, const Point& end,
                               BezierFindPointDetails* details, double target) {
  // Resume from the record when the target lies at or beyond what it measured.
  uint64_t firstStep = 0;
  double length = 0;
  if (details != nullptr && target >= details->curveLength) {
    firstStep = details->curveStep;
    length = details->curveLength;
    if (firstStep > kCubicBezierSampleSteps) return length;
  }

  Point previous;
  for (uint64_t step = firstStep; step <= kCubicBezierSampleSteps; ++step) {
    const Point sample = SamplePoint(step, start, control1, control2, end);
    if (step > firstStep) length += PointDistanceFromPoint(previous, sample);
    previous = sample;
    if (target <= length) {
      // Only a search that got further than the record moves it forward.
      if (details != nullptr && details->curveStep < step) {
        details->curveStep = step;
        details->curveLength = length;
        details->curvePoint = sample;
      }
      return -1.0;
    }
  }
  return length;
}

Point InterpolateLineSegment(const Point& a, const Point& b, double t, Point* delta) {
  const Point d{b.x - a.x, b.y - a.y};
  if (delta != nullptr) *delta = d;
  return {a.x + d.x * t, a.y + d.y * t};
}

Point InterpolatePointFromElement(PathElementType type, const std::array<Point, 3>& points,
                                  const Point& current, const Point& subpathStart, double t,
                                  Point* tangent) {
  switch (type) {
    case PathElementType::MoveTo:
      if (tangent != nullptr) *tangent = NullPoint();
      return current;
    case PathElementType::LineTo:
      return InterpolateLineSegment(current, points[0], t, tangent);
    case PathElementType::CurveTo: {
      const Point point = CubicBezierPoint(t, current, points[0], points[1], points[2]);
      if (tangent != nullptr) {
        const float s = static_cast<float>(t * 0.9);
        const float x = CubicBezierSingle(s, float(current.x), float(points[0].x),
                                          float(points[1].x), float(points[2].x));
        const float y = CubicBezierSingle(s, float(current.y), float(points[0].y),
                                          float(points[1].y), float(points[2].y));
        *tangent = {point.x - x, point.y - y};
      }
      return point;
    }
    case PathElementType::ClosePath:
      return InterpolateLineSegment(current, subpathStart, t, tangent);
  }
  return NullPoint();
}

}  // namespace paintdoc
