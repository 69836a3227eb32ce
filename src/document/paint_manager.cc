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

}  // namespace paintdoc
