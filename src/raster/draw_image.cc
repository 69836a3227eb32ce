#include "raster/draw_image.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

// The bitmap reduced by whole factors, each block of kx × ky pixels averaged
// (premultiplied) into one. Blocks line up with the lower left corner, so a
// partial block (averaged over the pixels it has) sits at the right or top.
std::shared_ptr<Bitmap> BoxReduced(const Bitmap& source, int kx, int ky) {
  const int width = source.pixelsWide(), height = source.pixelsHigh();
  const int reducedWidth = (width + kx - 1) / kx, reducedHeight = (height + ky - 1) / ky;
  std::shared_ptr<Bitmap> reduced = Bitmap::create(reducedWidth, reducedHeight);
  if (!reduced) return nullptr;
  std::vector<uint64_t> sums(static_cast<size_t>(reducedWidth) * 4);
  for (int row = 0; row < reducedHeight; ++row) {
    // Storage rows count from the top: reduced row `row` covers the source
    // rows that end (reducedHeight − 1 − row) blocks above the bottom.
    const int last = height - (reducedHeight - 1 - row) * ky;
    const int first = std::max(last - ky, 0);
    std::fill(sums.begin(), sums.end(), 0);
    for (int y = first; y < last; ++y) {
      const uint8_t* pixel = source.rowAt(y);
      for (int x = 0; x < width; ++x, pixel += 4) {
        uint64_t* sum = &sums[static_cast<size_t>(x / kx) * 4];
        for (int c = 0; c < 4; ++c) sum[c] += pixel[c];
      }
    }
    uint8_t* out = reduced->rowAt(row);
    for (int column = 0; column < reducedWidth; ++column, out += 4) {
      const uint64_t count = static_cast<uint64_t>(last - first) *
                             static_cast<uint64_t>(std::min(kx, width - column * kx));
      const uint64_t* sum = &sums[static_cast<size_t>(column) * 4];
      for (int c = 0; c < 4; ++c) out[c] = static_cast<uint8_t>((sum[c] + count / 2) / count);
    }
  }
  // The reduced pixels cover whole blocks: a little more than the source
  // where the last blocks are partial.
  const Size points = source.size();
  reduced->setSize({points.width * reducedWidth * kx / width,
                    points.height * reducedHeight * ky / height});
  return reduced;
}

}  // namespace

ImageForDevice ImageForDevice::reducedFor(const GraphicsContext& context,
                                          std::shared_ptr<Bitmap> image, const Rect& destination) {
  ImageForDevice drawn{std::move(image), ZeroRect()};
  if (!drawn.bitmap || drawn.bitmap->isEmpty() || RectIsEmpty(destination)) return drawn;
  // Device pixels that one image pixel spans along each of the image's axes.
  const AffineTransform toDefault = context.currentTransform();
  const double scale = context.deviceScale();
  const Size alongX = toDefault.transformSize({destination.width() / drawn.bitmap->pixelsWide(), 0});
  const Size alongY = toDefault.transformSize({0, destination.height() / drawn.bitmap->pixelsHigh()});
  const double spanX = std::hypot(alongX.width, alongX.height) * scale;
  const double spanY = std::hypot(alongY.width, alongY.height) * scale;
  // Averaging leaves the filter a shrink of 2 to 4 to finish: less, and the
  // blocks' edges alias; more, and the filter's work grows with it.
  auto factor = [](double span) {
    if (!(span > 0) || !std::isfinite(span) || span > 0.25) return 1;
    return static_cast<int>(std::min(std::floor(0.5 / span), double{1 << 20}));
  };
  const int kx = std::min(factor(spanX), drawn.bitmap->pixelsWide());
  const int ky = std::min(factor(spanY), drawn.bitmap->pixelsHigh());
  if (kx <= 1 && ky <= 1) return drawn;
  const Size points = drawn.bitmap->size();
  std::shared_ptr<Bitmap> reduced = BoxReduced(*drawn.bitmap, kx, ky);
  // Without memory for the reduced copy the image is drawn as it is.
  if (!reduced) return drawn;
  return {std::move(reduced), MakeRect(0, 0, points.width, points.height)};
}

Rect ImageDestinationRect(const Rect& bounds) {
  Rect destination = bounds;
  destination.origin.x = std::trunc(destination.origin.x + 0.5);
  destination.origin.y = std::trunc(destination.origin.y + 0.5);
  return destination;
}

void PaintImageInnerShadow(GraphicsContext& context, const Bitmap& image, const Rect& destination,
                           const BezierPath& path, const Shadow& innerShadow, const Rect& source) {
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
  context.drawBitmap(image, destination, source, CompositingOperation::DestinationOut, 1.0);
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
  std::shared_ptr<Bitmap> shown = imageForDrawing();
  GraphicsStateGuard saved(*context);
  context->setShouldAntialias(true);
  context->setCompositingOperation(CompositingOperation::SourceOver);
  context->setImageInterpolation(ImageInterpolation::High);
  if (bEnableShadow_ && shadow_) context->setShadow(shadow_);
  context->concat(transform());
  // The origin snaps to whole units so that an unscaled image stays crisp.
  const Rect destination = bezierPath_ ? ImageDestinationRect(pathBounds()) : ZeroRect();
  if (!shown) return;
  // Drawn much smaller than its pixels (a thumbnail, a zoomed-out view), the
  // image is first averaged down by whole factors, so that the filter's last
  // step stays small and fast.
  const ImageForDevice drawn = ImageForDevice::reducedFor(*context, std::move(shown), destination);
  context->drawBitmap(*drawn.bitmap, destination, drawn.source, CompositingOperation::SourceOver,
                      fOpacity_);

  if (fOpacity_ >= kMinimumInnerShadowOpacity && bEnableInnerShadow_ && shadowInner_ &&
      bezierPath_) {
    context->setShadow(std::nullopt);
    PaintImageInnerShadow(*context, *drawn.bitmap, destination, *bezierPath_, *shadowInner_,
                          drawn.source);
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
    if (std::shared_ptr<Bitmap> shown = imageForDrawing()) {
      GraphicsStateGuard imageState(*context);
      context->setImageInterpolation(ImageInterpolation::High);
      const Rect destination = ImageDestinationRect(pathBounds());
      const ImageForDevice drawn =
          ImageForDevice::reducedFor(*context, std::move(shown), destination);
      context->drawBitmap(*drawn.bitmap, destination, drawn.source,
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
