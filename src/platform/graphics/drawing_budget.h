// What a fill, stroke or clip will cost cairo, measured in device space before
// it is handed over, and the limits beyond which it is refused. Documents are
// not to be trusted: a path of a hundred thousand self-crossing edges takes
// cairo a minute, and a stroke of one under a self-crossing clipping path
// crashes it. A refusal is one line saying what was too much.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/graphics/device_edges.h"
#include "platform/values/affine_transform.h"
#include "platform/values/bezier_path.h"
#include "platform/values/gradient.h"

namespace paintdoc::drawing {

// Where a context draws: the transform to device pixels, the device pixels
// its clip shows, its flattening tolerance in device pixels, and how many
// times it rasterises a primitive (twice with a shadow: mask and shape).
struct DeviceFrame {
  AffineTransform userToDevice;
  Rect visible;
  double tolerance = 0.1;
  int passes = 1;
};

// The work of one primitive in device space.
struct DrawingWork {
  double edges = 0;          // straight edges cairo rasterises (and sweeps)
  double rows = 0;           // Σ pixel rows those edges span, over all passes
  double intersections = 0;  // pairs of those edges that cross, over all passes
  bool intersectionsStoppedEarly = false;  // there are more than counted
  double dashes = 0;         // dash segments a dashed stroke is cut into
};

// Why filling the path (or clipping to it) would cost too much; none when it
// is affordable. `clipEdges` are the edges of the clipping paths in force:
// cairo sweeps them together with the path.
std::optional<std::string> FillRefusal(const BezierPath& path, const DeviceFrame& frame,
                                       const std::vector<DeviceEdge>& clipEdges);
// The same for stroking the path with its own width and dash.
std::optional<std::string> StrokeRefusal(const BezierPath& path, const DeviceFrame& frame,
                                         const std::vector<DeviceEdge>& clipEdges);

// The work a fill or stroke measures (for tests and reports); stops counting
// intersections once they are past the limit.
DrawingWork FillWork(const BezierPath& path, const DeviceFrame& frame,
                     const std::vector<DeviceEdge>& clipEdges);
DrawingWork StrokeWork(const BezierPath& path, const DeviceFrame& frame,
                       const std::vector<DeviceEdge>& clipEdges);

// A dash pattern whose period is shorter than a device pixel cannot show its
// dashes: each pixel along the line is covered by the fraction of the period
// the dashes (and their caps) take. Answers that fraction, for drawing the
// line solid with its alpha scaled by it; none when the dashes show (or the
// path is not dashed).
std::optional<double> SubpixelDashCoverage(const BezierPath& path,
                                           const AffineTransform& userToDevice);

// The gradient with at most a bounded number of stops: one with more is
// resampled at evenly spaced locations.
Gradient WithBoundedStops(const Gradient& gradient);

}  // namespace paintdoc::drawing
