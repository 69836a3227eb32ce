// Text layers: a text box, and text laid along a curve.
#pragma once

#include "draws/draw_rectangle.h"

namespace paintdoc {

class DrawText : public DrawRectangle {
  PAINTDOC_CLASS(DrawText, DrawRectangle)
  std::string name() const override { return "Text"; }
  // The text is drawn as glyphs, not as the box's outline.
  bool classDrawBezierPath() const override { return false; }
};

class DrawBezierText : public DrawText {
  PAINTDOC_CLASS(DrawBezierText, DrawText)
  std::string name() const override { return "Curved Text"; }
};

}  // namespace paintdoc
