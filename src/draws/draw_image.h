// Image layers: a bitmap shown inside a rectangle, and the filter layer that
// shows an image effect applied to its bitmap.
#pragma once

#include "draws/draw_rectangle.h"

namespace paintdoc {

class DrawImage : public DrawRectangle {
 public:
  std::string className() const override { return "DrawImage"; }
  std::string name() const override { return "Image"; }
  bool classDrawBezierPath() const override { return false; }
  bool shouldAntialias() const override { return true; }
};

class DrawFilter : public DrawImage {
 public:
  std::string className() const override { return "DrawFilter"; }
  bool hasControlKnob() const override { return false; }
};

}  // namespace paintdoc
