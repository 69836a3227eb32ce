#include "raster/image_fill.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

#include "platform/graphics/bitmap_functions.h"

namespace paintdoc {

namespace {

constexpr int kMaxSide = 65535;
constexpr uint16_t kHorizontalEdge = 1;
constexpr uint16_t kVerticalEdge = 2;

int RoundedCoordinate(double value) {
  return static_cast<int>(std::round(static_cast<float>(value)));
}

uint8_t Distance(const uint8_t* pixel, const uint8_t* seed) {
  int largest = 0;
  for (int channel = 0; channel < Bitmap::kBytesPerPixel; ++channel) {
    largest = std::max(largest, std::abs(int{pixel[channel]} - int{seed[channel]}));
  }
  return static_cast<uint8_t>(largest);
}

}  // namespace

std::unique_ptr<ImageFill> ImageFill::withImage(const std::shared_ptr<Bitmap>& image,
                                                Point point) {
  if (!image || image->isEmpty()) return nullptr;
  const double x = static_cast<double>(std::round(static_cast<float>(point.x)));
  const double y = static_cast<double>(std::round(static_cast<float>(point.y)));
  const int w = image->pixelsWide();
  const int h = image->pixelsHigh();
  if (x < 0 || x >= w || y < 0 || y >= h || w > kMaxSide || h > kMaxSide) return nullptr;
  std::unique_ptr<ImageFill> fill(new (std::nothrow) ImageFill());
  if (!fill) return nullptr;
  fill->imgSrc_ = image;
  fill->w_ = w;
  fill->h_ = h;
  fill->xStart_ = RoundedCoordinate(point.x);
  fill->yStart_ = h - 1 - RoundedCoordinate(point.y);
  try {
    fill->tolerance_.assign(static_cast<size_t>(w) * static_cast<size_t>(h), 0);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  fill->computeDistances();
  return fill;
}

void ImageFill::computeDistances() {
  const uint8_t* seed = imgSrc_->rowAt(yStart_) + xStart_ * Bitmap::kBytesPerPixel;
  uint8_t seedBytes[Bitmap::kBytesPerPixel];
  std::copy_n(seed, Bitmap::kBytesPerPixel, seedBytes);
  uint8_t largest = 0;
  for (int y = 0; y < h_; ++y) {
    const uint8_t* row = imgSrc_->rowAt(y);
    for (int x = 0; x < w_; ++x) {
      const uint8_t d = Distance(row + x * Bitmap::kBytesPerPixel, seedBytes);
      tolerance_[indexOf(x, y)] = d;
      largest = std::max(largest, d);
    }
  }
  maxTolerance_ = largest;
}

void ImageFill::setFillColor(const std::optional<Color>& color) {
  fill_ = PremultipliedFillBytes(color);
}

void ImageFill::fillWithTolerance(uint8_t tolerance) {
  if (tolerance == toleranceSearch_) return;
  // Everything reachable was already taken: a wider tolerance finds no more.
  if (tolerance > toleranceSearch_ && bFillAll_) {
    toleranceSearch_ = tolerance;
    return;
  }
  try {
    search_.assign(tolerance_.size(), kNotReached);
  } catch (const std::bad_alloc&) {
    return;
  }
  search_[indexOf(xStart_, yStart_)] = kInRegion;
  if (!imgDst_) {
    imgDst_ = InitImageRep(w_, h_);
    if (!imgDst_) return;
  } else if (tolerance < toleranceSearch_) {
    // The region shrinks: the old, larger one must not show through.
    imgDst_->clear();
  }
  const uint8_t* seed = imgSrc_->rowAt(yStart_) + xStart_ * Bitmap::kBytesPerPixel;
  bFillNeeded_ = seed[Bitmap::kRed] != fill_.red || seed[Bitmap::kGreen] != fill_.green ||
                 seed[Bitmap::kBlue] != fill_.blue || seed[Bitmap::kAlpha] != fill_.alpha;
  toleranceSearch_ = tolerance;
  if (tolerance < maxTolerance_) {
    bFillAll_ = true;
    x1_ = x2_ = xStart_;
    y1_ = y2_ = yStart_;
    searchPoints(tolerance);
  } else {
    fillEverything();
  }
}

void ImageFill::fillEverything() {
  std::fill(search_.begin(), search_.end(), kInRegion);
  for (int y = 0; y < h_; ++y) {
    for (int x = 0; x < w_; ++x) paintPixel(x, y);
  }
  x1_ = 0;
  y1_ = 0;
  x2_ = w_ - 1;
  y2_ = h_ - 1;
  bFillAll_ = true;
  if (maxTolerance_ != 0) bFillNeeded_ = true;
}

void ImageFill::paintPixel(int x, int y) {
  uint8_t* pixel = imgDst_->rowAt(y) + x * Bitmap::kBytesPerPixel;
  pixel[Bitmap::kRed] = fill_.red;
  pixel[Bitmap::kGreen] = fill_.green;
  pixel[Bitmap::kBlue] = fill_.blue;
  pixel[Bitmap::kAlpha] = fill_.alpha;
}

// Breadth first, one frontier at a time, in explicit lists that grow as the
// region branches: no recursion, whatever the region's shape.
void ImageFill::searchPoints(uint8_t tolerance) {
  std::vector<Pixel> current{{static_cast<uint16_t>(xStart_), static_cast<uint16_t>(yStart_)}};
  std::vector<Pixel> next;
  current.reserve(2 * static_cast<size_t>(w_ + h_));
  next.reserve(current.capacity());
  while (!current.empty()) {
    for (const Pixel pixel : current) {
      const int x = pixel.x;
      const int y = pixel.y;
      if (!bFillNeeded_ && tolerance_[indexOf(x, y)] != 0) bFillNeeded_ = true;
      paintPixel(x, y);
      if (x < x1_) {
        x1_ = x;
      } else if (x > x2_) {
        x2_ = x;
      }
      if (y < y1_) {
        y1_ = y;
      } else if (y > y2_) {
        y2_ = y;
      }
      if (x > 0) visitNeighbour(x - 1, y, tolerance, next);
      if (x + 1 < w_) visitNeighbour(x + 1, y, tolerance, next);
      if (y > 0) visitNeighbour(x, y - 1, tolerance, next);
      if (y + 1 < h_) visitNeighbour(x, y + 1, tolerance, next);
    }
    current.swap(next);
    next.clear();
  }
}

void ImageFill::visitNeighbour(int x, int y, uint8_t tolerance, std::vector<Pixel>& next) {
  uint8_t& state = search_[indexOf(x, y)];
  if (state != kNotReached) return;
  if (tolerance_[indexOf(x, y)] > tolerance) {
    state = kRejected;
    bFillAll_ = false;
    return;
  }
  state = kInRegion;
  next.push_back({static_cast<uint16_t>(x), static_cast<uint16_t>(y)});
}

bool ImageFill::isPointFilled(Point point) const {
  if (search_.empty() || point.x < 0 || point.y < 0 || point.x >= w_ || point.y >= h_) {
    return false;
  }
  const int x = static_cast<int>(std::trunc(point.x));
  const int y = h_ - 1 - static_cast<int>(std::trunc(point.y));
  return inRegion(x, y);
}

std::shared_ptr<ImageMask> ImageFill::imageMask() const {
  if (search_.empty()) return nullptr;
  const int width = x2_ - x1_ + 1;
  const int height = y2_ - y1_ + 1;
  std::vector<uint8_t> bytes(static_cast<size_t>(width) * static_cast<size_t>(height));
  for (int y = y1_; y <= y2_; ++y) {
    for (int x = x1_; x <= x2_; ++x) {
      bytes[static_cast<size_t>(y - y1_) * static_cast<size_t>(width) +
            static_cast<size_t>(x - x1_)] = inRegion(x, y) ? 1 : 0;
    }
  }
  return std::make_shared<ImageMask>(std::move(bytes), x1_, h_ - 1 - y2_, width, height);
}

Rect ImageFill::fillRect() const {
  return MakeRect(x1_, h_ - 1 - y2_, x2_ - x1_ + 1, y2_ - y1_ + 1);
}

Point ImageFill::startPoint() const {
  return {static_cast<double>(xStart_), static_cast<double>(h_ - 1 - yStart_)};
}

// One word a pixel: bit 1 for an edge to the right neighbour, bit 2 for an
// edge to the one below (in storage), set where the two-by-two block on
// either side of the joining segment is not wholly in the region.
std::vector<uint16_t> ImageFill::edgeMap() const {
  std::vector<uint16_t> edges(search_.size(), 0);
  auto outside = [this](int x, int y) {
    return x < 0 || y < 0 || x >= w_ || y >= h_ || !inRegion(x, y);
  };
  for (int y = y1_; y <= y2_; ++y) {
    for (int x = x1_; x <= x2_; ++x) {
      if (!inRegion(x, y)) continue;
      if (x + 1 < w_ && inRegion(x + 1, y) &&
          (y == 0 || y == h_ - 1 || outside(x, y - 1) || outside(x + 1, y - 1) ||
           outside(x, y + 1) || outside(x + 1, y + 1))) {
        edges[indexOf(x, y)] |= kHorizontalEdge;
      }
      if (y + 1 < h_ && inRegion(x, y + 1) &&
          (x == 0 || x == w_ - 1 || outside(x - 1, y) || outside(x + 1, y) ||
           outside(x - 1, y + 1) || outside(x + 1, y + 1))) {
        edges[indexOf(x, y)] |= kVerticalEdge;
      }
    }
  }
  return edges;
}

BezierPath ImageFill::fillBorder() const {
  if (bFillAll_) return BezierPath::withRect(fillRect());
  BezierPath path;
  if (search_.empty()) return path;
  std::vector<uint16_t> edges = edgeMap();
  auto emit = [&](int x, int y, bool first) {
    const Point p{static_cast<double>(x), static_cast<double>(h_ - 1 - y)};
    if (first) {
      path.moveTo(p);
    } else {
      path.lineTo(p);
    }
  };
  std::vector<Pixel> pending;
  for (int startY = y1_; startY <= y2_; ++startY) {
    for (int startX = x1_; startX <= x2_; ++startX) {
      if (edges[indexOf(startX, startY)] == 0) continue;
      pending.push_back({static_cast<uint16_t>(startX), static_cast<uint16_t>(startY)});
      while (!pending.empty()) {
        int x = pending.back().x;
        int y = pending.back().y;
        pending.pop_back();
        emit(x, y, true);
        // Each step draws at most one new segment per direction; a point
        // with more edges left is pushed and traced again later.
        while (true) {
          bool drawn = false;
          const int stepX = x;
          while (edges[indexOf(x, y)] & kHorizontalEdge) {
            edges[indexOf(x, y)] &= static_cast<uint16_t>(~kHorizontalEdge);
            if (edges[indexOf(x, y)] & kVerticalEdge) {
              pending.push_back({static_cast<uint16_t>(x), static_cast<uint16_t>(y)});
            }
            ++x;
            emit(x, y, false);
            drawn = true;
          }
          if (!drawn && (edges[indexOf(x, y)] & kVerticalEdge)) {
            edges[indexOf(x, y)] &= static_cast<uint16_t>(~kVerticalEdge);
            ++y;
            emit(x, y, false);
            continue;
          }
          if (stepX > 0 && (edges[indexOf(stepX - 1, y)] & kHorizontalEdge)) {
            if (!drawn) {
              edges[indexOf(stepX - 1, y)] &= static_cast<uint16_t>(~kHorizontalEdge);
              x = stepX - 1;
              emit(x, y, false);
              drawn = true;
            } else {
              pending.push_back({static_cast<uint16_t>(stepX), static_cast<uint16_t>(y)});
            }
          }
          if (y >= 1 && (edges[indexOf(x, y - 1)] & kVerticalEdge)) {
            if (!drawn) {
              edges[indexOf(x, y - 1)] &= static_cast<uint16_t>(~kVerticalEdge);
              --y;
              emit(x, y, false);
              drawn = true;
            } else {
              pending.push_back({static_cast<uint16_t>(x), static_cast<uint16_t>(y)});
            }
          }
          if (!drawn) break;
        }
      }
    }
  }
  return path;
}

}  // namespace paintdoc
