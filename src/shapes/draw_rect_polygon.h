// DrawRectPolygon: a regular polygon with an adjustable number of corners,
// its corners on the ellipse inscribed in the box, the first at the top.
#pragma once

#include <cstdint>

#include "shapes/draw_rect_shape.h"

namespace paintdoc {

class DrawRectPolygon : public DrawRectShape {
  PAINTDOC_CLASS(DrawRectPolygon, DrawRectShape)
  static constexpr int64_t kInitPointsCount = 6;
  static constexpr int64_t kMinPointsCount = 3;
  // More corners than this would not show as corners at any canvas size; the
  // bound keeps a hostile corner count from building an outline without end.
  static constexpr int64_t kMaxPointsCount = 1000;

  // "Triangle" for 3 corners, else "Polygon".
  std::string name() const override;
  // DrawRectShape's defaults with 6 corners.
  void init() override;
  // "PointsCount" after DrawRectShape's keys; fewer than 3 read as 3, a
  // missing key as 6.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  int64_t pointsCount() const { return dPoints_; }
  // Stores the count kept within [3, 1000] and rebuilds the outline from the
  // box; an unchanged count does nothing.
  void setPointsCount(int64_t count);

  BezierPath bezierPathWithBounds(const Rect& bounds) const override;

 protected:
  int64_t dPoints_ = 0;
};

}  // namespace paintdoc
