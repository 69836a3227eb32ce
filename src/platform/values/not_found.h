// The index that list operations answer when an element is not found: the
// largest signed 64-bit integer, as the platform's not-found marker.
#pragma once

#include <cstdint>
#include <limits>

namespace paintdoc {

inline constexpr int64_t kNotFound = std::numeric_limits<int64_t>::max();

}  // namespace paintdoc
