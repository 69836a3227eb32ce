// Undoing a draw's rotation: turning points seen on screen back into the
// draw's unrotated frame.
#pragma once

#include "platform/values/geometry.h"

namespace paintdoc {

// Rotates both points in place by minus `degrees` about their midpoint (whose
// coordinates are summed and halved in single precision). An angle of 0 leaves
// them alone.
void GetPointBeforeRotate(Point& first, Point& second, float degrees);

// `point` rotated by minus `degrees` about `center`; unchanged for angle 0.
Point PointBeforeRotateAt(const Point& point, const Point& center, float degrees);

}  // namespace paintdoc
