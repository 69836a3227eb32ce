// Composition of the canvas: the layer list painted bottom first into the
// canvas bitmap, with a buffer of every layer but the top one so that editing
// the top layer repaints one draw over a copy of the buffer.
#include <algorithm>
#include <cstring>
#include <unordered_set>

#include "document/canvas_renderer.h"
#include "document/paint_manager.h"
#include "raster/draw_image.h"
#include "platform/values/bitmap.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/bitmap_functions.h"

namespace paintdoc {

namespace {

bool Contains(const DrawList& list, const std::shared_ptr<DrawBase>& draw) {
  return std::find(list.begin(), list.end(), draw) != list.end();
}

// Replaces every pixel of `to` by the pixels of `from`. Bitmaps of one size
// are copied byte for byte, which is what a copy-operation draw of the whole
// bitmap gives; otherwise `from` is drawn at its size with the copy operation.
void ReplacePixels(const std::shared_ptr<Bitmap>& to, const Bitmap& from) {
  if (to->pixelsWide() == from.pixelsWide() && to->pixelsHigh() == from.pixelsHigh()) {
    if (!from.isEmpty()) std::memcpy(to->data(), from.data(), from.byteCount());
    return;
  }
  BitmapFocus focus(to);
  focus.context().setCompositingOperation(CompositingOperation::Copy);
  focus.context().drawImage(from, MakeRect(0, 0, to->size().width, to->size().height));
}

}  // namespace

Rect GetCenterRect(Size imageSize, const Rect& outer) {
  const double width = outer.width();
  const double height = outer.height();
  const float ratioX = static_cast<float>(imageSize.width / width);
  const float ratioY = static_cast<float>(imageSize.height / height);
  Size fitted = imageSize;
  if (ratioX > 1 && ratioX >= ratioY) {
    fitted = MakeSize(width, imageSize.height / ratioX);
  } else if (ratioY > 1 && ratioY >= ratioX) {
    fitted = MakeSize(imageSize.width / ratioY, height);
  }
  return MakeRect((width - fitted.width) / 2, (height - fitted.height) / 2, fitted.width,
                  fitted.height);
}

std::shared_ptr<Bitmap> PaintManager::makeCanvasBitmap() const {
  return InitImageRep(size_.width, size_.height);
}

std::shared_ptr<Bitmap> PaintManager::image() {
  if (!image_ || !imageBuffer_) refreshImage();
  return image_;
}

Rect PaintManager::canvasRect() const { return MakeRect(0, 0, size_.width, size_.height); }

void PaintManager::refreshImage() {
  if (!imageBuffer_) {
    imageBuffer_ = makeCanvasBitmap();
    // Every draw but the top one.
    if (imageBuffer_ && aryDraw_.size() >= 2) {
      CanvasRenderer(*this, imageBuffer_, canvasRect()).paintDraws(0, aryDraw_.size() - 1);
    }
  }
  if (!image_) image_ = makeCanvasBitmap();
  if (!image_) return;

  if (imageBuffer_) ReplacePixels(image_, *imageBuffer_);
  CanvasRenderer renderer(*this, image_, canvasRect());
  // With a single draw in the list, this is the only place it is painted.
  if (!aryDraw_.empty()) renderer.paintDraws(aryDraw_.size() - 1, aryDraw_.size());
  renderer.maskWithBackground();
}

void PaintManager::clearMemeryBuffer() {
  imageBuffer_.reset();
  image_.reset();
}

DrawList PaintManager::visibleDraws() const {
  DrawList visible;
  for (const auto& draw : aryDraw_) {
    if (!draw->visible()) continue;
    const auto* group = dynamic_cast<const DrawGroup*>(draw.get());
    if (group != nullptr && !group->hasVisibleDraw()) continue;
    visible.push_back(draw);
  }
  return visible;
}

DrawList PaintManager::drawsInLayerOrder(const DrawList& collection) const {
  std::unordered_set<const DrawBase*> wanted;
  for (const auto& draw : collection) wanted.insert(draw.get());
  DrawList ordered;
  for (const auto& draw : aryDraw_) {
    if (wanted.count(draw.get()) != 0) {
      ordered.push_back(draw);
    } else if (const auto* group = dynamic_cast<const DrawGroup*>(draw.get())) {
      for (const auto& member : group->draws()) {
        if (wanted.count(member.get()) != 0) ordered.push_back(member);
      }
    }
  }
  return ordered;
}

void PaintManager::setBackgroundImage(std::shared_ptr<Bitmap> image) {
  if (!image) {
    setBackgroundDraw(nullptr);
    return;
  }
  const Rect fitted = GetCenterRect(MakeSize(image->pixelsWide(), image->pixelsHigh()),
                                    MakeRect(0, 0, size_.width, size_.height));
  if (drawBackground_) {
    drawBackground_->setImage(std::move(image));
    drawBackground_->setBezierPathWithBounds(fitted);
    imageBuffer_.reset();
    return;
  }
  std::shared_ptr<DrawImage> background = DrawImage::withImage(std::move(image));
  background->setBezierPathWithBounds(fitted);
  setBackgroundDraw(std::move(background));
}

void PaintManager::respondToChangeOfDraws(const DrawList& changedDraws) {
  const std::shared_ptr<DrawBase> top = toppestDraw();
  // Only the top draw changed: the buffer below it is still right.
  if (changedDraws.size() == 1 && top && changedDraws.front() == top) {
    refreshImage();
    return;
  }
  for (const auto& draw : changedDraws) {
    if (draw && Contains(aryDraw_, draw)) {
      imageBuffer_.reset();
      return;
    }
  }
  bool topGroupChanged = false;
  for (const auto& draw : changedDraws) {
    const std::shared_ptr<DrawGroup> group = groupForDraw(draw);
    if (!group) continue;
    if (group != top) {
      imageBuffer_.reset();
      return;
    }
    topGroupChanged = true;
  }
  // Draws that are neither top level nor in a group change nothing.
  if (topGroupChanged) refreshImage();
}

bool PaintManager::addDraw(std::shared_ptr<DrawBase> draw) {
  if (!draw || Contains(aryDraw_, draw)) return false;
  // The present top draw is about to join the layers below the top: paint it
  // into the buffer now instead of rebuilding the buffer later.
  if (!aryDraw_.empty() && imageBuffer_) {
    CanvasRenderer(*this, imageBuffer_, canvasRect()).paintDraws(aryDraw_.size() - 1, aryDraw_.size());
  }
  aryDraw_.push_back(std::move(draw));
  image_.reset();
  return true;
}

}  // namespace paintdoc
