// The one bitmap type of the library: 8 bits a sample, 4 samples a pixel,
// premultiplied alpha, rows stored top row first, in the byte order cairo uses
// natively (CAIRO_FORMAT_ARGB32) so that drawing into it needs no conversion.
//
// Pixel code reads and writes channels through the named byte offsets kRed,
// kGreen, kBlue and kAlpha, never through hard-coded positions. Drawing
// coordinates have their origin at the lower left (see GraphicsContext); the
// storage row index counts from the top.
//
// A bitmap's point size equals its pixel size unless a resolution is set; the
// point size is what a drawing context on the bitmap covers in user units.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/values/geometry.h"

namespace paintdoc {

// One pixel as four bytes in the order red, green, blue, alpha.
struct Rgba8 {
  uint8_t red = 0, green = 0, blue = 0, alpha = 0;
  friend bool operator==(const Rgba8&, const Rgba8&) = default;
};

// Whether colour samples outside a Bitmap are multiplied by alpha or not.
enum class AlphaMode { Straight, Premultiplied };

class Bitmap {
 public:
  static constexpr int kBytesPerPixel = 4;
  // Byte offsets of the channels within a pixel. cairo's ARGB32 is one native
  // 32-bit word A<<24 | R<<16 | G<<8 | B, so the byte order follows endianness.
  static constexpr bool kLittleEndian = std::endian::native == std::endian::little;
  static constexpr int kBlue = kLittleEndian ? 0 : 3;
  static constexpr int kGreen = kLittleEndian ? 1 : 2;
  static constexpr int kRed = kLittleEndian ? 2 : 1;
  static constexpr int kAlpha = kLittleEndian ? 3 : 0;
  // cairo's image surfaces cannot be larger than this on either side.
  static constexpr int kMaxDimension = 32767;

  // A new bitmap of the given pixel size, every sample 0 (fully transparent),
  // point size equal to pixel size. Null (and an "Error: " log line) when a
  // side is negative or above kMaxDimension, or the memory is not available.
  // A side of 0 gives an empty bitmap.
  static std::shared_ptr<Bitmap> create(int pixelsWide, int pixelsHigh);
  // A new bitmap from rows of R, G, B, A bytes (top row first, `stride` bytes
  // apart) with straight or premultiplied alpha. Null on a bad size.
  static std::shared_ptr<Bitmap> fromRGBA(int pixelsWide, int pixelsHigh, const uint8_t* bytes,
                                          size_t stride, AlphaMode mode);

  Bitmap(const Bitmap&) = delete;
  Bitmap& operator=(const Bitmap&) = delete;
  ~Bitmap();

  int pixelsWide() const { return width_; }
  int pixelsHigh() const { return height_; }
  bool isEmpty() const { return width_ == 0 || height_ == 0; }
  // Rows are packed: cairo's stride for ARGB32 is always 4 × width.
  size_t bytesPerRow() const { return static_cast<size_t>(width_) * kBytesPerPixel; }
  size_t byteCount() const { return bytesPerRow() * static_cast<size_t>(height_); }

  uint8_t* data() { return pixels_; }
  const uint8_t* data() const { return pixels_; }
  // Storage row `row`, counted from the top row.
  uint8_t* rowAt(int row) { return pixels_ + bytesPerRow() * static_cast<size_t>(row); }
  const uint8_t* rowAt(int row) const {
    return pixels_ + bytesPerRow() * static_cast<size_t>(row);
  }

  // The premultiplied pixel in storage row `row` (top first), column `column`.
  // Out-of-range positions read as transparent and are ignored on write.
  Rgba8 pixelAt(int column, int row) const;
  void setPixelAt(int column, int row, Rgba8 premultiplied);

  // --- point size and resolution
  // The size in points (user units of a drawing context on the bitmap).
  Size size() const { return pointSize_; }
  // Sets the point size; sizes that are not positive are refused (logged).
  void setSize(Size pointSize);
  // Dots an inch: ceiling of (pixels wide × 72 / point width); 72 when unset.
  float dpi() const;
  // Sets the point size for a resolution: ceiling of pixels × 72 / dpi on each
  // axis, in single precision. A resolution of 0 or less changes nothing.
  void setSizeWithDPI(float dotsPerInch);

  // --- whole-bitmap operations
  // Every sample to 0.
  void clear();
  // A new bitmap with the same pixels and point size (null if out of memory).
  std::shared_ptr<Bitmap> copy() const;
  // True when both have the same pixel size and bytes (the point size is not compared).
  bool samePixels(const Bitmap& other) const;

  // --- conversion to and from R, G, B, A byte rows
  // Writes storage row `row` as R, G, B, A bytes (4 × pixelsWide bytes).
  void readRGBARow(int row, uint8_t* out, AlphaMode mode) const;
  // Replaces storage row `row` from R, G, B, A bytes. `in` may be the row's
  // own storage (rowAt(row)): decoders read into the bitmap and convert in place.
  void writeRGBARow(int row, const uint8_t* in, AlphaMode mode);
  // All rows, top first, packed.
  std::vector<uint8_t> rgbaBytes(AlphaMode mode) const;

 private:
  Bitmap(int width, int height, uint8_t* pixels);

  int width_ = 0;
  int height_ = 0;
  uint8_t* pixels_ = nullptr;  // owned, allocated with calloc
  Size pointSize_;
};

// Premultiplies one sample by an alpha, rounding to nearest: round(c × a / 255).
inline uint8_t PremultiplySample(uint8_t sample, uint8_t alpha) {
  unsigned t = static_cast<unsigned>(sample) * alpha + 128;
  return static_cast<uint8_t>((t + (t >> 8)) >> 8);
}

// Undoes PremultiplySample: round(c × 255 / a), clamped to 255; 0 when a is 0.
inline uint8_t UnpremultiplySample(uint8_t sample, uint8_t alpha) {
  if (alpha == 0) return 0;
  unsigned value = (static_cast<unsigned>(sample) * 255 + alpha / 2) / alpha;
  return static_cast<uint8_t>(value > 255 ? 255 : value);
}

}  // namespace paintdoc
