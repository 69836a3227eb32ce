#include "platform/values/bezier_path.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/geometry_near.h"

namespace paintdoc {
namespace {

constexpr double kK = 0.5522847498;

void ExpectPointNear(const Point& actual, const Point& expected, double tolerance = 1e-6) {
  test::ExpectPointNear(actual, expected, tolerance);
}

std::vector<PathElementType> Types(const BezierPath& path) {
  std::vector<PathElementType> types;
  for (const auto& e : path.elements()) types.push_back(e.type);
  return types;
}

using T = PathElementType;

TEST(BezierPathShapes, RectangleStartsAtOriginCounterClockwise) {
  const BezierPath path = BezierPath::withRect(MakeRect(1, 2, 10, 20));
  EXPECT_EQ(Types(path), (std::vector{T::MoveTo, T::LineTo, T::LineTo, T::LineTo, T::ClosePath}));
  EXPECT_EQ(path.elementAt(0).points[0], (Point{1, 2}));
  EXPECT_EQ(path.elementAt(1).points[0], (Point{11, 2}));
  EXPECT_EQ(path.elementAt(3).points[0], (Point{1, 22}));
}

TEST(BezierPathShapes, OvalStartsAtMinus45DegreesWithFourQuarterCurves) {
  const BezierPath path = BezierPath::withOvalInRect(MakeRect(250, 250, 100, 100));
  EXPECT_EQ(Types(path), (std::vector{T::MoveTo, T::CurveTo, T::CurveTo, T::CurveTo, T::CurveTo,
                                      T::ClosePath}));
  // Values observed on the platform for this oval.
  ExpectPointNear(path.elementAt(0).points[0], {335.355339, 264.644661});
  ExpectPointNear(path.elementAt(1).points[0], {354.881554, 284.170876});
  ExpectPointNear(path.elementAt(1).points[1], {354.881554, 315.829124});
  ExpectPointNear(path.elementAt(1).points[2], {335.355339, 335.355339});
  EXPECT_NEAR(path.bounds().size.width, 100, 1e-9);
  EXPECT_NEAR(path.bounds().origin.y, 250, 1e-9);
}

TEST(BezierPathShapes, RoundedRectHasNineElementsFromTheTopEdge) {
  const BezierPath path = BezierPath::withRoundedRect(MakeRect(0, 0, 60, 30), 8, 8);
  EXPECT_EQ(Types(path), (std::vector{T::MoveTo, T::CurveTo, T::LineTo, T::CurveTo, T::LineTo,
                                      T::CurveTo, T::LineTo, T::CurveTo, T::ClosePath}));
  EXPECT_EQ(path.elementAt(0).points[0], (Point{8, 30}));
  ExpectPointNear(path.elementAt(1).points[0], {8 - 8 * kK, 30});
  ExpectPointNear(path.elementAt(1).points[0], {3.58176, 30}, 1e-4);
  EXPECT_EQ(path.elementAt(1).points[2], (Point{0, 22}));
  EXPECT_EQ(path.elementAt(7).points[2], (Point{52, 30}));
}

TEST(BezierPathShapes, RoundedRectClampsRadiiAndFallsBackToARectangle) {
  const BezierPath clamped = BezierPath::withRoundedRect(MakeRect(0, 0, 10, 4), 100, 100);
  EXPECT_EQ(clamped.elementAt(0).points[0], (Point{5, 4}));
  EXPECT_EQ(clamped.elementAt(1).points[2], (Point{0, 2}));
  EXPECT_EQ(BezierPath::withRoundedRect(MakeRect(0, 0, 10, 4), 0, 3).elementCount(), 5u);
}

TEST(BezierPathArcs, HalfCircleIsTwoQuarterCurves) {
  BezierPath path;
  path.appendArc({0, 0}, 10, 0, 180);
  EXPECT_EQ(Types(path), (std::vector{T::MoveTo, T::CurveTo, T::CurveTo}));
  EXPECT_EQ(path.elementAt(0).points[0], (Point{10, 0}));
  ExpectPointNear(path.elementAt(1).points[0], {10, 10 * kK});
  ExpectPointNear(path.elementAt(1).points[1], {10 * kK, 10});
  ExpectPointNear(path.elementAt(1).points[2], {0, 10});
  ExpectPointNear(path.elementAt(2).points[2], {-10, 0});
}

TEST(BezierPathArcs, ClockwiseSweepsTheOtherWayAndJoinsWithALine) {
  BezierPath path;
  path.moveTo({0, 0});
  path.appendArc({0, 0}, 5, 0, 90, true);  // clockwise from 0° to 90° is 270° the long way
  EXPECT_EQ(Types(path), (std::vector{T::MoveTo, T::LineTo, T::CurveTo, T::CurveTo, T::CurveTo}));
  ExpectPointNear(path.elementAt(2).points[2], {0, -5});
  ExpectPointNear(path.currentPoint(), {0, 5});
}

TEST(BezierPathArcs, HugeAnglesStayBounded) {
  BezierPath path;
  path.appendArc({0, 0}, 1, 1e300, -1e300);
  EXPECT_LE(path.elementCount(), 6u);
}

TEST(BezierPathBounds, TightBoundsFollowTheCurveExtremes) {
  BezierPath a;
  a.moveTo({100, 100});
  a.curveTo({200, 100}, {125, 50}, {175, 150});
  const Rect b = a.bounds();
  EXPECT_NEAR(b.origin.x, 100, 1e-4);
  EXPECT_NEAR(b.origin.y, 85.5662, 1e-3);
  EXPECT_NEAR(b.size.width, 100, 1e-4);
  EXPECT_NEAR(b.size.height, 28.8678, 1e-3);
  EXPECT_EQ(a.controlPointBounds(), MakeRect(100, 50, 100, 100));

  BezierPath c;
  c.moveTo({-100, 0});
  c.curveTo({100, 0}, {-118.2, 10.393}, {118.2, -10.393});
  EXPECT_NEAR(c.bounds().origin.x, -101, 0.05);
  EXPECT_NEAR(c.bounds().size.height, 6, 0.05);
}

TEST(BezierPathReversal, ClosedSubpathKeepsItsStartAndWalksTheClosingEdgeFirst) {
  const BezierPath rect = BezierPath::withRect(MakeRect(0, 0, 100, 100));
  const BezierPath reversed = rect.reversed();
  EXPECT_EQ(Types(reversed), (std::vector{T::MoveTo, T::LineTo, T::LineTo, T::LineTo, T::ClosePath}));
  const Point corners[] = {{0, 0}, {0, 100}, {100, 100}, {100, 0}};
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(reversed.elementAt(i).points[0], corners[i]) << i;
}

TEST(BezierPathReversal, OpenSubpathSwapsControlPoints) {
  BezierPath path;
  path.moveTo({0, 0});
  path.lineTo({10, 0});
  path.curveTo({20, 10}, {12, 1}, {18, 9});
  const BezierPath reversed = path.reversed();
  EXPECT_EQ(Types(reversed), (std::vector{T::MoveTo, T::CurveTo, T::LineTo}));
  EXPECT_EQ(reversed.elementAt(0).points[0], (Point{20, 10}));
  EXPECT_EQ(reversed.elementAt(1).points, (std::array<Point, 3>{{{18, 9}, {12, 1}, {10, 0}}}));
  EXPECT_EQ(reversed.elementAt(2).points[0], (Point{0, 0}));
}

TEST(BezierPathReversal, ReversedOvalKeepsItsStartAndOppositeDirection) {
  const BezierPath oval = BezierPath::withOvalInRect(MakeRect(0, 0, 10, 10));
  const BezierPath reversed = oval.reversed();
  EXPECT_EQ(reversed.elementAt(0).points[0], oval.elementAt(0).points[0]);
  // The reversed oval's first curve ends where the original's last curve began.
  ExpectPointNear(reversed.elementAt(1).points[2], oval.elementAt(3).points[2]);
  EXPECT_EQ(reversed.elementCount(), oval.elementCount());
}

TEST(BezierPathContainment, HoleDependsOnTheWindingRule) {
  BezierPath ring = BezierPath::withRect(MakeRect(0, 0, 100, 100));
  ring.appendRect(MakeRect(25, 25, 50, 50));  // same direction: a hole only under even-odd
  EXPECT_TRUE(ring.containsPoint({50, 50}, WindingRule::NonZero));
  EXPECT_FALSE(ring.containsPoint({50, 50}, WindingRule::EvenOdd));
  EXPECT_TRUE(ring.containsPoint({10, 10}, WindingRule::EvenOdd));
  EXPECT_FALSE(ring.containsPoint({150, 50}, WindingRule::NonZero));

  BezierPath holed = BezierPath::withRect(MakeRect(0, 0, 100, 100));
  holed.appendPath(BezierPath::withRect(MakeRect(25, 25, 50, 50)).reversed());
  EXPECT_FALSE(holed.containsPoint({50, 50}, WindingRule::NonZero));
}

TEST(BezierPathContainment, CurvesAndUnclosedSubpathsFillAsClosed) {
  const BezierPath oval = BezierPath::withOvalInRect(MakeRect(0, 0, 100, 50));
  EXPECT_TRUE(oval.containsPoint({50, 25}));
  EXPECT_FALSE(oval.containsPoint({3, 3}));
  BezierPath triangle;
  triangle.moveTo({0, 0});
  triangle.lineTo({10, 0});
  triangle.lineTo({0, 10});
  EXPECT_TRUE(triangle.containsPoint({2, 2}));
}

TEST(BezierPathEditing, CloseEndsAtSubpathStartAndTransformKeepsWidth) {
  BezierPath path;
  path.setLineWidth(3);
  path.moveTo({1, 1});
  path.lineTo({5, 1});
  path.closePath();
  EXPECT_EQ(path.currentPoint(), (Point{1, 1}));
  path.transform(AffineTransform::scaling(2, 2));
  EXPECT_EQ(path.elementAt(1).points[0], (Point{10, 2}));
  EXPECT_EQ(path.lineWidth(), 3);
  path.removeLastElements(10);
  EXPECT_TRUE(path.isEmpty());
}

}  // namespace
}  // namespace paintdoc
