// Handing a BezierPath to cairo.
#pragma once

#include <cairo.h>

#include "platform/values/bezier_path.h"

namespace paintdoc {

// Appends the path's elements to the current path of `cr`, in order: move to
// move, line to line, curve to a cubic with the same control and end points,
// close to close. Stroke attributes are not touched. Answers false, adding
// nothing, when the path has no elements.
bool AppendBezierPathToCairo(cairo_t* cr, const BezierPath& path);

}  // namespace paintdoc
