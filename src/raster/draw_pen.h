// A freehand stroke: the pointer's positions joined by straight segments,
// a new sub-path for each press while the stroke is being made.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

class DrawPen : public DrawBase {
  PAINTDOC_CLASS(DrawPen, DrawBase)

 public:
  // The base defaults with round caps, so that every point shows as a dot.
  void init() override;

  std::string name() const override { return "Sketch"; }
  bool hasBorder() const override { return true; }
  // Antialiased only when smoothing is on and the stroke is at least 1.1
  // wide: thinner strokes stay crisp.
  bool shouldAntialias() const override;
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
  bool canContinueInitWhenMouseUp() const override { return true; }

  float width() const;
  void setWidth(float width);
};

}  // namespace paintdoc
