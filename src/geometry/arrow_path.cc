#include "geometry/exact_float_arithmetic.h"
#include "geometry/arrow_path.h"

#include <cmath>

#include "platform/values/affine_transform.h"

namespace paintdoc {
namespace {

// tan 30°, in single precision.
constexpr float kTan30 = 0.57735026f;

// The lengths of a head for one line width, all in single precision.
struct ArrowMetrics {
  float headLength;    // from tip to base
  float halfBase;      // half the width of the base
  float overshoot;     // how far the tip lies beyond the line's end
  float minimumReach;  // a line must be longer than head length minus this
};

ArrowMetrics MetricsForWidth(float w) {
  return {2.0f * w / kTan30, 2.0f * w, w * 0.5f / kTan30, w / kTan30};
}

BezierPath Triangle(const Point& tip, const Point& baseLeft, const Point& baseRight) {
  BezierPath path;
  path.moveTo(tip);
  path.lineTo(baseLeft);
  path.lineTo(baseRight);
  path.lineTo(tip);
  return path;
}

std::optional<BezierPath> VerticalArrow(const Point& start, const Point& end,
                                        const ArrowMetrics& m) {
  if (m.headLength > m.minimumReach + std::fabs(start.y - end.y)) return std::nullopt;
  const bool pointsUp = start.y <= end.y;
  const double tipY = pointsUp ? end.y + m.overshoot : end.y - m.overshoot;
  const double baseY = pointsUp ? tipY - m.headLength : tipY + m.headLength;
  return Triangle({end.x, tipY}, {end.x - m.halfBase, baseY}, {end.x + m.halfBase, baseY});
}

// Any other line is laid onto the x axis (start at the origin), given its head
// there, and mapped back. The angle comes from an arctangent of the slope, so
// lines pointing left land on the negative x axis.
std::optional<BezierPath> SlopingArrow(const Point& start, const Point& end,
                                       const ArrowMetrics& m) {
  const float slope = static_cast<float>((end.y - start.y) / (end.x - start.x));
  const float angle = static_cast<float>(std::atan(static_cast<double>(slope)));
  AffineTransform toAxis = AffineTransform::translation(-start.x, -start.y);
  AffineTransform rotation;
  rotation.rotateByRadians(-static_cast<double>(angle));
  toAxis.append(rotation);

  const Point endOnAxis = toAxis.transformPoint(end);
  if (m.headLength > m.minimumReach + std::fabs(0 - endOnAxis.x)) return std::nullopt;
  const bool pointsRight = endOnAxis.x > 0;
  const double tipX = pointsRight ? endOnAxis.x + m.overshoot : endOnAxis.x - m.overshoot;
  const double baseX = pointsRight ? tipX - m.headLength : tipX + m.headLength;
  BezierPath head = Triangle({tipX, endOnAxis.y}, {baseX, m.halfBase}, {baseX, -m.halfBase});
  head.transform(toAxis.inverted());
  head.setLineWidth(1.0);
  return head;
}

}  // namespace

std::optional<BezierPath> GetArrowPath(const Point& start, const Point& end, float lineWidth) {
  const ArrowMetrics metrics = MetricsForWidth(lineWidth);
  if (std::fabs(start.x - end.x) < 0.5) return VerticalArrow(start, end, metrics);
  return SlopingArrow(start, end, metrics);
}

}  // namespace paintdoc
