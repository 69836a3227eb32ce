#include "raster/image_mask.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/values/affine_transform.h"
#include "platform/values/parallel_loops.h"

namespace paintdoc {

namespace {

bool IsWithinByteLimit(int64_t width, int64_t height) {
  return width >= 1 && height >= 1 && width <= ImageMask::kMaxBytes &&
         height <= ImageMask::kMaxBytes / width;
}

uint8_t RoundedByte(float value) {
  return static_cast<uint8_t>(std::clamp(std::round(value), 0.0f, 255.0f));
}

void WritePixel(uint8_t* pixel, Rgba8 color) {
  pixel[Bitmap::kRed] = color.red;
  pixel[Bitmap::kGreen] = color.green;
  pixel[Bitmap::kBlue] = color.blue;
  pixel[Bitmap::kAlpha] = color.alpha;
}

}  // namespace

Rgba8 PremultipliedFillBytes(const std::optional<Color>& color) {
  if (!color) return {};
  const RGBA rgba = color->toCalibratedRGB();
  const float alpha = static_cast<float>(rgba.alpha);
  return {RoundedByte(static_cast<float>(rgba.red) * 255.0f * alpha),
          RoundedByte(static_cast<float>(rgba.green) * 255.0f * alpha),
          RoundedByte(static_cast<float>(rgba.blue) * 255.0f * alpha),
          RoundedByte(alpha * 255.0f)};
}

ImageMask::ImageMask(std::vector<uint8_t> bytes, int64_t xStart, int64_t yStart, int64_t width,
                     int64_t height) {
  if (!IsWithinByteLimit(width, height) ||
      bytes.size() != static_cast<uint64_t>(width) * static_cast<uint64_t>(height)) {
    return;
  }
  w_ = width;
  h_ = height;
  xStart_ = xStart;
  yStart_ = yStart;
  mask_ = std::move(bytes);
}

Result<std::shared_ptr<ImageMask>> ImageMask::fromData(std::vector<uint8_t> bytes,
                                                       int64_t xStart, int64_t yStart,
                                                       int64_t width, int64_t height) {
  if (width < 1 || height < 1) return Failure{"mask has no area"};
  if (!IsWithinByteLimit(width, height)) return Failure{"mask is too large"};
  if (bytes.size() != static_cast<uint64_t>(width) * static_cast<uint64_t>(height)) {
    return Failure{"mask data does not match its size"};
  }
  return std::make_shared<ImageMask>(std::move(bytes), xStart, yStart, width, height);
}

void ImageMask::encodeWithCoder(KeyedArchiver& coder) const {
  coder.encodeBytesForKey(mask_, "Mask");
  coder.encodeIntegerForKey(xStart_, "XStart");
  coder.encodeIntegerForKey(yStart_, "YStart");
  coder.encodeIntegerForKey(w_, "Width");
  coder.encodeIntegerForKey(h_, "Height");
}

bool ImageMask::initWithCoder(KeyedUnarchiver& coder) {
  std::optional<SharedBytes> bytes = coder.decodeBytesForKey("Mask");
  const int64_t width = coder.decodeIntegerForKey("Width");
  const int64_t height = coder.decodeIntegerForKey("Height");
  // A mask without bytes is an empty mask; bytes that disagree with the
  // archived size are refused rather than read past.
  if (!bytes || bytes->empty() || width < 1 || height < 1) return true;
  Result<std::shared_ptr<ImageMask>> mask =
      fromData(bytes->copy(), coder.decodeIntegerForKey("XStart"),
               coder.decodeIntegerForKey("YStart"), width, height);
  if (!mask) return false;
  *this = std::move(**mask);
  return true;
}

Point ImageMask::maskStartPoint() const {
  return {static_cast<double>(xStart_), static_cast<double>(yStart_)};
}

void ImageMask::setMaskStartPoint(Point point) {
  xStart_ = static_cast<int64_t>(std::floor(static_cast<float>(point.x)));
  yStart_ = static_cast<int64_t>(std::floor(static_cast<float>(point.y)));
}

Rect ImageMask::maskRect() const {
  return MakeRect(static_cast<double>(xStart_), static_cast<double>(yStart_),
                  static_cast<double>(w_), static_cast<double>(h_));
}

std::optional<BezierPath> ImageMask::bezierPathForFill(bool& strokeNeeded) const {
  strokeNeeded = true;
  BezierPath path;
  if (w_ == 1 || h_ == 1) {
    path.moveTo(maskStartPoint());
    path.lineTo(maskStartPoint());
    return path;
  }
  bool allCovered = true;
  for (int64_t y = 0; y < h_; ++y) {
    const uint8_t* row = rowAt(h_ - 1 - y);
    bool runOpen = false;
    for (int64_t x = 0; x < w_; ++x) {
      if (row[x] != 0) {
        if (!runOpen) path.moveTo({static_cast<double>(x), static_cast<double>(y)});
        runOpen = true;
        continue;
      }
      if (runOpen) path.lineTo({static_cast<double>(x - 1), static_cast<double>(y)});
      runOpen = false;
      allCovered = false;
    }
    if (!runOpen) continue;
    path.lineTo({static_cast<double>(w_ - 1), static_cast<double>(y)});
    // Checked only after a row that ends inside a run; a fully covered mask
    // keeps going, for its answer is its rectangle.
    if (!allCovered && path.elementCount() > kMaxFillPathElements) return std::nullopt;
  }
  if (allCovered) {
    strokeNeeded = false;
    return BezierPath::withRect(maskRect());
  }
  path.transform(AffineTransform::translation(static_cast<double>(xStart_),
                                              static_cast<double>(yStart_)));
  return path;
}

void ImageMask::fillImage(Bitmap* bitmap, const std::optional<Color>& color) const {
  if (bitmap == nullptr || isEmpty()) return;
  const int64_t width = bitmap->pixelsWide();
  const int64_t height = bitmap->pixelsHigh();
  if (xStart_ >= width || yStart_ >= height) return;
  const int64_t x0 = std::max<int64_t>(xStart_, 0);
  const int64_t x1 = std::min(xStart_ + w_ - 1, width - 1);
  const int64_t y0 = std::max<int64_t>(yStart_, 0);
  const int64_t y1 = std::min(yStart_ + h_ - 1, height - 1);
  if (x1 < x0 || y1 < y0) return;
  const Rgba8 bytes = PremultipliedFillBytes(color);
  const bool parallel = ParallelPixelLoops();
#pragma omp parallel for schedule(static) if (parallel)
  for (int64_t y = y0; y <= y1; ++y) {
    const uint8_t* maskRow = rowAt(yStart_ + h_ - 1 - y);
    uint8_t* pixels = bitmap->rowAt(static_cast<int>(height - 1 - y));
    for (int64_t x = x0; x <= x1; ++x) {
      if (maskRow[x - xStart_] != 0) WritePixel(pixels + x * Bitmap::kBytesPerPixel, bytes);
    }
  }
}

std::shared_ptr<Bitmap> ImageMask::scissorImage(const std::shared_ptr<Bitmap>& bitmap) const {
  if (!bitmap || isEmpty()) return nullptr;
  const int64_t width = bitmap->pixelsWide();
  const int64_t height = bitmap->pixelsHigh();
  // A mask starting left of or below the bitmap is refused here, although
  // fillImage paints its visible part.
  if (xStart_ < 0 || yStart_ < 0 || xStart_ >= width || yStart_ >= height) return nullptr;
  const int64_t x0 = xStart_;
  const int64_t y0 = yStart_;
  const int64_t x1 = std::min(width - 1, xStart_ + w_ - 1);
  const int64_t y1 = std::min(height - 1, yStart_ + h_ - 1);
  if (x1 < x0 || y1 < y0) return nullptr;
  std::shared_ptr<Bitmap> result =
      InitImageRep(static_cast<double>(x1 - x0 + 1), static_cast<double>(y1 - y0 + 1));
  if (!result) return nullptr;
  const int64_t resultHeight = y1 - y0 + 1;
  for (int64_t y = y0; y <= y1; ++y) {
    const uint8_t* maskRow = rowAt(yStart_ + h_ - 1 - y);
    const uint8_t* source = bitmap->rowAt(static_cast<int>(height - 1 - y));
    uint8_t* target = result->rowAt(static_cast<int>(resultHeight - 1 - (y - y0)));
    for (int64_t x = x0; x <= x1; ++x) {
      if (maskRow[x - xStart_] == 0) continue;
      std::copy_n(source + x * Bitmap::kBytesPerPixel, Bitmap::kBytesPerPixel,
                  target + (x - x0) * Bitmap::kBytesPerPixel);
    }
  }
  return result;
}

std::shared_ptr<Bitmap> ImageMask::coverageImage(Rgba8 color) const {
  if (isEmpty() || w_ > Bitmap::kMaxDimension || h_ > Bitmap::kMaxDimension) return nullptr;
  std::shared_ptr<Bitmap> image = Bitmap::create(static_cast<int>(w_), static_cast<int>(h_));
  if (!image) return nullptr;
  for (int64_t row = 0; row < h_; ++row) {
    const uint8_t* maskRow = rowAt(row);
    uint8_t* pixels = image->rowAt(static_cast<int>(row));
    for (int64_t x = 0; x < w_; ++x) {
      if (maskRow[x] != 0) WritePixel(pixels + x * Bitmap::kBytesPerPixel, color);
    }
  }
  return image;
}

bool ImageMask::fillAtPoint(Point point) const {
  if (point.x < static_cast<double>(xStart_) || point.x > static_cast<double>(xStart_ + w_ - 1) ||
      point.y < static_cast<double>(yStart_) || point.y > static_cast<double>(yStart_ + h_ - 1)) {
    return false;
  }
  const int64_t index = static_cast<int64_t>(std::trunc(point.x)) - xStart_ +
                        (yStart_ + h_ - 1 - static_cast<int64_t>(std::trunc(point.y))) * w_;
  if (index < 0 || index >= w_ * h_) return false;
  return mask_[static_cast<size_t>(index)] != 0;
}

void ImageMask::flip(bool horizontal) {
  if (isEmpty()) return;
  if (horizontal) {
    for (int64_t row = 0; row < h_; ++row) {
      auto begin = mask_.begin() + row * w_;
      std::reverse(begin, begin + w_);
    }
    return;
  }
  for (int64_t row = 0; row < h_ / 2; ++row) {
    std::swap_ranges(mask_.begin() + row * w_, mask_.begin() + (row + 1) * w_,
                     mask_.begin() + (h_ - 1 - row) * w_);
  }
}

std::shared_ptr<ImageMask> ImageMask::imageMaskScaledBy(float sx, float sy) const {
  if (sx == 0 || sy == 0 || isEmpty()) return nullptr;
  const float newWidth = std::ceil(static_cast<float>(w_) * sx);
  const float newHeight = std::ceil(static_cast<float>(h_) * sy);
  // Negative, absurd or not-a-number sizes are refused before any allocation.
  if (!(newWidth >= 1 && newHeight >= 1 && newWidth <= static_cast<float>(kMaxBytes) &&
        newHeight <= static_cast<float>(kMaxBytes))) {
    return nullptr;
  }
  const auto width = static_cast<int64_t>(newWidth);
  const auto height = static_cast<int64_t>(newHeight);
  if (!IsWithinByteLimit(width, height)) return nullptr;
  std::vector<uint8_t> bytes(static_cast<size_t>(width * height));
  for (int64_t row = 0; row < height; ++row) {
    const auto sourceRow = static_cast<int64_t>(std::floor(static_cast<float>(row) / sy));
    if (sourceRow < 0 || sourceRow >= h_) continue;
    for (int64_t column = 0; column < width; ++column) {
      const auto sourceColumn = static_cast<int64_t>(std::floor(static_cast<float>(column) / sx));
      if (sourceColumn < 0 || sourceColumn >= w_) continue;
      bytes[static_cast<size_t>(row * width + column)] = rowAt(sourceRow)[sourceColumn];
    }
  }
  const auto xStart = static_cast<int64_t>(std::ceil(static_cast<float>(xStart_) * sx));
  const auto yStart = static_cast<int64_t>(std::ceil(static_cast<float>(yStart_) * sy));
  return std::make_shared<ImageMask>(std::move(bytes), xStart, yStart, width, height);
}

std::shared_ptr<ImageMask> ImageMask::imageMaskRotatedByDegree(int64_t degrees) const {
  const int64_t angle = ((degrees % 360) + 360) % 360;
  if (angle == 0 || angle % 90 != 0 || isEmpty()) return nullptr;
  const AffineTransform rotation = AffineTransform::rotationDegrees(static_cast<double>(angle));
  const Size turned = rotation.transformSize({static_cast<double>(w_), static_cast<double>(h_)});
  const auto width = static_cast<int64_t>(std::fabs(turned.width) + 0.5);
  const auto height = static_cast<int64_t>(std::fabs(turned.height) + 0.5);
  // Halves are whole-number divisions, so odd and even sizes sample alike.
  AffineTransform sampling = AffineTransform::translation(
      static_cast<double>((1 - width) / 2), static_cast<double>((1 - height) / 2));
  sampling.append(rotation);
  sampling.append(AffineTransform::translation(static_cast<double>((w_ - 1) / 2),
                                               static_cast<double>((h_ - 1) / 2)));
  std::vector<uint8_t> bytes(static_cast<size_t>(width * height));
  for (int64_t y = 0; y < height; ++y) {
    for (int64_t x = 0; x < width; ++x) {
      const Point source =
          sampling.transformPoint({static_cast<double>(x), static_cast<double>(y)});
      const auto u = static_cast<int64_t>(std::trunc(source.x + 0.5));
      const auto v = static_cast<int64_t>(std::trunc(source.y + 0.5));
      // Indices just outside the source read as uncovered.
      if (u < 0 || u >= w_ || v < 0 || v >= h_) continue;
      bytes[static_cast<size_t>(y * width + x)] = rowAt(v)[u];
    }
  }
  return std::make_shared<ImageMask>(std::move(bytes), xStart_, yStart_, width, height);
}

}  // namespace paintdoc
