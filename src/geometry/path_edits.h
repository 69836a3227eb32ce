// Edits of a path that drawing code shares: dropping trailing elements and
// appending an arc whose ends are given as points rather than angles.
#pragma once

#include <cstddef>

#include "platform/values/bezier_path.h"
#include "platform/values/geometry.h"

namespace paintdoc {

// Drops the last `count` elements. Nothing happens when count is 0, when the
// path is empty or when count exceeds the element count (unlike
// BezierPath::removeLastElements, which then empties the path); a count equal to
// the element count empties it. Stroke attributes are kept.
void removeLastElements(BezierPath& path, size_t count);

// The angle in degrees at which `point` is seen from `center` on a circle of
// `radius`, as the two-point arc uses it: points left of the circle give 180,
// points within half a unit of the vertical through the centre give 90 above
// and 270 below, points right of it give 0; otherwise the arc cosine of the
// horizontal offset, in single precision, mirrored to 360 - angle below the
// centre. Expects a positive radius.
float ArcAngleOfPoint(const Point& center, double radius, const Point& point);

// Appends the counter-clockwise arc about `center` from the angle of `from`
// to the angle of `to` (see ArcAngleOfPoint). Nothing happens for a radius of 0
// or less.
void appendBezierPathWithArcWithCenter(BezierPath& path, const Point& center, double radius,
                                       const Point& from, const Point& to);

}  // namespace paintdoc
