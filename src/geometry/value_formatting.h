// Measures, durations and file sizes as the user interface prints them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace paintdoc {

// Unit codes of the measure functions: 0 and 4 pixels, 1 inches,
// 2 centimetres, 3 millimetres. Any other code prints nothing.
// "Length:12.0 pixels", "Length:0.04 inchs", "Length:2.54 cm", ... for a
// length in pixels at `resolution` pixels per inch. None for an unknown unit,
// or (logged) for a resolution that cannot convert pixels into inches.
std::optional<std::string> LengthToString(unsigned unit, float length, float resolution);
// "w:640 h:480 (pixels)" (truncated), "w:2.13 h:1.60 (inchs)", ...
std::optional<std::string> SizeToString(unsigned unit, double width, double height,
                                        float resolution);

// `value` rounded half up to `decimals` places, with one trailing zero step
// trimmed: 2.00 -> "2", 2.50 -> "2.5", 1.500 -> "1.50".
std::string DoubleToString(double value, int decimals);

// Whole seconds as "01:02:05" and "01h02m05s"; hours are not limited to 24.
std::string StringFromTime(double seconds);
std::string StringFromTime2(double seconds);

// "1023 B", "1.0 KB", "1.5 MB", "2.0 GB" (binary multiples).
std::string StringFromFileSize(uint64_t bytes);

}  // namespace paintdoc
