// Tolerant equality of drawing attributes, so that setting a colour,
// shadow or gradient that differs only by rounding noise (a colour read back
// from an archive in single precision, a blur typed as 8.05) does not count as
// an edit; and the opacity of a gradient taken as a whole.
//
// Every comparison answers false against an absent value, true for values
// that are equal outright, and otherwise applies its tolerances. Fonts
// compare alike, next to the font (platform/text/font.h).
#pragma once

#include <optional>

#include "platform/values/color.h"
#include "platform/values/gradient.h"
#include "platform/values/shadow.h"

namespace paintdoc {

// Compared in calibrated RGB: red, green and blue each less than 0.003
// apart, alpha less than 0.01 apart.
bool wt_isEqualWithColor(const Color& color, const std::optional<Color>& other);
// Exactly the same offset, blur radii at most 0.1 apart and tolerantly equal
// colours (the colour that is drawn, default included).
bool wt_isEqualWithShadow(const Shadow& shadow, const std::optional<Shadow>& other);
// The same number of stops and, stop by stop, locations at most 0.001 apart
// and tolerantly equal colours.
bool wt_isEqualWithGradient(const Gradient& gradient, const std::optional<Gradient>& other);

// The mean alpha of the stop colours, summed in single precision; 0 without
// stops.
float averageOpacity(const Gradient& gradient);
// The same stops with every colour's alpha replaced by `opacity`, as a new
// gradient in the sRGB space; none for a gradient without stops.
std::optional<Gradient> gradientWithOpacity(const Gradient& gradient, float opacity);

}  // namespace paintdoc
