// Helpers shared by the image readers (internal to the codecs).
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/codecs/image_codecs.h"

namespace paintdoc::image_decoding {

// Empty when a width × height image may be decoded under `options`;
// otherwise the reason it may not (zero size, a side cairo cannot hold,
// more pixels than the limit).
std::string CheckImageSize(uint64_t width, uint64_t height, const ImageReadOptions& options);

// A failed read: "<format> image: <reason>".
ImageResult Refused(ImageFormat format, const std::string& reason);
// A successful read.
ImageResult Decoded(ImageFormat format, std::shared_ptr<Bitmap> bitmap);

// Sets the point size from a resolution in dots an inch on each axis.
// Resolutions that are absent (0), 72 or implausible leave the size as is.
void ApplyResolution(Bitmap& bitmap, double xDotsPerInch, double yDotsPerInch);

inline constexpr double kCentimetresPerInch = 2.54;

// The orientation (1 to 8) recorded in an Exif block ("Exif\0\0" and a TIFF
// structure, as in a JPEG APP1 segment); 1 when absent or unreadable.
int ExifOrientation(std::span<const uint8_t> exif);

// The bitmap turned upright for an Exif orientation (2–8 mirror and/or
// rotate, swapping width and height for 5–8); the bitmap itself for 1.
// Null when out of memory.
std::shared_ptr<Bitmap> ApplyExifOrientation(std::shared_ptr<Bitmap> bitmap, int orientation);

}  // namespace paintdoc::image_decoding
