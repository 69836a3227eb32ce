// The magic-wand selection: the region of similar colour around a point,
// an area for region operations that is never part of the picture.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

class DrawMagicSelection : public DrawBase {
  PAINTDOC_CLASS(DrawMagicSelection, DrawBase)

 public:
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
};

}  // namespace paintdoc
