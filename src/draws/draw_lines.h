// Lines and curves: draws made from points rather than from a box.
//
// A line, a curve and a broken line are open outlines stroked with butt caps
// that may carry arrowheads: arrowStyle() 0 has none, 2 has one at each end,
// and any other value one at the end point. A line and a curve also keep
// their defining points, recomputed from the outline whenever the outline is
// replaced (updatePoints), so the outline is always what is drawn and
// archived. A free polygon is a closed outline that can be filled.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "draws/draw_base.h"

namespace paintdoc {

class DrawFreePolygon;

// The arrowheads of an outline: from the point each comes from to the point
// it points at.
struct ArrowDirection {
  Point from;
  Point to;
};

// What lines, curves and broken lines share: the arrow style, butt caps, the
// drawing of outline and arrowheads, and bounds that cover the arrowheads.
// Not an archived class of its own: each subclass names DrawBase as its
// superclass in archives.
class DrawArrowedOutline : public DrawBase {
 public:
  static constexpr int64_t kNoArrow = 0;
  static constexpr int64_t kArrowAtEnd = 1;
  static constexpr int64_t kArrowAtBothEnds = 2;

  // DrawBase's defaults with butt caps.
  void init() override;
  // "ArrowStyle" after the DrawBase keys (0 when missing); butt caps again.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  int64_t arrowStyle() const { return arrowStyle_; }
  void setArrowStyle(int64_t style) { arrowStyle_ = style; }

  // The directions of the arrowheads the style asks for: the end's first,
  // then the start's. Empty without a style or without enough points.
  std::vector<ArrowDirection> arrowDirections() const;
  // The arrowhead outlines for those directions, unrotated, in canvas units.
  // A direction with a point or a line width that is not a finite number,
  // or a line too short for its head, gives none.
  std::vector<BezierPath> arrowPaths() const;

  // DrawBase's, united with the rotated bounds of the arrowheads.
  Rect drawRect() const override;
  // The stroked outline with its arrowheads. Under a translucent stroke the
  // line is clipped away beneath the arrowheads so that nothing is painted
  // twice; with a shadow, outline and arrowheads cast one shadow together.
  void _draw() override;

 protected:
  // The end arrowhead's direction, and the start arrowhead's.
  virtual std::optional<ArrowDirection> endArrowDirection() const = 0;
  virtual std::optional<ArrowDirection> startArrowDirection() const = 0;
  // Whether the outline has enough elements to be drawn.
  virtual bool canDrawOutline() const { return true; }
  void setButtCaps();

  int64_t arrowStyle_ = kNoArrow;
};

class DrawLine : public DrawArrowedOutline {
 public:
  static constexpr const char* kClassName = "DrawLine";
  using Superclass = DrawBase;
  std::string className() const override { return kClassName; }
  std::string name() const override { return "Line"; }

  bool initWithCoder(KeyedUnarchiver& coder) override;

  Point startPoint() const { return ptStart_; }
  Point endPoint() const { return ptEnd_; }
  // Stores both points and rebuilds the outline from them.
  void setStartPoint(const Point& start, const Point& end);
  // The points from an outline of a move and a line; otherwise both become
  // the zero point (the outline is kept and drawn as it is).
  void updatePoints();

  void setBezierPathWithData(const ArchiveValue& data) override;
  using DrawBase::flip;
  void flip(bool horizontal) override;
  void moveBy(float x, float y) override;
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;
  // The midpoint of the two points.
  Point rotateCenter() const override;

 protected:
  std::optional<ArrowDirection> endArrowDirection() const override;
  std::optional<ArrowDirection> startArrowDirection() const override;

  Point ptStart_;
  Point ptEnd_;
};

class DrawCurve : public DrawArrowedOutline {
 public:
  static constexpr const char* kClassName = "DrawCurve";
  using Superclass = DrawBase;
  std::string className() const override { return kClassName; }
  std::string name() const override { return "Curve"; }

  bool initWithCoder(KeyedUnarchiver& coder) override;

  Point startPoint() const { return ptStart_; }
  Point ctlPoint1() const { return ptCtl1_; }
  Point ctlPoint2() const { return ptCtl2_; }
  Point endPoint() const { return ptEnd_; }
  // Stores the points and rebuilds the outline as one cubic curve.
  void setStartPoint(const Point& start, const Point& ctl1, const Point& ctl2, const Point& end);
  // The points from an outline of a move and a curve; otherwise all four
  // become the zero point.
  void updatePoints();

  void setBezierPathWithData(const ArchiveValue& data) override;
  using DrawBase::flip;
  void flip(bool horizontal) override;
  void moveBy(float x, float y) override;
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;
  // The midpoint of the start and end points.
  Point rotateCenter() const override;

 protected:
  // The arrowheads follow the curve's tangents, from the control points.
  std::optional<ArrowDirection> endArrowDirection() const override;
  std::optional<ArrowDirection> startArrowDirection() const override;

  Point ptStart_;
  Point ptEnd_;
  Point ptCtl1_;
  Point ptCtl2_;
};

// A chain of straight and curved segments; its points are the outline's own
// elements.
class DrawBrokenLine : public DrawArrowedOutline {
 public:
  static constexpr const char* kClassName = "DrawBrokenLine";
  using Superclass = DrawBase;
  std::string className() const override { return kClassName; }
  std::string name() const override { return "Broken Line"; }

  // A new closed polygon with this line's outline, stroke, shadow, smoothing,
  // lock, title (when it has one of its own), line width, dash and rotation;
  // unfilled and without inner shadow or gradient.
  std::shared_ptr<DrawFreePolygon> polygonForClosedPath() const;

 protected:
  std::optional<ArrowDirection> endArrowDirection() const override;
  std::optional<ArrowDirection> startArrowDirection() const override;
  bool canDrawOutline() const override;
};

// A closed polygon drawn point by point; it can be filled.
class DrawFreePolygon : public DrawBase {
  PAINTDOC_CLASS(DrawFreePolygon, DrawBase)
  std::string name() const override { return "Free Polygon"; }
  bool classDrawFill() const override { return true; }
};

}  // namespace paintdoc
