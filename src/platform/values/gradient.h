// A colour gradient: colours at locations in [0, 1] in one colour space.
#pragma once

#include <vector>

#include "platform/values/color.h"

namespace paintdoc {

struct GradientStop {
  Color color;
  double location = 0;
  friend bool operator==(const GradientStop&, const GradientStop&) = default;
};

class Gradient {
 public:
  Gradient() = default;
  // Colours at 0 and 1.
  static Gradient withStartingColor(const Color& start, const Color& end);
  // n colours spaced evenly at i / (n − 1); one colour sits at 0.
  static Gradient withColors(const std::vector<Color>& colors);
  // Colours with their own locations; a missing location list spaces evenly.
  // The colour space defaults to the first colour's.
  static Gradient withColors(const std::vector<Color>& colors,
                             const std::vector<double>& locations,
                             std::optional<ColorSpaceKind> space = std::nullopt);

  size_t numberOfColorStops() const { return stops_.size(); }
  const GradientStop& stopAt(size_t index) const { return stops_[index]; }
  const std::vector<GradientStop>& stops() const { return stops_; }
  ColorSpaceKind colorSpace() const { return space_; }

  // The colour at a location, interpolated component-wise in calibrated RGB
  // with straight (unpremultiplied) alpha; clamps outside the stops.
  RGBA interpolatedColorAtLocation(double location) const;

  friend bool operator==(const Gradient&, const Gradient&) = default;

 private:
  std::vector<GradientStop> stops_;
  ColorSpaceKind space_ = ColorSpaceKind::CalibratedRGB;
};

}  // namespace paintdoc
