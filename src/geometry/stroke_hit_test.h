// Whether a point lies on the stroke of a path, for picking thin lines with
// the pointer.
#pragma once

#include "platform/values/bezier_path.h"
#include "platform/values/geometry.h"

namespace paintdoc {

// Whether `point` lies inside the outline that stroking `path` covers, with the
// path's line width, cap, join and miter limit (dashes ignored), using the
// nonzero rule. `scale` is the view's zoom: at a zoom above 0.45 a line thinner
// than 5 screen pixels is tested as 5 screen pixels wide. Odd integer widths
// are drawn on half-pixel positions, so the point is moved by (-0.5, -0.5)
// for them. An empty path, or a width that is not positive, hits nothing.
//
// The test is geometric (cairo builds the stroke's outline and tests the point
// against it); nothing is rasterised. Each thread keeps one scratch cairo
// context for it.
bool containsPointInStroking(const BezierPath& path, const Point& point, float scale);

}  // namespace paintdoc
