#include "platform/graphics/device_edges.h"

#include <algorithm>
#include <cmath>

namespace paintdoc::drawing {

namespace {

bool IsFinite(const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

bool HasOnlyFinitePoints(const BezierPath& path) {
  return std::all_of(path.elements().begin(), path.elements().end(), [](const PathElement& e) {
    return std::all_of(e.points.begin(), e.points.end(), IsFinite);
  });
}

double Length(double dx, double dy) { return std::hypot(dx, dy); }

// Pieces that keep a cubic within `tolerance` of its chords (Wang's bound):
// √(¾ · M / tolerance), M the larger second difference of the control points.
double CurvePieces(const Point& p0, const Point& p1, const Point& p2, const Point& p3,
                   double tolerance) {
  double m = std::max(Length(p0.x - 2 * p1.x + p2.x, p0.y - 2 * p1.y + p2.y),
                      Length(p1.x - 2 * p2.x + p3.x, p1.y - 2 * p2.y + p3.y));
  return std::max(1.0, std::ceil(std::sqrt(0.75 * m / tolerance)));
}

Point CubicAt(const Point& p0, const Point& p1, const Point& p2, const Point& p3, double t) {
  double u = 1 - t;
  double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
  return {a * p0.x + b * p1.x + c * p2.x + d * p3.x, a * p0.y + b * p1.y + c * p2.y + d * p3.y};
}

// Walks the path's elements in device space, handing each straight edge to
// `edge` and each curve (control points in device space) to `curve`.
template <typename OnEdge, typename OnCurve>
void WalkDevicePath(const BezierPath& path, const AffineTransform& userToDevice,
                    bool closeSubpaths, OnEdge edge, OnCurve curve) {
  Point start, current;
  bool open = false;  // a subpath has begun and not been closed
  auto closeSubpath = [&] {
    if (open && (current.x != start.x || current.y != start.y)) edge(current, start);
    current = start;
  };
  for (const PathElement& element : path.elements()) {
    switch (element.type) {
      case PathElementType::MoveTo:
        if (closeSubpaths) closeSubpath();
        start = current = userToDevice.transformPoint(element.points[0]);
        open = true;
        break;
      case PathElementType::LineTo: {
        Point to = userToDevice.transformPoint(element.points[0]);
        edge(current, to);
        current = to;
        open = true;
        break;
      }
      case PathElementType::CurveTo: {
        Point c1 = userToDevice.transformPoint(element.points[0]);
        Point c2 = userToDevice.transformPoint(element.points[1]);
        Point to = userToDevice.transformPoint(element.points[2]);
        curve(current, c1, c2, to);
        current = to;
        open = true;
        break;
      }
      case PathElementType::ClosePath:
        closeSubpath();
        open = false;
        break;
    }
  }
  if (closeSubpaths) closeSubpath();
}

}  // namespace

double FlattenedEdgeCount(const BezierPath& path, const AffineTransform& userToDevice,
                          double tolerance) {
  if (!HasOnlyFinitePoints(path)) return 0;
  double count = 0;
  WalkDevicePath(
      path, userToDevice, /*closeSubpaths=*/true, [&](const Point&, const Point&) { count += 1; },
      [&](const Point& p0, const Point& p1, const Point& p2, const Point& p3) {
        count += CurvePieces(p0, p1, p2, p3, tolerance);
      });
  return count;
}

std::vector<DeviceEdge> FlattenedEdges(const BezierPath& path,
                                       const AffineTransform& userToDevice, double tolerance,
                                       bool closeSubpaths) {
  std::vector<DeviceEdge> edges;
  if (!HasOnlyFinitePoints(path)) return edges;
  auto addEdge = [&](const Point& from, const Point& to) {
    edges.push_back({from.x, from.y, to.x, to.y});
  };
  WalkDevicePath(path, userToDevice, closeSubpaths, addEdge,
                 [&](const Point& p0, const Point& p1, const Point& p2, const Point& p3) {
                   int pieces = static_cast<int>(CurvePieces(p0, p1, p2, p3, tolerance));
                   Point from = p0;
                   for (int i = 1; i <= pieces; ++i) {
                     Point to = i == pieces ? p3 : CubicAt(p0, p1, p2, p3, double(i) / pieces);
                     addEdge(from, to);
                     from = to;
                   }
                 });
  return edges;
}

std::vector<DeviceEdge> StrokeSides(const std::vector<DeviceEdge>& centre, double halfWidth) {
  std::vector<DeviceEdge> sides;
  sides.reserve(2 * centre.size());
  for (const DeviceEdge& e : centre) {
    double length = Length(e.x1 - e.x0, e.y1 - e.y0);
    if (!(length > 0)) continue;
    double nx = -(e.y1 - e.y0) / length * halfWidth, ny = (e.x1 - e.x0) / length * halfWidth;
    sides.push_back({e.x0 + nx, e.y0 + ny, e.x1 + nx, e.y1 + ny});
    sides.push_back({e.x0 - nx, e.y0 - ny, e.x1 - nx, e.y1 - ny});
  }
  return sides;
}

double DeviceHalfLineWidth(const BezierPath& path, const AffineTransform& userToDevice) {
  double width = path.lineWidth();
  if (!(width > 0) || !std::isfinite(width)) return 0.5;
  // The largest singular value of the linear part: how far it stretches a
  // unit length at most.
  const AffineTransform& t = userToDevice;
  double sum = t.m11 * t.m11 + t.m12 * t.m12 + t.m21 * t.m21 + t.m22 * t.m22;
  double det = t.m11 * t.m22 - t.m12 * t.m21;
  double stretch = std::sqrt((sum + std::sqrt(std::max(0.0, sum * sum - 4 * det * det))) / 2);
  return width * stretch / 2;
}

double DeviceLength(const std::vector<DeviceEdge>& edges) {
  double length = 0;
  for (const DeviceEdge& e : edges) length += Length(e.x1 - e.x0, e.y1 - e.y0);
  return length;
}

}  // namespace paintdoc::drawing
