// The knob position codes of a rectangle: the eight handles on its corners and
// edge midpoints, numbered as the knob and shape code stores them.
#pragma once

#include "platform/values/geometry.h"

namespace paintdoc {

inline constexpr int kKnobPositionLeftMiddle = 3001;
inline constexpr int kKnobPositionTopLeft = 3002;
inline constexpr int kKnobPositionBottomLeft = 3003;
inline constexpr int kKnobPositionBottomMiddle = 3004;
inline constexpr int kKnobPositionBottomRight = 3005;
inline constexpr int kKnobPositionRightMiddle = 3006;
inline constexpr int kKnobPositionTopRight = 3007;
inline constexpr int kKnobPositionTopMiddle = 3008;

// The point of `rect` that a knob position code names (y grows upward, so
// "top" is the maximum y); any other code gives the zero point.
Point GetPointInRectPosition(int knobPosition, const Rect& rect);

}  // namespace paintdoc
