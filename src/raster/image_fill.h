// The tolerance flood fill behind the paint bucket and the magic wand. Made
// on a canvas bitmap and a seed pixel, it measures once how far every
// pixel's colour lies from the seed's; each search then finds the
// 4-connected region within a tolerance 0…255, paints it into a
// destination of the canvas size and hands it out as a mask, a rectangle
// or an outline. Searching again with another tolerance reuses what the
// previous search found where it can.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/values/bezier_path.h"
#include "platform/values/bitmap.h"
#include "platform/values/color.h"
#include "platform/values/geometry.h"
#include "raster/image_mask.h"

namespace paintdoc {

class ImageFill {
 public:
  // Null for a missing image, a seed that rounds outside it, an image too
  // large for 16-bit coordinates, or when the memory is not available.
  static std::unique_ptr<ImageFill> withImage(const std::shared_ptr<Bitmap>& image, Point point);

  void setFillColor(const std::optional<Color>& color);
  // Finds and paints the region for the tolerance.
  void fillWithTolerance(uint8_t tolerance);

  bool isPointFilled(Point point) const;
  // The region within its bounding box, placed on the canvas.
  std::shared_ptr<ImageMask> imageMask() const;
  // The bounding box in lower-left pixel coordinates.
  Rect fillRect() const;
  Point startPoint() const;
  // The outline through the centres of the region's edge pixels, as open
  // polylines meant to be stroked.
  BezierPath fillBorder() const;

  // The tolerance of the current result; 256 before any search.
  uint64_t tolerance() const { return toleranceSearch_; }
  const std::shared_ptr<Bitmap>& inputImage() const { return imgSrc_; }
  const std::shared_ptr<Bitmap>& fillImage() const { return imgDst_; }
  bool isFillNeeded() const { return bFillNeeded_; }
  bool isFillAllRect() const { return bFillAll_; }

 private:
  enum SearchState : uint8_t { kNotReached = 0, kRejected = 1, kInRegion = 2 };
  struct Pixel {
    uint16_t x, y;
  };

  ImageFill() = default;
  size_t indexOf(int x, int y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(w_) + static_cast<size_t>(x);
  }
  void computeDistances();
  void searchPoints(uint8_t tolerance);
  void visitNeighbour(int x, int y, uint8_t tolerance, std::vector<Pixel>& next);
  void paintPixel(int x, int y);
  void fillEverything();
  bool inRegion(int x, int y) const { return search_[indexOf(x, y)] == kInRegion; }
  std::vector<uint16_t> edgeMap() const;

  std::shared_ptr<Bitmap> imgSrc_;
  int w_ = 0;
  int h_ = 0;
  int xStart_ = 0;
  int yStart_ = 0;  // storage row, 0 = top
  std::vector<uint8_t> tolerance_;
  uint8_t maxTolerance_ = 0;
  Rgba8 fill_;
  bool bFillAll_ = false;
  bool bFillNeeded_ = false;
  std::vector<uint8_t> search_;
  uint64_t toleranceSearch_ = 256;
  std::shared_ptr<Bitmap> imgDst_;
  int x1_ = 0, x2_ = 0, y1_ = 0, y2_ = 0;
};

}  // namespace paintdoc
