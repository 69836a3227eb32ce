// Dash styles written as text: numbers separated by colons ("6:3", "8:2:1:2"),
// the alternating dash and gap lengths, dash first. Draws store the normalised
// text and turn it into a path's dash pattern.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace paintdoc {

// The most dash entries a style keeps; further parts are dropped.
inline constexpr size_t kMaxDashStyleParts = 10;

// Normalises a dash style text and optionally reads its numbers.
// - An empty text, or one shorter than 3 characters, gives "" (a solid line).
// - One trailing ":" is removed; at most the first 10 parts are kept, exactly as
//   written (no trimming), joined again with ":".
// - `count`, when given, receives the number of parts kept (0 for a solid line).
// - `values`, when given, must hold at least kMaxDashStyleParts doubles; each
//   kept part is stored read leniently: leading blanks skipped, the longest
//   decimal number at the start taken, anything unreadable read as 0.
std::string GetDashArrayFromString(std::string_view text, double* values = nullptr,
                                   size_t* count = nullptr);

// The lenient text-to-number reading used for dash parts: optional leading
// blanks, an optional sign, digits with an optional fraction and exponent; the
// rest is ignored. No number at the start gives 0; overflow gives ±infinity.
double LenientDoubleValue(std::string_view text);

}  // namespace paintdoc
