// DrawEllipseMessage: an oval speech bubble whose outline opens toward the
// pointer tip and joins at it. The tip is kept as an offset from the box's
// lower-left corner.
#pragma once

#include "shapes/draw_rect_shape.h"

namespace paintdoc {

class DrawEllipseMessage : public DrawRectShape {
  PAINTDOC_CLASS(DrawEllipseMessage, DrawRectShape)
  static constexpr Point kInitArrow{-5, -5};

  std::string name() const override { return "Ellipse Message"; }
  float width2HeightRatioForShift() const override { return 1.8f; }
  // The tip at the lower-left corner, a little outside the box.
  void init() override;
  // "Arrow" after DrawRectShape's keys; a missing key gives (0, 0).
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // DrawRectShape's scaling with the tip offset scaled along; the outline is
  // rebuilt for the new box.
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;
  // Mirrors the tip across the box and flips the outline left-right; a
  // vertical flip adds a half turn.
  using DrawRectShape::flip;
  void flip(bool horizontal) override;

  // {"ControlBounds", "Arrow"}; setting it restores the tip and rebuilds.
  ArchiveValue bezierPathData() const override;
  void setBezierPathWithData(const ArchiveValue& data) override;

  // The bounds of the outline with its pointer, rotated.
  Rect controlBounds() const override;

  // Stores the offset as given and rebuilds an outline already drawn.
  void setArrowPoint(Point arrow);
  Point arrowPoint() const { return ptArrow_; }
  // The tip for the box: the box origin plus the offset.
  Point getArrowPoint(const Rect& bounds) const;

  BezierPath bezierPathWithBounds(const Rect& bounds) const override;

 protected:
  Point ptArrow_;
};

}  // namespace paintdoc
