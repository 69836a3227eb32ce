// Draws whose outline is made from a bounding box: the rectangle and its
// direct variants. Every box-shaped draw (shapes, text boxes, images,
// rectangular selections) derives from DrawRectangle.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

class DrawRectangle : public DrawBase {
 public:
  std::string className() const override { return "DrawRectangle"; }
  std::string name() const override { return "Rectangle"; }
  // DrawBase's defaults with mitred joins (a rectangle keeps sharp corners).
  void init() override;

  bool classDrawFill() const override { return true; }
  bool hasBorder() const override { return !classDrawBezierPath(); }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
  // Creation by dragging starts at a corner rather than at the centre.
  virtual bool startFromCenterWhenCreating() const { return false; }
  // Width-to-height ratio kept while the user holds Shift.
  virtual float width2HeightRatioForShift() const { return 1.0f; }
};

class DrawEllipse : public DrawRectangle {
 public:
  std::string className() const override { return "DrawEllipse"; }
  std::string name() const override { return "Ellipse"; }
};

class DrawRoundRectangle : public DrawRectangle {
 public:
  std::string className() const override { return "DrawRoundRectangle"; }
  std::string name() const override { return "Round Rectangle"; }
};

// A box filled with a gradient and never stroked.
class DrawGradient : public DrawRectangle {
 public:
  std::string className() const override { return "DrawGradient"; }
  std::string name() const override { return "Gradient"; }
  bool classDrawStroke() const override { return false; }
};

}  // namespace paintdoc
