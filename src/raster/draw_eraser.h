// A freehand stroke in the clear colour. Composed with the copy operation,
// it replaces the pixels beneath it by transparent ones.
#pragma once

#include "raster/draw_pen.h"

namespace paintdoc {

class DrawEraser : public DrawPen {
  PAINTDOC_CLASS(DrawEraser, DrawPen)

 public:
  static constexpr double kInitWidth = 3.0;

  // Round caps, width 3 and the clear colour.
  void init() override;
  // The eraser keeps the clear colour whatever colour is set.
  void setStrokeColor(std::optional<Color> color) override;

  std::string name() const override { return "Eraser"; }
  bool drawStroke() const override { return true; }
  bool copyWhenComposite() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool shouldAntialias() const override { return false; }
};

}  // namespace paintdoc
