#include "platform/codecs/row_shrinker.h"

#include <algorithm>
#include <cmath>

namespace paintdoc {

namespace {

uint64_t CeilDiv(uint64_t value, uint64_t divisor) { return (value + divisor - 1) / divisor; }

}  // namespace

int ShrinkFactorToCover(uint64_t width, uint64_t height, int box, int maxFactor) {
  if (box <= 0 || width == 0 || height == 0) return 1;
  const uint64_t longSide = std::max(width, height), shortSide = std::min(width, height);
  const uint64_t fittedLong = std::min<uint64_t>(longSide, uint64_t(box));
  // The short side of the fitted image, rounded up: covering it never loses
  // a row to rounding.
  const uint64_t fittedShort = CeilDiv(shortSide * fittedLong, longSide);
  for (int factor = maxFactor; factor > 1; --factor) {
    if (CeilDiv(longSide, uint64_t(factor)) >= fittedLong &&
        CeilDiv(shortSide, uint64_t(factor)) >= fittedShort) {
      return factor;
    }
  }
  return 1;
}

RowShrinker::RowShrinker(std::shared_ptr<Bitmap> target, int width, int height, int factor)
    : target_(std::move(target)),
      width_(width),
      height_(height),
      factor_(factor),
      sums_(static_cast<size_t>(target_->pixelsWide()) * 4, 0),
      out_(static_cast<size_t>(target_->pixelsWide()) * 4, 0) {}

void RowShrinker::addRow(const uint8_t* straightRGBA) {
  if (sourceRow_ >= height_) return;
  for (int x = 0; x < width_; ++x) {
    const uint8_t* pixel = straightRGBA + static_cast<size_t>(x) * 4;
    uint32_t* sum = sums_.data() + static_cast<size_t>(x / factor_) * 4;
    const uint32_t alpha = pixel[3];
    for (int channel = 0; channel < 3; ++channel) sum[channel] += (pixel[channel] * alpha + 127) / 255;
    sum[3] += alpha;
  }
  ++rowsInBlock_;
  ++sourceRow_;
  if (rowsInBlock_ == factor_ || sourceRow_ == height_) flushBlockRow();
}

void RowShrinker::flushBlockRow() {
  const int targetWide = target_->pixelsWide();
  for (int x = 0; x < targetWide; ++x) {
    // The last block of a row or column may be narrower than the factor.
    const int blockWide = std::min(factor_, width_ - x * factor_);
    const uint32_t count = static_cast<uint32_t>(blockWide * rowsInBlock_);
    for (int channel = 0; channel < 4; ++channel) {
      const size_t at = static_cast<size_t>(x) * 4 + static_cast<size_t>(channel);
      out_[at] = static_cast<uint8_t>((sums_[at] + count / 2) / count);
    }
  }
  target_->writeRGBARow((sourceRow_ - 1) / factor_, out_.data(), AlphaMode::Premultiplied);
  std::fill(sums_.begin(), sums_.end(), 0);
  rowsInBlock_ = 0;
}

}  // namespace paintdoc
