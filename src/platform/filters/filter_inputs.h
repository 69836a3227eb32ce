// The numeric inputs of the named image filters: a key, its default and the
// range a filter accepts, and the settings dictionary callers hand in.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace paintdoc {

// Setting name (a filter's input key) → value, as callers hold them.
using FilterSettings = std::map<std::string, double, std::less<>>;

// One numeric input of a filter. Values outside [minimum, maximum] are
// clamped to it; values that are not finite numbers take the default. The
// ranges keep every filter's time and memory bounded whatever it is given.
struct FilterInputKey {
  std::string_view name;
  double defaultValue = 0;
  double minimum = 0;
  double maximum = 0;

  // `value` made safe to use: the default when not finite, else clamped.
  double sanitized(double value) const;
  // The value `settings` holds for this key, sanitized; the default when it
  // holds none (or when there are no settings).
  double valueIn(const FilterSettings* settings) const;
};

// How the pixels beyond a bitmap's edges are seen by filters that read
// neighbours: transparent (the result fades at the edges) or as the nearest
// edge pixel repeated without end (the filter input clamped at its edges).
enum class FilterEdges { Transparent, Clamp };

}  // namespace paintdoc
