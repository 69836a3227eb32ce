#include "raster/draw_clear.h"

namespace paintdoc {

void DrawClear::init() {
  DrawBase::init();
  colorStroke_ = Color::clearColor();
  colorFill_ = Color::clearColor();
}

void DrawClear::setStrokeColor(std::optional<Color> /*color*/) {
  colorStroke_ = Color::clearColor();
}

void DrawClear::setBezierPath(const BezierPath* path) {
  if (!bezierPath_) bezierPath_.emplace();
  bezierPath_->removeAllPoints();
  if (path != nullptr) bezierPath_->appendPath(*path);
}

}  // namespace paintdoc
