#include "draws/draw_lines.h"

#include <cmath>
#include <optional>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "geometry/arrow_path.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"

namespace paintdoc {

namespace {

bool IsFinitePoint(const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

// Whole-number part odd: such lines are shifted by half a unit to cover
// whole pixels.
bool IsOddWidth(double lineWidth) {
  return std::isfinite(lineWidth) && std::fmod(std::trunc(lineWidth), 2.0) != 0;
}

bool ElementIs(const BezierPath& path, size_t index, PathElementType type) {
  return index < path.elementCount() && path.elementAt(index).type == type;
}

// The point an element leads with: a move's or line's point, a curve's first
// control point; none for a close.
std::optional<Point> LeadingPoint(const PathElement& element) {
  if (element.type == PathElementType::ClosePath) return std::nullopt;
  return element.points[0];
}

// The point from which a path arrives at the end of element `index`: a
// curve's second control point, else the end of the element before (its
// second control point when that one is a curve).
std::optional<Point> ArrivingPoint(const BezierPath& path, size_t index) {
  const PathElement& last = path.elementAt(index);
  if (last.type == PathElementType::CurveTo) return last.points[1];
  if (index == 0) return std::nullopt;
  const PathElement& before = path.elementAt(index - 1);
  if (before.type == PathElementType::CurveTo) return before.points[1];
  if (before.type == PathElementType::ClosePath) return std::nullopt;
  return before.points[0];
}

}  // namespace

// --- DrawArrowedOutline

void DrawArrowedOutline::setButtCaps() {
  if (bezierPath_) bezierPath_->setLineCapStyle(LineCapStyle::Butt);
}

void DrawArrowedOutline::init() {
  DrawBase::init();
  setButtCaps();
}

void DrawArrowedOutline::encodeWithCoder(KeyedArchiver& coder) const {
  DrawBase::encodeWithCoder(coder);
  coder.encodeInt64ForKey(arrowStyle_, "ArrowStyle");
}

bool DrawArrowedOutline::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  arrowStyle_ = coder.decodeInt64ForKey("ArrowStyle");
  setButtCaps();
  return true;
}

std::vector<ArrowDirection> DrawArrowedOutline::arrowDirections() const {
  std::vector<ArrowDirection> directions;
  if (arrowStyle_ == kNoArrow || !bezierPath_ || bezierPath_->isEmpty()) return directions;
  if (auto end = endArrowDirection()) directions.push_back(*end);
  if (arrowStyle_ == kArrowAtBothEnds) {
    if (auto start = startArrowDirection()) directions.push_back(*start);
  }
  return directions;
}

std::vector<BezierPath> DrawArrowedOutline::arrowPaths() const {
  std::vector<BezierPath> heads;
  if (!bezierPath_) return heads;
  const float width = static_cast<float>(bezierPath_->lineWidth());
  if (!std::isfinite(width)) return heads;
  for (const ArrowDirection& direction : arrowDirections()) {
    if (!IsFinitePoint(direction.from) || !IsFinitePoint(direction.to)) continue;
    if (auto head = GetArrowPath(direction.from, direction.to, width)) heads.push_back(*head);
  }
  return heads;
}

Rect DrawArrowedOutline::drawRect() const {
  Rect bounds = DrawBase::drawRect();
  if (arrowStyle_ == kNoArrow || !bezierPath_ || bezierPath_->isEmpty()) return bounds;
  const AffineTransform rotation = transform();
  for (const BezierPath& head : arrowPaths()) {
    bounds = RectUnion(bounds, head.transformed(rotation).bounds());
  }
  return bounds;
}

void DrawArrowedOutline::_draw() {
  if (!bezierPath_ || !drawStroke() || !canDrawOutline()) return;
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr) return;

  GraphicsStateGuard saved(*context);
  const bool shadowApplies = bEnableShadow_ && shadow_;
  if (shadowApplies) context->setShadow(shadow_);
  const double width = bezierPath_->lineWidth();
  std::vector<BezierPath> heads;
  std::optional<BezierPath> outsideHeads;
  std::optional<TransparencyLayerGuard> oneShadow;
  if (arrowStyle_ != kNoArrow) {
    heads = arrowPaths();
    // A translucent line must not show through its own arrowheads darker.
    if (colorStroke_ && colorStroke_->alphaComponent() < 1.0) {
      outsideHeads = BezierPath::withRect(RectInset(bezierPath_->bounds(), -width, -width));
      for (const BezierPath& head : heads) outsideHeads->appendPath(head);
    }
    if (shadowApplies) oneShadow.emplace(*context);
  }

  context->setShouldAntialias(shouldAntialias());
  AffineTransform placement = transform();
  if (IsOddWidth(width)) placement.append(AffineTransform::translation(0.5, 0.5));
  context->concat(placement);
  if (colorStroke_) context->setColor(*colorStroke_);
  for (const BezierPath& head : heads) context->fill(head);
  if (outsideHeads) context->clip(*outsideHeads, WindingRule::EvenOdd);
  context->stroke(*bezierPath_);
}

// --- DrawLine

bool DrawLine::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawArrowedOutline::initWithCoder(coder)) return false;
  updatePoints();
  return true;
}

void DrawLine::setStartPoint(const Point& start, const Point& end) {
  ptStart_ = start;
  ptEnd_ = end;
  if (!bezierPath_) bezierPath_.emplace();
  bezierPath_->removeAllPoints();
  bezierPath_->moveTo(start);
  bezierPath_->lineTo(end);
  setButtCaps();
  clearHighlightCache();
}

void DrawLine::updatePoints() {
  if (bezierPath_ && bezierPath_->elementCount() == 2 &&
      ElementIs(*bezierPath_, 0, PathElementType::MoveTo) &&
      ElementIs(*bezierPath_, 1, PathElementType::LineTo)) {
    ptStart_ = bezierPath_->elementAt(0).points[0];
    ptEnd_ = bezierPath_->elementAt(1).points[0];
  } else {
    ptStart_ = ptEnd_ = Point{};
  }
  setButtCaps();
}

void DrawLine::setBezierPathWithData(const ArchiveValue& data) {
  DrawBase::setBezierPathWithData(data);
  updatePoints();
}

void DrawLine::flip(bool horizontal) {
  DrawBase::flip(horizontal);
  updatePoints();
}

void DrawLine::moveBy(float x, float y) {
  DrawBase::moveBy(x, y);
  ptStart_ = {ptStart_.x + x, ptStart_.y + y};
  ptEnd_ = {ptEnd_.x + x, ptEnd_.y + y};
}

void DrawLine::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  DrawBase::scaleBy(sx, sy, center, resizeLineWidth);
  updatePoints();
}

Point DrawLine::rotateCenter() const {
  return {(ptStart_.x + ptEnd_.x) / 2, (ptStart_.y + ptEnd_.y) / 2};
}

std::optional<ArrowDirection> DrawLine::endArrowDirection() const {
  return ArrowDirection{ptStart_, ptEnd_};
}

std::optional<ArrowDirection> DrawLine::startArrowDirection() const {
  return ArrowDirection{ptEnd_, ptStart_};
}

// --- DrawCurve

bool DrawCurve::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawArrowedOutline::initWithCoder(coder)) return false;
  updatePoints();
  return true;
}

void DrawCurve::setStartPoint(const Point& start, const Point& ctl1, const Point& ctl2,
                              const Point& end) {
  ptStart_ = start;
  ptCtl1_ = ctl1;
  ptCtl2_ = ctl2;
  ptEnd_ = end;
  if (!bezierPath_) bezierPath_.emplace();
  bezierPath_->removeAllPoints();
  bezierPath_->moveTo(start);
  bezierPath_->curveTo(end, ctl1, ctl2);
  setButtCaps();
  clearHighlightCache();
}

void DrawCurve::updatePoints() {
  if (bezierPath_ && bezierPath_->elementCount() == 2 &&
      ElementIs(*bezierPath_, 0, PathElementType::MoveTo) &&
      ElementIs(*bezierPath_, 1, PathElementType::CurveTo)) {
    const PathElement& curve = bezierPath_->elementAt(1);
    ptStart_ = bezierPath_->elementAt(0).points[0];
    ptCtl1_ = curve.points[0];
    ptCtl2_ = curve.points[1];
    ptEnd_ = curve.points[2];
  } else {
    ptStart_ = ptCtl1_ = ptCtl2_ = ptEnd_ = Point{};
  }
  setButtCaps();
}

void DrawCurve::setBezierPathWithData(const ArchiveValue& data) {
  DrawBase::setBezierPathWithData(data);
  updatePoints();
}

void DrawCurve::flip(bool horizontal) {
  DrawBase::flip(horizontal);
  updatePoints();
}

void DrawCurve::moveBy(float x, float y) {
  DrawBase::moveBy(x, y);
  for (Point* point : {&ptStart_, &ptCtl1_, &ptCtl2_, &ptEnd_}) {
    *point = {point->x + x, point->y + y};
  }
}

void DrawCurve::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  DrawBase::scaleBy(sx, sy, center, resizeLineWidth);
  updatePoints();
}

Point DrawCurve::rotateCenter() const {
  return {(ptStart_.x + ptEnd_.x) / 2, (ptStart_.y + ptEnd_.y) / 2};
}

std::optional<ArrowDirection> DrawCurve::endArrowDirection() const {
  return ArrowDirection{ptCtl2_, ptEnd_};
}

std::optional<ArrowDirection> DrawCurve::startArrowDirection() const {
  return ArrowDirection{ptCtl1_, ptStart_};
}

// --- DrawBrokenLine

bool DrawBrokenLine::canDrawOutline() const {
  return bezierPath_ && bezierPath_->elementCount() >= 2;
}

std::optional<ArrowDirection> DrawBrokenLine::endArrowDirection() const {
  if (!canDrawOutline()) return std::nullopt;
  const size_t last = bezierPath_->elementCount() - 1;
  const PathElement& element = bezierPath_->elementAt(last);
  if (element.type == PathElementType::ClosePath) return std::nullopt;
  const std::optional<Point> from = ArrivingPoint(*bezierPath_, last);
  if (!from) return std::nullopt;
  return ArrowDirection{*from, element.endPoint()};
}

std::optional<ArrowDirection> DrawBrokenLine::startArrowDirection() const {
  if (!canDrawOutline()) return std::nullopt;
  const std::optional<Point> from = LeadingPoint(bezierPath_->elementAt(1));
  const std::optional<Point> to = LeadingPoint(bezierPath_->elementAt(0));
  if (!from || !to) return std::nullopt;
  return ArrowDirection{*from, *to};
}

std::shared_ptr<DrawFreePolygon> DrawBrokenLine::polygonForClosedPath() const {
  auto polygon = MakeDraw<DrawFreePolygon>();
  polygon->setEnableFill(false);
  polygon->setEnableStroke(bEnableStroke_);
  polygon->setStrokeColor(colorStroke_);
  polygon->setEnableShadow(bEnableShadow_);
  polygon->setShadow(shadow_);
  polygon->setEnableInnerShadow(false);
  polygon->setInnerShadow(std::nullopt);
  polygon->setFillWithGradient(false);
  polygon->setSmooth(bSmooth_);
  polygon->setLocked(bLocked_);
  if (strLayerTitle_ && !strLayerTitle_->empty()) polygon->setLayerTitle(strLayerTitle_);
  if (!bezierPath_) return polygon;

  BezierPath closed = *bezierPath_;
  closed.closePath();
  polygon->setBezierPathWithData(ArchiveValue(closed));
  polygon->setBezierPathLineWidth(static_cast<float>(closed.lineWidth()));
  if (closed.lineDash().size() >= 2) polygon->setBezierPathLineDash(closed.lineDash());
  polygon->setRotateDegree(fRotateDegree_);
  return polygon;
}

}  // namespace paintdoc
