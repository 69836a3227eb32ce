#include "raster/draw_pen.h"

namespace paintdoc {

namespace {
constexpr double kThinnestAntialiasedPenWidth = 1.1;
}

void DrawPen::init() {
  DrawBase::init();
  bezierPath_->setLineCapStyle(LineCapStyle::Round);
}

bool DrawPen::shouldAntialias() const {
  return width() >= kThinnestAntialiasedPenWidth && bSmooth_;
}

float DrawPen::width() const {
  return bezierPath_ ? static_cast<float>(bezierPath_->lineWidth()) : 0.0f;
}

void DrawPen::setWidth(float width) {
  if (bezierPath_) bezierPath_->setLineWidth(width);
}

}  // namespace paintdoc
