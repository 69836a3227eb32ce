#include "geometry/exact_float_arithmetic.h"
#include "geometry/rotation.h"

#include "platform/values/affine_transform.h"

namespace paintdoc {
namespace {

// Moves `center` to the origin, rotates by minus `degrees`, moves back.
AffineTransform UndoRotationAbout(const Point& center, float degrees) {
  AffineTransform rotateBack;
  rotateBack.translate(center.x, center.y);
  rotateBack.rotateByDegrees(-static_cast<double>(degrees));
  AffineTransform transform = AffineTransform::translation(-center.x, -center.y);
  transform.append(rotateBack);
  return transform;
}

}  // namespace

void GetPointBeforeRotate(Point& first, Point& second, float degrees) {
  if (degrees == 0) return;
  const float midX = (static_cast<float>(first.x) + static_cast<float>(second.x)) / 2.0f;
  const float midY = (static_cast<float>(first.y) + static_cast<float>(second.y)) / 2.0f;
  const AffineTransform transform = UndoRotationAbout({midX, midY}, degrees);
  first = transform.transformPoint(first);
  second = transform.transformPoint(second);
}

Point PointBeforeRotateAt(const Point& point, const Point& center, float degrees) {
  if (degrees == 0) return point;
  return UndoRotationAbout(center, degrees).transformPoint(point);
}

}  // namespace paintdoc
