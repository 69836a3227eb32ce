#include "platform/codecs/image_codecs.h"

#include <cstring>

#include "platform/values/file_bytes.h"
#include "platform/codecs/image_decoding.h"

namespace paintdoc {

const char* ImageFormatName(ImageFormat format) {
  switch (format) {
    case ImageFormat::PNG: return "PNG";
    case ImageFormat::JPEG: return "JPEG";
    case ImageFormat::TIFF: return "TIFF";
    case ImageFormat::GIF: return "GIF";
    case ImageFormat::WebP: return "WebP";
    case ImageFormat::BMP: return "BMP";
    case ImageFormat::Unknown: break;
  }
  return "unknown";
}

ImageFormat DetectImageFormat(std::span<const uint8_t> bytes) {
  auto startsWith = [&](const char* signature, size_t length, size_t at = 0) {
    return bytes.size() >= at + length && std::memcmp(bytes.data() + at, signature, length) == 0;
  };
  if (startsWith("\x89PNG\r\n\x1a\n", 8)) return ImageFormat::PNG;
  if (startsWith("\xff\xd8\xff", 3)) return ImageFormat::JPEG;
  if (startsWith("II*\0", 4) || startsWith("MM\0*", 4)) return ImageFormat::TIFF;
  if (startsWith("GIF87a", 6) || startsWith("GIF89a", 6)) return ImageFormat::GIF;
  if (startsWith("RIFF", 4) && startsWith("WEBP", 4, 8)) return ImageFormat::WebP;
  if (startsWith("BM", 2)) return ImageFormat::BMP;
  return ImageFormat::Unknown;
}

ImageResult ReadImage(std::span<const uint8_t> bytes, const ImageReadOptions& options) {
  switch (DetectImageFormat(bytes)) {
    case ImageFormat::PNG: return ReadPNG(bytes, options);
    case ImageFormat::JPEG: return ReadJPEG(bytes, options);
    case ImageFormat::TIFF: return ReadTIFF(bytes, options);
    case ImageFormat::GIF: return ReadGIF(bytes, options);
    case ImageFormat::WebP: return ReadWebP(bytes, options);
    case ImageFormat::BMP: return ReadBMP(bytes, options);
    case ImageFormat::Unknown: break;
  }
  return Failure{bytes.empty() ? "image data is empty"
                               : "not an image in a supported format "
                                 "(PNG, JPEG, TIFF, GIF, WebP or BMP)"};
}

ImageResult ReadImageFile(const std::string& path, const ImageReadOptions& options) {
  // A compressed image cannot sensibly be larger than its decoded pixels plus
  // generous slack; the bound keeps a huge unrelated file from being read whole.
  uint64_t maxBytes = options.maxPixels * 4 + (uint64_t{64} << 20);
  auto bytes = ReadFileBytes(path, maxBytes);
  if (!bytes) return Failure{bytes.reason()};
  ImageResult result = ReadImage(*bytes, options);
  if (!result) return Failure{path + ": " + result.reason()};
  return result;
}

}  // namespace paintdoc
