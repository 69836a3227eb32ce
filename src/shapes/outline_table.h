// Outlines given as data: a list of drawing steps whose points are fractions
// of the box the outline is fitted into. The pictogram shapes are each one
// such table; OutlineInBox() draws any of them into a box.
#pragma once

#include <span>

#include "platform/values/bezier_path.h"
#include "platform/values/geometry.h"
#include "shapes/draw_rect_shape.h"

namespace paintdoc {

// A point of an outline: (x + a w + ra r, y + b h + rb r) for the box
// (x, y, w, h) and the outline's corner radius r. Most points use a and b
// only; ra and rb place points a corner radius away from the box's edges.
struct OutlinePoint {
  float a = 0, b = 0;
  float ra = 0, rb = 0;
};

enum class OutlineOp {
  Move,
  Line,
  Curve,
  Close,
  // Counter-clockwise arc about `p0` of radius `radius` corner radii, from
  // `startDegrees` to `endDegrees`; joined to the outline by a line when it
  // does not start where the outline is.
  Arc,
  // The platform oval centred on `p0`, `p1.a` of the width wide and `p1.b` of
  // the height high (four curves and a close).
  Oval,
  // The rectangle with corners `p0` and `p1`: move, three lines, close.
  Box,
  // The steps up to EndCutOut are drawn into a separate path whose reversal
  // is appended, so that under the nonzero rule it cuts a hole.
  BeginCutOut,
  EndCutOut,
  // Appends the outline so far, mirrored about the box's vertical centre
  // line and reversed, without its first move: a half drawn from the centre
  // line and back becomes a whole, symmetric figure.
  MirroredHalf,
};

// One step. Curves keep the order end point, control 1, control 2.
struct OutlineStep {
  OutlineOp op = OutlineOp::Close;
  OutlinePoint p0{}, p1{}, p2{};
  float radius = 1;
  float startDegrees = 0, endDegrees = 0;
};

constexpr OutlineStep Move(OutlinePoint p) { return {OutlineOp::Move, p}; }
constexpr OutlineStep Line(OutlinePoint p) { return {OutlineOp::Line, p}; }
constexpr OutlineStep Curve(OutlinePoint end, OutlinePoint control1, OutlinePoint control2) {
  return {OutlineOp::Curve, end, control1, control2};
}
constexpr OutlineStep Close() { return {OutlineOp::Close}; }
constexpr OutlineStep Arc(OutlinePoint center, float startDegrees, float endDegrees,
                          float radius = 1) {
  return {OutlineOp::Arc, center, {}, {}, radius, startDegrees, endDegrees};
}
constexpr OutlineStep Oval(OutlinePoint center, float width, float height) {
  return {OutlineOp::Oval, center, {width, height}};
}
constexpr OutlineStep Box(OutlinePoint corner, OutlinePoint oppositeCorner) {
  return {OutlineOp::Box, corner, oppositeCorner};
}
constexpr OutlineStep BeginCutOut() { return {OutlineOp::BeginCutOut}; }
constexpr OutlineStep EndCutOut() { return {OutlineOp::EndCutOut}; }
constexpr OutlineStep MirroredHalf() { return {OutlineOp::MirroredHalf}; }

// An outline with the corner radius its points may refer to: r = min(wide w,
// high h) for the box (x, y, w, h), in single precision.
struct OutlineTable {
  std::span<const OutlineStep> steps;
  float cornerRadiusOfWidth = 0;
  float cornerRadiusOfHeight = 0;
};

// Appends the outline fitted into `bounds` (raised to at least 1 by 1, then
// rounded to single precision) to `path`.
void AppendOutlineInBox(BezierPath& path, const OutlineTable& outline, const Rect& bounds);

}  // namespace paintdoc
