// A vector path of move, line, cubic-curve and close elements, carrying its own
// stroke attributes, with the platform's defaults and element structure for the
// built-in shapes (rectangles, ovals, rounded rectangles, arcs).
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "platform/values/affine_transform.h"
#include "platform/values/geometry.h"

namespace paintdoc {

enum class PathElementType { MoveTo = 0, LineTo = 1, CurveTo = 2, ClosePath = 3 };
enum class LineCapStyle { Butt = 0, Round = 1, Square = 2 };
enum class LineJoinStyle { Miter = 0, Round = 1, Bevel = 2 };
enum class WindingRule { NonZero = 0, EvenOdd = 1 };

// One element. A curve keeps its points in the platform's order:
// points[0] and points[1] are the control points, points[2] the end point.
// Moves and lines use points[0]; a close uses none.
struct PathElement {
  PathElementType type = PathElementType::MoveTo;
  std::array<Point, 3> points{};

  // The point the element ends at (for a close: unused, see BezierPath).
  const Point& endPoint() const {
    return type == PathElementType::CurveTo ? points[2] : points[0];
  }
  friend bool operator==(const PathElement&, const PathElement&) = default;
};

class BezierPath {
 public:
  static constexpr double kDefaultLineWidth = 1.0;
  static constexpr double kDefaultMiterLimit = 10.0;
  // Control-point factor of a quarter circle: 4(√2 − 1)/3.
  static constexpr double kQuarterCircleFactor = 0.55228474983079339840;

  BezierPath() = default;
  static BezierPath withRect(const Rect& r);
  static BezierPath withOvalInRect(const Rect& r);
  static BezierPath withRoundedRect(const Rect& r, double xRadius, double yRadius);

  // --- construction
  void moveTo(const Point& p);
  void lineTo(const Point& p);
  void curveTo(const Point& end, const Point& control1, const Point& control2);
  void closePath();
  void appendRect(const Rect& r);
  void appendOvalInRect(const Rect& r);
  void appendRoundedRect(const Rect& r, double xRadius, double yRadius);
  // Degrees, counter-clockwise from +x; clockwise reverses the sweep direction.
  void appendArc(const Point& center, double radius, double startAngle, double endAngle,
                 bool clockwise = false);
  // Appends the elements of another path (its stroke attributes are ignored).
  void appendPath(const BezierPath& other);
  void removeAllPoints();

  // --- elements
  size_t elementCount() const { return elements_.size(); }
  bool isEmpty() const { return elements_.empty(); }
  const PathElement& elementAt(size_t index) const { return elements_[index]; }
  const std::vector<PathElement>& elements() const { return elements_; }
  // Replaces the points of one element (editing of control points).
  void setElementPoints(size_t index, const std::array<Point, 3>& points);
  // Removes the last `count` elements (all of them if count is larger).
  void removeLastElements(size_t count);
  // The end of the last element; a close ends at its subpath's start.
  Point currentPoint() const;
  bool hasCurrentPoint() const { return !elements_.empty(); }

  // --- geometry
  // Tight bounds of the curves (extrema included); zero rect when empty.
  Rect bounds() const;
  // Bounds of every point, control points included; zero rect when empty.
  Rect controlPointBounds() const;
  void transform(const AffineTransform& t);
  BezierPath transformed(const AffineTransform& t) const;
  // Each subpath reversed; a closed subpath keeps its start point.
  BezierPath reversed() const;
  // Point-in-fill test with the path's own winding rule.
  bool containsPoint(const Point& p) const;
  bool containsPoint(const Point& p, WindingRule rule) const;
  // Line segments approximating the outline, one polyline a subpath; closed
  // subpaths repeat their first point at the end.
  std::vector<std::vector<Point>> flattened(double tolerance = 0.1) const;

  // --- stroke and fill attributes
  double lineWidth() const { return lineWidth_; }
  void setLineWidth(double width) { lineWidth_ = width; }
  LineCapStyle lineCapStyle() const { return lineCap_; }
  void setLineCapStyle(LineCapStyle cap) { lineCap_ = cap; }
  LineJoinStyle lineJoinStyle() const { return lineJoin_; }
  void setLineJoinStyle(LineJoinStyle join) { lineJoin_ = join; }
  double miterLimit() const { return miterLimit_; }
  void setMiterLimit(double limit) { miterLimit_ = limit; }
  WindingRule windingRule() const { return windingRule_; }
  void setWindingRule(WindingRule rule) { windingRule_ = rule; }
  double flatness() const { return flatness_; }
  void setFlatness(double flatness) { flatness_ = flatness; }
  const std::vector<double>& lineDash() const { return dash_; }
  double lineDashPhase() const { return dashPhase_; }
  // An empty pattern turns dashing off.
  void setLineDash(std::vector<double> pattern, double phase);

  friend bool operator==(const BezierPath&, const BezierPath&) = default;

 private:
  Point subpathStart() const;

  std::vector<PathElement> elements_;
  double lineWidth_ = kDefaultLineWidth;
  LineCapStyle lineCap_ = LineCapStyle::Butt;
  LineJoinStyle lineJoin_ = LineJoinStyle::Miter;
  double miterLimit_ = kDefaultMiterLimit;
  double flatness_ = 0.6;
  WindingRule windingRule_ = WindingRule::NonZero;
  std::vector<double> dash_;
  double dashPhase_ = 0;
};

}  // namespace paintdoc
