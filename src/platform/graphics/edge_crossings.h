// How much a set of device edges makes a scanline rasteriser work: the pixel
// rows the edges span, and how many pairs of edges cross each other (each
// crossing reorders the rasteriser's active edges, and is an event of the
// sweep cairo runs to intersect a path with a clipping path).
#pragma once

#include <vector>

#include "platform/graphics/device_edges.h"
#include "platform/values/geometry.h"

namespace paintdoc::drawing {

struct EdgeCrossings {
  // Σ over the edges of the pixel rows each spans within the visible rows.
  double rows = 0;
  // Pairs of edges crossing within the visible rows: an estimate, exact for
  // edges long next to the bands it is counted in, within a crossing a
  // vertex otherwise (the two edges meeting at a vertex may count once).
  double intersections = 0;
  // Whether counting the intersections stopped at `enough` (they are then
  // at least as many as counted).
  bool stoppedEarly = false;
};

// Counts over the edges within `visible` (device pixels). Edges left or right
// of it count as lying on its border, as cairo clips them there. Counting the
// intersections stops soon after they exceed `enough`, so that a hopeless path
// costs no more to measure than a borderline one; an `enough` of 0 skips it.
EdgeCrossings CountCrossings(const std::vector<DeviceEdge>& edges, const Rect& visible,
                             double enough);

}  // namespace paintdoc::drawing
