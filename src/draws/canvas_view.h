// CanvasView: what a draw asks of the view that shows the canvas while it is
// edited. The view belongs to the host application; draws take it to paint
// their overlays (highlight, border, knobs) in view units and to turn pointer
// positions into canvas units.
//
// Three kinds of units meet here: window units (where pointer events arrive),
// view units (the view's own coordinates, which overlays are painted in) and
// canvas units (the document's coordinates, origin at the lower left). A view
// that shows the canvas at zoom s typically maps canvas point p to view point
// s·p + origin of the canvas in the view.
#pragma once

#include "platform/values/affine_transform.h"
#include "platform/values/geometry.h"

namespace paintdoc {

class CanvasView {
 public:
  virtual ~CanvasView() = default;

  // The zoom factor: view units per canvas unit, 1.0 at 100 %.
  virtual float scale() const = 0;
  // The transform from canvas units to view units, concatenated before an
  // overlay paints canvas geometry into the view.
  virtual AffineTransform transformForDrawing() const = 0;
  // True when the highlight is asked for from outside the canvas (a layer
  // list, say); the highlighted shape's fill is then painted too.
  virtual bool highlightFromExternal() const = 0;
  // The canvas size in canvas units (knobs outside the canvas are not painted).
  virtual Size canvasSize() const = 0;

  // Window units to view units (the platform's convertPoint:fromView: nil).
  virtual Point convertPointFromWindow(Point windowPoint) const = 0;
  // View units to canvas units, without rounding to whole units.
  virtual Point convertPointToCanvasWithoutRound(Point viewPoint) const = 0;
  // Canvas units to view units.
  virtual Point convertPointFromCanvas(Point canvasPoint) const = 0;
  virtual Rect convertRectFromCanvas(Rect canvasRect) const = 0;
};

// A length of `viewPixels` view units in canvas units: viewPixels / scale.
// A view that answers no positive scale is taken at 100 %.
inline double ViewPixelsInCanvasUnits(const CanvasView& view, double viewPixels) {
  const float scale = view.scale();
  return scale > 0 ? viewPixels / scale : viewPixels;
}

}  // namespace paintdoc
