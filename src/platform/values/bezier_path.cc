#include "platform/values/bezier_path.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "platform/values/log.h"

namespace paintdoc {

namespace {

constexpr double kPi = std::numbers::pi;

double Radians(double degrees) { return degrees * kPi / 180.0; }

Point CubicAt(const Point& p0, const Point& p1, const Point& p2, const Point& p3, double t) {
  const double u = 1 - t;
  const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
  return {a * p0.x + b * p1.x + c * p2.x + d * p3.x, a * p0.y + b * p1.y + c * p2.y + d * p3.y};
}

// Parameters in (0, 1) where one coordinate of a cubic has a zero derivative.
void CubicExtremaParameters(double p0, double p1, double p2, double p3, std::vector<double>& out) {
  // B'(t)/3 = a t² + b t + c
  const double a = -p0 + 3 * p1 - 3 * p2 + p3;
  const double b = 2 * (p0 - 2 * p1 + p2);
  const double c = p1 - p0;
  auto keep = [&](double t) {
    if (t > 0 && t < 1) out.push_back(t);
  };
  if (std::abs(a) < 1e-12) {
    if (std::abs(b) > 1e-12) keep(-c / b);
    return;
  }
  const double disc = b * b - 4 * a * c;
  if (disc < 0) return;
  const double root = std::sqrt(disc);
  keep((-b + root) / (2 * a));
  keep((-b - root) / (2 * a));
}

struct BoundsAccumulator {
  double x0 = std::numeric_limits<double>::infinity();
  double y0 = x0;
  double x1 = -x0;
  double y1 = -x0;
  bool any = false;

  void add(const Point& p) {
    x0 = std::min(x0, p.x);
    y0 = std::min(y0, p.y);
    x1 = std::max(x1, p.x);
    y1 = std::max(y1, p.y);
    any = true;
  }
  Rect rect() const { return any ? MakeRect(x0, y0, x1 - x0, y1 - y0) : ZeroRect(); }
};

// Number of line segments that keep a cubic within `tolerance` of its chords.
int CurveSegments(const Point& p0, const Point& p1, const Point& p2, const Point& p3,
                  double tolerance) {
  const double ddx = std::max(std::abs(p0.x - 2 * p1.x + p2.x), std::abs(p1.x - 2 * p2.x + p3.x));
  const double ddy = std::max(std::abs(p0.y - 2 * p1.y + p2.y), std::abs(p1.y - 2 * p2.y + p3.y));
  const double dd = std::hypot(ddx, ddy);
  const double n = std::ceil(std::sqrt(0.75 * dd / std::max(tolerance, 1e-6)));
  if (!std::isfinite(n)) return 1;
  return static_cast<int>(std::clamp(n, 1.0, 4096.0));
}

}  // namespace

BezierPath BezierPath::withRect(const Rect& r) {
  BezierPath path;
  path.appendRect(r);
  return path;
}

BezierPath BezierPath::withOvalInRect(const Rect& r) {
  BezierPath path;
  path.appendOvalInRect(r);
  return path;
}

BezierPath BezierPath::withRoundedRect(const Rect& r, double xRadius, double yRadius) {
  BezierPath path;
  path.appendRoundedRect(r, xRadius, yRadius);
  return path;
}

void BezierPath::moveTo(const Point& p) {
  elements_.push_back({PathElementType::MoveTo, {p, {}, {}}});
}

void BezierPath::lineTo(const Point& p) {
  if (elements_.empty()) {
    Log("Error: lineTo on a path without a current point; starting the path there");
    moveTo(p);
    return;
  }
  elements_.push_back({PathElementType::LineTo, {p, {}, {}}});
}

void BezierPath::curveTo(const Point& end, const Point& control1, const Point& control2) {
  if (elements_.empty()) {
    Log("Error: curveTo on a path without a current point; starting the path there");
    moveTo(end);
    return;
  }
  elements_.push_back({PathElementType::CurveTo, {control1, control2, end}});
}

void BezierPath::closePath() {
  if (elements_.empty() || elements_.back().type == PathElementType::ClosePath) return;
  elements_.push_back({PathElementType::ClosePath, {}});
}

void BezierPath::appendRect(const Rect& r) {
  const double x = r.origin.x, y = r.origin.y, w = r.size.width, h = r.size.height;
  moveTo({x, y});
  lineTo({x + w, y});
  lineTo({x + w, y + h});
  lineTo({x, y + h});
  closePath();
}

void BezierPath::appendOvalInRect(const Rect& r) {
  const double cx = r.midX(), cy = r.midY();
  const double a = r.size.width / 2, b = r.size.height / 2;
  const double k = kQuarterCircleFactor;
  auto point = [&](double theta) { return Point{cx + a * std::cos(theta), cy + b * std::sin(theta)}; };
  auto tangent = [&](double theta) { return Point{-a * std::sin(theta), b * std::cos(theta)}; };
  double theta = -kPi / 4;
  const Point start = point(theta);
  moveTo(start);
  for (int quarter = 0; quarter < 4; ++quarter) {
    const double next = theta + kPi / 2;
    // The last quarter ends exactly where the oval began.
    const Point p0 = point(theta), p1 = quarter == 3 ? start : point(next);
    const Point t0 = tangent(theta), t1 = tangent(next);
    curveTo(p1, {p0.x + k * t0.x, p0.y + k * t0.y}, {p1.x - k * t1.x, p1.y - k * t1.y});
    theta = next;
  }
  closePath();
}

void BezierPath::appendRoundedRect(const Rect& r, double xRadius, double yRadius) {
  const double w = std::abs(r.size.width), h = std::abs(r.size.height);
  const double rx = std::clamp(xRadius, 0.0, w / 2);
  const double ry = std::clamp(yRadius, 0.0, h / 2);
  if (!(rx > 0) || !(ry > 0)) {
    appendRect(r);
    return;
  }
  const double x0 = r.minX(), y0 = r.minY(), x1 = r.maxX(), y1 = r.maxY();
  const double cx = rx * kQuarterCircleFactor, cy = ry * kQuarterCircleFactor;
  moveTo({x0 + rx, y1});
  curveTo({x0, y1 - ry}, {x0 + rx - cx, y1}, {x0, y1 - ry + cy});
  lineTo({x0, y0 + ry});
  curveTo({x0 + rx, y0}, {x0, y0 + ry - cy}, {x0 + rx - cx, y0});
  lineTo({x1 - rx, y0});
  curveTo({x1, y0 + ry}, {x1 - rx + cx, y0}, {x1, y0 + ry - cy});
  lineTo({x1, y1 - ry});
  curveTo({x1 - rx, y1}, {x1, y1 - ry + cy}, {x1 - rx + cx, y1});
  closePath();
}

void BezierPath::appendArc(const Point& center, double radius, double startAngle, double endAngle,
                           bool clockwise) {
  if (!std::isfinite(startAngle) || !std::isfinite(endAngle) || !std::isfinite(radius)) {
    Log("Error: arc with a non-finite angle or radius ignored");
    return;
  }
  // PostScript arc/arcn normalisation, done arithmetically so that huge angles
  // cannot spin a loop; one full turn at most.
  double sweep = endAngle - startAngle;
  if (!clockwise && sweep < 0) sweep += 360.0 * std::ceil(-sweep / 360.0);
  if (clockwise && sweep > 0) sweep -= 360.0 * std::ceil(sweep / 360.0);
  sweep = std::clamp(sweep, -360.0, 360.0);

  const double start = Radians(startAngle);
  const Point first{center.x + radius * std::cos(start), center.y + radius * std::sin(start)};
  if (elements_.empty()) {
    moveTo(first);
  } else if (currentPoint() != first) {
    lineTo(first);
  }
  const int pieces = static_cast<int>(std::ceil(std::abs(sweep) / 90.0 - 1e-9));
  if (pieces == 0) return;
  const double step = Radians(sweep / pieces);
  const double handle = radius * 4.0 / 3.0 * std::tan(step / 4);
  double theta = start;
  for (int i = 0; i < pieces; ++i) {
    const double next = theta + step;
    const Point p0{center.x + radius * std::cos(theta), center.y + radius * std::sin(theta)};
    const Point p1{center.x + radius * std::cos(next), center.y + radius * std::sin(next)};
    const Point c0{p0.x - handle * std::sin(theta), p0.y + handle * std::cos(theta)};
    const Point c1{p1.x + handle * std::sin(next), p1.y - handle * std::cos(next)};
    curveTo(p1, c0, c1);
    theta = next;
  }
}

void BezierPath::appendPath(const BezierPath& other) {
  elements_.insert(elements_.end(), other.elements_.begin(), other.elements_.end());
}

void BezierPath::removeAllPoints() { elements_.clear(); }

void BezierPath::setElementPoints(size_t index, const std::array<Point, 3>& points) {
  if (index >= elements_.size()) {
    Log("Error: element index out of range");
    return;
  }
  elements_[index].points = points;
}

void BezierPath::removeLastElements(size_t count) {
  elements_.resize(elements_.size() - std::min(count, elements_.size()));
}

Point BezierPath::subpathStart() const {
  // Walks back to the move that began the last subpath. A subpath that follows a
  // close without a move of its own starts where the closed one started.
  for (size_t i = elements_.size(); i-- > 0;) {
    if (elements_[i].type == PathElementType::MoveTo) return elements_[i].points[0];
  }
  return {};
}

Point BezierPath::currentPoint() const {
  if (elements_.empty()) return {};
  const PathElement& last = elements_.back();
  if (last.type == PathElementType::ClosePath) return subpathStart();
  return last.endPoint();
}

Rect BezierPath::bounds() const {
  BoundsAccumulator box;
  Point current, start;
  std::vector<double> ts;
  for (const PathElement& e : elements_) {
    switch (e.type) {
      case PathElementType::MoveTo:
        start = current = e.points[0];
        box.add(current);
        break;
      case PathElementType::LineTo:
        box.add(current);
        current = e.points[0];
        box.add(current);
        break;
      case PathElementType::CurveTo: {
        box.add(current);
        box.add(e.points[2]);
        ts.clear();
        CubicExtremaParameters(current.x, e.points[0].x, e.points[1].x, e.points[2].x, ts);
        CubicExtremaParameters(current.y, e.points[0].y, e.points[1].y, e.points[2].y, ts);
        for (double t : ts) box.add(CubicAt(current, e.points[0], e.points[1], e.points[2], t));
        current = e.points[2];
        break;
      }
      case PathElementType::ClosePath:
        current = start;
        break;
    }
  }
  return box.rect();
}

Rect BezierPath::controlPointBounds() const {
  BoundsAccumulator box;
  for (const PathElement& e : elements_) {
    switch (e.type) {
      case PathElementType::MoveTo:
      case PathElementType::LineTo:
        box.add(e.points[0]);
        break;
      case PathElementType::CurveTo:
        for (const Point& p : e.points) box.add(p);
        break;
      case PathElementType::ClosePath:
        break;
    }
  }
  return box.rect();
}

void BezierPath::transform(const AffineTransform& t) {
  for (PathElement& e : elements_) {
    const int count = e.type == PathElementType::CurveTo ? 3 : e.type == PathElementType::ClosePath ? 0 : 1;
    for (int i = 0; i < count; ++i) e.points[i] = t.transformPoint(e.points[i]);
  }
}

BezierPath BezierPath::transformed(const AffineTransform& t) const {
  BezierPath copy = *this;
  copy.transform(t);
  return copy;
}

namespace {

// One subpath as a start point and the segments that follow it.
struct Subpath {
  Point start;
  std::vector<PathElement> segments;  // lines and curves only
  bool closed = false;
};

std::vector<Subpath> SplitSubpaths(const std::vector<PathElement>& elements) {
  std::vector<Subpath> subpaths;
  Point lastStart;
  for (const PathElement& e : elements) {
    if (e.type == PathElementType::MoveTo) {
      subpaths.push_back({e.points[0], {}, false});
      lastStart = e.points[0];
      continue;
    }
    if (subpaths.empty() || subpaths.back().closed) subpaths.push_back({lastStart, {}, false});
    if (e.type == PathElementType::ClosePath) {
      subpaths.back().closed = true;
    } else {
      subpaths.back().segments.push_back(e);
    }
  }
  return subpaths;
}

}  // namespace

BezierPath BezierPath::reversed() const {
  BezierPath result = *this;
  result.elements_.clear();
  for (const Subpath& sub : SplitSubpaths(elements_)) {
    // Points at the start of each segment, so segment i runs from from[i] to its end.
    std::vector<Point> from;
    Point cursor = sub.start;
    for (const PathElement& seg : sub.segments) {
      from.push_back(cursor);
      cursor = seg.endPoint();
    }
    const Point last = cursor;
    auto emitReversed = [&](size_t i) {
      const PathElement& seg = sub.segments[i];
      if (seg.type == PathElementType::CurveTo) {
        result.elements_.push_back({PathElementType::CurveTo, {seg.points[1], seg.points[0], from[i]}});
      } else {
        result.elements_.push_back({PathElementType::LineTo, {from[i], {}, {}}});
      }
    };
    if (!sub.closed) {
      result.elements_.push_back({PathElementType::MoveTo, {last, {}, {}}});
      for (size_t i = sub.segments.size(); i-- > 0;) emitReversed(i);
      continue;
    }
    // A closed subpath keeps its start: walk the closing edge backwards first,
    // then the segments in reverse; a final line back to the start is the close.
    result.elements_.push_back({PathElementType::MoveTo, {sub.start, {}, {}}});
    if (!sub.segments.empty() && last != sub.start) {
      result.elements_.push_back({PathElementType::LineTo, {last, {}, {}}});
    }
    for (size_t i = sub.segments.size(); i-- > 0;) {
      if (i == 0 && sub.segments[0].type == PathElementType::LineTo) break;
      emitReversed(i);
    }
    result.elements_.push_back({PathElementType::ClosePath, {}});
  }
  return result;
}

std::vector<std::vector<Point>> BezierPath::flattened(double tolerance) const {
  std::vector<std::vector<Point>> polylines;
  for (const Subpath& sub : SplitSubpaths(elements_)) {
    std::vector<Point> line{sub.start};
    Point current = sub.start;
    for (const PathElement& seg : sub.segments) {
      if (seg.type == PathElementType::LineTo) {
        line.push_back(seg.points[0]);
      } else {
        const int n = CurveSegments(current, seg.points[0], seg.points[1], seg.points[2], tolerance);
        for (int i = 1; i <= n; ++i) {
          line.push_back(CubicAt(current, seg.points[0], seg.points[1], seg.points[2],
                                 static_cast<double>(i) / n));
        }
      }
      current = seg.endPoint();
    }
    if (sub.closed && line.back() != sub.start) line.push_back(sub.start);
    polylines.push_back(std::move(line));
  }
  return polylines;
}

bool BezierPath::containsPoint(const Point& p) const { return containsPoint(p, windingRule_); }

bool BezierPath::containsPoint(const Point& p, WindingRule rule) const {
  // Winding number of the filled outline: every subpath is closed for filling.
  int winding = 0;
  for (const std::vector<Point>& line : flattened()) {
    for (size_t i = 0; i < line.size(); ++i) {
      const Point& a = line[i];
      const Point& b = line[(i + 1) % line.size()];
      if (a.y <= p.y) {
        if (b.y > p.y && (b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y) > 0) ++winding;
      } else if (b.y <= p.y && (b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y) < 0) {
        --winding;
      }
    }
  }
  return rule == WindingRule::EvenOdd ? (winding % 2) != 0 : winding != 0;
}

void BezierPath::setLineDash(std::vector<double> pattern, double phase) {
  dash_ = std::move(pattern);
  dashPhase_ = dash_.empty() ? 0 : phase;
}

}  // namespace paintdoc
