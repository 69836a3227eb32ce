// An area filled with the clear colour: composed with the copy operation, it
// erases a selection from the picture.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

class DrawClear : public DrawBase {
  PAINTDOC_CLASS(DrawClear, DrawBase)

 public:
  // Stroke and fill in the clear colour.
  void init() override;
  // The clear colour, whatever colour is set.
  void setStrokeColor(std::optional<Color> color) override;
  // Takes a copy of the path's elements, keeping this draw's own styles;
  // none leaves the path empty.
  void setBezierPath(const BezierPath* path);

  std::string name() const override { return "Clear"; }
  bool classDrawStroke() const override { return false; }
  bool classDrawFill() const override { return true; }
  bool drawFill() const override { return true; }
  bool copyWhenComposite() const override { return true; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool shouldAntialias() const override { return true; }
};

}  // namespace paintdoc
