// A coverage mask of one byte a pixel placed at a whole-pixel position on the
// canvas. The flood fill makes one, fill layers keep one to repaint their
// region, and it cuts bitmaps down to a selected region.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "archive/codable.h"
#include "platform/values/bezier_path.h"
#include "platform/values/bitmap.h"
#include "platform/values/color.h"
#include "platform/values/geometry.h"
#include "platform/values/result.h"

namespace paintdoc {

class ImageMask : public Codable {
  PAINTDOC_CLASS(ImageMask, RootObject)

 public:
  // Above this many bytes a mask is refused: a mask never exceeds a canvas,
  // and a canvas side never exceeds Bitmap::kMaxDimension.
  static constexpr int64_t kMaxBytes = int64_t{1} << 28;
  // Above this many path elements a run path is abandoned: the region is then
  // painted pixel by pixel rather than through a path.
  static constexpr size_t kMaxFillPathElements = 5000;

  ImageMask() = default;
  // Takes the bytes over: rows of `width` bytes, top row first. Bytes that do
  // not hold width × height bytes, or a side below 1, give the empty mask.
  ImageMask(std::vector<uint8_t> bytes, int64_t xStart, int64_t yStart, int64_t width,
            int64_t height);

  // A mask from outside data: refuses a side below 1, a size above kMaxBytes
  // and bytes whose count is not width × height.
  static Result<std::shared_ptr<ImageMask>> fromData(std::vector<uint8_t> bytes, int64_t xStart,
                                                     int64_t yStart, int64_t width,
                                                     int64_t height);

  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  int64_t width() const { return w_; }
  int64_t height() const { return h_; }
  bool isEmpty() const { return w_ < 1 || h_ < 1; }
  const std::vector<uint8_t>& maskData() const { return mask_; }
  // Storage row `row` (top first) of the bytes.
  const uint8_t* rowAt(int64_t row) const { return mask_.data() + row * w_; }

  Point maskStartPoint() const;
  // Moves the mask to the floors of the point, taken in single precision.
  void setMaskStartPoint(Point point);
  Rect maskRect() const;

  // The region as a path: the rectangle of the mask when every byte is
  // covered (strokeNeeded false), otherwise one horizontal segment a run of
  // covered pixels through their centre line (strokeNeeded true, to be
  // stroked 1 wide with square caps). None when the run path would pass
  // kMaxFillPathElements.
  std::optional<BezierPath> bezierPathForFill(bool& strokeNeeded) const;

  // Replaces every covered pixel of the bitmap by the colour (none: clear).
  void fillImage(Bitmap* bitmap, const std::optional<Color>& color) const;
  // The covered pixels of the bitmap in a bitmap of the visible part of the
  // mask, transparent elsewhere; null for a mask that starts left of or below
  // the bitmap or lies beyond it.
  std::shared_ptr<Bitmap> scissorImage(const std::shared_ptr<Bitmap>& bitmap) const;
  // The mask as a bitmap of its own size: `color` (premultiplied bytes) where
  // covered, transparent elsewhere. Null when the memory is not available.
  std::shared_ptr<Bitmap> coverageImage(Rgba8 color) const;

  bool fillAtPoint(Point point) const;
  // Mirrors the bytes in place; position and size stay.
  void flip(bool horizontal);
  std::shared_ptr<ImageMask> imageMaskScaledBy(float sx, float sy) const;
  std::shared_ptr<ImageMask> imageMaskRotatedByDegree(int64_t degrees) const;

 private:
  int64_t w_ = 0;
  int64_t h_ = 0;
  int64_t xStart_ = 0;
  int64_t yStart_ = 0;
  std::vector<uint8_t> mask_;
};

// The premultiplied bytes of a colour as pixel code writes them (none: clear):
// each channel round(value × 255 × alpha), alpha round(alpha × 255).
Rgba8 PremultipliedFillBytes(const std::optional<Color>& color);

}  // namespace paintdoc
