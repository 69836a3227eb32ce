// Drawing a text box: the text laid out into a bitmap cropped to its ink,
// kept as a cache, then drawn with opacity or gradient fill, shadow and inner
// shadow.
#include <algorithm>
#include <cmath>

#include "platform/graphics/bitmap_functions.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"
#include "platform/text/text_layout.h"
#include "platform/values/log.h"
#include "text/draw_text.h"

namespace paintdoc {

namespace {

// Text bitmaps are made at whole pixel scales from 1 (thumbnails downsample
// it) up to this (deep zoom shows resampled pixels beyond it).
constexpr double kMaxTextScale = 4;

double TextScaleFor(const GraphicsContext* context) {
  if (context == nullptr) return 1;
  const double scale = context->deviceScale();
  if (!std::isfinite(scale) || scale <= 1) return 1;
  return std::min(kMaxTextScale, std::ceil(scale));
}

}  // namespace

std::shared_ptr<Bitmap> DrawText::textImage(double scale) const {
  rectText_ = ZeroRect();
  if (!bezierPath_ || bezierPath_->isEmpty()) return nullptr;
  const Rect bounds = bezierPath_->bounds();
  const Size box = MakeSize(std::round(bounds.size.width), std::round(bounds.size.height));
  if (textStorage_.empty() || box.width < 1 || box.height < 1) return nullptr;
  Result<std::shared_ptr<Bitmap>> drawn =
      DrawTextInBitmap(SharedLayoutManager(), textStorage_, box, scale, smooth());
  if (!drawn) {
    Log("Error: text layer \"" + layerTitle() + "\" is not drawn: " + drawn.reason());
    return nullptr;
  }
  const std::shared_ptr<Bitmap>& image = *drawn;
  const double pixelScale = image->pixelsWide() / box.width;
  const Rect ink = ImageRectByTrimEmpty(image);
  if (ink.size.width < 1 || ink.size.height < 1) return nullptr;
  rectText_ = MakeRect(std::floor(ink.origin.x / pixelScale), std::floor(ink.origin.y / pixelScale),
                       std::ceil(ink.size.width / pixelScale),
                       std::ceil(ink.size.height / pixelScale));
  std::shared_ptr<Bitmap> cropped = CropImage(image, ink);
  if (cropped) cropped->setSize(rectText_.size);
  return cropped;
}

const std::shared_ptr<Bitmap>& DrawText::cachedTextImage(double scale) const {
  const Size boxSize = bezierPath_ ? bezierPath_->bounds().size : Size{};
  const bool stale = cachedBoxSize_ != boxSize || cachedSmooth_ != smooth() ||
                     cachedScale_ != scale;
  if (!imgRepText_ || stale) {
    imgRepText_ = textImage(scale);
    cachedBoxSize_ = boxSize;
    cachedSmooth_ = smooth();
    cachedScale_ = scale;
  }
  return imgRepText_;
}

void DrawText::draw() {
  if (bEditting_ || textStorage_.empty()) return;
  DrawRectangle::draw();
}

void DrawText::_draw() {
  if (bEditting_ || textStorage_.empty() || !bezierPath_) return;
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr) return;
  const Rect bounds = bezierPath_->bounds();
  const Point boxOrigin{std::round(bounds.origin.x), std::round(bounds.origin.y)};
  const std::shared_ptr<Bitmap> image = cachedTextImage(TextScaleFor(context));
  if (!image) return;

  GraphicsStateGuard saved(*context);
  context->setCompositingOperation(CompositingOperation::SourceOver);
  context->setImageInterpolation(ImageInterpolation::High);
  context->setShouldAntialias(smooth());
  context->concat(transform());
  const Rect target = MakeRect(boxOrigin.x + rectText_.origin.x, boxOrigin.y + rectText_.origin.y,
                               rectText_.size.width, rectText_.size.height);
  drawTextImage(*context, *image, target);
  if (bEnableInnerShadow_ && shadowInner_) drawInnerShadow(*context, *image, target);
}

void DrawText::drawTextImage(GraphicsContext& context, const Bitmap& image, const Rect& target) {
  if (bEnableShadow_ && shadow_) context.setShadow(shadow_);
  if (!gradientFillInUse()) {
    context.setAlpha(fOpacity_);
    context.drawImage(image, target);
    context.setAlpha(1);
    return;
  }
  // The gradient shows through the glyphs' ink; its colours carry the opacity.
  TransparencyLayerGuard layer(context);
  context.clipToRect(target);
  context.setShadow(std::nullopt);
  context.drawImage(image, target);
  context.setBlendMode(BlendMode::SourceIn);
  const Rect box = bezierPath_->bounds();
  if (!bFillRadialGdt_) {
    context.drawGradient(*gradientFill_, *bezierPath_, fFillGdtDegree_);
    return;
  }
  Point relativeCenter{0, 0};
  if (!(ptFillGdtCenter_.x == 0 && ptFillGdtCenter_.y == 0) && box.size.width > 0 &&
      box.size.height > 0) {
    const Point boxCenter{box.origin.x + box.size.width / 2, box.origin.y + box.size.height / 2};
    relativeCenter = {2 * (ptFillGdtCenter_.x - boxCenter.x) / box.size.width,
                      2 * (ptFillGdtCenter_.y - boxCenter.y) / box.size.height};
  }
  context.drawGradient(*gradientFill_, *bezierPath_, relativeCenter);
}

// A shadow cast inwards from the glyphs' edges: the shadow of a fill around
// the glyphs, kept only inside them.
void DrawText::drawInnerShadow(GraphicsContext& context, const Bitmap& image, const Rect& target) {
  context.setShadow(std::nullopt);
  GraphicsStateGuard saved(context);
  context.clipToRect(target);
  const Shadow& inner = *shadowInner_;
  const Color color = inner.shadowColor();
  context.setAlpha(color.alphaComponent());
  context.setBlendMode(BlendMode::Normal);
  TransparencyLayerGuard outer(context);
  Shadow opaque = inner;
  opaque.setShadowColor(color.withAlphaComponent(1));
  context.setShadow(opaque);
  context.setBlendMode(BlendMode::SourceOut);
  context.setShouldAntialias(smooth());
  TransparencyLayerGuard glyphs(context);
  context.setBlendMode(BlendMode::Normal);
  context.setFillColor(color.withAlphaComponent(1));
  context.fillRect(target);
  context.setBlendMode(BlendMode::DestinationIn);
  context.drawImage(image, target);
}

Rect DrawText::drawRect() const {
  if (!bezierPath_ || bezierPath_->isEmpty()) return ZeroRect();
  cachedTextImage(imgRepText_ ? cachedScale_ : 1.0);
  if (rectText_.size.width < 1 || rectText_.size.height < 1) return ZeroRect();
  const Rect bounds = bezierPath_->bounds();
  const Rect ink = MakeRect(bounds.origin.x + rectText_.origin.x,
                            bounds.origin.y + rectText_.origin.y, rectText_.size.width,
                            rectText_.size.height);
  return BezierPath::withRect(ink).transformed(transform()).bounds();
}

Rect DrawText::displayRect() const {
  const Rect display = DrawRectangle::displayRect();
  if (!bEditting_ || !bezierPath_) return display;
  const Rect box = RectInset(bezierPath_->bounds(), -borderLineWidth, -borderLineWidth);
  return RectUnion(display, box);
}

}  // namespace paintdoc
