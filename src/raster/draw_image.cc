#include "raster/draw_image.h"

#include <algorithm>
#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "draws/canvas_view.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"
#include "platform/values/bitmap.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Highlight outlines of image layers are this many view pixels wide.
constexpr double kHighlightViewWidth = 2.0;

}  // namespace

Rect ImageDestinationRect(const Rect& bounds) {
  Rect destination = bounds;
  destination.origin.x = std::trunc(destination.origin.x + 0.5);
  destination.origin.y = std::trunc(destination.origin.y + 0.5);
  return destination;
}

void PaintImageInnerShadow(GraphicsContext& context, const Bitmap& image, const Rect& destination,
                           const BezierPath& path, const Shadow& innerShadow) {
  const Color color = innerShadow.shadowColor();
  const Color opaque = color.withAlphaComponent(1.0);
  GraphicsStateGuard saved(context);
  context.clipToRect(destination);
  context.setAlpha(color.alphaComponent());
  // The outer layer receives the inner layer's shadow and then the inner
  // layer itself, both source-out: what is left is the inner layer's
  // content where its own shadow does not fall.
  TransparencyLayerGuard outer(context);
  context.setShadow(Shadow(opaque, innerShadow.shadowOffset(), innerShadow.shadowBlurRadius()));
  context.setBlendMode(BlendMode::SourceOut);
  TransparencyLayerGuard inner(context);
  context.setBlendMode(BlendMode::Normal);
  context.setFillColor(opaque);
  context.fill(path);
  // The image's shape is cut out of the filled path: only where the image is
  // transparent does the path keep its fill, and with it the shadow's edge.
  context.drawBitmap(image, destination, ZeroRect(), CompositingOperation::DestinationOut, 1.0);
}

std::shared_ptr<DrawImage> DrawImage::withImage(std::shared_ptr<Bitmap> image) {
  if (!image) return nullptr;
  auto draw = MakeDraw<DrawImage>();
  draw->setBezierPathWithBounds(MakeRect(0, 0, image->pixelsWide(), image->pixelsHigh()));
  draw->image_ = std::move(image);
  draw->fOpacity_ = 1.0f;
  draw->bezierPath_->setLineWidth(0);
  return draw;
}

void DrawImage::init() {
  DrawRectangle::init();
  fOpacity_ = 1.0f;
}

// --- opacity and attributes

void DrawImage::setOpacity(float opacity) {
  if (std::isnan(opacity)) {
    Log("Error: setOpacity: the opacity is not a number; the image layer is unchanged");
    return;
  }
  fOpacity_ = std::clamp(opacity, 0.0f, 1.0f);
}

DrawAttributes DrawImage::drawAttributes() const {
  DrawAttributes attributes = DrawRectangle::drawAttributes();
  attributes.set(DAKeyOpacity, SinglePrecision{fOpacity_});
  return attributes;
}

bool DrawImage::setDrawAttributes(const DrawAttributes& attributes) {
  bool changed = DrawRectangle::setDrawAttributes(attributes);
  if (const ArchiveValue* value = attributes.number(DAKeyOpacity)) {
    const double wanted = value->toDouble();
    // A NaN is no opacity; it changes nothing.
    if (!std::isnan(wanted)) {
      const float clamped = static_cast<float>(std::clamp(wanted, 0.0, 1.0));
      if (std::fabs(clamped - fOpacity_) > kOpacityTolerance) {
        fOpacity_ = clamped;
        changed = true;
      }
    }
  }
  return changed;
}

float DrawImage::width2HeightRatioForShift() const {
  if (!image_ || image_->pixelsHigh() == 0) return 1.0f;
  return static_cast<float>(image_->pixelsWide()) / static_cast<float>(image_->pixelsHigh());
}

void DrawImage::flip(bool horizontal) {
  if (image_) image_ = ImageFliped(image_, horizontal);
  DrawRectangle::flip(horizontal);
}

// --- painting

void DrawImage::_draw() {
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr) {
    Log("Error: drawing an image layer needs focus locked on a bitmap");
    return;
  }
  const std::shared_ptr<Bitmap> shown = imageForDrawing();
  GraphicsStateGuard saved(*context);
  context->setShouldAntialias(true);
  context->setCompositingOperation(CompositingOperation::SourceOver);
  context->setImageInterpolation(ImageInterpolation::High);
  if (bEnableShadow_ && shadow_) context->setShadow(shadow_);
  context->concat(transform());
  // The origin snaps to whole units so that an unscaled image stays crisp.
  const Rect destination = bezierPath_ ? ImageDestinationRect(pathBounds()) : ZeroRect();
  if (!shown) return;
  context->drawBitmap(*shown, destination, ZeroRect(), CompositingOperation::SourceOver,
                      fOpacity_);

  if (fOpacity_ >= kMinimumInnerShadowOpacity && bEnableInnerShadow_ && shadowInner_ &&
      bezierPath_) {
    context->setShadow(std::nullopt);
    PaintImageInnerShadow(*context, *shown, destination, *bezierPath_, *shadowInner_);
  }
}

void DrawImage::drawHighlightInCanvasView(const CanvasView& view) {
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr || !bezierPath_) return;
  GraphicsStateGuard saved(*context);
  context->setShouldAntialias(true);
  context->concat(view.transformForDrawing());
  context->concat(transform());
  if (view.highlightFromExternal()) {
    if (const std::shared_ptr<Bitmap> shown = imageForDrawing()) {
      GraphicsStateGuard imageState(*context);
      context->setImageInterpolation(ImageInterpolation::High);
      context->drawBitmap(*shown, ImageDestinationRect(pathBounds()), ZeroRect(),
                          CompositingOperation::SourceOver, 1.0);
    }
  }
  BezierPath box = BezierPath::withRect(pathBounds());
  box.setLineWidth(ViewPixelsInCanvasUnits(view, kHighlightViewWidth));
  context->setStrokeColor(colorDrawBaseHighlight);
  context->stroke(box);
}

// --- archive

void DrawImage::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeBitmapForKey(image_, "Image");
  coder.encodeFloatForKey(fOpacity_, "Opacity");
}

bool DrawImage::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  setImage(coder.decodeBitmapForKey("Image"));
  // A missing opacity is full; a stored NaN is taken as missing.
  const float opacity =
      coder.containsValueForKey("Opacity") ? coder.decodeFloatForKey("Opacity") : 1.0f;
  fOpacity_ = std::isnan(opacity) ? 1.0f : std::clamp(opacity, 0.0f, 1.0f);
  if (bezierPath_) bezierPath_->setLineWidth(0);
  return true;
}

}  // namespace paintdoc
