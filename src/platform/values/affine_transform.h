// A 2-D affine transform with the platform's composition rules.
//
// A point maps as x' = m11·x + m21·y + tX, y' = m12·x + m22·y + tY.
// translate/rotate/scale apply their step *before* the existing transform (the
// platform's convention); append(B) means "first this, then B" and prepend(B)
// means "first B, then this".
#pragma once

#include "platform/values/geometry.h"

namespace paintdoc {

class AffineTransform {
 public:
  double m11 = 1, m12 = 0, m21 = 0, m22 = 1, tX = 0, tY = 0;

  AffineTransform() = default;
  AffineTransform(double a, double b, double c, double d, double tx, double ty)
      : m11(a), m12(b), m21(c), m22(d), tX(tx), tY(ty) {}

  static AffineTransform identity() { return {}; }
  static AffineTransform translation(double dx, double dy);
  static AffineTransform rotationDegrees(double degrees);
  static AffineTransform scaling(double sx, double sy);

  void translate(double dx, double dy);
  void rotateByDegrees(double degrees);
  void rotateByRadians(double radians);
  void scale(double s) { scale(s, s); }
  void scale(double sx, double sy);
  void append(const AffineTransform& next);
  void prepend(const AffineTransform& first);
  // Inverts in place; a singular transform is left unchanged and false returned.
  bool invert();
  AffineTransform inverted() const;

  Point transformPoint(const Point& p) const;
  // Sizes are vectors: the translation does not apply.
  Size transformSize(const Size& s) const;

  bool isIdentity() const;
  friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

}  // namespace paintdoc
