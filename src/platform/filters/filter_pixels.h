// Pixel access shared by the filters: straight colour in [0, 1] read from and
// written to premultiplied pixels, reads beyond the edges, the filters'
// lower-left coordinates, row loops and blurred float planes.
//
// Colour is taken as stored (sRGB-encoded), not converted to linear light
// first: the bitmaps carry no colour space tag to convert from, and on the
// encoded values an inversion maps 128 to 127, which is what a user picking
// "Invert Colors" expects to see.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/filters/filter_inputs.h"
#include "platform/values/bitmap.h"
#include "platform/values/parallel_loops.h"

namespace paintdoc::filter_pixels {

// Straight (unpremultiplied) colour and alpha, each in [0, 1].
struct Straight {
  float red = 0, green = 0, blue = 0, alpha = 0;
};

inline Straight ReadStraight(const uint8_t* pixel) {
  const float alpha = pixel[Bitmap::kAlpha];
  if (alpha == 0) return {};
  const float scale = 1.0f / alpha;
  return {pixel[Bitmap::kRed] * scale, pixel[Bitmap::kGreen] * scale, pixel[Bitmap::kBlue] * scale,
          alpha / 255.0f};
}

// A byte from a value in [0, 255], rounded; values outside are clamped.
inline uint8_t ToByte(float value) {
  return static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f) + 0.5f);
}

// Writes straight colour (clamped to [0, 1]) premultiplied by `alpha`, a byte.
inline void WritePremultiplied(uint8_t* pixel, float red, float green, float blue, uint8_t alpha) {
  const float a = alpha;
  pixel[Bitmap::kRed] = ToByte(std::clamp(red, 0.0f, 1.0f) * a);
  pixel[Bitmap::kGreen] = ToByte(std::clamp(green, 0.0f, 1.0f) * a);
  pixel[Bitmap::kBlue] = ToByte(std::clamp(blue, 0.0f, 1.0f) * a);
  pixel[Bitmap::kAlpha] = alpha;
}

// Runs body(row) for every storage row, rows in parallel when parallel pixel
// loops are on and the bitmap is large enough to repay starting the threads.
template <class Body>
void ForEachRow(int height, long pixels, Body body) {
  const bool parallel = ParallelPixelLoops() && pixels >= (1L << 16);
#pragma omp parallel for schedule(static) if (parallel)
  for (int row = 0; row < height; ++row) body(row);
}

// A new bitmap of the input's size whose every pixel is map(straight) of the
// input's: `map` changes red, green and blue of a Straight in place; alpha is
// kept. Fully transparent pixels stay transparent. Null without memory.
template <class Map>
std::shared_ptr<Bitmap> MapStraightColors(const Bitmap& input, Map map) {
  auto output = Bitmap::create(input.pixelsWide(), input.pixelsHigh());
  if (!output) return nullptr;
  output->setSize(input.size());
  const int width = input.pixelsWide();
  ForEachRow(input.pixelsHigh(), static_cast<long>(width) * input.pixelsHigh(), [&](int row) {
    const uint8_t* in = input.rowAt(row);
    uint8_t* out = output->rowAt(row);
    for (int x = 0; x < width; ++x, in += Bitmap::kBytesPerPixel, out += Bitmap::kBytesPerPixel) {
      if (in[Bitmap::kAlpha] == 0) continue;
      Straight color = ReadStraight(in);
      map(color);
      WritePremultiplied(out, color.red, color.green, color.blue, in[Bitmap::kAlpha]);
    }
  });
  return output;
}

// The premultiplied pixel at `column` and storage `row`, seen through the
// edge rule: beyond the edges either transparent or the nearest edge pixel.
// Coordinates may be any value (far outside too).
inline Rgba8 SampleStored(const Bitmap& bitmap, long column, long row, FilterEdges edges) {
  const long width = bitmap.pixelsWide(), height = bitmap.pixelsHigh();
  if (width == 0 || height == 0) return {};
  if (column < 0 || column >= width || row < 0 || row >= height) {
    if (edges == FilterEdges::Transparent) return {};
    column = std::clamp(column, 0L, width - 1);
    row = std::clamp(row, 0L, height - 1);
  }
  const uint8_t* pixel = bitmap.rowAt(static_cast<int>(row)) + column * Bitmap::kBytesPerPixel;
  return {pixel[Bitmap::kRed], pixel[Bitmap::kGreen], pixel[Bitmap::kBlue], pixel[Bitmap::kAlpha]};
}

// The pixel holding the point (x, y) of the filters' coordinates: pixels,
// origin at the lower left, y up (pixel centres at half units).
inline Rgba8 SampleAtPoint(const Bitmap& bitmap, double x, double y, FilterEdges edges) {
  // Far-away points are clamped to a range that still lies outside the
  // bitmap before turning into integers.
  constexpr double kFar = 1e9;
  const long column = static_cast<long>(std::floor(std::clamp(x, -kFar, kFar)));
  const long fromBottom = static_cast<long>(std::floor(std::clamp(y, -kFar, kFar)));
  return SampleStored(bitmap, column, bitmap.pixelsHigh() - 1 - fromBottom, edges);
}

inline void StorePixel(uint8_t* pixel, Rgba8 value) {
  pixel[Bitmap::kRed] = value.red;
  pixel[Bitmap::kGreen] = value.green;
  pixel[Bitmap::kBlue] = value.blue;
  pixel[Bitmap::kAlpha] = value.alpha;
}

// One float a pixel, rows top first, packed.
struct Plane {
  int width = 0, height = 0;
  std::vector<float> values;
  float& at(int x, int row) { return values[static_cast<size_t>(row) * width + x]; }
  const float& at(int x, int row) const { return values[static_cast<size_t>(row) * width + x]; }
};

// The luma (Rec. 709 weights) of the stored, premultiplied pixels, in [0, 1].
Plane PremultipliedLuma(const Bitmap& bitmap);

// `plane` blurred with a Gaussian of deviation `sigma` (exact, truncated at
// 3.5 σ, renormalised); pixels beyond the edges per `edges`. A sigma of 0
// answers the plane unchanged. The caller bounds sigma.
Plane BlurPlane(const Plane& plane, double sigma, FilterEdges edges);

}  // namespace paintdoc::filter_pixels
