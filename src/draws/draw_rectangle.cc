#include "draws/draw_rectangle.h"

namespace paintdoc {

void DrawRectangle::init() {
  DrawBase::init();
  bezierPath_->setLineJoinStyle(LineJoinStyle::Miter);
}

}  // namespace paintdoc
