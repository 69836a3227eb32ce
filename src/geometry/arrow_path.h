// Arrowheads at the ends of lines.
#pragma once

#include <optional>

#include "platform/values/bezier_path.h"
#include "platform/values/geometry.h"

namespace paintdoc {

// A triangular arrowhead for the line from `start` to `end`, its tip a little
// beyond `end` so that the stroke's end is covered, sized by the line width
// (single precision): head length 2w / tan 30°, half base 2w. Answers nothing
// when the line is shorter than about 1.732 w. The path is an open triangle
// (move and three lines); callers fill or stroke it with the line's colour.
// The head of a sloping line has line width 1.0; that of a vertical line keeps
// the path default.
std::optional<BezierPath> GetArrowPath(const Point& start, const Point& end, float lineWidth);

}  // namespace paintdoc
