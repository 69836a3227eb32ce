// DrawBase's geometry: bounds of the outline, the rotation transforms, and the
// operations that move, mirror, scale and turn a draw or change its line.
#include "draws/draw_base.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/values/log.h"

namespace paintdoc {
namespace {

// The most dash entries the line operations read back from a path.
constexpr size_t kMaxDashEntriesRead = 100;
// Beyond this many degrees a rotation is reduced with fmod before the
// one-turn steps, so that huge values cannot spin the normalising loop.
constexpr float kSteppedRotationRange = 360.0f * 1000.0f;

bool IsZeroPoint(const Point& p) { return p.x == 0 && p.y == 0; }

// `step` applied about `center`: move the centre to the origin, apply, move
// back. About the zero point the translations are left out.
AffineTransform AboutCenter(const AffineTransform& step, const Point& center) {
  if (IsZeroPoint(center)) return step;
  AffineTransform transform = AffineTransform::translation(-center.x, -center.y);
  transform.append(step);
  transform.append(AffineTransform::translation(center.x, center.y));
  return transform;
}

// The first entries of the path's dash, as many as the line operations read.
std::vector<double> ReadDash(const BezierPath& path) {
  const std::vector<double>& dash = path.lineDash();
  const size_t count = std::min(dash.size(), kMaxDashEntriesRead);
  return {dash.begin(), dash.begin() + static_cast<std::ptrdiff_t>(count)};
}

// Multiplies every dash entry by `factor` and sets the dash again with `phase`;
// a dash of fewer than 2 entries is left alone.
void ScaleDash(BezierPath& path, double factor, double phase) {
  std::vector<double> dash = ReadDash(path);
  if (dash.size() < 2) return;
  for (double& entry : dash) entry *= factor;
  path.setLineDash(std::move(dash), phase);
}

// Blur radius times sx, offset times (sx, sy).
void ScaleShadow(std::optional<Shadow>& shadow, float sx, float sy) {
  if (!shadow) return;
  shadow->setShadowBlurRadius(shadow->shadowBlurRadius() * sx);
  const Size offset = shadow->shadowOffset();
  shadow->setShadowOffset({offset.width * sx, offset.height * sy});
}

// The rotation about `center`, first moving it to the origin.
AffineTransform RotationAbout(const Point& center, float degrees) {
  return AboutCenter(AffineTransform::rotationDegrees(degrees), center);
}

}  // namespace

Rect DrawBase::pathBounds() const {
  return bezierPath_ ? bezierPath_->bounds() : ZeroRect();
}

Rect DrawBase::controlBounds() const {
  if (!bezierPath_ || bezierPath_->isEmpty()) return ZeroRect();
  BezierPath box = BezierPath::withRect(bezierPath_->controlPointBounds());
  box.transform(transform());
  return box.bounds();
}

Point DrawBase::rotateCenter() const { return pathBounds().center(); }

AffineTransform DrawBase::transform() const {
  if (!bezierPath_ || bezierPath_->isEmpty() || fRotateDegree_ == 0) return {};
  return RotationAbout(rotateCenter(), fRotateDegree_);
}

AffineTransform DrawBase::invertTransform() const {
  if (!bezierPath_ || bezierPath_->isEmpty() || fRotateDegree_ == 0) return {};
  return RotationAbout(rotateCenter(), -fRotateDegree_);
}

Point DrawBase::pointAfterRotate(const Point& point) const {
  if (rotateDegree() == 0) return point;
  return transform().transformPoint(point);
}

Point DrawBase::pointBeforeRotate(const Point& point) const {
  if (rotateDegree() == 0) return point;
  return invertTransform().transformPoint(point);
}

void DrawBase::setRotateDegree(float degrees) {
  if (!std::isfinite(degrees)) {
    Log("Error: rotation is not a finite number; rotation left unchanged");
    return;
  }
  if (std::fabs(degrees) > kSteppedRotationRange) degrees = std::fmod(degrees, 360.0f);
  while (degrees < -180) degrees += 360;
  while (degrees > 180) degrees -= 360;
  fRotateDegree_ = degrees;
}

void DrawBase::setBezierPathLineWidth(float width) {
  if (!bezierPath_) bezierPath_.emplace();
  const double currentWidth = bezierPath_->lineWidth();
  // From a width of 0 the dash has no proportion to keep; it stays as it is.
  if (currentWidth != 0) ScaleDash(*bezierPath_, width / currentWidth, 0);
  bezierPath_->setLineWidth(width);
}

void DrawBase::setBezierPathLineDash(std::span<const double> pattern) {
  if (!bezierPath_) bezierPath_.emplace();
  if (pattern.size() < 2) {
    bezierPath_->setLineDash({}, 0);
    return;
  }
  bezierPath_->setLineDash({pattern.begin(), pattern.end()}, 0);
}

void DrawBase::flip(bool horizontal) {
  if (!bezierPath_ || bezierPath_->isEmpty()) return;
  const Point center = rotateCenter();
  const AffineTransform toAxis = horizontal ? AffineTransform::translation(-center.x, 0)
                                            : AffineTransform::translation(0, -center.y);
  bezierPath_->transform(toAxis);
  bezierPath_->transform(horizontal ? AffineTransform::scaling(-1, 1)
                                    : AffineTransform::scaling(1, -1));
  bezierPath_->transform(toAxis.inverted());
  // A mirrored shape turns the other way.
  if (fRotateDegree_ != 0) setRotateDegree(-fRotateDegree_);
  clearHighlightCache();
}

void DrawBase::flip(bool horizontal, const Point& center) {
  const Point ownCenter = rotateCenter();
  flip(horizontal);
  if (horizontal) {
    moveBy(static_cast<float>(2 * (center.x - ownCenter.x)), 0);
  } else {
    moveBy(0, static_cast<float>(2 * (center.y - ownCenter.y)));
  }
}

void DrawBase::moveBy(float x, float y) {
  if (!bezierPath_) return;
  bezierPath_->transform(AffineTransform::translation(x, y));
}

void DrawBase::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  // A scale that resizes line widths is always proportional.
  const float verticalFactor = resizeLineWidth ? sx : sy;
  if (bezierPath_) {
    bezierPath_->transform(AboutCenter(AffineTransform::scaling(sx, verticalFactor), center));
  }
  // The radial centre is stored relative to the shape, yet it is multiplied
  // here all the same, without the translation about `center`.
  if (bFillWithGdt_ && bFillRadialGdt_) {
    ptFillGdtCenter_ = {ptFillGdtCenter_.x * sx, ptFillGdtCenter_.y * verticalFactor};
  }
  clearHighlightCache();
  if (!resizeLineWidth) return;

  if (classDrawStroke() && bezierPath_) {
    bezierPath_->setLineWidth(bezierPath_->lineWidth() * sx);
    ScaleDash(*bezierPath_, sx, bezierPath_->lineDashPhase());
  }
  if (bEnableShadow_) ScaleShadow(shadow_, sx, verticalFactor);
  if (bEnableInnerShadow_) ScaleShadow(shadowInner_, sx, verticalFactor);
}

void DrawBase::rotateByDegree(float degrees, const Point& center) {
  // The outline is only moved, never turned: its centre goes where the turn
  // about `center` takes it, and the angle joins the stored rotation.
  const Point ownCenter = rotateCenter();
  const Point turned = RotationAbout(center, degrees).transformPoint(ownCenter);
  moveBy(static_cast<float>(turned.x - ownCenter.x), static_cast<float>(turned.y - ownCenter.y));
  fRotateDegree_ += degrees;
}

void DrawBase::applyRotationToBezierPath() {
  if (bezierPath_) bezierPath_->transform(transform());
  setRotateDegree(0);
  // Lets a subclass that keeps its own points recompute them from the
  // turned outline.
  setBezierPathWithData(bezierPathData());
}

}  // namespace paintdoc
