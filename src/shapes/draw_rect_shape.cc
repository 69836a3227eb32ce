#include "shapes/draw_rect_shape.h"

#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

bool IsDrawableCoordinate(double value) { return std::fabs(value) <= kMaxShapeExtent; }

}  // namespace

bool IsDrawableShapeBox(const Rect& box) {
  // fabs(NaN) <= limit is false, so NaN is refused with the rest.
  return IsDrawableCoordinate(box.origin.x) && IsDrawableCoordinate(box.origin.y) &&
         IsDrawableCoordinate(box.size.width) && IsDrawableCoordinate(box.size.height);
}

ShapeBox::ShapeBox(const Rect& bounds) {
  const Rect raised = RectRaisedToUnitSize(bounds);
  x = static_cast<float>(raised.origin.x);
  y = static_cast<float>(raised.origin.y);
  w = static_cast<float>(raised.size.width);
  h = static_cast<float>(raised.size.height);
}

Point ShapeBox::at(float a, float b) const { return {x + a * w, y + b * h}; }

void DrawRectShape::init() {
  DrawRectangle::init();
  rectControlBounds_ = ZeroRect();
  bezierPath_->setLineJoinStyle(LineJoinStyle::Round);
}

void DrawRectShape::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeRectForKey(rectControlBounds_, "ControlBounds");
}

bool DrawRectShape::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  rectControlBounds_ = coder.decodeRectForKey("ControlBounds");
  if (bezierPath_) bezierPath_->setLineJoinStyle(LineJoinStyle::Round);
  return true;
}

void DrawRectShape::setBezierPathWithBounds(const Rect& bounds) {
  if (!bezierPath_) return;
  bezierPath_->removeAllPoints();
  if (!IsDrawableShapeBox(bounds)) {
    Log("Error: shape box " + StringFromRect(bounds) + " is out of range; nothing is drawn");
    rectControlBounds_ = ZeroRect();
    return;
  }
  const BezierPath outline = bezierPathWithBounds(bounds);
  bezierPath_->appendPath(outline);
  rectControlBounds_ = bounds;
  clearHighlightCache();
}

ArchiveValue DrawRectShape::bezierPathData() const { return ArchiveValue(rectControlBounds_); }

void DrawRectShape::setBezierPathWithData(const ArchiveValue& data) {
  if (const Rect* box = data.as<Rect>()) setBezierPathWithBounds(*box);
}

void DrawRectShape::moveBy(float x, float y) {
  DrawRectangle::moveBy(x, y);
  rectControlBounds_.origin.x += x;
  rectControlBounds_.origin.y += y;
}

Rect DrawRectShape::ScaledBox(const Rect& box, float sx, float sy, const Point& center) {
  return MakeRect((box.origin.x - center.x) * sx + center.x,
                  (box.origin.y - center.y) * sy + center.y, box.size.width * sx,
                  box.size.height * sy);
}

void DrawRectShape::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  DrawRectangle::scaleBy(sx, sy, center, resizeLineWidth);
  rectControlBounds_ = ScaledBox(rectControlBounds_, sx, resizeLineWidth ? sx : sy, center);
}

}  // namespace paintdoc
