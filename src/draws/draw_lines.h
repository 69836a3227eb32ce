// Lines and curves: draws made from points rather than from a box.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

class DrawLine : public DrawBase {
  PAINTDOC_CLASS(DrawLine, DrawBase)
  std::string name() const override { return "Line"; }
};

class DrawCurve : public DrawBase {
  PAINTDOC_CLASS(DrawCurve, DrawBase)
  std::string name() const override { return "Curve"; }
};

class DrawBrokenLine : public DrawBase {
  PAINTDOC_CLASS(DrawBrokenLine, DrawBase)
  std::string name() const override { return "Broken Line"; }
};

// A closed polygon drawn point by point; it can be filled.
class DrawFreePolygon : public DrawBase {
  PAINTDOC_CLASS(DrawFreePolygon, DrawBase)
  std::string name() const override { return "Free Polygon"; }
  bool classDrawFill() const override { return true; }
};

}  // namespace paintdoc
