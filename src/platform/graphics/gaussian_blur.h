// Gaussian blur of premultiplied bitmaps and of single 8-bit channels
// (shadow masks). Separable: rows, then columns, each in parallel. Small
// deviations use the exact kernel (truncated, renormalised); larger ones five
// extended box-filter passes whose combined variance is exactly the
// Gaussian's, which costs the same at any size.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/values/bitmap.h"

namespace paintdoc {

enum class BlurEdges {
  Transparent,  // pixels beyond the edges count as 0 (the blur fades out there)
  Clamp,        // pixels beyond the edges repeat the edge pixel (no fading)
};

// Below this deviation the exact kernel is used; from it on, box passes.
inline constexpr double kExactBlurMaxSigma = 3.0;

// Blurs every channel in place with a Gaussian of standard deviation `sigma`
// pixels. A sigma of 0 or less (or not a number) leaves the bitmap unchanged.
void GaussianBlur(Bitmap& bitmap, double sigma, BlurEdges edges);

// The same on one 8-bit channel of width × height samples, rows `stride`
// bytes apart.
void GaussianBlurChannel(uint8_t* samples, int width, int height, size_t stride, double sigma,
                         BlurEdges edges);

// How far (in pixels) the blur reaches from a pixel: the radius a caller
// should pad an image by to keep the whole spread with transparent edges.
int GaussianBlurReach(double sigma);

}  // namespace paintdoc
