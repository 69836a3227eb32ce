#include "geometry/exact_float_arithmetic.h"
#include "geometry/path_measure.h"

#include "geometry/bezier_math.h"

namespace paintdoc {
namespace {

// 1e-5 as the single-precision constant the fraction is compared with.
constexpr double kSmallestFraction = static_cast<double>(1e-5f);

// Adds in double and rounds the running sum back to single precision.
void AddToSingleSum(float& sum, double amount) {
  sum = static_cast<float>(static_cast<double>(sum) + amount);
}

// The tangent at a point found on a curve: the chord between the curve's
// points a little before and a little after the found length.
Point CurveTangent(const PathElement& curve, const Point& current, double targetOnCurve) {
  const Point& c1 = curve.points[0];
  const Point& c2 = curve.points[1];
  const Point& end = curve.points[2];
  BezierFindPointDetails local;
  CubicBezierLengthTarget(current, c1, c2, end, &local, targetOnCurve * 0.95);
  const Point before = local.curvePoint;
  const bool reached =
      CubicBezierLengthTarget(current, c1, c2, end, &local, targetOnCurve * 1.05) < 0;
  const Point after = reached ? local.curvePoint : end;
  return {after.x - before.x, after.y - before.y};
}

}  // namespace

double pathLineLength(const BezierPath& path) {
  float length = 0;
  Point current = NullPoint();
  Point subpathStart = NullPoint();
  for (const PathElement& element : path.elements()) {
    switch (element.type) {
      case PathElementType::MoveTo:
        current = element.points[0];
        subpathStart = element.points[0];
        break;
      case PathElementType::LineTo:
        AddToSingleSum(length, PointDistanceFromPoint(current, element.points[0]));
        current = element.points[0];
        break;
      case PathElementType::CurveTo:
        AddToSingleSum(length, CubicBezierLength(current, element.points[0], element.points[1],
                                                 element.points[2]));
        current = element.points[0];  // the first control point, by long-standing rule
        break;
      case PathElementType::ClosePath:
        AddToSingleSum(length, PointDistanceFromPoint(current, subpathStart));
        subpathStart = NullPoint();
        break;
    }
  }
  return length;
}

Point pointAtPercent(const BezierPath& path, double fraction, BezierFindPointDetails* details) {
  if (path.isEmpty()) return NullPoint();
  if (fraction <= kSmallestFraction) return path.elementAt(0).points[0];

  BezierFindPointDetails localDetails;
  BezierFindPointDetails& record = details != nullptr ? *details : localDetails;
  const double total = record.totalLength > 0 ? record.totalLength : pathLineLength(path);
  const double target = total * fraction;

  double lengthSoFar = record.lengthBeforeElement;
  Point current = NullPoint();
  Point subpathStart;
  for (size_t index = 0; index < path.elementCount(); ++index) {
    const PathElement& element = path.elementAt(index);
    double segmentLength = 0;
    switch (element.type) {
      case PathElementType::MoveTo:
        subpathStart = element.points[0];
        break;
      case PathElementType::LineTo:
        segmentLength = PointDistanceFromPoint(current, element.points[0]);
        break;
      case PathElementType::ClosePath:
        segmentLength = PointDistanceFromPoint(current, subpathStart);
        break;
      case PathElementType::CurveTo: {
        if (index != record.elementIndex) {
          record.curveStep = 0;
          record.curveLength = 0;
        }
        const double targetOnCurve = target - lengthSoFar;
        const double curveResult =
            CubicBezierLengthTarget(current, element.points[0], element.points[1],
                                    element.points[2], &record, targetOnCurve);
        if (curveResult < 0) {
          record.subpathStart = subpathStart;
          record.elementIndex = index;
          record.lengthBeforeElement = lengthSoFar;
          record.tangent = CurveTangent(element, current, targetOnCurve);
          return record.curvePoint;
        }
        segmentLength = curveResult;
        break;
      }
    }

    const double lengthAfter = lengthSoFar + segmentLength;
    if (element.type != PathElementType::CurveTo && target <= lengthAfter &&
        segmentLength > 0) {
      record.subpathStart = subpathStart;
      record.elementIndex = index;
      record.lengthBeforeElement = lengthSoFar;
      return InterpolatePointFromElement(element.type, element.points, current, subpathStart,
                                         (target - lengthSoFar) / segmentLength,
                                         &record.tangent);
    }
    // A close ends where its subpath started.
    current = element.type == PathElementType::ClosePath ? subpathStart : element.endPoint();
    lengthSoFar = lengthAfter;
  }
  return NullPoint();
}

}  // namespace paintdoc
