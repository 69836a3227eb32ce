// The record of a resumable point-at-length search along a path. A caller that
// places many points along one path (the glyphs of curved text) keeps one record
// between searches, so that each search resumes where the previous one stopped
// instead of sampling the curve from its start again. A zeroed record means that
// nothing has been found yet.
#pragma once

#include <cstdint>

#include "platform/values/geometry.h"

namespace paintdoc {

struct BezierFindPointDetails {
  // Length of the whole path; 0 or less makes a search measure the path itself
  // (without writing the measure back here).
  double totalLength = 0;
  // Index of the path element in which the last point was found.
  uint64_t elementIndex = 0;
  // First point of the subpath holding that element.
  Point subpathStart;
  // Running length of the path up to the start of that element. A search
  // starts its running length from this value.
  double lengthBeforeElement = 0;
  // For a curve element: the sampling step (0..2000) at which the target was
  // reached, and the curve's length from its start up to that step.
  uint64_t curveStep = 0;
  double curveLength = 0;
  // Direction of the path at the found point, as a vector.
  Point tangent;
  // For a curve element: the curve's point at `curveStep`.
  Point curvePoint;
};

}  // namespace paintdoc
