// Points on the ellipse inscribed in a rectangle, as star shapes place their
// points.
#pragma once

#include "platform/values/geometry.h"

namespace paintdoc {

// The point of the ellipse inscribed in `rect` at `degrees` (counter-clockwise
// from +x). In a flattened ellipse, angles inside the 90° sectors around the
// major axis are pulled toward that axis by (1 - minor/major) so that points
// spread more evenly along the outline. Computed in single precision; ellipses
// with a radius below 1, and angles that are not finite, give the centre.
Point GetPointInEllipse(float degrees, const Rect& rect);

}  // namespace paintdoc
