#include "draws/draw_rectangle.h"

#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "draws/canvas_view.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"

namespace paintdoc {

namespace {

// A radius read from an archive: rounded to a whole number (deliberately, as
// the original reader did); a value that is not a number counts as 0.
float RadiusFromArchive(KeyedUnarchiver& coder, std::string_view key) {
  const float radius = coder.decodeFloatForKey(key);
  return std::isnan(radius) ? 0.0f : std::round(radius);
}

}  // namespace

Rect RectRaisedToUnitSize(const Rect& bounds) {
  Rect raised = bounds;
  // Written so that a side that is not a number becomes 1 too.
  if (!(raised.size.width >= 1.0)) raised.size.width = 1.0;
  if (!(raised.size.height >= 1.0)) raised.size.height = 1.0;
  return raised;
}

// --- DrawRectangle

void DrawRectangle::init() {
  DrawBase::init();
  bezierPath_->setLineJoinStyle(LineJoinStyle::Miter);
}

BezierPath DrawRectangle::emptyPathWithLineAttributes() const {
  BezierPath path;
  if (!bezierPath_) return path;
  path.setLineWidth(bezierPath_->lineWidth());
  path.setLineDash(bezierPath_->lineDash(), bezierPath_->lineDashPhase());
  path.setLineCapStyle(bezierPath_->lineCapStyle());
  path.setLineJoinStyle(bezierPath_->lineJoinStyle());
  return path;
}

BezierPath DrawRectangle::bezierPathWithBounds(const Rect& bounds) const {
  BezierPath path = emptyPathWithLineAttributes();
  path.appendRect(RectRaisedToUnitSize(bounds));
  return path;
}

void DrawRectangle::setBezierPathWithBounds(const Rect& bounds) {
  // A draw that was never initialised has no path to rebuild.
  if (!bezierPath_) return;
  bezierPath_->removeAllPoints();
  const BezierPath outline = bezierPathWithBounds(RectRaisedToUnitSize(bounds));
  if (!outline.isEmpty()) bezierPath_->appendPath(outline);
}

Rect DrawRectangle::controlBoundsBeforeRotation() const { return pathBounds(); }

Point DrawRectangle::rotateCenter() const { return controlBoundsBeforeRotation().center(); }

Rect DrawRectangle::controlBounds() const {
  BezierPath box = BezierPath::withRect(controlBoundsBeforeRotation());
  if (box.isEmpty()) return ZeroRect();
  box.transform(transform());
  return box.bounds();
}

Rect DrawRectangle::initBoundsWithStablePoint(Point stablePoint, Point movePoint) const {
  const float stableX = static_cast<float>(stablePoint.x);
  const float stableY = static_cast<float>(stablePoint.y);
  const float moveX = static_cast<float>(movePoint.x);
  const float moveY = static_cast<float>(movePoint.y);
  const float dx = std::fabs(stableX - moveX);
  const float dy = std::fabs(stableY - moveY);
  if (startFromCenterWhenCreating()) {
    return MakeRect(stableX - dx, stableY - dy, 2.0f * dx, 2.0f * dy);
  }
  return MakeRect(std::fmin(stableX, moveX), std::fmin(stableY, moveY), dx, dy);
}

// --- DrawEllipse

void DrawEllipse::init() {
  DrawRectangle::init();
  bezierPath_->setLineCapStyle(LineCapStyle::Round);
}

bool DrawEllipse::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  if (bezierPath_) bezierPath_->setLineCapStyle(LineCapStyle::Round);
  return true;
}

BezierPath DrawEllipse::bezierPathWithBounds(const Rect& bounds) const {
  BezierPath path = emptyPathWithLineAttributes();
  path.appendOvalInRect(RectRaisedToUnitSize(bounds));
  return path;
}

// --- DrawRoundRectangle

void DrawRoundRectangle::init() {
  DrawRectangle::init();
  fXRadius_ = kInitRadius;
  fYRadius_ = kInitRadius;
}

void DrawRoundRectangle::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeFloatForKey(fXRadius_, "XRadius");
  coder.encodeFloatForKey(fYRadius_, "YRadius");
}

bool DrawRoundRectangle::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  // A missing radius reads as 0, not as the 30 of a new draw.
  fXRadius_ = RadiusFromArchive(coder, "XRadius");
  fYRadius_ = RadiusFromArchive(coder, "YRadius");
  return true;
}

BezierPath DrawRoundRectangle::bezierPathWithBounds(const Rect& bounds) const {
  BezierPath path = emptyPathWithLineAttributes();
  path.appendRoundedRect(RectRaisedToUnitSize(bounds), fXRadius_, fYRadius_);
  return path;
}

void DrawRoundRectangle::setXRadius(float xRadius, float yRadius) {
  if (!(xRadius >= 0 && yRadius >= 0)) return;
  fXRadius_ = xRadius;
  fYRadius_ = yRadius;
  if (!bezierPath_ || bezierPath_->isEmpty()) return;
  const Rect box = controlBoundsBeforeRotation();
  bezierPath_->removeAllPoints();
  bezierPath_->appendRoundedRect(box, fXRadius_, fYRadius_);
}

void DrawRoundRectangle::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  DrawRectangle::scaleBy(sx, sy, center, resizeLineWidth);
  fXRadius_ *= sx;
  fYRadius_ *= resizeLineWidth ? sx : sy;
}

// --- DrawGradient

Gradient DrawGradient::defaultGradient() {
  return Gradient::withStartingColor(Color::blackColor(), Color::grayColor());
}

void DrawGradient::init() {
  DrawRectangle::init();
  bEnableStroke_ = false;
  bFillWithGdt_ = true;
  fFillGdtDegree_ = 0;
  gradientFill_ = defaultGradient();
}

bool DrawGradient::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  bFillWithGdt_ = true;
  if (!gradientFill_) gradientFill_ = defaultGradient();
  return true;
}

void DrawGradient::setFillWithGradient(bool /*on*/) { DrawRectangle::setFillWithGradient(true); }

void DrawGradient::setFillGradient(std::optional<Gradient> gradient) {
  if (gradient) DrawRectangle::setFillGradient(std::move(gradient));
}

void DrawGradient::drawHighlightInCanvasView(const CanvasView& view) {
  DrawRectangle::drawHighlightInCanvasView(view);
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr || !bezierPath_ || bezierPath_->isEmpty()) return;
  GraphicsStateGuard saved(*context);
  context->setShouldAntialias(true);
  context->concat(view.transformForDrawing());
  context->concat(transform());
  BezierPath box = BezierPath::withRect(pathBounds());
  box.setLineWidth(ViewPixelsInCanvasUnits(view, 2.0));
  context->setStrokeColor(colorDrawBaseHighlight);
  context->stroke(box);
}

}  // namespace paintdoc
