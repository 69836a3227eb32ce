#include "platform/values/bitmap.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/values/log.h"
#include "platform/values/pixel_memory.h"

namespace paintdoc {

Bitmap::Bitmap(int width, int height, uint8_t* pixels)
    : width_(width),
      height_(height),
      pixels_(pixels),
      pointSize_{static_cast<double>(width), static_cast<double>(height)} {}

Bitmap::~Bitmap() { std::free(pixels_); }

std::shared_ptr<Bitmap> Bitmap::create(int pixelsWide, int pixelsHigh) {
  if (pixelsWide < 0 || pixelsHigh < 0 || pixelsWide > kMaxDimension ||
      pixelsHigh > kMaxDimension) {
    Log("Error: cannot make a bitmap of " + std::to_string(pixelsWide) + " x " +
        std::to_string(pixelsHigh) + " pixels (each side must be 0 to " +
        std::to_string(kMaxDimension) + ")");
    return nullptr;
  }
  size_t bytes = static_cast<size_t>(pixelsWide) * static_cast<size_t>(pixelsHigh) *
                 kBytesPerPixel;
  // calloc hands back zeroed memory, lazily for large blocks: "created cleared"
  // costs nothing up front. One extra byte keeps empty bitmaps non-null.
  auto* pixels = static_cast<uint8_t*>(std::calloc(bytes + 1, 1));
  if (pixels == nullptr) {
    const std::string size = std::to_string(pixelsWide) + " x " + std::to_string(pixelsHigh);
    Log("Error: out of memory for a bitmap of " + size + " pixels");
    NotePixelMemoryFailure("no memory for a bitmap of " + size + " pixels");
    return nullptr;
  }
  return std::shared_ptr<Bitmap>(new Bitmap(pixelsWide, pixelsHigh, pixels));
}

std::shared_ptr<Bitmap> Bitmap::fromRGBA(int pixelsWide, int pixelsHigh, const uint8_t* bytes,
                                         size_t stride, AlphaMode mode) {
  auto bitmap = create(pixelsWide, pixelsHigh);
  if (!bitmap) return nullptr;
  for (int row = 0; row < pixelsHigh; ++row) {
    bitmap->writeRGBARow(row, bytes + stride * static_cast<size_t>(row), mode);
  }
  return bitmap;
}

Rgba8 Bitmap::pixelAt(int column, int row) const {
  if (column < 0 || row < 0 || column >= width_ || row >= height_) return {};
  const uint8_t* p = rowAt(row) + static_cast<size_t>(column) * kBytesPerPixel;
  return {p[kRed], p[kGreen], p[kBlue], p[kAlpha]};
}

void Bitmap::setPixelAt(int column, int row, Rgba8 premultiplied) {
  if (column < 0 || row < 0 || column >= width_ || row >= height_) return;
  uint8_t* p = rowAt(row) + static_cast<size_t>(column) * kBytesPerPixel;
  p[kRed] = premultiplied.red;
  p[kGreen] = premultiplied.green;
  p[kBlue] = premultiplied.blue;
  p[kAlpha] = premultiplied.alpha;
}

void Bitmap::setSize(Size pointSize) {
  if (!(pointSize.width > 0) || !(pointSize.height > 0) || !std::isfinite(pointSize.width) ||
      !std::isfinite(pointSize.height)) {
    Log("Error: a bitmap's point size must be positive");
    return;
  }
  pointSize_ = pointSize;
}

float Bitmap::dpi() const {
  if (!(pointSize_.width > 0)) return 72.0f;
  return std::ceil(static_cast<float>(width_ * 72.0 / pointSize_.width));
}

void Bitmap::setSizeWithDPI(float dotsPerInch) {
  if (!(dotsPerInch > 0) || isEmpty()) return;
  float width = std::ceil(static_cast<float>(width_) * 72.0f / dotsPerInch);
  float height = std::ceil(static_cast<float>(height_) * 72.0f / dotsPerInch);
  setSize({width, height});
}

void Bitmap::clear() { std::memset(pixels_, 0, byteCount()); }

std::shared_ptr<Bitmap> Bitmap::copy() const {
  auto duplicate = create(width_, height_);
  if (!duplicate) return nullptr;
  std::memcpy(duplicate->pixels_, pixels_, byteCount());
  duplicate->pointSize_ = pointSize_;
  return duplicate;
}

bool Bitmap::samePixels(const Bitmap& other) const {
  return width_ == other.width_ && height_ == other.height_ &&
         std::memcmp(pixels_, other.pixels_, byteCount()) == 0;
}

void Bitmap::readRGBARow(int row, uint8_t* out, AlphaMode mode) const {
  const uint8_t* in = rowAt(row);
  for (int x = 0; x < width_; ++x, in += kBytesPerPixel, out += 4) {
    uint8_t alpha = in[kAlpha];
    if (mode == AlphaMode::Straight && alpha != 255) {
      out[0] = UnpremultiplySample(in[kRed], alpha);
      out[1] = UnpremultiplySample(in[kGreen], alpha);
      out[2] = UnpremultiplySample(in[kBlue], alpha);
    } else {
      out[0] = in[kRed];
      out[1] = in[kGreen];
      out[2] = in[kBlue];
    }
    out[3] = alpha;
  }
}

void Bitmap::writeRGBARow(int row, const uint8_t* in, AlphaMode mode) {
  uint8_t* out = rowAt(row);
  for (int x = 0; x < width_; ++x, in += 4, out += kBytesPerPixel) {
    // Load the whole pixel first: `in` and `out` may be the same bytes.
    uint8_t red = in[0], green = in[1], blue = in[2], alpha = in[3];
    if (mode == AlphaMode::Straight) {
      if (alpha != 255) {
        red = PremultiplySample(red, alpha);
        green = PremultiplySample(green, alpha);
        blue = PremultiplySample(blue, alpha);
      }
    } else {
      // Malformed premultiplied input may hold colour above alpha; clamp it
      // so that compositing never overflows.
      if (red > alpha) red = alpha;
      if (green > alpha) green = alpha;
      if (blue > alpha) blue = alpha;
    }
    out[kRed] = red;
    out[kGreen] = green;
    out[kBlue] = blue;
    out[kAlpha] = alpha;
  }
}

std::vector<uint8_t> Bitmap::rgbaBytes(AlphaMode mode) const {
  std::vector<uint8_t> bytes(byteCount());
  for (int row = 0; row < height_; ++row) {
    readRGBARow(row, bytes.data() + bytesPerRow() * static_cast<size_t>(row), mode);
  }
  return bytes;
}

}  // namespace paintdoc
