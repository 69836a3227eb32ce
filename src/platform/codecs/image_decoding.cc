#include "platform/codecs/image_decoding.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace paintdoc::image_decoding {

std::string CheckImageSize(uint64_t width, uint64_t height, const ImageReadOptions& options) {
  std::string size = std::to_string(width) + " x " + std::to_string(height);
  if (width == 0 || height == 0) return "image has no pixels (" + size + ")";
  auto refuse = [&](std::string reason) {
    if (options.sizeRefusal) *options.sizeRefusal = {true, width, height};
    return reason;
  };
  if (width > static_cast<uint64_t>(Bitmap::kMaxDimension) ||
      height > static_cast<uint64_t>(Bitmap::kMaxDimension)) {
    return refuse("image of " + size + " pixels is too large (at most " +
                  std::to_string(Bitmap::kMaxDimension) + " pixels a side)");
  }
  if (width * height > options.maxPixels) {
    return refuse("image of " + size + " pixels is above the limit of " +
                  std::to_string(options.maxPixels) + " pixels");
  }
  return {};
}

ImageResult Refused(ImageFormat format, const std::string& reason) {
  return Failure{std::string(ImageFormatName(format)) + " image: " + reason};
}

ImageResult Decoded(ImageFormat format, std::shared_ptr<Bitmap> bitmap) {
  return DecodedImage{std::move(bitmap), format};
}

void ApplyResolution(Bitmap& bitmap, double xDotsPerInch, double yDotsPerInch) {
  // Files record all sorts of nonsense here; only believe sensible values.
  auto plausible = [](double dpi) { return std::isfinite(dpi) && dpi >= 10 && dpi <= 100000; };
  if (!plausible(xDotsPerInch) || !plausible(yDotsPerInch)) return;
  if (xDotsPerInch == 72 && yDotsPerInch == 72) return;
  // The point size so far counts the image's pixels (the full image's, for
  // a bitmap decoded at a reduced scale).
  bitmap.setSize({bitmap.size().width * 72.0 / xDotsPerInch,
                  bitmap.size().height * 72.0 / yDotsPerInch});
}

int ExifOrientation(std::span<const uint8_t> exif) {
  constexpr size_t kHeader = 6;  // "Exif\0\0"
  if (exif.size() < kHeader + 8 || std::memcmp(exif.data(), "Exif\0\0", kHeader) != 0) return 1;
  std::span<const uint8_t> tiff = exif.subspan(kHeader);
  bool little = tiff[0] == 'I' && tiff[1] == 'I';
  if (!little && !(tiff[0] == 'M' && tiff[1] == 'M')) return 1;
  auto u16 = [&](size_t at) -> uint32_t {
    return little ? tiff[at] | tiff[at + 1] << 8 : tiff[at] << 8 | tiff[at + 1];
  };
  auto u32 = [&](size_t at) -> uint32_t { return little ? u16(at) | u16(at + 2) << 16 : u16(at) << 16 | u16(at + 2); };
  uint32_t directory = u32(4);
  if (directory > tiff.size() - 2) return 1;
  uint32_t entries = u16(directory);
  for (uint32_t i = 0; i < entries; ++i) {
    size_t entry = directory + 2 + size_t{12} * i;
    if (entry + 12 > tiff.size()) return 1;
    constexpr uint32_t kOrientationTag = 0x0112, kShortType = 3;
    if (u16(entry) == kOrientationTag && u16(entry + 2) == kShortType) {
      uint32_t orientation = u16(entry + 8);
      return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
    }
  }
  return 1;
}

std::shared_ptr<Bitmap> ApplyExifOrientation(std::shared_ptr<Bitmap> bitmap, int orientation) {
  if (orientation <= 1 || orientation > 8 || !bitmap) return bitmap;
  const int width = bitmap->pixelsWide(), height = bitmap->pixelsHigh();
  const bool swapsSides = orientation >= 5;
  auto upright = Bitmap::create(swapsSides ? height : width, swapsSides ? width : height);
  if (!upright) return nullptr;
  // For each upright pixel (x, y), rows counted from the top, the stored pixel it shows.
  auto storedPixel = [&](int x, int y) -> std::pair<int, int> {
    switch (orientation) {
      case 2: return {width - 1 - x, y};
      case 3: return {width - 1 - x, height - 1 - y};
      case 4: return {x, height - 1 - y};
      case 5: return {y, x};
      case 6: return {y, height - 1 - x};
      case 7: return {width - 1 - y, height - 1 - x};
      default: return {width - 1 - y, x};  // 8
    }
  };
  for (int y = 0; y < upright->pixelsHigh(); ++y) {
    uint8_t* out = upright->rowAt(y);
    for (int x = 0; x < upright->pixelsWide(); ++x, out += Bitmap::kBytesPerPixel) {
      auto [sx, sy] = storedPixel(x, y);
      std::memcpy(out, bitmap->rowAt(sy) + static_cast<size_t>(sx) * Bitmap::kBytesPerPixel,
                  Bitmap::kBytesPerPixel);
    }
  }
  Size points = bitmap->size();
  if (swapsSides) points = {points.height, points.width};
  if (points.width != upright->pixelsWide() || points.height != upright->pixelsHigh()) {
    upright->setSize(points);
  }
  return upright;
}

}  // namespace paintdoc::image_decoding
