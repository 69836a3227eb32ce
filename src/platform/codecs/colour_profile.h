// Colour management for decoded images (internal to the codecs): pixels
// stored in the colour space an embedded ICC profile describes are converted
// to sRGB, the space the rest of the library draws in, with Little CMS.
#pragma once

#include <cstdint>
#include <span>

#include "platform/codecs/image_codecs.h"

namespace paintdoc::image_decoding {

// Profiles larger than this are not parsed (real ones are a few kilobytes,
// the largest lookup-table profiles a few megabytes).
inline constexpr size_t kMaxColourProfileBytes = size_t{16} << 20;

// Converts the bitmap from the space of `iccProfile` (RGB or grey) to sRGB
// with perceptual intent, keeping alpha. An empty profile leaves the bitmap
// untouched at no cost. A profile that cannot be read or used (malformed,
// too large, for another colour space than the pixels') is ignored: the
// pixels stay as stored and a "Warning: " line naming the format is logged.
void ConvertToSRGB(Bitmap& bitmap, std::span<const uint8_t> iccProfile, ImageFormat format);

}  // namespace paintdoc::image_decoding
