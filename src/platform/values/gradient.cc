#include "platform/values/gradient.h"

#include <algorithm>

namespace paintdoc {

Gradient Gradient::withStartingColor(const Color& start, const Color& end) {
  return withColors({start, end}, {0.0, 1.0});
}

Gradient Gradient::withColors(const std::vector<Color>& colors) { return withColors(colors, {}); }

Gradient Gradient::withColors(const std::vector<Color>& colors, const std::vector<double>& locations,
                              std::optional<ColorSpaceKind> space) {
  Gradient g;
  const size_t n = colors.size();
  for (size_t i = 0; i < n; ++i) {
    double location = 0;
    if (i < locations.size()) {
      location = locations[i];
    } else if (n > 1) {
      location = static_cast<double>(i) / static_cast<double>(n - 1);
    }
    g.stops_.push_back({colors[i], location});
  }
  if (space) {
    g.space_ = *space;
  } else if (!colors.empty() && colors.front().colorSpace() != ColorSpaceKind::Catalog) {
    g.space_ = colors.front().colorSpace();
  }
  return g;
}

RGBA Gradient::interpolatedColorAtLocation(double location) const {
  if (stops_.empty()) return {0, 0, 0, 0};
  // Stops may be stored out of order; interpolate over them sorted by location.
  std::vector<const GradientStop*> sorted;
  for (const GradientStop& s : stops_) sorted.push_back(&s);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const GradientStop* a, const GradientStop* b) { return a->location < b->location; });
  if (location <= sorted.front()->location) return sorted.front()->color.toCalibratedRGB();
  if (location >= sorted.back()->location) return sorted.back()->color.toCalibratedRGB();
  for (size_t i = 1; i < sorted.size(); ++i) {
    const GradientStop& a = *sorted[i - 1];
    const GradientStop& b = *sorted[i];
    if (location > b.location) continue;
    const double span = b.location - a.location;
    const double t = span > 0 ? (location - a.location) / span : 1.0;
    const RGBA ca = a.color.toCalibratedRGB(), cb = b.color.toCalibratedRGB();
    auto mix = [t](double x, double y) { return x + (y - x) * t; };
    return {mix(ca.red, cb.red), mix(ca.green, cb.green), mix(ca.blue, cb.blue), mix(ca.alpha, cb.alpha)};
  }
  return sorted.back()->color.toCalibratedRGB();
}

}  // namespace paintdoc
