#include "shapes/draw_rect_message.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "geometry/path_edits.h"
#include "shapes/bubble_pointer.h"

namespace paintdoc {

namespace {

// Within this distance of a corner's end an end counts as on the straight
// edge rather than on the corner arc.
constexpr double kCornerTolerance = 0.1;
// The pointer's base is at least this wide when the ends are pushed apart.
constexpr double kMinBaseWidth = 5;

// The rounded rectangle of a bubble: the box, its corner radius and the lines
// where the corner arcs begin.
struct RoundedBox {
  double x, y, w, h, r;
  double left() const { return x + r; }
  double right() const { return x + w - r; }
  double low() const { return y + r; }
  double high() const { return y + h - r; }
};

// The rounded rectangle's pieces in counter-clockwise order, starting with
// the bottom edge.
enum Piece { kBottom, kLowerRight, kRight, kUpperRight, kTop, kUpperLeft, kLeft, kLowerLeft };
constexpr int kPieceCount = 8;

struct Segment {
  Point start, end;
  bool isArc = false;
  Point center;
  double startDegrees = 0, endDegrees = 0;
};

Segment Edge(Point start, Point end) { return {start, end, false, {}, 0, 0}; }

Segment Corner(Point center, double radius, double startDegrees, double endDegrees) {
  auto onCircle = [&](double degrees) {
    const double radians = degrees * 3.14159265358979323846 / 180;
    return Point{center.x + radius * std::round(std::cos(radians)),
                 center.y + radius * std::round(std::sin(radians))};
  };
  return {onCircle(startDegrees), onCircle(endDegrees), true, center, startDegrees, endDegrees};
}

std::array<Segment, kPieceCount> SegmentsOf(const RoundedBox& b) {
  const double top = b.y + b.h;
  const double rightEdge = b.x + b.w;
  return {{
      Edge({b.left(), b.y}, {b.right(), b.y}),
      Corner({b.right(), b.low()}, b.r, 270, 360),
      Edge({rightEdge, b.low()}, {rightEdge, b.high()}),
      Corner({b.right(), b.high()}, b.r, 0, 90),
      Edge({b.right(), top}, {b.left(), top}),
      Corner({b.left(), b.high()}, b.r, 90, 180),
      Edge({b.x, b.high()}, {b.x, b.low()}),
      Corner({b.left(), b.low()}, b.r, 180, 270),
  }};
}

// Which lower piece of the outline a base end at `x` lies on.
Piece PieceOfBaseEnd(const RoundedBox& b, double x) {
  if (x > b.x + kCornerTolerance && x < b.left() - kCornerTolerance) return kLowerLeft;
  if (x >= b.left() - kCornerTolerance && x <= b.right() + kCornerTolerance) return kBottom;
  if (x > b.right() + kCornerTolerance && x < b.x + b.w) return kLowerRight;
  return x <= b.x + kCornerTolerance ? kLeft : kRight;
}

// Puts a base end on the outline: its height follows from where it is across.
Point OnOutline(const RoundedBox& b, Point end) {
  end.x = std::clamp(end.x, b.x, b.x + b.w);
  end.y = std::min(end.y, b.high());
  const float r = static_cast<float>(b.r);
  switch (PieceOfBaseEnd(b, end.x)) {
    case kLowerLeft: {
      const float across = static_cast<float>(b.r - (end.x - b.x));
      return {end.x, b.low() - std::sqrt(std::max(0.0f, r * r - across * across))};
    }
    case kBottom: return {end.x, b.y};
    case kLowerRight: {
      const float across = static_cast<float>(end.x - b.right());
      return {end.x, b.low() - std::sqrt(std::max(0.0f, r * r - across * across))};
    }
    default: return {end.x, std::max(end.y, b.low())};
  }
}

// Moves the base ends toward the side the tip points to: the left or right
// side when the tip is beyond it, else the bottom edge.
void PlaceBaseEnds(const RoundedBox& b, const Point& tip, Point& a, Point& bEnd) {
  const double rightEdge = b.x + b.w;
  const bool tipBelowCorners = tip.y < b.low();
  if (tip.x <= b.x) {
    if (a.x > b.x) a = {b.x, b.low()};
    if (!tipBelowCorners) {
      a.y = std::max(a.y, b.low() + kMinBaseWidth);
      if (bEnd.x > b.x) bEnd = {b.x, b.low()};
      bEnd.x = std::min(bEnd.x, b.right());
    }
  } else if (tip.x >= rightEdge) {
    if (bEnd.x < rightEdge) bEnd = {rightEdge, b.low()};
    if (!tipBelowCorners) {
      bEnd.y = std::max(bEnd.y, b.low() + kMinBaseWidth);
      if (a.x < rightEdge) a = {rightEdge, b.low()};
      a.x = std::max(a.x, b.left());
    }
  } else {
    a.x = std::clamp(a.x, b.x, rightEdge);
    bEnd.x = std::clamp(bEnd.x, b.x, rightEdge);
    if (bEnd.x < a.x + kMinBaseWidth) {
      bEnd.x = std::min(a.x + kMinBaseWidth, rightEdge);
      a.x = std::max(b.x, std::min(a.x, bEnd.x - kMinBaseWidth));
    }
  }
}

// How far along its piece, counter-clockwise, a base end lies.
double Along(Piece piece, const Point& p) {
  if (piece == kRight) return p.y;
  if (piece == kLeft) return -p.y;
  return p.x;
}

// Draws a segment from `from` to `to`. Without a radius the corner arcs are
// single points, so a line reaches every end.
void DrawSegmentPart(BezierPath& path, const Segment& segment, double radius, const Point& from,
                     const Point& to) {
  if (segment.isArc && radius > 0) {
    appendBezierPathWithArcWithCenter(path, segment.center, radius, from, to);
  } else {
    path.lineTo(to);
  }
}

void DrawWholeSegment(BezierPath& path, const Segment& segment, double radius) {
  if (segment.isArc && radius > 0) {
    path.appendArc(segment.center, radius, segment.startDegrees, segment.endDegrees);
  } else {
    path.lineTo(segment.end);
  }
}

float UsableRadiusFraction(float fraction) {
  if (!(fraction > 0)) return 0;
  return std::min(fraction, 0.5f);
}

}  // namespace

void DrawRectMessage::init() {
  DrawRectShape::init();
  fRadius_ = kInitRadius;
  ptArrow_ = kInitArrow;
  ptArrowA_ = kInitArrowA;
  ptArrowB_ = kInitArrowB;
}

void DrawRectMessage::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodeFloatForKey(fRadius_, "Radius");
  coder.encodePointForKey(ptArrow_, "Arrow");
  coder.encodePointForKey(ptArrowA_, "ArrowA");
  coder.encodePointForKey(ptArrowB_, "ArrowB");
}

bool DrawRectMessage::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  fRadius_ = coder.decodeFloatForKey("Radius");
  ptArrow_ = coder.decodePointForKey("Arrow");
  ptArrowA_ = coder.decodePointForKey("ArrowA");
  ptArrowB_ = coder.decodePointForKey("ArrowB");
  return true;
}

void DrawRectMessage::flip(bool horizontal) {
  const double width = controlBoundsBeforeRotation().size.width;
  const Point oldA = ptArrowA_;
  ptArrow_.x = MirroredOffsetX(ptArrow_.x, width);
  ptArrowA_.x = MirroredOffsetX(ptArrowB_.x, width);
  ptArrowB_.x = MirroredOffsetX(oldA.x, width);
  DrawRectShape::flip(true);
  if (!horizontal) setRotateDegree(rotateDegree() + 180);
}

void DrawRectMessage::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  DrawRectShape::scaleBy(sx, sy, center, resizeLineWidth);
  const float vertical = resizeLineWidth ? sx : sy;
  ptArrow_ = ScaledOffset(ptArrow_, sx, vertical);
  ptArrowA_ = ScaledOffset(ptArrowA_, sx, vertical);
  ptArrowB_ = ScaledOffset(ptArrowB_, sx, vertical);
  setBezierPathWithBounds(rectControlBounds_);
}

ArchiveValue DrawRectMessage::bezierPathData() const {
  return ArchiveValue::dictionary({{"ControlBounds", rectControlBounds_},
                                   {"Arrow", ptArrow_},
                                   {"ArrowA", ptArrowA_},
                                   {"ArrowB", ptArrowB_},
                                   {"Radius", static_cast<double>(fRadius_)}});
}

void DrawRectMessage::setBezierPathWithData(const ArchiveValue& data) {
  const ArchiveValue* box = data.valueForKey("ControlBounds");
  if (box == nullptr || box->as<Rect>() == nullptr) return;
  auto restorePoint = [&](const char* key, Point& field) {
    const ArchiveValue* value = data.valueForKey(key);
    if (value != nullptr && value->as<Point>() != nullptr) field = *value->as<Point>();
  };
  restorePoint("Arrow", ptArrow_);
  restorePoint("ArrowA", ptArrowA_);
  restorePoint("ArrowB", ptArrowB_);
  if (const ArchiveValue* radius = data.valueForKey("Radius"); radius && radius->isNumber()) {
    fRadius_ = static_cast<float>(radius->toDouble());
  }
  setBezierPathWithBounds(*box->as<Rect>());
}

Rect DrawRectMessage::controlBounds() const {
  return bezierPath_ ? BoundsOfTransformedPath(*bezierPath_, transform()) : ZeroRect();
}

RectBubbleGeometry DrawRectMessage::getArrowPoint(const Rect& bounds) const {
  const float w = static_cast<float>(bounds.size.width);
  const float h = static_cast<float>(bounds.size.height);
  const float r = std::min(0.5f * w, UsableRadiusFraction(fRadius_) * h);
  const RoundedBox box{bounds.origin.x, bounds.origin.y, w, h, r};

  RectBubbleGeometry geometry;
  geometry.radius = r;
  geometry.radiusKnob = {box.left(), box.high()};
  geometry.tip = PointerPointInBox(ptArrow_, bounds);
  Point a = PointerPointInBox(ptArrowA_, bounds);
  Point b = PointerPointInBox(ptArrowB_, bounds);
  PlaceBaseEnds(box, geometry.tip, a, b);
  geometry.arrowA = OnOutline(box, a);
  geometry.arrowB = OnOutline(box, b);
  return geometry;
}

BezierPath DrawRectMessage::bezierPathWithBounds(const Rect& bounds) const {
  BezierPath path = emptyPathWithLineAttributes();
  const Rect raised = RectRaisedToUnitSize(bounds);
  const RectBubbleGeometry geometry = getArrowPoint(raised);
  const RoundedBox box{raised.origin.x, raised.origin.y, static_cast<float>(raised.size.width),
                       static_cast<float>(raised.size.height), geometry.radius};
  const std::array<Segment, kPieceCount> segments = SegmentsOf(box);
  const Piece pieceA = PieceOfBaseEnd(box, geometry.arrowA.x);
  const Piece pieceB = PieceOfBaseEnd(box, geometry.arrowB.x);

  // From the tip down one side of the pointer, counter-clockwise round the
  // box to the other side, and back to the tip.
  path.moveTo(geometry.tip);
  path.lineTo(geometry.arrowB);
  if (pieceA == pieceB && Along(pieceA, geometry.arrowA) >= Along(pieceB, geometry.arrowB)) {
    DrawSegmentPart(path, segments[pieceB], geometry.radius, geometry.arrowB, geometry.arrowA);
  } else {
    DrawSegmentPart(path, segments[pieceB], geometry.radius, geometry.arrowB,
                    segments[pieceB].end);
    for (int piece = (pieceB + 1) % kPieceCount; piece != pieceA;
         piece = (piece + 1) % kPieceCount) {
      DrawWholeSegment(path, segments[piece], geometry.radius);
    }
    DrawSegmentPart(path, segments[pieceA], geometry.radius, segments[pieceA].start,
                    geometry.arrowA);
  }
  path.closePath();
  return path;
}

void DrawRectMessage::setArrowPoint(Point arrow, Point arrowA, Point arrowB) {
  ptArrow_ = arrow;
  ptArrowA_ = arrowA;
  ptArrowB_ = arrowB;
  if (bezierPath_ && !bezierPath_->isEmpty()) setBezierPathWithBounds(rectControlBounds_);
}

}  // namespace paintdoc
