// BMP reading (no library: the format is small). Handles the core, info and
// V4/V5 headers; 1, 2, 4, 8, 16, 24 and 32 bits a pixel; palettes; bit-field
// masks with or without alpha; RLE8, RLE4 and OS/2's RLE24; bottom-up and
// top-down rows; a V5 header's embedded colour profile.
// Every offset and length is checked against the file before use.
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "platform/codecs/colour_profile.h"
#include "platform/codecs/image_codecs.h"
#include "platform/codecs/image_decoding.h"

namespace paintdoc {
namespace {

using image_decoding::Refused;

constexpr size_t kFileHeaderSize = 14;
// Compression 4 is JPEG data in Windows files (never with a bit count of 24)
// and 24-bit run lengths in OS/2 ones.
constexpr uint32_t kCompressionRGB = 0, kCompressionRLE8 = 1, kCompressionRLE4 = 2,
                   kCompressionBitFields = 3, kCompressionRLE24 = 4,
                   kCompressionAlphaBitFields = 6;

uint16_t ReadU16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }
uint32_t ReadU32(const uint8_t* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// One channel of a bit-field pixel: where its bits are and how to widen them to 8 bits.
struct ChannelMask {
  uint32_t mask = 0;
  int shift = 0;
  uint32_t maximum = 0;

  explicit ChannelMask(uint32_t m = 0) : mask(m) {
    if (mask == 0) return;
    while (!((mask >> shift) & 1)) ++shift;
    maximum = mask >> shift;
  }
  uint8_t extract(uint32_t pixel) const {
    if (maximum == 0) return 0;
    uint32_t value = (pixel & mask) >> shift;
    if (value > maximum) value = maximum;  // masks with holes
    return static_cast<uint8_t>((static_cast<uint64_t>(value) * 255 + maximum / 2) / maximum);
  }
};

struct BmpHeader {
  uint32_t pixelOffset = 0;
  uint32_t infoSize = 0;
  int64_t width = 0;
  int64_t height = 0;  // positive: rows stored bottom-up
  bool topDown = false;
  uint16_t bitsPerPixel = 0;
  uint32_t compression = kCompressionRGB;
  uint32_t colorsUsed = 0;
  std::array<uint32_t, 4> masks{};  // red, green, blue, alpha
  bool hasMasks = false;
  double xPixelsPerMetre = 0, yPixelsPerMetre = 0;
};

class BmpDecoder {
 public:
  BmpDecoder(std::span<const uint8_t> bytes, const ImageReadOptions& options)
      : bytes_(bytes), options_(options) {}

  ImageResult decode();

 private:
  bool has(size_t offset, size_t length) const {
    return offset <= bytes_.size() && length <= bytes_.size() - offset;
  }
  std::string readHeader();
  std::string readPalette();
  void decodeRows();
  void decodeRunLengths();
  std::span<const uint8_t> embeddedProfile() const;
  bool isRunLength() const {
    return header_.compression == kCompressionRLE8 || header_.compression == kCompressionRLE4 ||
           header_.compression == kCompressionRLE24;
  }
  void putIndex(int64_t x, int64_t rowFromBottom, unsigned index);
  void putColor(int64_t x, int64_t rowFromBottom, Rgba8 color);
  // Bitmaps store the top row first.
  int storageRow(int64_t rowFromBottom) const {
    return static_cast<int>(header_.height - 1 - rowFromBottom);
  }

  std::span<const uint8_t> bytes_;
  const ImageReadOptions& options_;
  BmpHeader header_;
  std::vector<Rgba8> palette_;
  std::shared_ptr<Bitmap> bitmap_;
  bool truncated_ = false;
};

std::string BmpDecoder::readHeader() {
  if (!has(0, kFileHeaderSize + 4) || bytes_[0] != 'B' || bytes_[1] != 'M') {
    return "missing BMP signature";
  }
  header_.pixelOffset = ReadU32(&bytes_[10]);
  header_.infoSize = ReadU32(&bytes_[14]);
  const uint8_t* info = &bytes_[kFileHeaderSize];
  if (header_.infoSize == 12) {  // the old core header: 16-bit sizes
    if (!has(kFileHeaderSize, 12)) return "header is truncated";
    header_.width = ReadU16(info + 4);
    header_.height = static_cast<int16_t>(ReadU16(info + 6));
    header_.bitsPerPixel = ReadU16(info + 10);
  } else {
    if (header_.infoSize < 16 || !has(kFileHeaderSize, header_.infoSize)) {
      return "header is truncated or has an unknown size";
    }
    header_.width = static_cast<int32_t>(ReadU32(info + 4));
    header_.height = static_cast<int32_t>(ReadU32(info + 8));
    header_.bitsPerPixel = ReadU16(info + 14);
    if (header_.infoSize >= 20) header_.compression = ReadU32(info + 16);
    if (header_.infoSize >= 32) {
      header_.xPixelsPerMetre = static_cast<int32_t>(ReadU32(info + 24));
      header_.yPixelsPerMetre = static_cast<int32_t>(ReadU32(info + 28));
    }
    if (header_.infoSize >= 36) header_.colorsUsed = ReadU32(info + 32);
  }
  if (header_.height < 0) {
    header_.topDown = true;
    header_.height = -header_.height;
  }
  std::string sizeError = image_decoding::CheckImageSize(
      static_cast<uint64_t>(std::max<int64_t>(header_.width, 0)),
      static_cast<uint64_t>(header_.height), options_);
  if (!sizeError.empty()) return sizeError;

  uint32_t compression = header_.compression;
  uint16_t bits = header_.bitsPerPixel;
  bool validDepth = bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 ||
                    bits == 24 || bits == 32;
  if (!validDepth) return "unsupported depth of " + std::to_string(bits) + " bits a pixel";
  if (compression == kCompressionRLE8 && bits != 8) return "RLE8 data must be 8 bits a pixel";
  if (compression == kCompressionRLE4 && bits != 4) return "RLE4 data must be 4 bits a pixel";
  if (compression == kCompressionRLE24 && bits != 24) {
    return "compression 4 is read as RLE24 only with 24 bits a pixel (JPEG data is not supported)";
  }
  if (isRunLength() && header_.topDown) {
    return "run-length data cannot be stored top-down";
  }
  bool bitFields = compression == kCompressionBitFields || compression == kCompressionAlphaBitFields;
  if (bitFields && bits != 16 && bits != 32) return "bit fields need 16 or 32 bits a pixel";
  if (compression != kCompressionRGB && !isRunLength() && !bitFields) {
    return "unsupported compression " + std::to_string(compression);
  }

  if (bitFields) {
    // Masks sit inside a large header, or right after a 40-byte one.
    size_t maskCount = compression == kCompressionAlphaBitFields || header_.infoSize >= 56 ? 4 : 3;
    size_t maskOffset = kFileHeaderSize + 40;
    if (!has(maskOffset, maskCount * 4)) return "bit-field masks are truncated";
    for (size_t i = 0; i < maskCount; ++i) header_.masks[i] = ReadU32(&bytes_[maskOffset + i * 4]);
    header_.hasMasks = true;
  } else if (bits == 16) {
    header_.masks = {0x7c00, 0x03e0, 0x001f, 0};
  } else if (bits == 32) {
    header_.masks = {0xff0000, 0xff00, 0xff, 0xff000000};
  }
  return {};
}

std::string BmpDecoder::readPalette() {
  if (header_.bitsPerPixel > 8) return {};
  size_t entrySize = header_.infoSize == 12 ? 3 : 4;
  size_t maxEntries = size_t{1} << header_.bitsPerPixel;
  size_t count = header_.colorsUsed == 0 ? maxEntries
                                         : std::min<size_t>(header_.colorsUsed, maxEntries);
  size_t offset = kFileHeaderSize + header_.infoSize;
  if (header_.compression == kCompressionBitFields) offset += 12;
  // A palette cut short by the pixel data is read as far as it goes.
  if (header_.pixelOffset > offset) {
    count = std::min(count, (header_.pixelOffset - offset) / entrySize);
  }
  if (!has(offset, count * entrySize)) return "palette is truncated";
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* entry = &bytes_[offset + i * entrySize];
    palette_.push_back({entry[2], entry[1], entry[0], 255});
  }
  if (palette_.empty()) return "palette is empty";
  return {};
}

void BmpDecoder::putColor(int64_t x, int64_t rowFromBottom, Rgba8 color) {
  if (x < 0 || x >= header_.width || rowFromBottom < 0 || rowFromBottom >= header_.height) return;
  bitmap_->setPixelAt(static_cast<int>(x), storageRow(rowFromBottom), color);
}

void BmpDecoder::putIndex(int64_t x, int64_t rowFromBottom, unsigned index) {
  // An index past the palette shows black, as common viewers do.
  putColor(x, rowFromBottom, index < palette_.size() ? palette_[index] : Rgba8{0, 0, 0, 255});
}

void BmpDecoder::decodeRows() {
  const uint16_t bits = header_.bitsPerPixel;
  const size_t stride = ((static_cast<size_t>(header_.width) * bits + 31) / 32) * 4;
  const std::array<ChannelMask, 4> channels{ChannelMask(header_.masks[0]),
                                            ChannelMask(header_.masks[1]),
                                            ChannelMask(header_.masks[2]),
                                            ChannelMask(header_.masks[3])};
  for (int64_t fileRow = 0; fileRow < header_.height; ++fileRow) {
    size_t offset = header_.pixelOffset + stride * static_cast<size_t>(fileRow);
    if (!has(offset, stride)) {
      truncated_ = true;  // the remaining rows stay transparent
      return;
    }
    const uint8_t* row = &bytes_[offset];
    int64_t rowFromBottom = header_.topDown ? header_.height - 1 - fileRow : fileRow;
    int y = storageRow(rowFromBottom);
    for (int64_t x = 0; x < header_.width; ++x) {
      if (bits <= 8) {
        size_t bitOffset = static_cast<size_t>(x) * bits;
        unsigned byte = row[bitOffset / 8];
        unsigned index = (byte >> (8 - bits - bitOffset % 8)) & ((1u << bits) - 1);
        putIndex(x, rowFromBottom, index);
        continue;
      }
      const uint8_t* p = row + static_cast<size_t>(x) * (bits / 8);
      Rgba8 color;
      if (bits == 24) {
        color = {p[2], p[1], p[0], 255};
      } else {
        uint32_t pixel = bits == 16 ? ReadU16(p) : ReadU32(p);
        color = {channels[0].extract(pixel), channels[1].extract(pixel),
                 channels[2].extract(pixel),
                 header_.masks[3] ? channels[3].extract(pixel) : uint8_t{255}};
      }
      // Straight alpha for now; premultiplied once the alpha is known to be real.
      bitmap_->setPixelAt(static_cast<int>(x), y, color);
    }
  }
}

// Run-length data: pairs (count, value) give runs; a count of 0 is an escape
// (end of line, end of bitmap, a move, or literal pixels padded to 16 bits).
// A value is one index (RLE8), two alternating 4-bit indices (RLE4) or a
// B, G, R colour (RLE24).
void BmpDecoder::decodeRunLengths() {
  const bool fourBit = header_.compression == kCompressionRLE4;
  const bool trueColor = header_.compression == kCompressionRLE24;
  const size_t valueBytes = trueColor ? 3 : 1;
  // Pixel `i` of a run or literal whose bytes start at `value`.
  auto put = [&](int64_t x, int64_t y, const uint8_t* value, unsigned i, bool literal) {
    if (trueColor) {
      const uint8_t* bgr = value + (literal ? size_t{3} * i : 0);
      putColor(x, y, {bgr[2], bgr[1], bgr[0], 255});
    } else if (fourBit) {
      unsigned byte = value[literal ? i / 2 : 0];
      putIndex(x, y, i % 2 ? byte & 0x0f : byte >> 4);
    } else {
      putIndex(x, y, value[literal ? i : 0]);
    }
  };
  size_t pos = header_.pixelOffset;
  int64_t x = 0, y = 0;  // y counts rows from the bottom
  while (y < header_.height) {
    if (!has(pos, 2)) {
      truncated_ = true;
      return;
    }
    unsigned count = bytes_[pos];
    const uint8_t* value = &bytes_[pos + 1];
    if (count > 0) {
      if (!has(pos, 1 + valueBytes)) {
        truncated_ = true;
        return;
      }
      pos += 1 + valueBytes;
      for (unsigned i = 0; i < count && x < header_.width; ++i, ++x) put(x, y, value, i, false);
      continue;
    }
    const unsigned escape = *value;
    pos += 2;
    if (escape == 0) {  // end of line
      x = 0;
      ++y;
    } else if (escape == 1) {  // end of bitmap
      return;
    } else if (escape == 2) {  // move right and up
      if (!has(pos, 2)) {
        truncated_ = true;
        return;
      }
      x += bytes_[pos];
      y += bytes_[pos + 1];
      pos += 2;
    } else {  // `escape` literal pixels, padded to a 16-bit boundary
      size_t literalBytes = trueColor ? size_t{3} * escape : fourBit ? (escape + 1) / 2 : escape;
      if (!has(pos, literalBytes)) {
        truncated_ = true;
        return;
      }
      for (unsigned i = 0; i < escape; ++i, ++x) put(x, y, &bytes_[pos], i, true);
      pos += (literalBytes + 1) & ~size_t{1};
    }
  }
}

// A V5 header may embed an ICC profile ("MBED"): its offset counts from the
// start of the info header. Linked profiles (a file name) are not followed.
std::span<const uint8_t> BmpDecoder::embeddedProfile() const {
  constexpr size_t kV5HeaderSize = 124, kColorSpaceType = 56, kProfileData = 112,
                   kProfileSize = 116;
  constexpr uint32_t kProfileEmbedded = 0x4d424544;  // 'MBED'
  if (header_.infoSize < kV5HeaderSize) return {};
  const uint8_t* info = &bytes_[kFileHeaderSize];
  if (ReadU32(info + kColorSpaceType) != kProfileEmbedded) return {};
  size_t offset = kFileHeaderSize + size_t{ReadU32(info + kProfileData)};
  if (offset >= bytes_.size()) return {};
  // A profile cut short by the end of the file is handed on as it is, so
  // that it is reported as unreadable rather than silently dropped.
  size_t length = std::min<size_t>(ReadU32(info + kProfileSize), bytes_.size() - offset);
  return bytes_.subspan(offset, length);
}

// A 32-bit file whose alpha bytes are all 0 was written by a tool that
// leaves them unused: show it opaque. Otherwise premultiply the real alpha.
void FinishAlpha(Bitmap& bitmap) {
  bool anyAlpha = false;
  for (int row = 0; row < bitmap.pixelsHigh() && !anyAlpha; ++row) {
    const uint8_t* p = bitmap.rowAt(row);
    for (int x = 0; x < bitmap.pixelsWide(); ++x) anyAlpha |= p[x * 4 + Bitmap::kAlpha] != 0;
  }
  std::vector<uint8_t> rgba(bitmap.bytesPerRow());
  for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
    // The pixels were stored unmultiplied; read them back as-is.
    bitmap.readRGBARow(row, rgba.data(), AlphaMode::Premultiplied);
    if (!anyAlpha) {
      for (size_t i = 3; i < rgba.size(); i += 4) rgba[i] = 255;
    }
    bitmap.writeRGBARow(row, rgba.data(), AlphaMode::Straight);
  }
}

ImageResult BmpDecoder::decode() {
  std::string error = readHeader();
  if (error.empty()) error = readPalette();
  if (error.empty() && header_.pixelOffset >= bytes_.size()) error = "pixel data is missing";
  if (!error.empty()) return Refused(ImageFormat::BMP, error);
  bitmap_ = Bitmap::create(static_cast<int>(header_.width), static_cast<int>(header_.height));
  if (!bitmap_) return Refused(ImageFormat::BMP, "out of memory");
  if (isRunLength()) {
    decodeRunLengths();
  } else {
    decodeRows();
  }
  if (truncated_) return Refused(ImageFormat::BMP, "pixel data is truncated");
  if (header_.masks[3] != 0) FinishAlpha(*bitmap_);
  image_decoding::ConvertToSRGB(*bitmap_, embeddedProfile(), ImageFormat::BMP);
  double metresPerInch = image_decoding::kCentimetresPerInch / 100.0;
  image_decoding::ApplyResolution(*bitmap_, header_.xPixelsPerMetre * metresPerInch,
                                  header_.yPixelsPerMetre * metresPerInch);
  return image_decoding::Decoded(ImageFormat::BMP, std::move(bitmap_));
}

}  // namespace

ImageResult ReadBMP(std::span<const uint8_t> bytes, const ImageReadOptions& options) {
  return BmpDecoder(bytes, options).decode();
}

}  // namespace paintdoc
