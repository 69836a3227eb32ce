#include "shapes/draw_ellipse_message.h"

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "shapes/bubble_pointer.h"
#include "shapes/outline_table.h"

namespace paintdoc {

namespace {

// An oval open at the lower left; the opening is turned toward the tip.
constexpr OutlineStep kOpenOval[] = {
    Move({0.216, 0.091}),
    Curve({0.942, 0.262}, {0.365, -0.041}, {0.766, -0.064}),
    Curve({0.942, 0.736}, {1, 0.355}, {1.036, 0.565}),
    Curve({0.054, 0.728}, {0.761, 1.07}, {0.266, 1.109}),
    Curve({0.054, 0.27}, {-0.041, 0.534}, {0.009, 0.363}),
};

// The mirroring that turns the opening toward a tip right of or above the
// centre.
AffineTransform OpeningTowardTip(const Point& tip, const Point& center) {
  const double sx = tip.x > center.x ? -1 : 1;
  const double sy = tip.y > center.y ? -1 : 1;
  AffineTransform mirror = AffineTransform::translation(-center.x, -center.y);
  mirror.append(AffineTransform::scaling(sx, sy));
  mirror.append(AffineTransform::translation(center.x, center.y));
  return mirror;
}

}  // namespace

void DrawEllipseMessage::init() {
  DrawRectShape::init();
  ptArrow_ = kInitArrow;
}

void DrawEllipseMessage::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodePointForKey(ptArrow_, "Arrow");
}

bool DrawEllipseMessage::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  ptArrow_ = coder.decodePointForKey("Arrow");
  return true;
}

void DrawEllipseMessage::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  DrawRectShape::scaleBy(sx, sy, center, resizeLineWidth);
  ptArrow_ = ScaledOffset(ptArrow_, sx, resizeLineWidth ? sx : sy);
  setBezierPathWithBounds(rectControlBounds_);
}

void DrawEllipseMessage::flip(bool horizontal) {
  ptArrow_.x = MirroredOffsetX(ptArrow_.x, controlBoundsBeforeRotation().size.width);
  DrawRectShape::flip(true);
  if (!horizontal) setRotateDegree(rotateDegree() + 180);
}

ArchiveValue DrawEllipseMessage::bezierPathData() const {
  return ArchiveValue::dictionary({{"ControlBounds", rectControlBounds_}, {"Arrow", ptArrow_}});
}

void DrawEllipseMessage::setBezierPathWithData(const ArchiveValue& data) {
  const ArchiveValue* box = data.valueForKey("ControlBounds");
  if (box == nullptr || box->as<Rect>() == nullptr) return;
  if (const ArchiveValue* arrow = data.valueForKey("Arrow"); arrow && arrow->as<Point>()) {
    ptArrow_ = *arrow->as<Point>();
  }
  setBezierPathWithBounds(*box->as<Rect>());
}

Rect DrawEllipseMessage::controlBounds() const {
  return bezierPath_ ? BoundsOfTransformedPath(*bezierPath_, transform()) : ZeroRect();
}

void DrawEllipseMessage::setArrowPoint(Point arrow) {
  ptArrow_ = arrow;
  if (bezierPath_ && !bezierPath_->isEmpty()) setBezierPathWithBounds(rectControlBounds_);
}

Point DrawEllipseMessage::getArrowPoint(const Rect& bounds) const {
  return PointerPointInBox(ptArrow_, bounds);
}

BezierPath DrawEllipseMessage::bezierPathWithBounds(const Rect& bounds) const {
  BezierPath path = emptyPathWithLineAttributes();
  AppendOutlineInBox(path, {kOpenOval}, bounds);
  const ShapeBox box(bounds);
  const Point tip = getArrowPoint(MakeRect(box.x, box.y, box.w, box.h));
  path.transform(OpeningTowardTip(tip, box.center()));
  path.lineTo(tip);
  path.closePath();
  return path;
}

}  // namespace paintdoc
