// Raster layers that work on pixels rather than on an outline: flood-fill
// results, the magic-wand selection and the freehand tools.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

// A flood-fill result. It replaces the pixels beneath it.
class DrawFill : public DrawBase {
  PAINTDOC_CLASS(DrawFill, DrawBase)
  std::string name() const override { return "Fill"; }
  bool classDrawBezierPath() const override { return false; }
  bool classDrawFill() const override { return true; }
  bool copyWhenComposite() const override { return true; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
};

// The magic-wand selection: an area, never part of the picture.
class DrawMagicSelection : public DrawBase {
  PAINTDOC_CLASS(DrawMagicSelection, DrawBase)
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
};

// A freehand stroke. Antialiased only when smoothing is on and the stroke is
// at least 1.1 wide (thinner strokes stay crisp).
class DrawPen : public DrawBase {
  PAINTDOC_CLASS(DrawPen, DrawBase)
  std::string name() const override { return "Sketch"; }
  bool hasBorder() const override { return true; }
  bool shouldAntialias() const override;
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
  bool canContinueInitWhenMouseUp() const override { return true; }
};

// A freehand stroke that clears the pixels beneath it.
class DrawEraser : public DrawPen {
  PAINTDOC_CLASS(DrawEraser, DrawPen)
  std::string name() const override { return "Eraser"; }
  bool copyWhenComposite() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool shouldAntialias() const override { return false; }
};

// A filled area that clears the pixels beneath it.
class DrawClear : public DrawBase {
  PAINTDOC_CLASS(DrawClear, DrawBase)
  std::string name() const override { return "Clear"; }
  bool classDrawStroke() const override { return false; }
  bool classDrawFill() const override { return true; }
  bool copyWhenComposite() const override { return true; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool shouldAntialias() const override { return true; }
};

class DrawAirbrush : public DrawBase {
  PAINTDOC_CLASS(DrawAirbrush, DrawBase)
  std::string name() const override { return "Airbrush"; }
  bool classDrawFill() const override { return false; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool shouldAntialias() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
};

}  // namespace paintdoc
