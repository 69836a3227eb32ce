// DrawGroup::createShapeCode: an authoring aid that logs the stroked outline
// of a group as statements rebuilding it inside any box, every point written
// as x + a w, y + b h.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "draws/draw_group.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Rotations up to this many degrees are taken as none.
constexpr float kNegligibleRotation = 1.0f;
// A move this close to the last point, in both axes, continues the outline.
constexpr double kJoinDistance = 2.0;
// A line this close to its subpath's start, in both axes, closes it.
constexpr double kCloseDistance = 3.0;
// Where the last point and subpath start begin: far from any outline.
constexpr double kFarAway = 1000000.0;

bool Near(const Point& a, const Point& b, double distance) {
  return std::fabs(a.x - b.x) <= distance && std::fabs(a.y - b.y) <= distance;
}

// The stroked members' outlines as displayed: turned by their rotation when
// it is more than negligible.
std::vector<BezierPath> StrokedOutlines(const DrawList& draws) {
  std::vector<BezierPath> outlines;
  for (const auto& draw : draws) {
    if (!draw->drawStroke() || !draw->bezierPath()) continue;
    BezierPath outline = *draw->bezierPath();
    if (std::fabs(draw->rotateDegree()) > kNegligibleRotation) {
      outline.transform(draw->transform());
    }
    outlines.push_back(std::move(outline));
  }
  return outlines;
}

// Writes points relative to the box (xMin, yMin, w, h), all single precision.
class ShapeCodeWriter {
 public:
  explicit ShapeCodeWriter(const Rect& box)
      : xMin_(static_cast<float>(box.origin.x)),
        yMin_(static_cast<float>(box.origin.y)),
        w_(static_cast<float>(box.size.width)),
        h_(static_cast<float>(box.size.height)) {}

  void append(const PathElement& element) {
    switch (element.type) {
      case PathElementType::MoveTo:
        moveTo(element.points[0]);
        break;
      case PathElementType::LineTo:
        lineTo(element.points[0]);
        break;
      case PathElementType::CurveTo:
        last_ = element.points[2];
        text_ += "\n[path curveToPoint:" + boxPoint(element.points[2]) + " \ncontrolPoint1:" +
                 boxPoint(element.points[0]) + " \ncontrolPoint2:" +
                 boxPoint(element.points[1]) + "];";
        break;
      case PathElementType::ClosePath:
        text_ += "\n[path closePath];";
        subpathOpen_ = false;
        break;
    }
  }

  const std::string& text() const { return text_; }

 private:
  void moveTo(const Point& p) {
    if (Near(p, last_, kJoinDistance)) return;
    last_ = p;
    text_ += "\n[path moveToPoint:" + boxPoint(p) + "];";
    subpathStart_ = p;
    subpathOpen_ = true;
  }

  void lineTo(const Point& p) {
    last_ = p;
    if (subpathOpen_ && Near(p, subpathStart_, kCloseDistance)) {
      text_ += "\n[path closePath];";
    } else {
      text_ += "\n[path lineToPoint:" + boxPoint(p) + "];";
    }
  }

  std::string boxPoint(const Point& p) const {
    const float a = (static_cast<float>(p.x) - xMin_) / w_;
    const float b = (static_cast<float>(p.y) - yMin_) / h_;
    char text[128];
    std::snprintf(text, sizeof text, "NSMakePoint(xMin + %0.3f * w, yMin + %0.3f * h)",
                  static_cast<double>(a), static_cast<double>(b));
    return text;
  }

  float xMin_, yMin_, w_, h_;
  Point last_{kFarAway, kFarAway};
  Point subpathStart_{kFarAway, kFarAway};
  bool subpathOpen_ = false;
  std::string text_;
};

}  // namespace

void DrawGroup::createShapeCode() const {
  if (aryDraws_.empty()) return;
  const std::vector<BezierPath> outlines = StrokedOutlines(aryDraws_);
  Rect box = ZeroRect();
  for (size_t i = 0; i < outlines.size(); ++i) {
    box = i == 0 ? outlines[i].bounds() : RectUnion(box, outlines[i].bounds());
  }
  float ratio = static_cast<float>(box.size.width) / static_cast<float>(box.size.height);
  // 0 / 0 comes out as a negative NaN here; the log shows it as "nan".
  if (std::isnan(ratio)) ratio = std::fabs(ratio);
  char ratioLine[64];
  std::snprintf(ratioLine, sizeof ratioLine, "w : h = %0.3f", static_cast<double>(ratio));
  Log(ratioLine);

  ShapeCodeWriter writer(box);
  for (const BezierPath& outline : outlines) {
    for (const PathElement& element : outline.elements()) writer.append(element);
  }
  Log(writer.text());
}

}  // namespace paintdoc
