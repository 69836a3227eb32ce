#include "raster/draw_raster.h"

namespace paintdoc {

namespace {
constexpr double kThinnestAntialiasedPenWidth = 1.1;
}

bool DrawPen::shouldAntialias() const {
  const double width = bezierPath_ ? bezierPath_->lineWidth() : 0.0;
  return width >= kThinnestAntialiasedPenWidth && bSmooth_;
}

}  // namespace paintdoc
