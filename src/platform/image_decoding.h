// Helpers shared by the image readers (internal to the codecs).
#pragma once

#include <cstdint>
#include <string>

#include "platform/image_codecs.h"

namespace paintdoc::image_decoding {

// Empty when a width × height image may be decoded under `options`;
// otherwise the reason it may not (zero size, a side cairo cannot hold,
// more pixels than the limit).
std::string CheckImageSize(uint64_t width, uint64_t height, const ImageReadOptions& options);

// A failed read: "<format> image: <reason>".
DecodedImage Failure(ImageFormat format, const std::string& reason);
// A successful read.
DecodedImage Success(ImageFormat format, std::shared_ptr<Bitmap> bitmap);

// Sets the point size from a resolution in dots an inch on each axis.
// Resolutions that are absent (0), 72 or implausible leave the size as is.
void ApplyResolution(Bitmap& bitmap, double xDotsPerInch, double yDotsPerInch);

inline constexpr double kCentimetresPerInch = 2.54;

}  // namespace paintdoc::image_decoding
