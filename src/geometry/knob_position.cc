#include "geometry/knob_position.h"

namespace paintdoc {

Point GetPointInRectPosition(int knobPosition, const Rect& rect) {
  const double x = rect.origin.x;
  const double y = rect.origin.y;
  const double w = rect.size.width;
  const double h = rect.size.height;
  switch (knobPosition) {
    case kKnobPositionLeftMiddle: return {x, y + h / 2};
    case kKnobPositionTopLeft: return {x, y + h};
    case kKnobPositionBottomLeft: return {x, y};
    case kKnobPositionBottomMiddle: return {x + w / 2, y};
    case kKnobPositionBottomRight: return {x + w, y};
    case kKnobPositionRightMiddle: return {x + w, y + h / 2};
    case kKnobPositionTopRight: return {x + w, y + h};
    case kKnobPositionTopMiddle: return {x + w / 2, y + h};
    default: return {0, 0};
  }
}

}  // namespace paintdoc
