// Point arithmetic on lines and cubic Bezier curves.
//
// Curve evaluation and curve lengths work in single precision on purpose: the
// positions of glyphs along curved text and of points on shapes follow that
// rounding, and a curve is measured as a polyline through a fixed 2001 samples.
#pragma once

#include <array>
#include <cstdint>

#include "geometry/bezier_find_point_details.h"
#include "platform/values/bezier_path.h"
#include "platform/values/geometry.h"

namespace paintdoc {

// The number of steps a curve is sampled with: samples at t = i / 2000, i = 0..2000.
inline constexpr uint64_t kCubicBezierSampleSteps = 2000;

// The platform's null point (the origin of its null rectangle): both coordinates
// +infinity. Searches answer it when they find nothing.
Point NullPoint();
bool IsNullPoint(const Point& p);

// Euclidean distance in double precision.
double PointDistanceFromPoint(const Point& a, const Point& b);

// One coordinate of a cubic Bezier: (1-t)^3 a + 3(1-t)^2 t b + 3(1-t) t^2 c + t^3 d,
// evaluated in double from the single-precision inputs and rounded to single.
float CubicBezier(float t, float a, float b, float c, float d);

// The curve's point at t. t and every coordinate are rounded to single precision
// first, and each coordinate of the result is rounded to single precision.
Point CubicBezierPoint(double t, const Point& start, const Point& control1,
                       const Point& control2, const Point& end);

// The length of the polyline through the 2001 samples; distances are summed in
// double precision.
double CubicBezierLength(const Point& start, const Point& control1, const Point& control2,
                         const Point& end);

// Walks the same samples until the running length reaches `target`. Answers -1.0
// when it does (and, when the stopping step lies beyond the record's step, stores
// that step, the running length and the sample point in `details`); otherwise
// answers the curve's length. A record whose curve length does not exceed the
// target makes the walk resume at the record's step.
double CubicBezierLengthTarget(const Point& start, const Point& control1,
                               const Point& control2, const Point& end,
                               BezierFindPointDetails* details, double target);

// a + (b - a) t; `delta`, when given, receives b - a.
Point InterpolateLineSegment(const Point& a, const Point& b, double t, Point* delta = nullptr);

// The point at fraction t of one path element that starts at `current`:
// - move: `current`, tangent (+inf, +inf);
// - line to P: along current -> P, tangent P - current;
// - curve: CubicBezierPoint at t, tangent = that point minus the curve's point
//   at 0.9 t (computed here in single-precision arithmetic);
// - close: along current -> subpathStart, tangent subpathStart - current.
// An unknown type answers the null point and leaves the tangent untouched.
Point InterpolatePointFromElement(PathElementType type, const std::array<Point, 3>& points,
                                  const Point& current, const Point& subpathStart, double t,
                                  Point* tangent = nullptr);

}  // namespace paintdoc
