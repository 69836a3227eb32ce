// CanvasRenderer: paints a canvas's layers into a bitmap at any scale and for
// any area of the canvas. It keeps nothing between renders: the canvas's own
// caches (PaintManager::image) paint through it at full size, previews and
// thumbnails paint through it straight into the bitmap they hand out.
//
//   CanvasRenderer renderer(canvas, thumbnail, canvasRect);  // area → bitmap
//   renderer.paintAll();
//   if (renderer.failed()) ... renderer.failure() ...
//
// The area, in canvas units with the origin at the lower left, is stretched
// onto the whole bitmap, so the scale is the bitmap's pixel size over the
// area's size: the draws keep drawing in canvas units, and whatever works in
// device pixels (shadows, the half-pixel shift of odd line widths) asks the
// graphics context for its device scale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "draws/draw_base.h"
#include "platform/graphics/graphics_context.h"
#include "platform/values/geometry.h"

namespace paintdoc {

class Bitmap;
class PaintManager;

class CanvasRenderer {
 public:
  // Locks focus on `target` for the life of the renderer, showing `area` of
  // the canvas over its pixels (an empty bitmap or area shows nothing). The bitmap's point size is lent to the area
  // while the renderer lives and given back afterwards.
  CanvasRenderer(const PaintManager& canvas, std::shared_ptr<Bitmap> target, const Rect& area);
  ~CanvasRenderer();
  CanvasRenderer(const CanvasRenderer&) = delete;
  CanvasRenderer& operator=(const CanvasRenderer&) = delete;

  // Every visible draw, bottom first, then the mask of the background.
  void paintAll();
  // The visible draws at list positions [first, end) (end is clamped to the
  // list), painted over what the bitmap holds. The list's length is read
  // again after every draw, so painting never runs past a list that changed.
  void paintDraws(size_t first, size_t end);
  // Keeps the picture only where the background image is, when the canvas
  // asks for that (maskBackground()).
  void maskWithBackground();

  // Whether drawing failed (no memory for a bitmap on the way, a path beyond
  // the drawing budget): the picture is then incomplete and must not be shown
  // as the document.
  bool failed() const;
  // Why, in one line; empty when nothing failed.
  std::string failure() const;

 private:
  const PaintManager& canvas_;
  std::shared_ptr<Bitmap> target_;
  Size targetPointSize_;
  Rect area_;
  bool usable_ = false;
  GraphicsContext* context_ = nullptr;  // the focus locked on target_
  std::string setupFailure_;
  // Failed allocations of pixel memory noted on this thread before drawing.
  uint64_t memoryFailuresAtStart_ = 0;
};

}  // namespace paintdoc
