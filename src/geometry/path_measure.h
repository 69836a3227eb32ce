// Measuring a path and finding the point at a fraction of its length, the way
// curved text places its glyphs.
#pragma once

#include "geometry/bezier_find_point_details.h"
#include "platform/values/bezier_path.h"
#include "platform/values/geometry.h"

namespace paintdoc {

// The path's length, summed in single precision. Curves are measured by
// sampling (CubicBezierLength). Two long-standing rules decide where text on a
// path lands and are kept as they are:
// - after a curve, the current point becomes the curve's first control point,
//   so a following line is measured from there;
// - a close adds the distance back to the subpath start but leaves the current
//   point where it was, and forgets the subpath start.
double pathLineLength(const BezierPath& path);

// The point at `fraction` of the path's length, or the null point (+inf, +inf)
// when the path is empty or the walk never reaches it. A fraction of at most
// 1e-5 gives the first point of the path.
//
// `details`, when given, is read and updated so that a later search with a
// larger fraction resumes inside the curve where this one stopped; its tangent
// receives the path's direction at the point. The walk starts its running
// length from the record's length-before-element even though it walks from the
// first element, so one record reused on a path of several drawn elements gives
// shifted positions; callers rely on this as it is.
Point pointAtPercent(const BezierPath& path, double fraction,
                     BezierFindPointDetails* details = nullptr);

}  // namespace paintdoc
