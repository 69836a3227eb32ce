// A path as the straight edges cairo's rasteriser will see: flattened in
// device space with the context's tolerance, and for a stroke the two sides
// of each flattened edge. The drawing budget measures these edges before a
// path is handed to cairo.
#pragma once

#include <vector>

#include "platform/values/affine_transform.h"
#include "platform/values/bezier_path.h"

namespace paintdoc::drawing {

// A straight edge in device pixels (y down).
struct DeviceEdge {
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
};

// How many straight edges flattening the path yields, counted without making
// them: one a line or close, and for a curve the number of pieces that keep
// within `tolerance` device pixels of it. Zero for a path with a NaN or
// infinite point, which draws nothing.
double FlattenedEdgeCount(const BezierPath& path, const AffineTransform& userToDevice,
                          double tolerance);

// The flattened path in device pixels. `closeSubpaths` adds the closing edge
// of every open subpath, as a fill does. Empty for a path that draws nothing.
std::vector<DeviceEdge> FlattenedEdges(const BezierPath& path,
                                       const AffineTransform& userToDevice, double tolerance,
                                       bool closeSubpaths);

// The two sides of a stroke `halfWidth` device pixels either side of each
// edge (joins and caps left out: they are small next to the sides).
std::vector<DeviceEdge> StrokeSides(const std::vector<DeviceEdge>& centre, double halfWidth);

// The stroke's half width in device pixels: the path's width scaled by the
// transform's larger stretch; a width of 0 is one device pixel wide.
double DeviceHalfLineWidth(const BezierPath& path, const AffineTransform& userToDevice);

// The length of the flattened path in device pixels.
double DeviceLength(const std::vector<DeviceEdge>& edges);

}  // namespace paintdoc::drawing
