#include "shapes/bubble_pointer.h"

#include <algorithm>
#include <cmath>

#include "shapes/draw_rect_shape.h"

namespace paintdoc {

namespace {

double UsableOffset(double offset) {
  if (std::isnan(offset)) return 0;
  return std::clamp(offset, -kMaxShapeExtent, kMaxShapeExtent);
}

}  // namespace

Point PointerPointInBox(const Point& offset, const Rect& box) {
  return {box.origin.x + UsableOffset(offset.x), box.origin.y + UsableOffset(offset.y)};
}

Rect BoundsOfTransformedPath(const BezierPath& path, const AffineTransform& transform) {
  if (path.isEmpty()) return ZeroRect();
  return path.transformed(transform).bounds();
}

}  // namespace paintdoc
