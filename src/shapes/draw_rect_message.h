// DrawRectMessage: a speech bubble made of a rounded rectangle and a
// triangular pointer whose base lies on the lower part of the outline. The
// pointer tip and the two ends of its base are kept as offsets from the box's
// lower-left corner.
#pragma once

#include "shapes/draw_rect_shape.h"

namespace paintdoc {

// The pointer and corner of a rectangular bubble placed in its box.
struct RectBubbleGeometry {
  Point tip;           // where the pointer points
  Point arrowA;        // base end met last going counter-clockwise from arrowB
  Point arrowB;        // base end the outline leaves the pointer by
  Point radiusKnob;    // where the top-left corner arc begins
  float radius = 0;    // corner radius
};

class DrawRectMessage : public DrawRectShape {
  PAINTDOC_CLASS(DrawRectMessage, DrawRectShape)
  static constexpr float kInitRadius = 0.2f;
  static constexpr Point kInitArrow{10, -35};
  static constexpr Point kInitArrowA{20, 0};
  static constexpr Point kInitArrowB{40, 0};

  std::string name() const override { return "Message"; }
  float width2HeightRatioForShift() const override { return 1.6f; }
  // Corner radius 0.2 of the height; the pointer down and a little left from
  // the bottom edge.
  void init() override;
  // "Radius", "Arrow", "ArrowA", "ArrowB" after DrawRectShape's keys. Every
  // key is read, so a missing one gives 0 rather than the default.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // Mirrors the pointer across the box (the base ends swap, so that A stays
  // the end nearer the origin) and flips the outline left-right. A vertical
  // flip is made as that plus a half turn, so the pointer's base never has to
  // move to the top edge.
  using DrawRectShape::flip;
  void flip(bool horizontal) override;
  // DrawRectShape's scaling with the pointer offsets scaled along; the
  // outline is rebuilt for the new box.
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;

  // {"ControlBounds", "Arrow", "ArrowA", "ArrowB", "Radius"}; setting it
  // restores the fields it holds and rebuilds the outline.
  ArchiveValue bezierPathData() const override;
  void setBezierPathWithData(const ArchiveValue& data) override;

  // The bounds of the outline with its pointer, rotated.
  Rect controlBounds() const override;

  // The corner radius, pointer tip and base ends for the box, the base ends
  // moved onto the lower part of the outline.
  RectBubbleGeometry getArrowPoint(const Rect& bounds) const;
  BezierPath bezierPathWithBounds(const Rect& bounds) const override;

  // Stores the offsets as given and rebuilds an outline already drawn.
  void setArrowPoint(Point arrow, Point arrowA, Point arrowB);
  Point arrowPoint() const { return ptArrow_; }
  Point arrowA() const { return ptArrowA_; }
  Point arrowB() const { return ptArrowB_; }
  float radius() const { return fRadius_; }

 protected:
  float fRadius_ = 0;
  Point ptArrow_;
  Point ptArrowA_;
  Point ptArrowB_;
};

}  // namespace paintdoc
