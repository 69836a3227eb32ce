#include "shapes/outline_table.h"

#include <algorithm>
#include <cmath>

namespace paintdoc {

namespace {

// The box with its corner radius, as the steps' points are measured in it.
struct OutlineFrame {
  ShapeBox box;
  float cornerRadius = 0;

  Point at(const OutlinePoint& p) const {
    const Point onBox = box.at(p.a, p.b);
    return {static_cast<float>(onBox.x) + p.ra * cornerRadius,
            static_cast<float>(onBox.y) + p.rb * cornerRadius};
  }
};

void AppendElement(BezierPath& path, const PathElement& element) {
  switch (element.type) {
    case PathElementType::MoveTo: path.moveTo(element.points[0]); break;
    case PathElementType::LineTo: path.lineTo(element.points[0]); break;
    case PathElementType::CurveTo:
      path.curveTo(element.points[2], element.points[0], element.points[1]);
      break;
    case PathElementType::ClosePath: path.closePath(); break;
  }
}

// Whether two points differ by no more than single-precision rounding.
bool SameInSinglePrecision(const Point& p, const Point& q) {
  const double tolerance = 1e-6 * (1 + std::fabs(p.x) + std::fabs(p.y));
  return std::fabs(p.x - q.x) <= tolerance && std::fabs(p.y - q.y) <= tolerance;
}

// The arc as the platform draws it, but joined to the outline only when its
// start really lies elsewhere: an arc that begins where a line of the table
// ends adds no sliver of a line for the rounding between the two.
void AppendArc(BezierPath& path, const Point& center, double radius, double startDegrees,
               double endDegrees) {
  BezierPath arc;
  arc.appendArc(center, radius, startDegrees, endDegrees);
  if (arc.isEmpty()) return;
  const Point start = arc.elementAt(0).points[0];
  if (!path.hasCurrentPoint()) {
    path.moveTo(start);
  } else if (!SameInSinglePrecision(path.currentPoint(), start)) {
    path.lineTo(start);
  }
  for (size_t i = 1; i < arc.elementCount(); ++i) AppendElement(path, arc.elementAt(i));
}

void AppendMirroredHalf(BezierPath& path, const ShapeBox& box) {
  const double middle = static_cast<double>(box.x) + box.w / 2.0;
  AffineTransform mirror = AffineTransform::translation(-middle, 0);
  mirror.append(AffineTransform::scaling(-1, 1));
  mirror.append(AffineTransform::translation(middle, 0));
  const BezierPath otherHalf = path.transformed(mirror).reversed();
  for (size_t i = 1; i < otherHalf.elementCount(); ++i) {
    const PathElement& element = otherHalf.elementAt(i);
    if (element.type == PathElementType::ClosePath) continue;
    AppendElement(path, element);
  }
}

void DrawStep(BezierPath& path, const OutlineStep& step, const OutlineFrame& frame) {
  switch (step.op) {
    case OutlineOp::Move: path.moveTo(frame.at(step.p0)); break;
    case OutlineOp::Line: path.lineTo(frame.at(step.p0)); break;
    case OutlineOp::Curve:
      path.curveTo(frame.at(step.p0), frame.at(step.p1), frame.at(step.p2));
      break;
    case OutlineOp::Close: path.closePath(); break;
    case OutlineOp::Arc:
      AppendArc(path, frame.at(step.p0), step.radius * frame.cornerRadius, step.startDegrees,
                step.endDegrees);
      break;
    case OutlineOp::Oval: {
      const Point center = frame.at(step.p0);
      const double width = step.p1.a * frame.box.w;
      const double height = step.p1.b * frame.box.h;
      path.appendOvalInRect(
          MakeRect(center.x - width / 2, center.y - height / 2, width, height));
      break;
    }
    case OutlineOp::Box: {
      const Point corner = frame.at(step.p0);
      const Point opposite = frame.at(step.p1);
      path.moveTo(corner);
      path.lineTo({opposite.x, corner.y});
      path.lineTo(opposite);
      path.lineTo({corner.x, opposite.y});
      path.closePath();
      break;
    }
    case OutlineOp::MirroredHalf: AppendMirroredHalf(path, frame.box); break;
    case OutlineOp::BeginCutOut:
    case OutlineOp::EndCutOut: break;  // handled by AppendOutlineInBox
  }
}

}  // namespace

void AppendOutlineInBox(BezierPath& path, const OutlineTable& outline, const Rect& bounds) {
  const ShapeBox box(bounds);
  const OutlineFrame frame{
      box, std::min(outline.cornerRadiusOfWidth * box.w, outline.cornerRadiusOfHeight * box.h)};
  BezierPath cutOut;
  bool inCutOut = false;
  for (const OutlineStep& step : outline.steps) {
    if (step.op == OutlineOp::BeginCutOut) {
      inCutOut = true;
      cutOut.removeAllPoints();
    } else if (step.op == OutlineOp::EndCutOut) {
      inCutOut = false;
      path.appendPath(cutOut.reversed());
    } else {
      DrawStep(inCutOut ? cutOut : path, step, frame);
    }
  }
}

}  // namespace paintdoc
