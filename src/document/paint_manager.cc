#include "document/paint_manager.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "raster/draw_image.h"
#include "platform/values/bitmap.h"
#include "platform/codecs/image_codecs.h"

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

namespace {

// The size of a canvas made from an image when there is no image.
constexpr Size kSizeWithoutImage{100, 100};

}  // namespace

std::shared_ptr<PaintManager> PaintManager::withSize(Size size) {
  auto canvas = std::make_shared<PaintManager>();
  canvas->size_ = Size{TruncateThroughInt32(size.width), TruncateThroughInt32(size.height)};
  return canvas;
}

std::shared_ptr<PaintManager> PaintManager::withImageRep(std::shared_ptr<Bitmap> bitmap) {
  auto canvas = withSize(kSizeWithoutImage);
  if (!bitmap) return canvas;
  canvas->size_ = Size{static_cast<double>(bitmap->pixelsWide()),
                       static_cast<double>(bitmap->pixelsHigh())};
  // The background is set directly, not through setBackgroundDraw: the list is
  // empty, so appending puts it at index 0.
  canvas->drawBackground_ = DrawImage::withImage(std::move(bitmap));
  canvas->addDraw(canvas->drawBackground_);
  return canvas;
}

std::shared_ptr<PaintManager> PaintManager::withImage(const std::shared_ptr<Bitmap>& image) {
  if (!image) return withImageRep(nullptr);
  const Result<std::vector<uint8_t>> tiff = WriteTIFF(*image);
  if (!tiff) return withImageRep(nullptr);
  ImageResult normalised = ReadTIFF(*tiff);
  return withImageRep(normalised ? normalised->bitmap : nullptr);
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
