// TIFF reading and writing with libtiff, entirely in memory. Reading goes
// through libtiff's RGBA interface, which handles every photometric
// interpretation, bit depth and compression libtiff knows and hands back
// premultiplied pixels, except for floating-point and 32-bit integer
// samples, which it refuses or misreads: those are read scanline by scanline.
#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "platform/codecs/colour_profile.h"
#include "platform/codecs/image_codecs.h"
#include "platform/codecs/image_decoding.h"
#include "platform/codecs/tiff_samples.h"

namespace paintdoc {
namespace {

using image_decoding::Refused;

// A seekable stream over bytes in memory: read-only over the input, or a
// growing buffer for output.
struct MemoryStream {
  const uint8_t* input = nullptr;
  std::vector<uint8_t>* output = nullptr;
  uint64_t size = 0;
  uint64_t position = 0;
  std::string firstError;
};

tmsize_t ReadStream(thandle_t handle, void* buffer, tmsize_t length) {
  auto* stream = static_cast<MemoryStream*>(handle);
  if (length < 0 || stream->position >= stream->size) return 0;
  uint64_t available = stream->size - stream->position;
  uint64_t count = std::min<uint64_t>(available, static_cast<uint64_t>(length));
  const uint8_t* source = stream->input ? stream->input : stream->output->data();
  std::memcpy(buffer, source + stream->position, count);
  stream->position += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t WriteStream(thandle_t handle, void* buffer, tmsize_t length) {
  auto* stream = static_cast<MemoryStream*>(handle);
  if (!stream->output || length < 0) return -1;
  uint64_t end = stream->position + static_cast<uint64_t>(length);
  if (end > stream->output->size()) stream->output->resize(end);
  std::memcpy(stream->output->data() + stream->position, buffer, static_cast<size_t>(length));
  stream->position = end;
  stream->size = stream->output->size();
  return length;
}

toff_t SeekStream(thandle_t handle, toff_t offset, int whence) {
  auto* stream = static_cast<MemoryStream*>(handle);
  uint64_t base = whence == SEEK_CUR ? stream->position : whence == SEEK_END ? stream->size : 0;
  uint64_t target = base + offset;
  if (target < base) return static_cast<toff_t>(-1);  // wrapped around
  // Writers may seek past the end and write there; readers just read nothing.
  stream->position = target;
  return target;
}

int CloseStream(thandle_t) { return 0; }
toff_t StreamSize(thandle_t handle) { return static_cast<MemoryStream*>(handle)->size; }
int MapStream(thandle_t, void**, toff_t*) { return 0; }
void UnmapStream(thandle_t, void*, toff_t) {}

int OnTiffError(TIFF*, void* userData, const char* module, const char* format, va_list args) {
  auto* stream = static_cast<MemoryStream*>(userData);
  if (stream->firstError.empty()) {
    char text[512];
    std::vsnprintf(text, sizeof text, format, args);
    stream->firstError = module ? std::string(module) + ": " + text : std::string(text);
  }
  return 1;  // handled: keep libtiff from printing to stderr
}

int OnTiffWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

// Opens a TIFF session on the stream with our error handlers and an upper
// bound on libtiff's single allocations.
TIFF* OpenTiff(MemoryStream& stream, const char* mode, tmsize_t maxSingleAllocation) {
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  if (!options) return nullptr;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, maxSingleAllocation);
  TIFFOpenOptionsSetErrorHandlerExtR(options, OnTiffError, &stream);
  TIFFOpenOptionsSetWarningHandlerExtR(options, OnTiffWarning, &stream);
  TIFF* tiff = TIFFClientOpenExt("memory", mode, &stream, ReadStream, WriteStream, SeekStream,
                                 CloseStream, StreamSize, MapStream, UnmapStream, options);
  TIFFOpenOptionsFree(options);
  return tiff;
}

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffPtr = std::unique_ptr<TIFF, TiffCloser>;

std::string TiffReason(const MemoryStream& stream, const char* fallback) {
  return stream.firstError.empty() ? fallback : "malformed data (" + stream.firstError + ")";
}

void ApplyTiffResolution(TIFF* tiff, Bitmap& bitmap) {
  float xResolution = 0, yResolution = 0;
  uint16_t unit = RESUNIT_INCH;
  if (!TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &xResolution) ||
      !TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &yResolution)) {
    return;
  }
  TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
  double scale = unit == RESUNIT_INCH ? 1.0
                 : unit == RESUNIT_CENTIMETER ? image_decoding::kCentimetresPerInch
                                              : 0.0;  // no absolute unit
  image_decoding::ApplyResolution(bitmap, xResolution * scale, yResolution * scale);
}

constexpr tmsize_t kMaxTiffAllocation = tmsize_t{256} << 20;

// Every strip (or tile) must lie within the data, and an uncompressed one
// must hold all of its rows: a file whose pixel data is cut short or points
// past its end is refused before any pixel memory is taken. The reason, or "".
std::string CheckTiffStriles(TIFF* tiff, uint64_t dataSize, uint32_t height) {
  const bool tiled = TIFFIsTiled(tiff) != 0;
  const uint32_t count = tiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
  const char* kind = tiled ? "tile" : "strip";
  if (count == 0) return std::string("malformed data (no ") + kind + "s)";
  uint16_t compression = COMPRESSION_NONE;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
  uint32_t rowsPerStrip = height;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
  rowsPerStrip = std::clamp<uint32_t>(rowsPerStrip, 1, std::max<uint32_t>(height, 1));
  const uint32_t stripsPerPlane = (height + rowsPerStrip - 1) / rowsPerStrip;
  for (uint32_t strile = 0; strile < count; ++strile) {
    int offsetError = 0, countError = 0;
    const uint64_t offset = TIFFGetStrileOffsetWithErr(tiff, strile, &offsetError);
    const uint64_t bytes = TIFFGetStrileByteCountWithErr(tiff, strile, &countError);
    const std::string which = std::string(kind) + " " + std::to_string(strile + 1) + " of " +
                              std::to_string(count);
    if (offsetError || countError) return "malformed data (" + which + " cannot be located)";
    if (offset > dataSize || bytes > dataSize - offset) {
      return "malformed data (" + which + " ends past the end of the data: " +
             std::to_string(bytes) + " bytes at offset " + std::to_string(offset) + " in " +
             std::to_string(dataSize) + ")";
    }
    if (compression != COMPRESSION_NONE) continue;
    uint64_t needed = 0;
    if (tiled) {
      needed = static_cast<uint64_t>(TIFFTileSize64(tiff));
    } else {
      const uint32_t firstRow = (strile % std::max<uint32_t>(stripsPerPlane, 1)) * rowsPerStrip;
      const uint32_t rows = firstRow < height ? std::min(rowsPerStrip, height - firstRow) : 0;
      needed = static_cast<uint64_t>(TIFFVStripSize64(tiff, rows));
    }
    if (bytes < needed) {
      return "malformed data (" + which + " is truncated: " + std::to_string(bytes) +
             " bytes of " + std::to_string(needed) + ")";
    }
  }
  return {};
}

// Fills `bitmap` through the RGBA interface; the reason on failure. The
// interface writes packed 32-bit words R | G << 8 | B << 16 | A << 24,
// premultiplied, top row first when asked for ORIENTATION_TOPLEFT. They are
// written straight into the bitmap's own memory (its rows are packed, 4
// bytes a pixel) and turned into its pixel order row by row, so the image is
// held only once.
std::string ReadThroughRgbaInterface(TIFF* tiff, const MemoryStream& stream, Bitmap& bitmap) {
  char why[1024] = {};
  if (!TIFFRGBAImageOK(tiff, why)) return std::string("unsupported layout (") + why + ")";
  const auto width = static_cast<uint32_t>(bitmap.pixelsWide());
  const auto height = static_cast<uint32_t>(bitmap.pixelsHigh());
  static_assert(Bitmap::kBytesPerPixel == sizeof(uint32_t));
  auto* raster = reinterpret_cast<uint32_t*>(bitmap.data());
  if (!TIFFReadRGBAImageOriented(tiff, width, height, raster, ORIENTATION_TOPLEFT,
                                 /*stop_on_error=*/1)) {
    bitmap.clear();
    return TiffReason(stream, "could not decode the pixels");
  }
  for (uint32_t y = 0; y < height; ++y) {
    uint8_t* row = bitmap.rowAt(static_cast<int>(y));
    if constexpr (!Bitmap::kLittleEndian) {
      // The words' bytes in memory are A, B, G, R here: put R first.
      for (uint32_t x = 0; x < width; ++x) std::reverse(row + 4 * x, row + 4 * x + 4);
    }
    bitmap.writeRGBARow(static_cast<int>(y), row, AlphaMode::Premultiplied);
  }
  return {};
}

std::span<const uint8_t> TiffIccProfile(TIFF* tiff) {
  uint32_t length = 0;
  void* profile = nullptr;
  if (!TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &length, &profile) || !profile) return {};
  return {static_cast<const uint8_t*>(profile), length};
}

}  // namespace

ImageResult ReadTIFF(std::span<const uint8_t> bytes, const ImageReadOptions& options) {
  MemoryStream stream;
  stream.input = bytes.data();
  stream.size = bytes.size();
  // "m": never memory-map (the stream has no file behind it).
  TiffPtr tiff(OpenTiff(stream, "rm", kMaxTiffAllocation));
  if (!tiff) return Refused(ImageFormat::TIFF, TiffReason(stream, "not a TIFF file"));

  uint32_t width = 0, height = 0;
  TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
  std::string sizeError = image_decoding::CheckImageSize(width, height, options);
  if (!sizeError.empty()) return Refused(ImageFormat::TIFF, sizeError);
  std::string strileError = CheckTiffStriles(tiff.get(), bytes.size(), height);
  if (!strileError.empty()) return Refused(ImageFormat::TIFF, strileError);
  auto bitmap = Bitmap::create(static_cast<int>(width), static_cast<int>(height));
  if (!bitmap) return Refused(ImageFormat::TIFF, "out of memory");
  std::string error = NeedsTiffSampleReader(tiff.get())
                          ? ReadTiffSamples(tiff.get(), *bitmap, stream.firstError)
                          : ReadThroughRgbaInterface(tiff.get(), stream, *bitmap);
  if (!error.empty()) return Refused(ImageFormat::TIFF, error);
  image_decoding::ConvertToSRGB(*bitmap, TiffIccProfile(tiff.get()), ImageFormat::TIFF);
  ApplyTiffResolution(tiff.get(), *bitmap);
  return image_decoding::Decoded(ImageFormat::TIFF, std::move(bitmap));
}

namespace {

bool WriteTiffDirectory(TIFF* tiff, const Bitmap& bitmap) {
  uint16_t extraSamples[] = {EXTRASAMPLE_ASSOCALPHA};
  Size points = bitmap.size();
  bool ok = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(bitmap.pixelsWide())) &&
            TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(bitmap.pixelsHigh())) &&
            TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
            TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4) &&
            TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, extraSamples) &&
            TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
            TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
            TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE) &&
            TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0)) &&
            TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 72.0f * bitmap.pixelsWide() / points.width) &&
            TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 72.0f * bitmap.pixelsHigh() / points.height) &&
            TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  if (!ok) return false;
  std::vector<uint8_t> row(bitmap.bytesPerRow());
  for (int y = 0; y < bitmap.pixelsHigh(); ++y) {
    bitmap.readRGBARow(y, row.data(), AlphaMode::Premultiplied);
    if (TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), 0) != 1) return false;
  }
  return TIFFWriteDirectory(tiff) == 1;
}

}  // namespace

Result<std::vector<uint8_t>> WriteTIFF(const Bitmap& bitmap) {
  if (bitmap.isEmpty()) {
    return Failure{"cannot write an empty bitmap as TIFF"};
  }
  std::vector<uint8_t> output;
  output.reserve(bitmap.byteCount() + 4096);
  MemoryStream stream;
  stream.output = &output;
  TIFF* tiff = OpenTiff(stream, "w", std::numeric_limits<tmsize_t>::max());
  bool written = tiff && WriteTiffDirectory(tiff, bitmap);
  if (tiff) TIFFClose(tiff);  // flushes the directory
  if (!written) {
    return Failure{"TIFF encoding failed" +
                   (stream.firstError.empty() ? std::string() : ": " + stream.firstError)};
  }
  return output;
}

}  // namespace paintdoc
