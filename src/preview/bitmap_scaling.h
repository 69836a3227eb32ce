// Resampling for previews: an area-averaging filter, so that a downscaled
// thumbnail shows every source pixel in proportion to the area it covers
// (no aliasing, no dropped lines), computed on premultiplied samples so that
// transparent pixels do not darken their neighbours.
#pragma once

#include <memory>

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

}  // namespace paintdoc
