#include "preview/bitmap_scaling.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "platform/values/bitmap.h"

namespace paintdoc {

namespace {

constexpr int kSamples = Bitmap::kBytesPerPixel;

// The source pixels one destination pixel covers along one axis, with the
// fraction of the destination pixel each of them fills.
struct Span {
  int first = 0;
  std::vector<float> weights;
};

std::vector<Span> AreaSpans(int sourceLength, int destinationLength) {
  const double scale = static_cast<double>(sourceLength) / destinationLength;
  std::vector<Span> spans(destinationLength);
  for (int d = 0; d < destinationLength; ++d) {
    const double start = d * scale;
    const double end = std::min((d + 1) * scale, static_cast<double>(sourceLength));
    Span& span = spans[d];
    span.first = std::min(static_cast<int>(start), sourceLength - 1);
    const int last = std::max(span.first, std::min(static_cast<int>(std::ceil(end)), sourceLength) - 1);
    for (int s = span.first; s <= last; ++s) {
      const double covered = std::min(end, s + 1.0) - std::max(start, static_cast<double>(s));
      span.weights.push_back(static_cast<float>(std::max(covered, 0.0) / (end - start)));
    }
  }
  return spans;
}

uint8_t ToSample(float value) {
  return static_cast<uint8_t>(std::clamp(value + 0.5f, 0.0f, 255.0f));
}

}  // namespace

std::shared_ptr<Bitmap> ScaleBitmapByArea(const Bitmap& source, int pixelsWide, int pixelsHigh) {
  if (pixelsWide < 1 || pixelsHigh < 1 || source.isEmpty()) return nullptr;
  auto destination = Bitmap::create(pixelsWide, pixelsHigh);
  if (!destination) return nullptr;

  const int sourceHigh = source.pixelsHigh();
  const std::vector<Span> columns = AreaSpans(source.pixelsWide(), pixelsWide);
  const std::vector<Span> rows = AreaSpans(sourceHigh, pixelsHigh);

  // Horizontal pass into floats: every source row, destination width.
  std::vector<float> narrowed(static_cast<size_t>(pixelsWide) * sourceHigh * kSamples);
  for (int y = 0; y < sourceHigh; ++y) {
    const uint8_t* in = source.rowAt(y);
    float* out = &narrowed[static_cast<size_t>(y) * pixelsWide * kSamples];
    for (int x = 0; x < pixelsWide; ++x) {
      const Span& span = columns[x];
      for (size_t i = 0; i < span.weights.size(); ++i) {
        const uint8_t* pixel = in + static_cast<size_t>(span.first + i) * kSamples;
        for (int c = 0; c < kSamples; ++c) out[x * kSamples + c] += span.weights[i] * pixel[c];
      }
    }
  }

  // Vertical pass into the destination.
  std::vector<float> accumulator(static_cast<size_t>(pixelsWide) * kSamples);
  for (int y = 0; y < pixelsHigh; ++y) {
    std::fill(accumulator.begin(), accumulator.end(), 0.0f);
    const Span& span = rows[y];
    for (size_t i = 0; i < span.weights.size(); ++i) {
      const float* in = &narrowed[static_cast<size_t>(span.first + i) * pixelsWide * kSamples];
      for (size_t k = 0; k < accumulator.size(); ++k) accumulator[k] += span.weights[i] * in[k];
    }
    uint8_t* out = destination->rowAt(y);
    for (size_t k = 0; k < accumulator.size(); ++k) out[k] = ToSample(accumulator[k]);
  }
  return destination;
}

PixelSize FitIntoSquare(int width, int height, int box) {
  if (width <= box && height <= box) return {std::max(width, 1), std::max(height, 1)};
  const double scale = static_cast<double>(box) / std::max(width, height);
  return {std::max(1, static_cast<int>(std::lround(width * scale))),
          std::max(1, static_cast<int>(std::lround(height * scale)))};
}

std::optional<BitmapDifference> CompareBitmaps(const Bitmap& a, const Bitmap& b) {
  if (a.pixelsWide() != b.pixelsWide() || a.pixelsHigh() != b.pixelsHigh()) return std::nullopt;
  BitmapDifference difference;
  if (a.isEmpty()) return difference;
  uint64_t total = 0;
  const size_t bytes = a.byteCount();
  for (size_t i = 0; i < bytes; ++i) {
    const int delta = std::abs(int(a.data()[i]) - int(b.data()[i]));
    total += static_cast<uint64_t>(delta);
    difference.max = std::max(difference.max, delta);
  }
  difference.mean = static_cast<double>(total) / static_cast<double>(bytes);
  return difference;
}

}  // namespace paintdoc
