// Points derived from rectangles: ellipse points and knob positions.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "support/fixture_file.h"
#include "geometry/ellipse_point.h"
#include "geometry/knob_position.h"

namespace paintdoc {
namespace {

using test::FixtureFile;
using test::PointAt;

const FixtureFile& Fixtures() { return test::SinglePrecisionFixtures(); }

// The direction from the rectangle's centre to p, in degrees in [0, 360).
double PolarDegrees(const Rect& r, const Point& p) {
  const double degrees = std::atan2(p.y - r.midY(), p.x - r.midX()) * 180 / std::numbers::pi;
  return degrees < 0 ? degrees + 360 : degrees;
}

TEST(GetPointInEllipse, MatchesSinglePrecisionFixtures) {
  const auto names = Fixtures().namesStartingWith("ellipse_");
  ASSERT_EQ(names.size(), 30u);
  for (const std::string& name : names) {
    const auto& v = Fixtures().values(name);
    ASSERT_EQ(v.size(), 7u) << name;
    const Rect rect = MakeRect(v[1], v[2], v[3], v[4]);
    EXPECT_EQ(GetPointInEllipse(float(v[0]), rect), PointAt(v, 5)) << name;
  }
}

TEST(GetPointInEllipse, FlatEllipsePullsAngleTowardMajorAxis) {
  // 100 x 40: r = 0.4, so 30 degrees becomes 30 - 0.6 x 30 = 12 degrees.
  const Rect wide = MakeRect(10, 20, 100, 40);
  EXPECT_NEAR(PolarDegrees(wide, GetPointInEllipse(30, wide)), 12, 1e-4);
  // Sector around 180: 170 -> 170 + (180 - 170) x 0.6 = 176.
  EXPECT_NEAR(PolarDegrees(wide, GetPointInEllipse(170, wide)), 176, 1e-4);
  // Outside the sectors around the major axis nothing changes.
  EXPECT_NEAR(PolarDegrees(wide, GetPointInEllipse(100, wide)), 100, 1e-4);
  // Tall 30 x 70: r = 3/7, 60 -> 60 + 30 x 4/7.
  const Rect tall = MakeRect(-5, 3, 30, 70);
  EXPECT_NEAR(PolarDegrees(tall, GetPointInEllipse(60, tall)), 60 + 30.0 * 4 / 7, 1e-4);
}

TEST(GetPointInEllipse, CircleIsNotCorrectedAndLiesOnTheCircle) {
  const Rect circle = MakeRect(0, 0, 50, 50);
  for (float angle : {30.0f, 123.0f, 222.0f, 301.0f}) {
    const Point p = GetPointInEllipse(angle, circle);
    EXPECT_NEAR(PolarDegrees(circle, p), angle, 1e-4) << angle;
    EXPECT_NEAR(std::hypot(p.x - 25, p.y - 25), 25, 1e-4) << angle;
  }
}

TEST(GetPointInEllipse, AxisDirectionsAreExact) {
  const Rect r = MakeRect(10, 20, 100, 40);
  const std::pair<float, Point> cases[] = {
      {90, {60, 60}}, {0, {110, 40}}, {180.005f, {10, 40}}, {-90, {60, 20}}, {720, {110, 40}}};
  for (const auto& [angle, point] : cases) EXPECT_EQ(GetPointInEllipse(angle, r), point) << angle;
}

TEST(GetPointInEllipse, TinyEllipseAndBadAnglesGiveCentre) {
  EXPECT_EQ(GetPointInEllipse(45, MakeRect(0, 0, 1.9, 100)), (Point{0.95, 50}));
  EXPECT_EQ(GetPointInEllipse(45, MakeRect(0, 0, 100, 1.5)), (Point{50, 0.75}));
  const Rect r = MakeRect(0, 0, 100, 40);
  EXPECT_EQ(GetPointInEllipse(std::numeric_limits<float>::quiet_NaN(), r), (Point{50, 20}));
  EXPECT_EQ(GetPointInEllipse(std::numeric_limits<float>::infinity(), r), (Point{50, 20}));
  // An angle far beyond one turn still comes back (and on the ellipse).
  const Point far = GetPointInEllipse(3.0e30f, r);
  EXPECT_NEAR(std::pow((far.x - 50) / 50, 2) + std::pow((far.y - 20) / 20, 2), 1, 1e-4);
}

TEST(GetPointInRectPosition, EveryCodeAndUnknownCodes) {
  // Codes 3001 to 3008 as documents store them; anything else is the origin.
  const Rect r = MakeRect(10, 20, 30, 40);
  const Point expected[] = {{0, 0},   {10, 40}, {10, 60}, {10, 20}, {25, 20},
                            {40, 20}, {40, 40}, {40, 60}, {25, 60}, {0, 0}};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(GetPointInRectPosition(3000 + i, r), expected[i]) << i;
}

}  // namespace
}  // namespace paintdoc
