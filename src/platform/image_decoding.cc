#include "platform/image_decoding.h"

#include <cmath>

namespace paintdoc::image_decoding {

std::string CheckImageSize(uint64_t width, uint64_t height, const ImageReadOptions& options) {
  std::string size = std::to_string(width) + " x " + std::to_string(height);
  if (width == 0 || height == 0) return "image has no pixels (" + size + ")";
  if (width > static_cast<uint64_t>(Bitmap::kMaxDimension) ||
      height > static_cast<uint64_t>(Bitmap::kMaxDimension)) {
    return "image of " + size + " pixels is too large (at most " +
           std::to_string(Bitmap::kMaxDimension) + " pixels a side)";
  }
  if (width * height > options.maxPixels) {
    return "image of " + size + " pixels is above the limit of " +
           std::to_string(options.maxPixels) + " pixels";
  }
  return {};
}

DecodedImage Failure(ImageFormat format, const std::string& reason) {
  DecodedImage result;
  result.format = format;
  result.error = std::string(ImageFormatName(format)) + " image: " + reason;
  return result;
}

DecodedImage Success(ImageFormat format, std::shared_ptr<Bitmap> bitmap) {
  DecodedImage result;
  result.format = format;
  result.bitmap = std::move(bitmap);
  return result;
}

void ApplyResolution(Bitmap& bitmap, double xDotsPerInch, double yDotsPerInch) {
  // Files record all sorts of nonsense here; only believe sensible values.
  auto plausible = [](double dpi) { return std::isfinite(dpi) && dpi >= 10 && dpi <= 100000; };
  if (!plausible(xDotsPerInch) || !plausible(yDotsPerInch)) return;
  if (xDotsPerInch == 72 && yDotsPerInch == 72) return;
  bitmap.setSize({bitmap.pixelsWide() * 72.0 / xDotsPerInch,
                  bitmap.pixelsHigh() * 72.0 / yDotsPerInch});
}

}  // namespace paintdoc::image_decoding
