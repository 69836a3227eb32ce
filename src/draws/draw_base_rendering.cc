// The rendering pipeline of DrawBase: how a vector draw paints fill, shadows,
// stroke and reflection into the current graphics context, the rectangles that
// bound what it paints, painting it alone into a bitmap, and the highlight and
// border overlays drawn over a canvas view while editing.
#include <algorithm>
#include <cmath>
#include <string>

#include "draws/canvas_view.h"
#include "draws/draw_base.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/graphics/gaussian_blur.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"
#include "platform/values/log.h"
#include "platform/values/scoped_value.h"

namespace paintdoc {

namespace {

// Colours this faint are not worth painting.
constexpr double kMinimumVisibleAlpha = 0.01;
// Below this alpha a highlighted fill shows the highlight colour instead.
constexpr double kMinimumHighlightFillAlpha = 0.07;
// A reflection never starts more than this far above the draw's bottom edge.
constexpr float kNearestReflectionDistance = -60.0f;
// Highlight outlines of unstroked draws are this many view pixels wide.
constexpr double kHighlightViewWidth = 3.0;
// Above this zoom, odd line widths of overlays are shifted onto pixel centres.
constexpr float kHalfPixelShiftMinimumScale = 1.2f;

GraphicsContext* CurrentContextOrLog(const char* operation) {
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr) {
    Log(std::string("Error: ") + operation + " needs focus locked on a bitmap");
  }
  return context;
}

// A line width whose whole part is odd: such lines are drawn shifted by half a
// unit so that they cover whole pixels.
bool IsOddWidth(double lineWidth) {
  return std::isfinite(lineWidth) && std::fmod(std::trunc(lineWidth), 2.0) != 0;
}

bool ShadowApplies(const DrawBase& draw) { return draw.enableShadow() && draw.shadow(); }

bool IsVisibleColor(const std::optional<Color>& color, double minimumAlpha) {
  return color && color->alphaComponent() >= minimumAlpha;
}

// The reflection's distance below the bottom edge, with unset or absurdly
// negative distances taken as the nearest allowed one.
float ReflectionDistance(const DrawBase& draw) {
  return std::max(draw.reflectionDis(), kNearestReflectionDistance);
}

bool ReflectionApplies(const DrawBase& draw) {
  return draw.enableReflection() && draw.reflection() > 0;
}

// `rect` grown by the drop shadow (moved by its offset, spread by its blur)
// and by the reflection below `drawRect`. The reflection always reserves at
// least the draw's full mirrored height, even when a weaker reflection paints
// less of it.
Rect WithShadowAndReflection(const DrawBase& draw, Rect rect, const Rect& drawRect) {
  if (ShadowApplies(draw)) {
    const Shadow& shadow = *draw.shadow();
    Rect shadowRect = RectOffset(rect, shadow.shadowOffset().width, shadow.shadowOffset().height);
    const double blur = shadow.shadowBlurRadius();
    if (blur > 0) shadowRect = RectInset(shadowRect, -blur, -blur);
    rect = RectUnion(rect, shadowRect);
  }
  if (ReflectionApplies(draw)) {
    const float distance = ReflectionDistance(draw);
    const float strength = std::max(draw.reflection(), 1.0f);
    const float height = static_cast<float>(strength * drawRect.height());
    const Rect reflection = MakeRect(drawRect.origin.x, drawRect.origin.y - distance - height,
                                     drawRect.width(), height);
    rect = RectUnion(rect, reflection);
  }
  return rect;
}

// The bounding box of a rectangle mapped by a transform.
Rect TransformedBounds(const Rect& rect, const AffineTransform& transform) {
  BezierPath box = BezierPath::withRect(rect);
  box.transform(transform);
  return box.bounds();
}

// A transparency layer covers the whole clip, and so does the shadow it casts
// as one object. Around a single fill, narrowing the clip to what the fill and
// its shadow can reach keeps both small without changing a pixel: the layer
// is transparent everywhere else, and a source-over composite of nothing
// leaves the destination as it is. `bounds` is in user space; the shadow's
// offset is in default user space, its blur reaches a number of device pixels.
void ClipToFillAndItsShadow(GraphicsContext& context, const Rect& bounds, const Shadow& shadow) {
  const double scale = context.deviceScale();
  if (!(scale > 0)) return;
  const AffineTransform toDefault = context.currentTransform();
  const Rect fill = TransformedBounds(bounds, toDefault);
  const Size offset = shadow.shadowOffset();
  const double reach =
      (GaussianBlurReach(ShadowBlurSigma(shadow.shadowBlurRadius()) * scale) + 2) / scale;
  Rect affected = RectUnion(fill, RectOffset(fill, offset.width, offset.height));
  affected = RectInset(affected, -reach, -reach);
  context.clipToRect(TransformedBounds(affected, toDefault.inverted()));
}

// The radial gradient's centre relative to `bounds`: (0, 0) its middle,
// (1, 1) its upper right corner. A zero-size side keeps the middle.
Point RelativeGradientCenter(const DrawBase& draw, float scale, const Rect& bounds) {
  if (draw.fillGradientCenter() == Point{}) return Point{};
  const Point center = draw.fillGradientCenterPointWithScale(scale);
  Point relative;
  if (bounds.width() != 0) relative.x = (center.x - bounds.midX()) / bounds.width() * 2;
  if (bounds.height() != 0) relative.y = (center.y - bounds.midY()) / bounds.height() * 2;
  return relative;
}

// The gradient fill inside `path`: radial about its relative centre, or
// linear at `linearAngle` degrees.
void PaintGradientFill(GraphicsContext& context, const DrawBase& draw, const BezierPath& path,
                       float scale, double linearAngle) {
  const Gradient& gradient = *draw.fillGradient();
  if (draw.fillRadialGradient()) {
    context.drawGradient(gradient, path, RelativeGradientCenter(draw, scale, path.bounds()));
  } else {
    context.drawGradient(gradient, path, linearAngle);
  }
}

// A shadow band along the inside edges of `path`, opposite the shadow's
// offset: inside two transparency layers the shadow of the filled path is
// composited source-out, then the path itself source-out over it, which
// leaves the shadow only where it lies inside the path.
void PaintInnerShadow(GraphicsContext& context, const Shadow& innerShadow,
                      const BezierPath& path, const Rect& bounds) {
  const Color color = innerShadow.shadowColor();
  GraphicsStateGuard saved(context);
  context.clipToRect(bounds);
  context.setAlpha(color.alphaComponent());
  TransparencyLayerGuard outer(context);
  const Shadow opaqueShadow(color.withAlphaComponent(1.0), innerShadow.shadowOffset(),
                            innerShadow.shadowBlurRadius());
  context.setShadow(opaqueShadow);
  context.setBlendMode(BlendMode::SourceOut);
  TransparencyLayerGuard inner(context);
  context.setFillColor(opaqueShadow.shadowColor());
  context.fill(path);
}

// The gradient fill with the drop shadow it casts as one object: inside a
// layer the gradient's many pieces cast one shadow together, and around that
// layer the clip is narrowed to what the fill and its shadow can reach.
void PaintShadowedGradientFill(GraphicsContext& context, const DrawBase& draw,
                               const BezierPath& outline, float angle) {
  GraphicsStateGuard saved(context);
  if (!draw.copyWhenComposite()) ClipToFillAndItsShadow(context, outline.bounds(), *draw.shadow());
  TransparencyLayerGuard layer(context);
  PaintGradientFill(context, draw, outline, 1.0f, angle);
}

// Fill, its drop shadow and the inner shadow.
void PaintFill(GraphicsContext& context, const DrawBase& draw, const BezierPath& outline) {
  const bool shadowApplies = ShadowApplies(draw);
  const Rect bounds = outline.bounds();
  if (shadowApplies) context.setShadow(draw.shadow());
  if (draw.fillWithGradient()) {
    // The gradient turns with the shape.
    const float angle = static_cast<float>(draw.fillGradientDegree() + draw.rotateDegree());
    if (draw.fillGradient() && shadowApplies) {
      PaintShadowedGradientFill(context, draw, outline, angle);
    } else if (draw.fillGradient()) {
      PaintGradientFill(context, draw, outline, 1.0f, angle);
    }
  } else {
    // A draw that replaces pixels fills even without a colour of its own,
    // with whatever fill colour is current.
    if (draw.fillColor()) context.setFillColor(*draw.fillColor());
    context.fill(outline);
  }
  if (shadowApplies) context.setShadow(std::nullopt);
  if (draw.enableInnerShadow() && draw.innerShadow()) {
    PaintInnerShadow(context, *draw.innerShadow(), outline, bounds);
  }
}

// The stroke with its drop shadow. Over a fill, which already cast the
// shape's shadow, the stroke's shadow may only fall outside the filled
// outline: it is clipped to everything but the outline, and the stroke is
// then drawn once more, whole and without shadow.
void PaintStroke(GraphicsContext& context, const DrawBase& draw, const BezierPath& outline,
                 bool filled) {
  const bool shadowApplies = ShadowApplies(draw);
  context.setShouldAntialias(draw.shouldAntialias());
  if (draw.strokeColor()) context.setStrokeColor(*draw.strokeColor());
  if (shadowApplies && filled) {
    {
      GraphicsStateGuard saved(context);
      context.setShadow(draw.shadow());
      BezierPath outside = BezierPath::withRect(draw.renderedRect());
      outside.appendPath(outline);
      context.clip(outside, WindingRule::EvenOdd);
      context.stroke(outline);
    }
    context.stroke(outline);
    return;
  }
  if (shadowApplies) context.setShadow(draw.shadow());
  context.stroke(outline);
}

}  // namespace

void DrawBase::drawInImage(const std::shared_ptr<Bitmap>& /*image*/) { draw(); }

bool DrawBase::drawStroke() const {
  if (!classDrawStroke() || !bEnableStroke_) return false;
  if (copyWhenComposite()) return true;
  return IsVisibleColor(colorStroke_, kMinimumVisibleAlpha);
}

bool DrawBase::drawFill() const {
  if (!classDrawFill() || !bEnableFill_) return false;
  if (copyWhenComposite()) return true;
  if (bFillWithGdt_) return gradientFill_.has_value();
  return IsVisibleColor(colorFill_, kMinimumVisibleAlpha);
}

void DrawBase::_draw() {
  if (!bezierPath_) return;
  GraphicsContext* context = CurrentContextOrLog("drawing a layer");
  if (context == nullptr) return;

  GraphicsStateGuard saved(*context);
  context->setCompositingOperation(copyWhenComposite() ? CompositingOperation::Copy
                                                       : CompositingOperation::SourceOver);
  context->setShouldAntialias(true);
  const BezierPath outline = bezierPath_->transformed(transform());
  const bool stroked = drawStroke();
  const bool filled = drawFill();
  // Odd widths are moved onto pixel centres so that their lines stay crisp.
  // The shift is half a canvas unit, in user space: drawn at another scale,
  // the line moves with the picture rather than by half a device pixel.
  if (stroked && IsOddWidth(outline.lineWidth())) context->translate(0.5, 0.5);
  if (filled) PaintFill(*context, *this, outline);
  if (stroked) PaintStroke(*context, *this, outline, filled);
}

void DrawBase::draw() {
  if (isSelectTool() || !bezierPath_ || bezierPath_->isEmpty()) return;
  if (ReflectionApplies(*this)) {
    GraphicsContext* context = CurrentContextOrLog("drawing a layer");
    if (context == nullptr) return;
    drawReflection(*context);
  }
  _draw();
}

void DrawBase::drawReflection(GraphicsContext& context) {
  // The reflection casts no shadow of its own.
  ScopedValue noShadow(bEnableShadow_, false);
  Rect reflection = drawRect();
  GraphicsStateGuard saved(context);
  // Mirror about the bottom edge, then move down by the distance.
  const float distance = ReflectionDistance(*this);
  AffineTransform mirror = AffineTransform::scaling(1, -1);
  mirror.append(AffineTransform::translation(0, 2 * reflection.origin.y - distance));
  context.concat(mirror);
  // In the mirrored space the clip runs from the bottom edge downwards.
  reflection.size.height *= std::min(fReflection_, 1.0f);
  context.clipToRect(reflection);

  TransparencyLayerGuard copy(context);
  _draw();
  // Fade the copy: its alpha is kept in proportion to a gradient running
  // from the draw's edge to the far end of the reflection.
  context.setBlendMode(BlendMode::DestinationIn);
  TransparencyLayerGuard fading(context);
  const float nearAlpha = std::min(std::max(fReflection_ + 0.2f, 0.4f), 1.0f);
  const float farAlpha = std::min(std::max(fReflection_ - 1.0f, 0.0f), 1.0f);
  const Gradient fade = Gradient::withStartingColor(Color::calibratedWhite(0.0, nearAlpha),
                                                    Color::calibratedWhite(0.0, farAlpha));
  context.drawGradient(fade, reflection, 90.0);
}

Rect DrawBase::drawRect() const {
  if (!bezierPath_ || bezierPath_->isEmpty()) return ZeroRect();
  const BezierPath outline = bezierPath_->transformed(transform());
  Rect bounds = outline.bounds();
  if (drawStroke()) {
    const float halfWidth = static_cast<float>(bezierPath_->lineWidth()) / 2.0f;
    bounds = RectInset(bounds, -halfWidth, -halfWidth);
  }
  return bounds;
}

Rect DrawBase::renderedRect() const {
  const Rect bounds = drawRect();
  return RectIntegral(WithShadowAndReflection(*this, bounds, bounds));
}

Rect DrawBase::displayRect() const {
  const double lineWidth = bezierPath_ ? bezierPath_->lineWidth() : 0.0;
  const Rect control = RectInset(controlBounds(), -2 * lineWidth, -2 * lineWidth);
  return WithShadowAndReflection(*this, control, drawRect());
}

std::shared_ptr<Bitmap> DrawBase::renderedImage() {
  if (!bezierPath_ || bezierPath_->isEmpty()) return nullptr;
  const Rect area = renderedRect();
  if (area.width() < 1 || area.height() < 1) return nullptr;
  std::shared_ptr<Bitmap> image = InitImageRep(area.width(), area.height());
  if (!image) return nullptr;
  BitmapFocus focus(image);
  GraphicsContext& context = focus.context();
  // _draw switches antialiasing on again; this setting reaches only what a
  // subclass paints before it.
  context.setShouldAntialias(false);
  context.setCompositingOperation(CompositingOperation::SourceOver);
  context.translate(-area.origin.x, -area.origin.y);
  draw();
  return image;
}

void DrawBase::drawHighlightInCanvasView(const CanvasView& view) {
  if (!bezierPath_ || bezierPath_->isEmpty()) return;
  GraphicsContext* context = CurrentContextOrLog("drawing a highlight");
  if (context == nullptr) return;
  GraphicsStateGuard saved(*context);
  context->setShouldAntialias(shouldAntialias());
  context->concat(view.transformForDrawing());

  BezierPath outline = bezierPath_->transformed(transform());
  context->setColor(colorDrawBaseHighlight);
  const bool stroked = drawStroke();
  const double width = stroked ? std::max(outline.lineWidth() + 2.0, 3.0)
                               : ViewPixelsInCanvasUnits(view, kHighlightViewWidth);
  outline.setLineWidth(width);

  if (view.highlightFromExternal() && drawFill()) {
    if (bFillWithGdt_) {
      // Unlike _draw, the gradient does not turn with the shape here.
      if (gradientFill_) PaintGradientFill(*context, *this, outline, view.scale(), fFillGdtDegree_);
    } else {
      context->setFillColor(IsVisibleColor(colorFill_, kMinimumHighlightFillAlpha)
                                ? *colorFill_
                                : colorDrawBaseHighlight);
      context->fill(outline);
    }
  }

  if (classDrawStroke()) {
    if (view.scale() > kHalfPixelShiftMinimumScale && stroked && IsOddWidth(width)) {
      context->translate(0.5, 0.5);
    }
    if (!stroked && !lineDashStyle().empty()) outline.setLineDash({}, 0);
    context->stroke(outline);
  }
}

void DrawBase::drawBorderInCanvasView(const CanvasView& view) {
  if (!hasBorder() || !bezierPath_ || bezierPath_->isEmpty()) return;
  GraphicsContext* context = CurrentContextOrLog("drawing a border");
  if (context == nullptr) return;
  GraphicsStateGuard saved(*context);
  const bool stroked = drawStroke();
  const float scale = view.scale();
  if (scale > kHalfPixelShiftMinimumScale && stroked && IsOddWidth(bezierPath_->lineWidth())) {
    context->translate(scale * 0.5, scale * 0.5);
  }

  BezierPath border;
  if (isSelectTool()) {
    border = *bezierPath_;
  } else {
    Rect box = pathBounds();
    if (stroked) {
      auto roundHalfUp = [](double value) { return std::trunc(value + 0.5); };
      box = MakeRect(roundHalfUp(box.origin.x), roundHalfUp(box.origin.y),
                     roundHalfUp(box.size.width), roundHalfUp(box.size.height));
      const double halfWidth = bezierPath_->lineWidth() / 2;
      box = RectInset(box, -halfWidth, -halfWidth);
    }
    border = BezierPath::withRect(box);
  }
  border.transform(transform());
  border.transform(view.transformForDrawing());
  context->setShouldAntialias(false);
  border.setLineWidth(borderLineWidth);

  // Black under white dashes, so that the border shows on any background;
  // the dash phase advances in the background and makes the dashes march.
  context->setStrokeColor(Color::calibratedWhite(0.0, 1.0));
  context->stroke(border);
  border.setLineDash(std::vector<double>(borderDashStyle, borderDashStyle + borderDaskPhaseCount),
                     BorderDashPhaseStart());
  context->setStrokeColor(Color::calibratedWhite(1.0, 1.0));
  context->stroke(border);
}

Point DrawBase::fillGradientCenterPointWithScale(float /*scale*/) const {
  const Rect bounds = pathBounds();
  Point center = bounds.center();
  if (ptFillGdtCenter_ != Point{}) {
    center.x += ptFillGdtCenter_.x * bounds.width() / 2;
    center.y += ptFillGdtCenter_.y * bounds.height() / 2;
  }
  return pointAfterRotate(center);
}

}  // namespace paintdoc
