// Lines and curves: draws made from points rather than from a box.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

class DrawLine : public DrawBase {
 public:
  std::string className() const override { return "DrawLine"; }
  std::string name() const override { return "Line"; }
};

class DrawCurve : public DrawBase {
 public:
  std::string className() const override { return "DrawCurve"; }
  std::string name() const override { return "Curve"; }
};

class DrawBrokenLine : public DrawBase {
 public:
  std::string className() const override { return "DrawBrokenLine"; }
  std::string name() const override { return "Broken Line"; }
};

// A closed polygon drawn point by point; it can be filled.
class DrawFreePolygon : public DrawBase {
 public:
  std::string className() const override { return "DrawFreePolygon"; }
  std::string name() const override { return "Free Polygon"; }
  bool classDrawFill() const override { return true; }
};

}  // namespace paintdoc
