// Selection tools: draws that mark an area of the canvas and are never part of
// the picture. Their outline is the selected area.
#pragma once

#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"

namespace paintdoc {

// The rectangular marquee.
class DrawSelection : public DrawRectangle {
 public:
  std::string className() const override { return "DrawSelection"; }
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
};

// The marquee of the crop tool.
class DrawCrop : public DrawSelection {
 public:
  std::string className() const override { return "DrawCrop"; }
};

class DrawEllipseSelection : public DrawEllipse {
 public:
  std::string className() const override { return "DrawEllipseSelection"; }
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
  bool startFromCenterWhenCreating() const override { return true; }
};

class DrawLassoSelection : public DrawBase {
 public:
  std::string className() const override { return "DrawLassoSelection"; }
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
};

class DrawPolygonSelection : public DrawFreePolygon {
 public:
  std::string className() const override { return "DrawPolygonSelection"; }
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
};

}  // namespace paintdoc
