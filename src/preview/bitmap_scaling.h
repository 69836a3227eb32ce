// Resampling for previews: an area-averaging filter, so that a downscaled
// thumbnail shows every source pixel in proportion to the area it covers
// (no aliasing, no dropped lines), computed on premultiplied samples so that
// transparent pixels do not darken their neighbours.
#pragma once

#include <memory>
#include <optional>

#include "platform/values/geometry.h"

namespace paintdoc {

class Bitmap;

// The bitmap resampled to the given pixel size (null for a size below 1).
std::shared_ptr<Bitmap> ScaleBitmapByArea(const Bitmap& source, int pixelsWide, int pixelsHigh);

// The pixel size that fits `width` × `height` into a box of `box` × `box`
// keeping the aspect ratio and never enlarging; each side at least 1.
struct PixelSize {
  int width = 0;
  int height = 0;
  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};
PixelSize FitIntoSquare(int width, int height, int box);

// How far two bitmaps of one pixel size are apart, over every channel of
// every pixel (premultiplied bytes): the mean and the largest difference. A
// thumbnail drawn at its own size is held against the full-size picture
// resampled by area with it.
struct BitmapDifference {
  double mean = 0;
  int max = 0;
};
// Nothing for bitmaps of different sizes.
std::optional<BitmapDifference> CompareBitmaps(const Bitmap& a, const Bitmap& b);

}  // namespace paintdoc
