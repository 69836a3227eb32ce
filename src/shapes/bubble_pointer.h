// What the two speech bubbles share: a pointer kept as offsets from the box's
// lower-left corner (so moving the shape carries the pointer along), mirrored
// with the box, and control bounds that take the pointer in.
#pragma once

#include "platform/values/affine_transform.h"
#include "platform/values/bezier_path.h"
#include "platform/values/geometry.h"

namespace paintdoc {

// The absolute point of a pointer offset in a box: the box origin plus the
// offset. An offset that is not a number counts as 0 and one beyond
// kMaxShapeExtent is cut to it, so that a hostile archive cannot stretch the
// outline without bound.
Point PointerPointInBox(const Point& offset, const Rect& box);

// The offset x mirrored across a box of width `width`.
inline double MirroredOffsetX(double x, double width) { return width - x; }

// The bounds of `path` (pointer included) mapped by `transform`; the zero
// rectangle for an empty path.
Rect BoundsOfTransformedPath(const BezierPath& path, const AffineTransform& transform);

// An offset scaled with its box: by sx across and by sy up.
inline Point ScaledOffset(const Point& offset, float sx, float sy) {
  return {offset.x * sx, offset.y * sy};
}

}  // namespace paintdoc
