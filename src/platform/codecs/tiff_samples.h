// TIFF layouts that libtiff's RGBA interface refuses (32-bit samples) or
// misreads (16-bit floating point, grey with alpha), read scanline by
// scanline (internal to the codecs).
#pragma once

#include <tiffio.h>

#include <string>

#include "platform/values/bitmap.h"

namespace paintdoc {

// True for floating-point samples, 32-bit unsigned integer samples, and
// 8- or 16-bit grey with extra samples.
bool NeedsTiffSampleReader(TIFF* tiff);

// Fills `bitmap` (sized to the image) from grey or RGB samples, with an
// optional alpha sample, contiguous or in separate planes. Floating-point
// values map 0.0–1.0 to 0–255 (clamped, NaN as 0); 8-, 16- and 32-bit
// integers map their full range. The reason on failure, else "". `libraryError` is where
// libtiff's first error message is collected.
std::string ReadTiffSamples(TIFF* tiff, Bitmap& bitmap, const std::string& libraryError);

}  // namespace paintdoc
