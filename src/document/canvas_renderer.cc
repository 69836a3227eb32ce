#include "document/canvas_renderer.h"

#include <algorithm>

#include "document/paint_manager.h"
#include "platform/graphics/graphics_guards.h"
#include "platform/values/bitmap.h"
#include "platform/values/pixel_memory.h"
#include "raster/draw_image.h"

namespace paintdoc {

CanvasRenderer::CanvasRenderer(const PaintManager& canvas, std::shared_ptr<Bitmap> target,
                               const Rect& area)
    : canvas_(canvas),
      target_(std::move(target)),
      area_(area),
      memoryFailuresAtStart_(PixelMemoryFailureCount()) {
  if (!target_) {
    setupFailure_ = "no bitmap to draw the canvas into";
  } else if (!target_->isEmpty() && area.width() > 0 && area.height() > 0) {
    usable_ = true;
    targetPointSize_ = target_->size();
    target_->setSize(area.size);
  }
  // An empty bitmap or area has nothing to show, which is no failure; every
  // painting call then returns at once.
  if (!usable_) return;
  context_ = &GraphicsContext::lockFocus(target_);
  context_->setCompositingOperation(CompositingOperation::SourceOver);
  context_->translate(-area.origin.x, -area.origin.y);
}

CanvasRenderer::~CanvasRenderer() {
  if (!usable_) return;
  GraphicsContext::unlockFocus();
  target_->setSize(targetPointSize_);
}

void CanvasRenderer::paintAll() {
  paintDraws(0, canvas_.allDraws().size());
  maskWithBackground();
}

void CanvasRenderer::paintDraws(size_t first, size_t end) {
  if (!usable_) return;
  const DrawList& draws = canvas_.allDraws();
  for (size_t index = first; index < std::min(end, draws.size()); ++index) {
    // Each draw is held while it paints.
    const std::shared_ptr<DrawBase> draw = draws[index];
    if (draw && draw->visible()) draw->drawInImage(target_);
  }
}

void CanvasRenderer::maskWithBackground() {
  const std::shared_ptr<DrawImage>& background = canvas_.backgroundDraw();
  if (!usable_ || !background || !canvas_.maskBackground()) return;
  const std::shared_ptr<Bitmap>& mask = background->image();
  // Without pixels there is nothing to mask with; the picture stays as it is.
  if (!mask) return;
  GraphicsContext& context = *context_;
  // The background's own rotation is left out here.
  const Rect maskRect = background->controlBoundsBeforeRotation();
  GraphicsStateGuard saved(context);
  context.setCompositingOperation(CompositingOperation::DestinationIn);
  context.drawImage(*mask, maskRect);
  // An image draw changes only its own rectangle; the picture outside the
  // background is cleared explicitly, so that only the background's area
  // remains.
  BezierPath outside = BezierPath::withRect(area_);
  outside.appendRect(maskRect);
  context.clip(outside, WindingRule::EvenOdd);
  context.setFillColor(Color::clearColor());
  context.fillRect(area_, CompositingOperation::Copy);
}

bool CanvasRenderer::failed() const { return !failure().empty(); }

std::string CanvasRenderer::failure() const {
  if (!setupFailure_.empty()) return setupFailure_;
  if (context_ != nullptr && context_->failed()) return context_->failure();
  if (PixelMemoryFailureCount() != memoryFailuresAtStart_) return LastPixelMemoryFailure();
  return "";
}

}  // namespace paintdoc
