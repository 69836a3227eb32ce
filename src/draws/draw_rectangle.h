// Draws whose outline is made from a bounding box: the rectangle and its
// direct variants. Every box-shaped draw (shapes, text boxes, images,
// rectangular selections) derives from DrawRectangle and follows its
// contract: the outline is rebuilt from a box by bezierPathWithBounds(), the
// rotation centre is the centre of that box, and the handles sit on it.
#pragma once

#include "draws/draw_base.h"

namespace paintdoc {

class DrawRectangle : public DrawBase {
  PAINTDOC_CLASS(DrawRectangle, DrawBase)
  std::string name() const override { return "Rectangle"; }
  // DrawBase's defaults with mitred joins (a rectangle keeps sharp corners).
  void init() override;

  bool classDrawFill() const override { return true; }
  bool hasBorder() const override { return !classDrawBezierPath(); }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
  // Creation by dragging starts at a corner rather than at the centre.
  virtual bool startFromCenterWhenCreating() const { return false; }
  // Width-to-height ratio kept while the user holds Shift.
  virtual float width2HeightRatioForShift() const { return 1.0f; }

  // --- The outline from a box

  // A new path with this draw's line width, dash, cap and join holding the
  // class's outline for the box, whose width and height are first raised to
  // at least 1. Here the box itself; subclasses draw their own shape into it.
  virtual BezierPath bezierPathWithBounds(const Rect& bounds) const;
  // Replaces the outline's elements by bezierPathWithBounds() of the box
  // (raised to at least 1 by 1); the path keeps its own line attributes.
  // Virtual so that shapes which remember their box can store it here.
  virtual void setBezierPathWithBounds(const Rect& bounds);
  // The box the outline was made from. Here the path's bounds; subclasses
  // whose outline does not fill its box answer the box.
  virtual Rect controlBoundsBeforeRotation() const;
  // The centre of controlBoundsBeforeRotation().
  Point rotateCenter() const override;
  // The axis-aligned box around controlBoundsBeforeRotation() turned by the
  // draw's rotation; the zero rectangle for a draw without outline.
  Rect controlBounds() const override;

  // The box spanned while creating by dragging from `stablePoint` to
  // `movePoint`, in single precision: between the two points, or centred on
  // the stable point when the class creates from the centre.
  Rect initBoundsWithStablePoint(Point stablePoint, Point movePoint) const;

 protected:
  // An empty path carrying this draw's stroke attributes (or the defaults of a
  // new path when the draw has none).
  BezierPath emptyPathWithLineAttributes() const;
};

// A box outline: width and height raised to at least 1, origin kept.
Rect RectRaisedToUnitSize(const Rect& bounds);

class DrawEllipse : public DrawRectangle {
  PAINTDOC_CLASS(DrawEllipse, DrawRectangle)
  std::string name() const override { return "Ellipse"; }
  // Round line caps.
  void init() override;
  // Takes DrawRectangle's keys and puts the round caps back.
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // The oval inscribed in the box.
  BezierPath bezierPathWithBounds(const Rect& bounds) const override;
};

class DrawRoundRectangle : public DrawRectangle {
 public:
  static constexpr float kInitRadius = 30.0f;

  static constexpr const char* kClassName = "DrawRoundRectangle";
  using Superclass = DrawRectangle;
  std::string className() const override { return kClassName; }
  std::string name() const override { return "Round Rectangle"; }
  // Both corner radii 30.
  void init() override;
  // "XRadius" and "YRadius" after DrawRectangle's keys. Reading rounds each
  // radius to the nearest whole number and takes 0 for a missing one.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // The rectangle with corners rounded by xRadius() and yRadius().
  BezierPath bezierPathWithBounds(const Rect& bounds) const override;

  float xRadius() const { return fXRadius_; }
  float yRadius() const { return fYRadius_; }
  // Ignored unless both radii are at least 0. Rebuilds a non-empty outline
  // with the new corners in its current box (which is not raised to 1 here).
  void setXRadius(float xRadius, float yRadius);

  // DrawBase's scaling, then each radius scaled with its axis: x by sx, y by
  // sx when line widths are resized (proportional scaling) and by sy when not.
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;

 protected:
  float fXRadius_ = 0;
  float fYRadius_ = 0;
};

// A box filled with a gradient and never stroked.
class DrawGradient : public DrawRectangle {
  PAINTDOC_CLASS(DrawGradient, DrawRectangle)
  std::string name() const override { return "Gradient"; }
  bool classDrawStroke() const override { return false; }

  // Stroke off, gradient fill on at 0 degrees, from black to gray.
  void init() override;
  // Takes DrawRectangle's keys, switches gradient fill on and makes the
  // black-to-gray gradient when the archive held none.
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // The draw always fills with its gradient, whatever the argument.
  void setFillWithGradient(bool on) override;
  // None is ignored: the draw keeps a gradient.
  void setFillGradient(std::optional<Gradient> gradient) override;

  // DrawBase's highlight, then the box around the outline in the highlight
  // colour, 2 view pixels wide.
  void drawHighlightInCanvasView(const CanvasView& view) override;

  // The gradient of a new gradient box: calibrated black to calibrated gray.
  static Gradient defaultGradient();
};

}  // namespace paintdoc
