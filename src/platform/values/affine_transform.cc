#include "platform/values/affine_transform.h"

#include <cmath>
#include <numbers>

namespace paintdoc {

namespace {

// The product "first a, then b".
AffineTransform Concatenate(const AffineTransform& a, const AffineTransform& b) {
  return {a.m11 * b.m11 + a.m12 * b.m21,
          a.m11 * b.m12 + a.m12 * b.m22,
          a.m21 * b.m11 + a.m22 * b.m21,
          a.m21 * b.m12 + a.m22 * b.m22,
          a.tX * b.m11 + a.tY * b.m21 + b.tX,
          a.tX * b.m12 + a.tY * b.m22 + b.tY};
}

}  // namespace

AffineTransform AffineTransform::translation(double dx, double dy) {
  return {1, 0, 0, 1, dx, dy};
}

AffineTransform AffineTransform::rotationDegrees(double degrees) {
  AffineTransform t;
  t.rotateByDegrees(degrees);
  return t;
}

AffineTransform AffineTransform::scaling(double sx, double sy) {
  return {sx, 0, 0, sy, 0, 0};
}

void AffineTransform::translate(double dx, double dy) { prepend(translation(dx, dy)); }

void AffineTransform::rotateByDegrees(double degrees) {
  rotateByRadians(degrees * std::numbers::pi / 180.0);
}

void AffineTransform::rotateByRadians(double radians) {
  const double c = std::cos(radians);
  const double s = std::sin(radians);
  prepend({c, s, -s, c, 0, 0});
}

void AffineTransform::scale(double sx, double sy) { prepend(scaling(sx, sy)); }

void AffineTransform::append(const AffineTransform& next) { *this = Concatenate(*this, next); }

void AffineTransform::prepend(const AffineTransform& first) { *this = Concatenate(first, *this); }

bool AffineTransform::invert() {
  const double det = m11 * m22 - m12 * m21;
  if (det == 0 || !std::isfinite(det)) return false;
  const AffineTransform inv{m22 / det,  -m12 / det, -m21 / det, m11 / det,
                            (m21 * tY - m22 * tX) / det, (m12 * tX - m11 * tY) / det};
  *this = inv;
  return true;
}

AffineTransform AffineTransform::inverted() const {
  AffineTransform copy = *this;
  copy.invert();
  return copy;
}

Point AffineTransform::transformPoint(const Point& p) const {
  return {m11 * p.x + m21 * p.y + tX, m12 * p.x + m22 * p.y + tY};
}

Size AffineTransform::transformSize(const Size& s) const {
  return {m11 * s.width + m21 * s.height, m12 * s.width + m22 * s.height};
}

bool AffineTransform::isIdentity() const { return *this == AffineTransform(); }

}  // namespace paintdoc
