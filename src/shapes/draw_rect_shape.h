// DrawRectShape: the base of every shape of the shape library. It remembers
// the box the outline was built for (its control bounds) apart from the path,
// so that the outline can be rebuilt from the box at any time, and it
// archives that box next to the path.
#pragma once

#include "draws/draw_rectangle.h"

namespace paintdoc {

// Beyond this many units from the origin, or this wide or high, a box is no
// drawing anyone made: shapes draw nothing for it rather than points that the
// single-precision outline arithmetic would overflow.
inline constexpr double kMaxShapeExtent = 1e6;

// Whether every coordinate of the box is a number within kMaxShapeExtent.
bool IsDrawableShapeBox(const Rect& box);

// The box an outline is fitted into: raised to at least 1 by 1 and rounded to
// single precision, as every library outline computes its points.
struct ShapeBox {
  float x = 0, y = 0, w = 1, h = 1;

  explicit ShapeBox(const Rect& bounds);
  // The point at fractions (a, b) of the box: (x + a w, y + b h).
  Point at(float a, float b) const;
  Point center() const { return at(0.5f, 0.5f); }
};

class DrawRectShape : public DrawRectangle {
  PAINTDOC_CLASS(DrawRectShape, DrawRectangle)
  std::string name() const override { return "Shape"; }
  // DrawRectangle's defaults with round joins and a zero box.
  void init() override;
  // "ControlBounds" after DrawRectangle's keys; the joins become round again.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // Rebuilds the outline for the box and remembers the box. A box that is not
  // drawable (see IsDrawableShapeBox) is logged and leaves an empty outline
  // and the zero box.
  void setBezierPathWithBounds(const Rect& bounds) override;
  // The snapshot for undo and resizing: the box, boxed as a rectangle.
  ArchiveValue bezierPathData() const override;
  // Rebuilds the outline from a boxed rectangle; anything else is ignored.
  void setBezierPathWithData(const ArchiveValue& data) override;

  void moveBy(float x, float y) override;
  // Scales the outline and the box about `center`. When line widths are
  // resized the box takes sx on both axes (the outline too, through DrawBase).
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;

  Rect controlBoundsBeforeRotation() const override { return rectControlBounds_; }

 protected:
  // The box scaled about `center` as scaleBy() scales it.
  static Rect ScaledBox(const Rect& box, float sx, float sy, const Point& center);

  Rect rectControlBounds_;
};

}  // namespace paintdoc
