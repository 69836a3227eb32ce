#include "shapes/draw_rect_polygon.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// How far below the centre the base of a triangle lies, in half heights: the
// triangle is equilateral in a square box.
constexpr float kTriangleBaseDepth = 0.7320508f;

int64_t ClampedPointsCount(int64_t count) {
  if (count > DrawRectPolygon::kMaxPointsCount) {
    Log("Error: a polygon of " + std::to_string(count) + " corners is drawn with " +
        std::to_string(DrawRectPolygon::kMaxPointsCount));
  }
  return std::clamp(count, DrawRectPolygon::kMinPointsCount, DrawRectPolygon::kMaxPointsCount);
}

// The corner angles of a flat ellipse are pulled toward the nearer end of its
// longer axis by (1 - r), so that corners spread more evenly along the
// outline. Goals by the quarter t lies in: (90, 180), (180, 270), (270, 360),
// beyond 360.
constexpr std::array<float, 4> kTallBoxGoals = {90, 270, 270, 450};
constexpr std::array<float, 4> kWideBoxGoals = {180, 180, 360, 360};

float CorrectedCornerAngle(float t, bool tallBox, float r) {
  int quarter = -1;
  if (t > 90 && t < 180) quarter = 0;
  else if (t > 180 && t < 270) quarter = 1;
  else if (t > 270 && t < 360) quarter = 2;
  else if (t > 360) quarter = 3;
  if (quarter < 0) return t;
  const float goal = (tallBox ? kTallBoxGoals : kWideBoxGoals)[quarter];
  return t + (goal - t) * (1.0f - r);
}

}  // namespace

std::string DrawRectPolygon::name() const { return dPoints_ == 3 ? "Triangle" : "Polygon"; }

void DrawRectPolygon::init() {
  DrawRectShape::init();
  dPoints_ = kInitPointsCount;
}

void DrawRectPolygon::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodeIntegerForKey(dPoints_, "PointsCount");
}

bool DrawRectPolygon::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  dPoints_ = coder.containsValueForKey("PointsCount")
                 ? ClampedPointsCount(coder.decodeIntegerForKey("PointsCount"))
                 : kInitPointsCount;
  return true;
}

void DrawRectPolygon::setPointsCount(int64_t count) {
  if (count == dPoints_) return;
  dPoints_ = ClampedPointsCount(count);
  setBezierPathWithBounds(rectControlBounds_);
}

BezierPath DrawRectPolygon::bezierPathWithBounds(const Rect& bounds) const {
  BezierPath path = emptyPathWithLineAttributes();
  const Rect box = RectRaisedToUnitSize(bounds);
  const float a = static_cast<float>(box.size.width / 2);
  const float b = static_cast<float>(box.size.height / 2);
  const double cx = box.midX();
  const double cy = box.midY();
  const int64_t corners = std::clamp(dPoints_, kMinPointsCount, kMaxPointsCount);

  path.moveTo({cx, cy + b});
  if (corners == 4) {
    path.lineTo({cx - a, cy});
    path.lineTo({cx, cy - b});
    path.lineTo({cx + a, cy});
  } else if (corners == 3) {
    const float baseY = static_cast<float>(cy - kTriangleBaseDepth * b);
    path.lineTo({cx - a, baseY});
    path.lineTo({cx + a, baseY});
  } else {
    const float r = std::min(a, b) / std::max(a, b);
    const bool tallBox = a <= b;
    const float step = 360.0f / static_cast<float>(corners);
    float t = 90;
    for (int64_t k = 1; k < corners; ++k) {
      t += step;
      float angle = t;
      if (corners % 4 != 0 && r <= 0.99f && static_cast<int64_t>(t) % 90 != 0) {
        angle = CorrectedCornerAngle(t, tallBox, r);
      }
      if (std::fabs(angle - 270.0f) < 0.01f) {
        path.lineTo({cx, cy - b});
        continue;
      }
      const float q = std::tan(angle / 180.0f * 3.1415926f);
      float p = std::sqrt(1.0f / (q * q / (b * b) + 1.0f / (a * a)));
      if (angle > 90 && angle < 270) p = -p;
      path.lineTo({cx + p, cy + q * p});
    }
  }
  path.closePath();
  return path;
}

}  // namespace paintdoc
