#include "raster/draw_eraser.h"

namespace paintdoc {

void DrawEraser::init() {
  DrawPen::init();
  bezierPath_->setLineWidth(kInitWidth);
  setStrokeColor(std::nullopt);
}

void DrawEraser::setStrokeColor(std::optional<Color> /*color*/) {
  colorStroke_ = Color::clearColor();
}

}  // namespace paintdoc
