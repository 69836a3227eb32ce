#include "raster/draw_airbrush.h"

#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"
#include "raster/spray_random.h"

namespace paintdoc {

namespace {

// Each dot covers on average this many square units of the disc's square.
constexpr float kUnitsPerDot = 30.0f;
constexpr int kSmallestRange = 4;

}  // namespace

void DrawAirbrush::init() {
  DrawBase::init();
  bezierPath_->setLineCapStyle(LineCapStyle::Round);
  bezierPath_->setLineWidth(1.0);
  fBrushWidth_ = kDefaultBrushWidth;
  image_.reset();
}

void DrawAirbrush::encodeWithCoder(KeyedArchiver& coder) const {
  DrawBase::encodeWithCoder(coder);
  coder.encodeFloatForKey(fBrushWidth_, "BrushWidth");
  if (image_) coder.encodeBitmapForKey(image_, "Image");
}

bool DrawAirbrush::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  fBrushWidth_ = coder.containsValueForKey("BrushWidth") ? coder.decodeFloatForKey("BrushWidth")
                                                         : kDefaultBrushWidth;
  if (coder.containsValueForKey("Image")) image_ = coder.decodeBitmapForKey("Image");
  replaceBezierPathWithImageIfPossible();
  return true;
}

BezierPath DrawAirbrush::sprayPathAtPoint(Point point) const {
  BezierPath path;
  const float width = fBrushWidth_;
  const float radius = width * 0.5f;
  const float area = width * width / kUnitsPerDot;
  if (!(area > 0)) return path;
  const Rect square = MakeRect(point.x - radius, point.y - radius, width, width);
  const BezierPath disc = BezierPath::withOvalInRect(square);
  const float wholeWidth = std::trunc(width + 0.5f);
  const int range = wholeWidth > 3 ? static_cast<int>(wholeWidth) : kSmallestRange;
  SprayRandom& random = SharedSprayRandom();
  for (int dot = 0; static_cast<float>(dot) < area; ++dot) {
    for (int attempt = 0; attempt < kMaxDotTries; ++attempt) {
      const Point candidate{
          std::trunc(static_cast<double>(random.next() % range) + point.x - radius),
          std::trunc(static_cast<double>(random.next() % range) + point.y - radius)};
      if (!disc.containsPoint(candidate)) continue;
      path.moveTo(candidate);
      path.lineTo(candidate);
      break;
    }
  }
  return path;
}

void DrawAirbrush::replaceBezierPathWithImageIfPossible() {
  if (image_ || !bezierPath_ || bezierPath_->elementCount() < kFlattenElementCount) return;
  const Rect bounds = bezierPath_->bounds();
  if (bounds.width() * bounds.height() > kMaxFlattenedPixels) return;
  std::shared_ptr<Bitmap> image = InitImageRep(bounds.width(), bounds.height());
  if (!image || image->isEmpty()) return;
  {
    BitmapFocus focus(image);
    GraphicsContext& context = *GraphicsContext::current();
    context.setShouldAntialias(false);
    context.setCompositingOperation(CompositingOperation::SourceOver);
    context.translate(-bounds.origin.x, -bounds.origin.y);
    draw();
  }
  image_ = image;
  bezierPath_->removeAllPoints();
  bezierPath_->appendRect(bounds);
}

void DrawAirbrush::_draw() {
  if (!image_ || !bezierPath_ || bezierPath_->isEmpty()) {
    DrawBase::_draw();
    return;
  }
  GraphicsContext* context = GraphicsContext::current();
  if (context != nullptr) drawFlattenedImage(*context);
}

void DrawAirbrush::drawFlattenedImage(GraphicsContext& context) {
  GraphicsStateGuard saved(context);
  context.setCompositingOperation(CompositingOperation::SourceOver);
  context.setImageInterpolation(ImageInterpolation::High);
  context.setShouldAntialias(false);
  if (bEnableShadow_ && shadow_) context.setShadow(shadow_);
  context.concat(transform());
  Rect bounds = bezierPath_->bounds();
  bounds.origin = {std::trunc(bounds.origin.x + 0.5), std::trunc(bounds.origin.y + 0.5)};
  context.drawImage(*image_, bounds);
}

}  // namespace paintdoc
