#include "raster/draw_image.h"

#include <cmath>

#include "platform/graphics/bitmap_functions.h"
#include "platform/values/bitmap.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"

namespace paintdoc {

std::shared_ptr<DrawImage> DrawImage::withImage(std::shared_ptr<Bitmap> image) {
  if (!image) return nullptr;
  auto draw = MakeDraw<DrawImage>();
  draw->setBezierPathWithBounds(MakeRect(0, 0, image->pixelsWide(), image->pixelsHigh()));
  draw->bezierPath_->setLineWidth(0);
  draw->image_ = std::move(image);
  return draw;
}

void DrawImage::flip(bool horizontal) {
  if (image_) image_ = ImageFliped(image_, horizontal);
  DrawRectangle::flip(horizontal);
}

void DrawImage::_draw() {
  GraphicsContext* context = GraphicsContext::current();
  std::shared_ptr<Bitmap> shown = imageForDrawing();
  if (context == nullptr || !shown) return;
  GraphicsStateGuard saved(*context);
  context->setShouldAntialias(true);
  context->setCompositingOperation(CompositingOperation::SourceOver);
  context->setImageInterpolation(ImageInterpolation::High);
  if (bEnableShadow_ && shadow_) context->setShadow(shadow_);
  context->concat(transform());
  // The origin snaps to whole units so that an unscaled image stays crisp.
  Rect destination = pathBounds();
  destination.origin.x = std::trunc(destination.origin.x + 0.5);
  destination.origin.y = std::trunc(destination.origin.y + 0.5);
  context->drawBitmap(*shown, destination, ZeroRect(), CompositingOperation::SourceOver, 1.0);
}

}  // namespace paintdoc
