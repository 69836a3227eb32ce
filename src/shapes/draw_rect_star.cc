#include "shapes/draw_rect_star.h"

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "geometry/ellipse_point.h"

namespace paintdoc {

namespace {

constexpr int kStarPoints = 5;
constexpr float kOuterStartDegrees = 90;
constexpr float kInnerStartDegrees = 126;
constexpr float kPointStepDegrees = 72;

// One side of the inner ellipse: the fraction of the box's side, unless that
// is below 1 unit, beyond the box or not a number.
double InnerSide(double fraction, double boxSide) {
  const double side = fraction * boxSide;
  if (side >= 1 && side <= boxSide) return side;
  return DrawRectStar::kDefaultInnerFraction * boxSide;
}

}  // namespace

void DrawRectStar::init() {
  DrawRectShape::init();
  sizeInner_ = {0, 0};
}

void DrawRectStar::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodeSizeForKey(sizeInner_, "InnerSize");
}

bool DrawRectStar::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  sizeInner_ = coder.decodeSizeForKey("InnerSize");
  return true;
}

void DrawRectStar::setInnerSize(Size fractions) {
  sizeInner_ = fractions;
  setBezierPathWithBounds(rectControlBounds_);
}

Size DrawRectStar::effectiveInnerSizeWithControlSize(Size controlSize) const {
  return {InnerSide(sizeInner_.width, controlSize.width),
          InnerSide(sizeInner_.height, controlSize.height)};
}

BezierPath DrawRectStar::bezierPathWithBounds(const Rect& bounds) const {
  BezierPath path = emptyPathWithLineAttributes();
  const Rect outer = RectRaisedToUnitSize(bounds);
  const Size innerSize = effectiveInnerSizeWithControlSize(outer.size);
  const Rect inner = MakeRect(outer.midX() - innerSize.width / 2,
                              outer.midY() - innerSize.height / 2, innerSize.width,
                              innerSize.height);
  float outerDegrees = kOuterStartDegrees;
  float innerDegrees = kInnerStartDegrees;
  path.moveTo(GetPointInEllipse(outerDegrees, outer));
  path.lineTo(GetPointInEllipse(innerDegrees, inner));
  for (int point = 1; point < kStarPoints; ++point) {
    outerDegrees += kPointStepDegrees;
    innerDegrees += kPointStepDegrees;
    path.lineTo(GetPointInEllipse(outerDegrees, outer));
    path.lineTo(GetPointInEllipse(innerDegrees, inner));
  }
  path.closePath();
  return path;
}

ArchiveValue DrawRectStar::bezierPathData() const {
  return ArchiveValue::dictionary(
      {{"ControlBounds", rectControlBounds_}, {"InnerSize", sizeInner_}});
}

void DrawRectStar::setBezierPathWithData(const ArchiveValue& data) {
  if (data.isAbsent()) {
    rectControlBounds_ = ZeroRect();
    sizeInner_ = {0, 0};
  } else {
    const ArchiveValue* box = data.valueForKey("ControlBounds");
    if (box == nullptr || box->as<Rect>() == nullptr) return;
    const ArchiveValue* inner = data.valueForKey("InnerSize");
    rectControlBounds_ = *box->as<Rect>();
    sizeInner_ = inner != nullptr && inner->as<Size>() != nullptr ? *inner->as<Size>() : Size{};
  }
  setBezierPathWithBounds(rectControlBounds_);
}

void DrawRectStar::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  DrawRectShape::scaleBy(sx, sy, center, resizeLineWidth);
  sizeInner_.width *= sx;
  sizeInner_.height *= resizeLineWidth ? sx : sy;
}

}  // namespace paintdoc
