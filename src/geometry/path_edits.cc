#include "geometry/exact_float_arithmetic.h"
#include "geometry/path_edits.h"

#include <cmath>

namespace paintdoc {

void removeLastElements(BezierPath& path, size_t count) {
  if (count == 0 || path.isEmpty() || count > path.elementCount()) return;
  path.removeLastElements(count);
}

float ArcAngleOfPoint(const Point& center, double radius, const Point& point) {
  const float dx = static_cast<float>(point.x - center.x);
  if (dx <= 0.5 - radius) return 180.0f;
  if (std::fabs(dx) < 0.5f) return point.y > center.y ? 90.0f : 270.0f;
  if (dx >= radius) return 0.0f;
  const float radians = static_cast<float>(
      std::acos(static_cast<double>(static_cast<float>(dx / radius))));
  const float degrees = radians * 180.0f / 3.1415926f;
  return point.y <= center.y ? 360.0f - degrees : degrees;
}

void appendBezierPathWithArcWithCenter(BezierPath& path, const Point& center, double radius,
                                       const Point& from, const Point& to) {
  if (!(radius > 0)) return;
  path.appendArc(center, radius, ArcAngleOfPoint(center, radius, from),
                 ArcAngleOfPoint(center, radius, to));
}

}  // namespace paintdoc
