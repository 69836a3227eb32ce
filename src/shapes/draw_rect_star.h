// DrawRectStar: a five-pointed star whose outer points lie on the ellipse
// inscribed in the box and whose inner points lie on a smaller, centred
// ellipse of adjustable size.
#pragma once

#include "shapes/draw_rect_shape.h"

namespace paintdoc {

class DrawRectStar : public DrawRectShape {
  PAINTDOC_CLASS(DrawRectStar, DrawRectShape)
  // The inner ellipse of a star whose own size is unusable, as a fraction of
  // the box.
  static constexpr double kDefaultInnerFraction = 0.4;

  std::string name() const override { return "Star"; }
  // DrawRectShape's defaults with the default inner size (0, 0).
  void init() override;
  // "InnerSize" after DrawRectShape's keys; (0, 0) when missing.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // The inner ellipse's size as fractions of the box's width and height.
  Size innerSize() const { return sizeInner_; }
  // Stores the fractions and rebuilds the outline from the box.
  void setInnerSize(Size fractions);
  // The inner ellipse used for a box of `controlSize`: the stored fractions
  // of it, each side replaced by 0.4 of the box's side when it is below 1,
  // larger than the box, or not a number.
  Size effectiveInnerSizeWithControlSize(Size controlSize) const;

  BezierPath bezierPathWithBounds(const Rect& bounds) const override;

  // The snapshot for undo and resizing: {"ControlBounds": box, "InnerSize":
  // fractions}. Setting it from none resets both; from a dictionary without
  // "ControlBounds" changes nothing; a missing "InnerSize" means (0, 0).
  ArchiveValue bezierPathData() const override;
  void setBezierPathWithData(const ArchiveValue& data) override;

  // DrawRectShape's scaling; the inner fractions are multiplied by the factors
  // too (by sx on both axes when line widths are resized), so the star's
  // proportions change until the fraction exceeds the box and the default
  // takes over.
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;

 protected:
  Size sizeInner_;
};

}  // namespace paintdoc
