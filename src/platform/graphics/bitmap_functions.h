// The bitmap functions that composition and rendering build on: making a
// working bitmap, locking drawing focus on it, clearing it, cropping it and
// finding the box of its visible pixels.
//
// Every bitmap made here has the working format of Bitmap (8-bit RGBA,
// premultiplied, rows top first) and a point size equal to its pixel size.
// Rectangles are in pixels with the origin at the lower left. A null bitmap
// argument gives a null result and changes nothing.
#pragma once

#include <memory>

#include "platform/values/bezier_path.h"
#include "platform/values/bitmap.h"
#include "platform/values/geometry.h"

namespace paintdoc {

// A new, fully transparent bitmap of width × height pixels, each side
// truncated to a whole number. Null (logged) when a side is negative, not a
// number or larger than a bitmap can be.
std::shared_ptr<Bitmap> InitImageRep(double width, double height);

// Makes a graphics context drawing into the bitmap the current one of this
// thread; all following drawing goes into the bitmap until WTUnlockFocus.
// The previous context and its state are untouched and come back on unlock.
void WTLockFocus(const std::shared_ptr<Bitmap>& bitmap);
// Ends the innermost WTLockFocus of this thread; the argument is not used.
void WTUnlockFocus(const std::shared_ptr<Bitmap>& bitmap);

// Makes the pixels of the rectangle fully transparent (all four samples 0),
// as a copy of the clear colour; partly covered edge pixels keep the
// uncovered share of their value.
void ClearImageInRect(const std::shared_ptr<Bitmap>& bitmap, const Rect& rect);
// The whole bitmap made transparent.
void ClearImage(const std::shared_ptr<Bitmap>& bitmap);

// A new bitmap of the rectangle's size holding that part of the source: the
// source pixel at (rect.x, rect.y) lands at the new bitmap's origin, and
// parts of the rectangle outside the source stay transparent. Null when the
// rectangle is narrower or lower than 1 pixel.
std::shared_ptr<Bitmap> CropImage(const std::shared_ptr<Bitmap>& bitmap, const Rect& rect);

// The part of the source inside the path (antialiased at its edge), cropped
// to the path's bounds within the bitmap. Null when the path is empty or its
// bounds cover less than a pixel of the bitmap on either side.
std::shared_ptr<Bitmap> ScissorImage(const std::shared_ptr<Bitmap>& bitmap, const BezierPath& path);

// The bitmap mirrored left-right (`horizontal`) or top-bottom.
std::shared_ptr<Bitmap> ImageFliped(const std::shared_ptr<Bitmap>& bitmap, bool horizontal);

// The smallest rectangle holding every pixel whose alpha is not 0, or the zero
// rectangle when there is none. As on the original platform, a fully
// transparent bitmap of exactly 1 × 1 pixel answers (0, 0, 1, 1): the search
// starts from the bitmap's last column and row and a single pixel cannot fall
// outside them. An empty (0-pixel) bitmap answers the zero rectangle.
Rect ImageRectByTrimEmpty(const std::shared_ptr<Bitmap>& bitmap);

}  // namespace paintdoc
