#include "geometry/exact_float_arithmetic.h"
#include "geometry/bezier_math.h"

#include <cmath>
#include <limits>
#include <vector>

namespace paintdoc {
namespace {

// The four Bernstein weights of a cubic at one parameter, in double precision:
// a point's coordinate is w0 a + w1 b + w2 c + w3 d, summed in that order.
struct CubicWeights {
  double w0, w1, w2, w3;

  explicit CubicWeights(float t) {
    const double s = t;
    const double u = 1.0 - s;
    w0 = u * u * u;
    w1 = 3.0 * u * u * s;
    w2 = 3.0 * u * s * s;
    w3 = s * s * s;
  }
  float apply(float a, float b, float c, float d) const {
    return static_cast<float>(w0 * a + w1 * b + w2 * c + w3 * d);
  }
};

// The sampling parameter of step i, computed in single precision.
float SampleParameter(uint64_t step) {
  return static_cast<float>(step) / static_cast<float>(kCubicBezierSampleSteps);
}

// The weights of every sampling step, shared by all curves: measuring a curve
// then costs a few multiplications a sample.
const std::vector<CubicWeights>& SampleWeights() {
  static const std::vector<CubicWeights> table = [] {
    std::vector<CubicWeights> weights;
    weights.reserve(kCubicBezierSampleSteps + 1);
    for (uint64_t step = 0; step <= kCubicBezierSampleSteps; ++step) {
      weights.emplace_back(SampleParameter(step));
    }
    return weights;
  }();
  return table;
}

// A curve's control coordinates rounded to single precision once, for sampling.
struct SingleCurve {
  float x0, x1, x2, x3, y0, y1, y2, y3;

  const CubicWeights* weights;

  SingleCurve(const Point& start, const Point& control1, const Point& control2,
              const Point& end)
      : x0(float(start.x)), x1(float(control1.x)), x2(float(control2.x)), x3(float(end.x)),
        y0(float(start.y)), y1(float(control1.y)), y2(float(control2.y)), y3(float(end.y)),
        weights(SampleWeights().data()) {}

  // The same value as CubicBezierPoint(SampleParameter(step), ...).
  Point sample(uint64_t step) const {
    const CubicWeights& w = weights[step];
    return {w.apply(x0, x1, x2, x3), w.apply(y0, y1, y2, y3)};
  }
};

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
  return CubicWeights(t).apply(a, b, c, d);
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
  const SingleCurve curve(start, control1, control2, end);
  double length = 0;
  Point previous = curve.sample(0);
  for (uint64_t step = 1; step <= kCubicBezierSampleSteps; ++step) {
    const Point sample = curve.sample(step);
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

  // The first sample only sets where the walk continues from.
  const SingleCurve curve(start, control1, control2, end);
  uint64_t step = firstStep;
  Point sample = curve.sample(step);
  // Written so that a target that is not a number is never reached.
  while (!(target <= length)) {
    if (++step > kCubicBezierSampleSteps) return length;  // the target lies beyond
    const Point previous = sample;
    sample = curve.sample(step);
    length += PointDistanceFromPoint(previous, sample);
  }
  // Only a search that got further than the record moves it forward.
  if (details != nullptr && details->curveStep < step) {
    details->curveStep = step;
    details->curveLength = length;
    details->curvePoint = sample;
  }
  return -1.0;
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
