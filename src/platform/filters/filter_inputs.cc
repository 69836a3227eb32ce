#include "platform/filters/filter_inputs.h"

#include <algorithm>
#include <cmath>

namespace paintdoc {

double FilterInputKey::sanitized(double value) const {
  if (!std::isfinite(value)) return defaultValue;
  return std::clamp(value, minimum, maximum);
}

double FilterInputKey::valueIn(const FilterSettings* settings) const {
  if (settings == nullptr) return defaultValue;
  auto found = settings->find(name);
  return found == settings->end() ? defaultValue : sanitized(found->second);
}

}  // namespace paintdoc
