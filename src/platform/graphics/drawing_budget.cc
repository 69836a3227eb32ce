#include "platform/graphics/drawing_budget.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "platform/graphics/edge_crossings.h"

namespace paintdoc::drawing {

namespace {

// The limits below keep one primitive (its shadow pass included) to well
// under a second of cairo 1.16 on one core, so that a thumbnail ends within
// its two seconds. They come from timing hostile paths (random lines, stars,
// spirals) and lie far above what ordinary drawings need.

// Straight edges after flattening and stroking. Each costs cairo about a
// hundred bytes and a sort step, and memory grows with them before any
// other limit is reached; a detailed map outline has a few ten thousand.
constexpr double kMostEdges = 1'000'000;
// Σ pixel rows the edges span, over all passes: the scan converter steps
// every edge through every subsample row it spans, 80 to 300 ns a pixel row
// as measured (stars to random lines, fills to strokes). Three million is at
// most about a second, and a thousand edges across a whole 3000-pixel-high
// canvas.
constexpr double kMostRows = 3'000'000;
// Pairs of edges crossing each other, over all passes: the scan converter
// swaps two active edges where they cross, about 5 ns a crossing as measured
// on stars, whatever the scale (crossings do not get fewer when a path is
// drawn smaller). 50 million is a quarter of a second.
constexpr double kMostIntersections = 50'000'000;
// Pairs of crossing edges when a clipping path is in force: cairo then
// intersects the path with the clip by a sweep that handles every crossing as
// an event, about 0.4 µs each, and cairo 1.16 crashes in that sweep on
// strokes of self-overlapping spirals from about two million crossings on.
// 300,000 is a tenth of a second and well clear of the crash.
constexpr double kMostClippedIntersections = 300'000;
// Dash segments of a dashed stroke: each is stroked as its own subpath with
// two caps, a few microseconds each.
constexpr double kMostDashes = 200'000;
// Stops handed to cairo for one gradient. pixman looks a pixel's stop pair up
// by a walk over the stops, so a gradient of a hundred thousand stops takes
// seconds; 1024 evenly spaced samples of it differ from it only where it
// changes within a thousandth of its length, detail that the few thousand
// pixels a gradient spans at most hardly show.
constexpr size_t kMostGradientStops = 1024;

// A count as a whole number; counts too large for 64 bits (a line 1e30 wide
// spans that many rows) are written in powers of ten instead of overflowing.
std::string Whole(double value) {
  if (!(std::fabs(value) < 9e18)) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
  }
  return std::to_string(std::llround(value));
}

std::string PathOf(const BezierPath& path) {
  return "a path of " + std::to_string(path.elementCount()) + " elements";
}

std::string Beyond(double amount, const char* what, double limit, bool atLeast = false) {
  return std::string(atLeast ? " (at least " : " (about ") + Whole(amount) + " " + what +
         ", limit " + Whole(limit) + ")";
}

// The edges a path and the clipping paths in force make together.
std::vector<DeviceEdge> WithClipEdges(std::vector<DeviceEdge> edges,
                                      const std::vector<DeviceEdge>& clipEdges) {
  edges.insert(edges.end(), clipEdges.begin(), clipEdges.end());
  return edges;
}

// The crossings a primitive may have: fewer under a clipping path, which
// cairo sweeps with it.
double IntersectionLimit(bool clipped) {
  return clipped ? kMostClippedIntersections : kMostIntersections;
}

// The scan and crossing counts of the edges over all passes, into `work`.
void CountEdges(const std::vector<DeviceEdge>& edges, const DeviceFrame& frame, bool clipped,
                DrawingWork& work) {
  double passes = std::max(1, frame.passes);
  double limit = IntersectionLimit(clipped) / passes;
  // n edges cross in at most n(n − 1)/2 pairs: below the limit, counting is
  // not worth its time.
  double count = static_cast<double>(edges.size());
  bool mayCrossTooOften = count * (count - 1) / 2 > limit;
  EdgeCrossings crossings = CountCrossings(edges, frame.visible, mayCrossTooOften ? limit : 0);
  work.rows = crossings.rows * passes;
  work.intersections = crossings.intersections * passes;
  work.intersectionsStoppedEarly = crossings.stoppedEarly;
}

// The dash pattern as cairo takes it, or empty when the stroke is solid
// (a negative or infinite length, or nothing but zeros, draws solid).
std::vector<double> EffectiveDash(const BezierPath& path) {
  const std::vector<double>& dash = path.lineDash();
  bool valid = std::none_of(dash.begin(), dash.end(),
                            [](double d) { return d < 0 || !std::isfinite(d); }) &&
               std::any_of(dash.begin(), dash.end(), [](double d) { return d > 0; }) &&
               std::isfinite(path.lineDashPhase());
  if (!valid) return {};
  // An odd pattern repeats with on and off swapped: its period is twice as long.
  std::vector<double> period = dash;
  if (period.size() % 2 == 1) period.insert(period.end(), dash.begin(), dash.end());
  return period;
}

// How much longer a dash is drawn than its length: its two caps.
double CapExtension(const BezierPath& path) {
  if (path.lineCapStyle() == LineCapStyle::Butt) return 0;
  double width = path.lineWidth();
  return width > 0 && std::isfinite(width) ? width : 0;
}

// The geometric mean of the transform's stretch: how long a user unit along
// a path is in device pixels, on average over directions.
double AreaScale(const AffineTransform& t) {
  return std::sqrt(std::abs(t.m11 * t.m22 - t.m12 * t.m21));
}

std::optional<std::string> EdgeCountRefusal(const std::string& what, double edges) {
  if (edges <= kMostEdges) return std::nullopt;
  return what + " has too many edges to draw" + Beyond(edges, "edges", kMostEdges);
}

std::optional<std::string> CrossingRefusal(const std::string& what, const DrawingWork& work,
                                           bool clipped) {
  double limit = IntersectionLimit(clipped);
  if (work.intersections > limit) {
    const char* crosses = clipped ? " and its clipping path cross too often to draw"
                                  : " crosses itself too often to draw";
    return what + crosses +
           Beyond(work.intersections, "crossings", limit, work.intersectionsStoppedEarly);
  }
  if (work.rows <= kMostRows) return std::nullopt;
  return what + " is too dense to draw (its edges span about " + Whole(work.rows) +
         " pixel rows in all, limit " + Whole(kMostRows) + ")";
}

}  // namespace

DrawingWork FillWork(const BezierPath& path, const DeviceFrame& frame,
                     const std::vector<DeviceEdge>& clipEdges) {
  DrawingWork work;
  work.edges = FlattenedEdgeCount(path, frame.userToDevice, frame.tolerance) + clipEdges.size();
  if (work.edges > kMostEdges) return work;
  std::vector<DeviceEdge> edges = WithClipEdges(
      FlattenedEdges(path, frame.userToDevice, frame.tolerance, /*closeSubpaths=*/true),
      clipEdges);
  CountEdges(edges, frame, !clipEdges.empty(), work);
  return work;
}

DrawingWork StrokeWork(const BezierPath& path, const DeviceFrame& frame,
                       const std::vector<DeviceEdge>& clipEdges) {
  DrawingWork work;
  // Each flattened edge becomes the two sides of the stroke plus a join.
  double centreEdges = FlattenedEdgeCount(path, frame.userToDevice, frame.tolerance);
  work.edges = 3 * centreEdges + clipEdges.size();
  if (work.edges > kMostEdges) return work;
  std::vector<DeviceEdge> centre =
      FlattenedEdges(path, frame.userToDevice, frame.tolerance, /*closeSubpaths=*/false);
  std::vector<double> dash = EffectiveDash(path);
  if (!dash.empty()) {
    double period = std::accumulate(dash.begin(), dash.end(), 0.0) * AreaScale(frame.userToDevice);
    double dashesPerPeriod = static_cast<double>(dash.size()) / 2;
    work.dashes = period > 0 ? DeviceLength(centre) / period * dashesPerPeriod : 0;
    // Too many dashes to draw: counting their edges would only take time.
    if (work.dashes > kMostDashes) return work;
  }
  double halfWidth = DeviceHalfLineWidth(path, frame.userToDevice);
  std::vector<DeviceEdge> edges = WithClipEdges(StrokeSides(centre, halfWidth), clipEdges);
  CountEdges(edges, frame, !clipEdges.empty(), work);
  // Each join and cap spans about the line's width in rows.
  work.rows += static_cast<double>(centre.size()) * 2 * halfWidth * std::max(1, frame.passes);
  return work;
}

std::optional<std::string> FillRefusal(const BezierPath& path, const DeviceFrame& frame,
                                       const std::vector<DeviceEdge>& clipEdges) {
  DrawingWork work = FillWork(path, frame, clipEdges);
  if (auto refusal = EdgeCountRefusal(PathOf(path), work.edges)) return refusal;
  return CrossingRefusal(PathOf(path), work, !clipEdges.empty());
}

std::optional<std::string> StrokeRefusal(const BezierPath& path, const DeviceFrame& frame,
                                         const std::vector<DeviceEdge>& clipEdges) {
  DrawingWork work = StrokeWork(path, frame, clipEdges);
  std::string what = "the stroke of " + PathOf(path);
  if (auto refusal = EdgeCountRefusal(what, work.edges)) return refusal;
  if (work.dashes > kMostDashes) {
    return "the dashed stroke of " + PathOf(path) + " has too many dashes to draw" +
           Beyond(work.dashes, "dashes", kMostDashes);
  }
  return CrossingRefusal(what, work, !clipEdges.empty());
}

std::optional<double> SubpixelDashCoverage(const BezierPath& path,
                                           const AffineTransform& userToDevice) {
  std::vector<double> dash = EffectiveDash(path);
  if (dash.empty()) return std::nullopt;
  double period = std::accumulate(dash.begin(), dash.end(), 0.0);
  if (!(period * AreaScale(userToDevice) < 1)) return std::nullopt;
  // Even entries are dashes, odd ones gaps; caps lengthen each dash.
  double drawn = 0;
  for (size_t i = 0; i < dash.size(); i += 2) drawn += dash[i] + CapExtension(path);
  return std::min(1.0, drawn / period);
}

Gradient WithBoundedStops(const Gradient& gradient) {
  if (gradient.numberOfColorStops() <= kMostGradientStops) return gradient;
  // The stops as cairo takes them: in order, within [0, 1], in calibrated RGB.
  struct Sample {
    double location;
    RGBA color;
  };
  std::vector<Sample> stops;
  for (const GradientStop& stop : gradient.stops()) {
    if (!std::isfinite(stop.location)) continue;
    stops.push_back({std::clamp(stop.location, 0.0, 1.0), stop.color.toCalibratedRGB()});
  }
  if (stops.empty()) return Gradient();
  std::stable_sort(stops.begin(), stops.end(),
                   [](const Sample& a, const Sample& b) { return a.location < b.location; });
  std::vector<Color> colors;
  std::vector<double> locations;
  size_t next = 0;  // the first stop past the sample
  for (size_t i = 0; i < kMostGradientStops; ++i) {
    double location = static_cast<double>(i) / (kMostGradientStops - 1);
    while (next < stops.size() && stops[next].location <= location) ++next;
    RGBA color = next == 0 ? stops.front().color : stops[next - 1].color;
    if (next > 0 && next < stops.size()) {
      const Sample& a = stops[next - 1];
      const Sample& b = stops[next];
      double t = (location - a.location) / (b.location - a.location);
      auto mix = [t](double x, double y) { return x + (y - x) * t; };
      color = {mix(a.color.red, b.color.red), mix(a.color.green, b.color.green),
               mix(a.color.blue, b.color.blue), mix(a.color.alpha, b.color.alpha)};
    }
    colors.push_back(Color::calibratedRGB(color.red, color.green, color.blue, color.alpha));
    locations.push_back(location);
  }
  return Gradient::withColors(colors, locations, ColorSpaceKind::CalibratedRGB);
}

}  // namespace paintdoc::drawing
