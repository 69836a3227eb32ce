// Reading image files into Bitmaps and writing Bitmaps as PNG or TIFF.
//
// Readers take the whole file as bytes, never trust a size or offset in it,
// refuse images above a pixel limit before allocating their pixels, and answer
// a clear error instead of a bitmap when the data is malformed. A file's
// resolution, where it records one, becomes the bitmap's point size.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/values/bitmap.h"
#include "platform/values/result.h"

namespace paintdoc {

enum class ImageFormat { Unknown, PNG, JPEG, TIFF, GIF, WebP, BMP };

// "PNG", "JPEG", ... ("unknown" for Unknown).
const char* ImageFormatName(ImageFormat format);
// The format told by the file's first bytes (its signature).
ImageFormat DetectImageFormat(std::span<const uint8_t> bytes);

// 256 megapixels (2^28 pixels: a 16384 × 16384 image just fits).
inline constexpr uint64_t kDefaultMaxImagePixels = uint64_t{1} << 28;

// A reader's record of an image it refused for its size before decoding a
// pixel: a side above what a Bitmap can hold, or more pixels than allowed.
struct ImageSizeRefusal {
  bool refused = false;
  uint64_t width = 0, height = 0;  // as the image claims them
};

struct ImageReadOptions {
  // Images with more pixels than this (width × height, for GIF the logical
  // screen) are refused before their pixels are decoded.
  uint64_t maxPixels = kDefaultMaxImagePixels;
  // Turn JPEG photos upright by their Exif orientation, as viewers show them.
  bool applyExifOrientation = true;
  // The side of the square a thumbnail of the image must fill, or 0 for the
  // whole image. A reader that can decode at a reduced scale (JPEG's DCT
  // scaling by 1/2, 1/4 or 1/8) then may deliver fewer pixels, but never
  // fewer than the image fitted into that square needs; the bitmap keeps the
  // full image's point size, so it draws at the same size.
  int shrinkToFit = 0;
  // When set, a reader that refuses the image for its size records it here,
  // so that a caller can tell a limit that was reached from damaged data.
  ImageSizeRefusal* sizeRefusal = nullptr;
};

// A decoded image: its bitmap and the format it was read from. Readers answer
// a Result<DecodedImage>: the image, or one line such as "PNG image:
// malformed data (image data is truncated)".
struct DecodedImage {
  std::shared_ptr<Bitmap> bitmap;
  ImageFormat format = ImageFormat::Unknown;
};
using ImageResult = Result<DecodedImage>;

// Reads any supported format, told by its signature. GIF and WebP give their
// first frame.
ImageResult ReadImage(std::span<const uint8_t> bytes, const ImageReadOptions& options = {});
ImageResult ReadImageFile(const std::string& path, const ImageReadOptions& options = {});

// One reader a format (the signature is not required to match).
ImageResult ReadPNG(std::span<const uint8_t> bytes, const ImageReadOptions& options = {});
ImageResult ReadJPEG(std::span<const uint8_t> bytes, const ImageReadOptions& options = {});
ImageResult ReadTIFF(std::span<const uint8_t> bytes, const ImageReadOptions& options = {});
ImageResult ReadGIF(std::span<const uint8_t> bytes, const ImageReadOptions& options = {});
ImageResult ReadWebP(std::span<const uint8_t> bytes, const ImageReadOptions& options = {});
ImageResult ReadBMP(std::span<const uint8_t> bytes, const ImageReadOptions& options = {});

struct PngWriteOptions {
  // zlib level 0 (none) to 9 (smallest). The default favours speed: previews
  // are written once and read once.
  int compressionLevel = 1;
};

// What a PNG carries besides its pixels.
struct PngMetadata {
  // Keep the alpha channel even when every pixel is opaque (thumbnails are
  // expected to carry full alpha).
  bool keepAlphaChannel = false;
  // tEXt entries (keyword, Latin-1 text) written before the pixels.
  std::vector<std::pair<std::string, std::string>> textEntries;
};

// PNG bytes of the bitmap (straight alpha; RGB without alpha when every pixel
// is opaque; the resolution recorded when the point size differs from the
// pixel size).
Result<std::vector<uint8_t>> WritePNG(const Bitmap& bitmap, const PngWriteOptions& options = {});
// The same with an alpha channel kept on request and text entries.
Result<std::vector<uint8_t>> WritePNG(const Bitmap& bitmap, const PngWriteOptions& options,
                                      const PngMetadata& metadata);

// Baseline TIFF bytes as documents embed them: uncompressed, 8-bit RGBA,
// premultiplied (ExtraSamples = associated alpha), resolution in dots an inch.
Result<std::vector<uint8_t>> WriteTIFF(const Bitmap& bitmap);

}  // namespace paintdoc
