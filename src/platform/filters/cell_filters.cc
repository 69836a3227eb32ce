#include "platform/filters/cell_filters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "platform/filters/filter_pixels.h"

namespace paintdoc {
namespace {

using filter_pixels::ForEachRow;

// SplitMix64's finaliser: a well-mixed 64-bit value from a cell's index.
uint64_t Mix(uint64_t value) {
  value += 0x9e3779b97f4a7c15ULL;
  value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
  value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
  return value ^ (value >> 31);
}

// A fraction in [0, 1) from the top 24 bits of a hash.
double Fraction(uint64_t hash) { return static_cast<double>(hash >> 40) / static_cast<double>(1 << 24); }

std::shared_ptr<Bitmap> EmptyLike(const Bitmap& input) {
  auto output = Bitmap::create(input.pixelsWide(), input.pixelsHigh());
  if (output) output->setSize(input.size());
  return output;
}

// The seeds of every cell that can own a pixel of the bitmap: the cells over
// the bitmap and two more on each side (a seed lies inside its own cell, so
// the nearest seed to a pixel is never further than two cells away).
class SeedGrid {
 public:
  static constexpr int kReach = 2;

  SeedGrid(const Bitmap& bitmap, double spacing, Point center) : spacing_(spacing), center_(center) {
    firstI_ = CellIndex(0, center.x) - kReach;
    firstJ_ = CellIndex(0, center.y) - kReach;
    columns_ = static_cast<int>(CellIndex(bitmap.pixelsWide(), center.x) - firstI_) + kReach + 1;
    rows_ = static_cast<int>(CellIndex(bitmap.pixelsHigh(), center.y) - firstJ_) + kReach + 1;
    seeds_.resize(static_cast<size_t>(columns_) * rows_);
    for (int j = 0; j < rows_; ++j) {
      for (int i = 0; i < columns_; ++i) {
        seeds_[static_cast<size_t>(j) * columns_ + i] = JitteredSeed(firstI_ + i, firstJ_ + j, spacing, center);
      }
    }
  }

  long CellIndex(double coordinate, double origin) const {
    return static_cast<long>(std::floor((coordinate - origin) / spacing_));
  }

  // The seed nearest to (x, y) and its squared distance.
  std::pair<Point, double> nearest(double x, double y) const {
    const long ci = CellIndex(x, center_.x) - firstI_, cj = CellIndex(y, center_.y) - firstJ_;
    Point best{};
    double bestDistance = std::numeric_limits<double>::infinity();
    for (long j = cj - kReach; j <= cj + kReach; ++j) {
      for (long i = ci - kReach; i <= ci + kReach; ++i) {
        const Point& seed = seeds_[static_cast<size_t>(j) * columns_ + static_cast<size_t>(i)];
        const double dx = seed.x - x, dy = seed.y - y, distance = dx * dx + dy * dy;
        if (distance < bestDistance) {
          bestDistance = distance;
          best = seed;
        }
      }
    }
    return {best, bestDistance};
  }

 private:
  double spacing_;
  Point center_;
  long firstI_ = 0, firstJ_ = 0;
  int columns_ = 0, rows_ = 0;
  std::vector<Point> seeds_;
};

// Fills every pixel of a new bitmap with colourAt(x, y) of its centre in the
// filters' coordinates.
template <class ColourAt>
std::shared_ptr<Bitmap> PaintCells(const Bitmap& input, ColourAt colourAt) {
  auto output = EmptyLike(input);
  if (!output) return nullptr;
  const int width = input.pixelsWide(), height = input.pixelsHigh();
  ForEachRow(height, static_cast<long>(width) * height, [&](int row) {
    uint8_t* out = output->rowAt(row);
    const double y = height - row - 0.5;
    for (int x = 0; x < width; ++x, out += Bitmap::kBytesPerPixel) {
      filter_pixels::StorePixel(out, colourAt(x + 0.5, y));
    }
  });
  return output;
}

// The centre made safe: not-a-number coordinates take the default and far
// ones are pulled in to where cell indices still fit in integers.
Point SafeCenter(Point center) {
  auto safe = [](double value, double fallback) {
    constexpr double kFar = 1e9;
    return std::isfinite(value) ? std::clamp(value, -kFar, kFar) : fallback;
  };
  return {safe(center.x, kDefaultCellCenter.x), safe(center.y, kDefaultCellCenter.y)};
}

}  // namespace

Point JitteredSeed(long i, long j, double spacing, Point center) {
  const uint64_t hash = Mix(static_cast<uint64_t>(i) * 0x100000001b3ULL ^ static_cast<uint64_t>(j));
  const double u = Fraction(hash), v = Fraction(Mix(hash));
  return {center.x + (static_cast<double>(i) + u) * spacing, center.y + (static_cast<double>(j) + v) * spacing};
}

std::shared_ptr<Bitmap> CIPixellate(const Bitmap& input, double inputScale, Point inputCenter,
                                    FilterEdges edges) {
  inputCenter = SafeCenter(inputCenter);
  const double scale = kPixellateScale.sanitized(inputScale);
  auto sampleAt = [&](double p, double origin) {
    return origin + (std::floor((p - origin) / scale) + 0.5) * scale;
  };
  return PaintCells(input, [&](double x, double y) {
    return filter_pixels::SampleAtPoint(input, sampleAt(x, inputCenter.x), sampleAt(y, inputCenter.y), edges);
  });
}

std::shared_ptr<Bitmap> CICrystallize(const Bitmap& input, double inputRadius, Point inputCenter,
                                      FilterEdges edges) {
  inputCenter = SafeCenter(inputCenter);
  const SeedGrid grid(input, kCrystallizeRadius.sanitized(inputRadius), inputCenter);
  return PaintCells(input, [&](double x, double y) {
    const Point seed = grid.nearest(x, y).first;
    return filter_pixels::SampleAtPoint(input, seed.x, seed.y, edges);
  });
}

std::shared_ptr<Bitmap> CIPointillize(const Bitmap& input, double inputRadius, Point inputCenter,
                                      FilterEdges edges) {
  inputCenter = SafeCenter(inputCenter);
  const double radius = kPointillizeRadius.sanitized(inputRadius);
  const SeedGrid grid(input, kPointillizeSpacing * radius, inputCenter);
  return PaintCells(input, [&](double x, double y) {
    const auto [centre, distance] = grid.nearest(x, y);
    if (distance > radius * radius) return Rgba8{};
    return filter_pixels::SampleAtPoint(input, centre.x, centre.y, edges);
  });
}

}  // namespace paintdoc
