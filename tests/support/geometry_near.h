// Comparing points and rectangles computed in floating point.
#pragma once

#include <gtest/gtest.h>

#include "platform/values/geometry.h"

namespace paintdoc::test {

inline void ExpectPointNear(const Point& actual, const Point& expected, double tolerance = 1e-9) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
}

inline void ExpectRectNear(const Rect& actual, const Rect& expected, double tolerance = 1e-9) {
  ExpectPointNear(actual.origin, expected.origin, tolerance);
  EXPECT_NEAR(actual.size.width, expected.size.width, tolerance);
  EXPECT_NEAR(actual.size.height, expected.size.height, tolerance);
}

}  // namespace paintdoc::test
