#include "document/paint_manager.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "draws/draw_image.h"
#include "platform/bitmap.h"

namespace paintdoc {

namespace {

// The platform truncates through a 32-bit integer; out-of-range values
// saturate here instead of being undefined.
double TruncateThroughInt32(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kMin = std::numeric_limits<int32_t>::min();
  constexpr double kMax = std::numeric_limits<int32_t>::max();
  return static_cast<double>(static_cast<int32_t>(std::clamp(std::trunc(value), kMin, kMax)));
}

// A canvas side as a bitmap side: truncated, 0 for NaN or negative, and
// saturated so that oversized canvases are refused by the bitmap itself.
int BitmapSide(double side) {
  if (!(side > 0)) return 0;
  if (side >= static_cast<double>(std::numeric_limits<int>::max())) {
    return std::numeric_limits<int>::max();
  }
  return static_cast<int>(side);
}

}  // namespace

PaintManager::PaintManager() = default;

PaintManager::~PaintManager() {
  for (const auto& draw : aryDraw_) {
    if (auto* group = dynamic_cast<DrawGroup*>(draw.get())) group->removeAllDraws();
  }
  aryDraw_.clear();
  clearMemeryBuffer();
  drawBackground_.reset();
}

std::shared_ptr<PaintManager> PaintManager::withSize(Size size) {
  auto canvas = std::make_shared<PaintManager>();
  canvas->size_ = Size{TruncateThroughInt32(size.width), TruncateThroughInt32(size.height)};
  return canvas;
}

void PaintManager::setSize(Size size) {
  size_ = Size{std::round(size.width), std::round(size.height)};
}

std::shared_ptr<DrawBase> PaintManager::toppestDraw() const {
  return aryDraw_.empty() ? nullptr : aryDraw_.back();
}

void PaintManager::setBackgroundDraw(std::shared_ptr<DrawImage> draw) {
  auto removeFromList = [this](const std::shared_ptr<DrawImage>& element) {
    auto found = std::find(aryDraw_.begin(), aryDraw_.end(), element);
    if (found != aryDraw_.end()) aryDraw_.erase(found);
  };
  if (!draw) {
    if (!drawBackground_) return;
    removeFromList(drawBackground_);
    imageBuffer_.reset();
    drawBackground_.reset();
    return;
  }
  removeFromList(draw);
  if (drawBackground_) removeFromList(drawBackground_);
  aryDraw_.insert(aryDraw_.begin(), draw);
  drawBackground_ = std::move(draw);
  imageBuffer_.reset();
}

std::shared_ptr<Bitmap> PaintManager::image() {
  if (!image_ || !imageBuffer_) refreshImage();
  return image_;
}

void PaintManager::refreshImage() {
  if (!imageBuffer_) imageBuffer_ = makeCanvasBitmap();
  if (!image_) image_ = makeCanvasBitmap();
  // Layer painting is composition's part; until it paints the draws the
  // picture is the transparent canvas.
}

void PaintManager::clearMemeryBuffer() {
  imageBuffer_.reset();
  image_.reset();
}

std::shared_ptr<Bitmap> PaintManager::makeCanvasBitmap() const {
  return Bitmap::create(BitmapSide(size_.width), BitmapSide(size_.height));
}

}  // namespace paintdoc
