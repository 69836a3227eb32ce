#include "platform/filters/convolution_filters.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/filters/filter_pixels.h"
#include "platform/graphics/gaussian_blur.h"

namespace paintdoc {
namespace {

using filter_pixels::ForEachRow;
using filter_pixels::Plane;

// The bitmap with one pixel more on every side, filled by the edge rule, so
// that 3 × 3 neighbourhoods need no bounds checks.
struct PaddedPixels {
  int width = 0, height = 0;  // of the padded area
  std::vector<uint8_t> bytes;
  size_t offset(int x, int row) const {
    return (static_cast<size_t>(row) * width + x) * Bitmap::kBytesPerPixel;
  }
  const uint8_t* at(int x, int row) const { return bytes.data() + offset(x, row); }
  uint8_t* at(int x, int row) { return bytes.data() + offset(x, row); }
};

PaddedPixels PadByOne(const Bitmap& input, FilterEdges edges) {
  PaddedPixels padded{input.pixelsWide() + 2, input.pixelsHigh() + 2, {}};
  padded.bytes.resize(static_cast<size_t>(padded.width) * padded.height * Bitmap::kBytesPerPixel);
  for (int row = 0; row < padded.height; ++row) {
    for (int x = 0; x < padded.width; ++x) {
      filter_pixels::StorePixel(padded.at(x, row),
                                filter_pixels::SampleStored(input, x - 1, row - 1, edges));
    }
  }
  return padded;
}

std::shared_ptr<Bitmap> EmptyLike(const Bitmap& input) {
  auto output = Bitmap::create(input.pixelsWide(), input.pixelsHigh());
  if (output) output->setSize(input.size());
  return output;
}

}  // namespace

std::shared_ptr<Bitmap> CIGaussianBlur(const Bitmap& input, double inputRadius, FilterEdges edges) {
  auto output = input.copy();
  if (!output) return nullptr;
  GaussianBlur(*output, kGaussianBlurRadius.sanitized(inputRadius),
               edges == FilterEdges::Clamp ? BlurEdges::Clamp : BlurEdges::Transparent);
  return output;
}

std::shared_ptr<Bitmap> CISharpenLuminance(const Bitmap& input, double inputSharpness,
                                           double inputRadius, FilterEdges edges) {
  const float sharpness = static_cast<float>(kSharpenLuminanceSharpness.sanitized(inputSharpness));
  const double radius = kSharpenLuminanceRadius.sanitized(inputRadius);
  const Plane luma = filter_pixels::PremultipliedLuma(input);
  const Plane blurred = filter_pixels::BlurPlane(luma, radius, edges);
  auto output = EmptyLike(input);
  if (!output) return nullptr;
  const int width = input.pixelsWide();
  ForEachRow(input.pixelsHigh(), static_cast<long>(width) * input.pixelsHigh(), [&](int row) {
    const uint8_t* in = input.rowAt(row);
    uint8_t* out = output->rowAt(row);
    for (int x = 0; x < width; ++x, in += Bitmap::kBytesPerPixel, out += Bitmap::kBytesPerPixel) {
      const float alpha = in[Bitmap::kAlpha];
      const float detail = sharpness * (luma.at(x, row) - blurred.at(x, row)) * 255.0f;
      for (int channel : {Bitmap::kRed, Bitmap::kGreen, Bitmap::kBlue}) {
        out[channel] = filter_pixels::ToByte(std::clamp(in[channel] + detail, 0.0f, alpha));
      }
      out[Bitmap::kAlpha] = in[Bitmap::kAlpha];
    }
  });
  return output;
}

std::shared_ptr<Bitmap> CIEdges(const Bitmap& input, double inputIntensity, FilterEdges edges) {
  const float intensity = static_cast<float>(kEdgesIntensity.sanitized(inputIntensity));
  auto output = EmptyLike(input);
  if (!output || input.isEmpty()) return output;
  const PaddedPixels padded = PadByOne(input, edges);
  const int width = input.pixelsWide();
  ForEachRow(input.pixelsHigh(), static_cast<long>(width) * input.pixelsHigh(), [&](int row) {
    uint8_t* out = output->rowAt(row);
    for (int x = 0; x < width; ++x, out += Bitmap::kBytesPerPixel) {
      // Padded (x + 1, row + 1) is the pixel itself.
      const uint8_t* above = padded.at(x, row);
      const uint8_t* middle = padded.at(x, row + 1);
      const uint8_t* below = padded.at(x, row + 2);
      constexpr int kLeft = 0, kCentre = Bitmap::kBytesPerPixel, kRight = 2 * Bitmap::kBytesPerPixel;
      const float alpha = middle[kCentre + Bitmap::kAlpha];
      for (int channel : {Bitmap::kRed, Bitmap::kGreen, Bitmap::kBlue}) {
        auto v = [&](const uint8_t* line, int offset) { return static_cast<float>(line[offset + channel]); };
        const float gx = (v(above, kRight) + 2 * v(middle, kRight) + v(below, kRight)) -
                         (v(above, kLeft) + 2 * v(middle, kLeft) + v(below, kLeft));
        const float gy = (v(below, kLeft) + 2 * v(below, kCentre) + v(below, kRight)) -
                         (v(above, kLeft) + 2 * v(above, kCentre) + v(above, kRight));
        const float magnitude = std::sqrt(gx * gx + gy * gy) / 4.0f * intensity;
        out[channel] = filter_pixels::ToByte(std::min(magnitude, alpha));
      }
      out[Bitmap::kAlpha] = middle[kCentre + Bitmap::kAlpha];
    }
  });
  return output;
}

std::shared_ptr<Bitmap> CIEdgeWork(const Bitmap& input, double inputRadius, FilterEdges edges) {
  const double radius = kEdgeWorkRadius.sanitized(inputRadius);
  const Plane luma = filter_pixels::PremultipliedLuma(input);
  const Plane fine = filter_pixels::BlurPlane(luma, radius, edges);
  const Plane coarse = filter_pixels::BlurPlane(luma, 2 * radius + 1, edges);
  auto output = EmptyLike(input);
  if (!output) return nullptr;
  const int width = input.pixelsWide();
  ForEachRow(input.pixelsHigh(), static_cast<long>(width) * input.pixelsHigh(), [&](int row) {
    const uint8_t* in = input.rowAt(row);
    uint8_t* out = output->rowAt(row);
    for (int x = 0; x < width; ++x, in += Bitmap::kBytesPerPixel, out += Bitmap::kBytesPerPixel) {
      const uint8_t alpha = in[Bitmap::kAlpha];
      const bool ink = fine.at(x, row) - coarse.at(x, row) < -kEdgeWorkThreshold;
      const uint8_t level = ink ? 0 : alpha;
      filter_pixels::StorePixel(out, {level, level, level, alpha});
    }
  });
  return output;
}

}  // namespace paintdoc
