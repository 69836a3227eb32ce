// Selection tools: draws that mark an area of the canvas and are never part of
// the picture. Their outline is the selected area.
#pragma once

#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"

namespace paintdoc {

// The rectangular marquee.
class DrawSelection : public DrawRectangle {
  PAINTDOC_CLASS(DrawSelection, DrawRectangle)
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
};

// The marquee of the crop tool.
class DrawCrop : public DrawSelection {
  PAINTDOC_CLASS(DrawCrop, DrawSelection)
};

class DrawEllipseSelection : public DrawEllipse {
  PAINTDOC_CLASS(DrawEllipseSelection, DrawEllipse)
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
  bool startFromCenterWhenCreating() const override { return true; }
};

class DrawLassoSelection : public DrawBase {
  PAINTDOC_CLASS(DrawLassoSelection, DrawBase)
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
};

class DrawPolygonSelection : public DrawFreePolygon {
  PAINTDOC_CLASS(DrawPolygonSelection, DrawFreePolygon)
  bool classDrawBezierPath() const override { return false; }
  bool isSelectTool() const override { return true; }
};

}  // namespace paintdoc
