// PNG reading and writing with libpng.
//
// libpng reports errors by longjmp. Each libpng session runs in a function
// that keeps every piece of state it changes in a caller-owned struct, so that
// nothing in the frame holding setjmp is modified after it.
#include <png.h>

#include <csetjmp>
#include <memory>
#include <cstring>
#include <vector>

#include "platform/codecs/colour_profile.h"
#include "platform/codecs/image_codecs.h"
#include "platform/codecs/image_decoding.h"
#include "platform/codecs/row_shrinker.h"

namespace paintdoc {
namespace {

using image_decoding::Refused;

struct PngSession {
  png_structp png = nullptr;
  png_infop info = nullptr;
  std::string message;  // the first error libpng reported
};

void OnPngError(png_structp png, png_const_charp message) {
  auto* session = static_cast<PngSession*>(png_get_error_ptr(png));
  if (session->message.empty()) session->message = message;
  png_longjmp(png, 1);
}

void OnPngWarning(png_structp, png_const_charp) {}

// --- reading

struct PngReadState : PngSession {
  std::span<const uint8_t> bytes;
  size_t offset = 0;
  const ImageReadOptions* options = nullptr;
  std::shared_ptr<Bitmap> bitmap;
  std::vector<png_bytep> rows;
  std::string sizeError;
  double xDotsPerInch = 0, yDotsPerInch = 0;
  std::vector<uint8_t> iccProfile;  // from an iCCP chunk
  // For a thumbnail: the image shrunk by a whole factor as its rows decode.
  std::unique_ptr<RowShrinker> shrinker;
  std::vector<uint8_t> row;
  Size fullSize;
};

// The largest factor a thumbnail's rows are shrunk by while they decode; the
// block sums stay well inside 32 bits (256² × 255).
constexpr int kMostShrink = 256;

// Reads the rows one at a time into the shrinker: the full image is never
// held. Interlaced images come in passes and are read whole instead.
void DecodeShrunk(PngReadState* state, int width, int height, int factor) {
  state->bitmap = Bitmap::create((width + factor - 1) / factor, (height + factor - 1) / factor);
  if (!state->bitmap) png_error(state->png, "out of memory");
  state->shrinker = std::make_unique<RowShrinker>(state->bitmap, width, height, factor);
  state->row.resize(static_cast<size_t>(width) * 4);
  for (int y = 0; y < height; ++y) {
    png_read_row(state->png, state->row.data(), nullptr);
    state->shrinker->addRow(state->row.data());
  }
}

void ReadPngBytes(png_structp png, png_bytep out, size_t length) {
  auto* state = static_cast<PngReadState*>(png_get_io_ptr(png));
  if (length > state->bytes.size() - state->offset) png_error(png, "image data is truncated");
  std::memcpy(out, state->bytes.data() + state->offset, length);
  state->offset += length;
}

// Asks libpng for 8-bit R, G, B, A whatever the file holds.
void RequestRgba8(png_structp png, png_infop info) {
  int colorType = png_get_color_type(png, info);
  if (colorType == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
  if (colorType == PNG_COLOR_TYPE_GRAY && png_get_bit_depth(png, info) < 8) {
    png_set_expand_gray_1_2_4_to_8(png);
  }
  if (png_get_valid(png, info, PNG_INFO_tRNS)) png_set_tRNS_to_alpha(png);
  if (png_get_bit_depth(png, info) == 16) png_set_scale_16(png);
  if (colorType == PNG_COLOR_TYPE_GRAY || colorType == PNG_COLOR_TYPE_GRAY_ALPHA) {
    png_set_gray_to_rgb(png);
  }
  png_set_filler(png, 0xff, PNG_FILLER_AFTER);  // no effect when alpha exists
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
}

// True when the pixels were read into state->bitmap (as straight R, G, B, A).
bool DecodePng(PngReadState* state) {
  if (setjmp(png_jmpbuf(state->png))) return false;
  png_set_read_fn(state->png, state, ReadPngBytes);
  png_set_user_limits(state->png, Bitmap::kMaxDimension, Bitmap::kMaxDimension);
  png_read_info(state->png, state->info);
  png_uint_32 width = png_get_image_width(state->png, state->info);
  png_uint_32 height = png_get_image_height(state->png, state->info);
  state->sizeError = image_decoding::CheckImageSize(width, height, *state->options);
  if (!state->sizeError.empty()) return false;

  png_uint_32 resX = 0, resY = 0;
  int unit = 0;
  if (png_get_pHYs(state->png, state->info, &resX, &resY, &unit) &&
      unit == PNG_RESOLUTION_METER) {
    state->xDotsPerInch = resX * image_decoding::kCentimetresPerInch / 100.0;
    state->yDotsPerInch = resY * image_decoding::kCentimetresPerInch / 100.0;
  }
  png_charp profileName = nullptr;
  png_bytep profile = nullptr;
  png_uint_32 profileLength = 0;
  int profileCompression = 0;
  if (png_get_iCCP(state->png, state->info, &profileName, &profileCompression, &profile,
                   &profileLength) && profile) {
    state->iccProfile.assign(profile, profile + profileLength);
  }
  RequestRgba8(state->png, state->info);
  if (png_get_rowbytes(state->png, state->info) != static_cast<size_t>(width) * 4) {
    png_error(state->png, "unexpected row layout");
  }
  state->fullSize = Size{double(width), double(height)};
  const bool interlaced = png_get_interlace_type(state->png, state->info) != PNG_INTERLACE_NONE;
  const int factor = interlaced ? 1
                                : ShrinkFactorToCover(width, height, state->options->shrinkToFit,
                                                      kMostShrink);
  if (factor > 1) {
    DecodeShrunk(state, static_cast<int>(width), static_cast<int>(height), factor);
    png_read_end(state->png, nullptr);
    return true;
  }
  state->bitmap = Bitmap::create(static_cast<int>(width), static_cast<int>(height));
  if (!state->bitmap) png_error(state->png, "out of memory");
  state->rows.resize(height);
  for (png_uint_32 row = 0; row < height; ++row) {
    state->rows[row] = state->bitmap->rowAt(static_cast<int>(row));
  }
  png_read_image(state->png, state->rows.data());
  png_read_end(state->png, nullptr);
  return true;
}

}  // namespace

ImageResult ReadPNG(std::span<const uint8_t> bytes, const ImageReadOptions& options) {
  if (bytes.size() < 8 || png_sig_cmp(bytes.data(), 0, 8) != 0) {
    return Refused(ImageFormat::PNG, "missing PNG signature");
  }
  PngReadState state;
  state.bytes = bytes;
  state.options = &options;
  state.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, OnPngError, OnPngWarning);
  if (state.png) state.info = png_create_info_struct(state.png);
  if (!state.png || !state.info) {
    png_destroy_read_struct(&state.png, &state.info, nullptr);
    return Refused(ImageFormat::PNG, "out of memory");
  }
  bool decoded = DecodePng(&state);
  png_destroy_read_struct(&state.png, &state.info, nullptr);
  if (!decoded) {
    return Refused(ImageFormat::PNG,
                   !state.sizeError.empty() ? state.sizeError : "malformed data (" + state.message + ")");
  }
  Bitmap& bitmap = *state.bitmap;
  if (state.shrinker) {
    // Shrunk while decoding (already premultiplied): it still stands for the
    // whole image.
    bitmap.setSize(state.fullSize);
  } else {
    for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
      bitmap.writeRGBARow(row, bitmap.rowAt(row), AlphaMode::Straight);
    }
  }
  image_decoding::ConvertToSRGB(bitmap, state.iccProfile, ImageFormat::PNG);
  image_decoding::ApplyResolution(bitmap, state.xDotsPerInch, state.yDotsPerInch);
  return image_decoding::Decoded(ImageFormat::PNG, std::move(state.bitmap));
}

// --- writing

namespace {

struct PngWriteState : PngSession {
  const Bitmap* bitmap = nullptr;
  int compressionLevel = 1;
  bool opaque = false;
  std::vector<png_text> texts;  // pointing into the caller's metadata
  std::vector<uint8_t> output;
  std::vector<uint8_t> rowBuffer;
};

void WritePngBytes(png_structp png, png_bytep data, size_t length) {
  auto* state = static_cast<PngWriteState*>(png_get_io_ptr(png));
  state->output.insert(state->output.end(), data, data + length);
}

void FlushPng(png_structp) {}

bool IsOpaque(const Bitmap& bitmap) {
  for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
    const uint8_t* pixel = bitmap.rowAt(row);
    for (int x = 0; x < bitmap.pixelsWide(); ++x, pixel += Bitmap::kBytesPerPixel) {
      if (pixel[Bitmap::kAlpha] != 255) return false;
    }
  }
  return true;
}

// Straight R, G, B(, A) bytes of one row, in state->rowBuffer.
png_bytep PngRow(PngWriteState* state, int row) {
  const Bitmap& bitmap = *state->bitmap;
  uint8_t* buffer = state->rowBuffer.data();
  bitmap.readRGBARow(row, buffer, AlphaMode::Straight);
  if (state->opaque) {
    for (int x = 0; x < bitmap.pixelsWide(); ++x) std::memmove(buffer + x * 3, buffer + x * 4, 3);
  }
  return buffer;
}

bool EncodePng(PngWriteState* state) {
  if (setjmp(png_jmpbuf(state->png))) return false;
  const Bitmap& bitmap = *state->bitmap;
  png_set_write_fn(state->png, state, WritePngBytes, FlushPng);
  png_set_compression_level(state->png, state->compressionLevel);
  // Adaptive filtering tries every filter on every row; at fast settings the
  // Sub filter alone gives most of the gain for a fraction of the time.
  png_set_filter(state->png, 0, state->compressionLevel <= 3 ? PNG_FILTER_SUB : PNG_ALL_FILTERS);
  png_set_IHDR(state->png, state->info, static_cast<png_uint_32>(bitmap.pixelsWide()),
               static_cast<png_uint_32>(bitmap.pixelsHigh()), 8,
               state->opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  Size points = bitmap.size();
  if (points.width != bitmap.pixelsWide() || points.height != bitmap.pixelsHigh()) {
    double metresPerPoint = image_decoding::kCentimetresPerInch / 100.0 / 72.0;
    png_set_pHYs(state->png, state->info,
                 static_cast<png_uint_32>(bitmap.pixelsWide() / (points.width * metresPerPoint) + 0.5),
                 static_cast<png_uint_32>(bitmap.pixelsHigh() / (points.height * metresPerPoint) + 0.5),
                 PNG_RESOLUTION_METER);
  }
  if (!state->texts.empty()) {
    png_set_text(state->png, state->info, state->texts.data(), static_cast<int>(state->texts.size()));
  }
  png_write_info(state->png, state->info);
  for (int row = 0; row < bitmap.pixelsHigh(); ++row) png_write_row(state->png, PngRow(state, row));
  png_write_end(state->png, state->info);
  return true;
}

}  // namespace

Result<std::vector<uint8_t>> WritePNG(const Bitmap& bitmap, const PngWriteOptions& options) {
  return WritePNG(bitmap, options, PngMetadata{});
}

Result<std::vector<uint8_t>> WritePNG(const Bitmap& bitmap, const PngWriteOptions& options,
                                      const PngMetadata& metadata) {
  if (bitmap.isEmpty()) {
    return Failure{"cannot write an empty bitmap as PNG"};
  }
  PngWriteState state;
  state.bitmap = &bitmap;
  state.compressionLevel = options.compressionLevel < 0   ? 0
                           : options.compressionLevel > 9 ? 9
                                                          : options.compressionLevel;
  state.opaque = !metadata.keepAlphaChannel && IsOpaque(bitmap);
  for (const auto& [keyword, text] : metadata.textEntries) {
    png_text entry{};
    entry.compression = PNG_TEXT_COMPRESSION_NONE;
    entry.key = const_cast<char*>(keyword.c_str());
    entry.text = const_cast<char*>(text.c_str());
    entry.text_length = text.size();
    state.texts.push_back(entry);
  }
  state.rowBuffer.resize(bitmap.bytesPerRow());
  state.output.reserve(bitmap.byteCount() / 4 + 1024);
  state.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &state, OnPngError, OnPngWarning);
  if (state.png) state.info = png_create_info_struct(state.png);
  bool encoded = state.png && state.info && EncodePng(&state);
  png_destroy_write_struct(&state.png, &state.info);
  if (!encoded) {
    return Failure{"PNG encoding failed: " +
                   (state.message.empty() ? "out of memory" : state.message)};
  }
  return std::move(state.output);
}

}  // namespace paintdoc
