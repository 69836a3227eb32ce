// Paths the geometry code builds or edits: arrowheads, arcs between two
// points, trailing elements dropped, points turned back from a rotation.
#include <gtest/gtest.h>

#include <utility>

#include "support/fixture_file.h"
#include "geometry/arrow_path.h"
#include "geometry/path_edits.h"
#include "geometry/rotation.h"

namespace paintdoc {
namespace {

using test::FixtureFile;
using test::PointAt;

const FixtureFile& Fixtures() { return test::SinglePrecisionFixtures(); }

void ExpectNear(const Point& actual, const Point& expected, double tolerance,
                const std::string& what) {
  EXPECT_NEAR(actual.x, expected.x, tolerance) << what;
  EXPECT_NEAR(actual.y, expected.y, tolerance) << what;
}

// tan 30 degrees in single precision, as the head sizes use it.
constexpr float kTan30 = 0.57735026f;

TEST(GetArrowPath, HeadPointsMatchFixtures) {
  for (const std::string& name : Fixtures().namesStartingWith("arrow_")) {
    const auto& v = Fixtures().values(name);
    ASSERT_EQ(v.size(), 13u) << name;
    const auto head = GetArrowPath(PointAt(v, 0), PointAt(v, 2), float(v[4]));
    ASSERT_TRUE(head.has_value()) << name;
    ASSERT_EQ(head->elementCount(), 4u) << name;
    EXPECT_EQ(head->elementAt(0).type, PathElementType::MoveTo);
    for (size_t i = 0; i < 4; ++i) {
      if (i > 0) {
        EXPECT_EQ(head->elementAt(i).type, PathElementType::LineTo) << name;
      }
      ExpectNear(head->elementAt(i).points[0], PointAt(v, 5 + 2 * i), 1e-9, name);
    }
  }
}

TEST(GetArrowPath, TooShortLinesGiveNothing) {
  // The reach limit is w / tan 30 = 1.732 w; 1.5 w (15 here) is short of it.
  const std::pair<Point, bool> cases[] = {
      {{0, 15}, false}, {{15, 0}, false}, {{-9, -12}, false}, {{0, 17.4}, true}, {{17.4, 0}, true}};
  for (const auto& [end, drawn] : cases) {
    EXPECT_EQ(GetArrowPath({0, 0}, end, 10).has_value(), drawn) << end.x << "," << end.y;
  }
}

TEST(GetArrowPath, VerticalDownTipLiesBelowEndByOverhang) {
  const float w = 4;
  const auto head = GetArrowPath({20, 100}, {20.3, 10}, w);
  ASSERT_TRUE(head.has_value());
  const Point tip = head->elementAt(0).points[0];
  EXPECT_EQ(tip.x, 20.3);
  EXPECT_EQ(tip.y, 10 - double(w * 0.5f / kTan30));  // 0.866 w below
  EXPECT_NEAR(10 - tip.y, 0.866 * w, 1e-3);
  // The base is one head length above the tip, 2w either side.
  const Point left = head->elementAt(1).points[0];
  const Point right = head->elementAt(2).points[0];
  EXPECT_EQ(left.y, tip.y + double(2 * w / kTan30));
  EXPECT_EQ(left.x, 20.3 - 8);
  EXPECT_EQ(right.x, 20.3 + 8);
  EXPECT_EQ(head->elementAt(3).points[0], tip);
}

TEST(GetArrowPath, LineWidthOnlySetForSlopingLines) {
  const auto vertical = GetArrowPath({0, 0}, {0, 100}, 6);
  const auto sloping = GetArrowPath({0, 0}, {100, 50}, 6);
  ASSERT_TRUE(vertical && sloping);
  EXPECT_EQ(vertical->lineWidth(), BezierPath::kDefaultLineWidth);
  EXPECT_EQ(sloping->lineWidth(), 1.0);
}

TEST(GetArrowPath, HeadPointsAlongTheLineEitherWay) {
  for (const Point end : {Point{100, 30}, Point{-100, -30}, Point{-100, 30}}) {
    const auto head = GetArrowPath({0, 0}, end, 2);
    ASSERT_TRUE(head.has_value());
    const Point tip = head->elementAt(0).points[0];
    // The tip lies beyond the end on the line's continuation.
    const double along = (tip.x * end.x + tip.y * end.y) / (end.x * end.x + end.y * end.y);
    EXPECT_GT(along, 1.0) << end.x << "," << end.y;
    // On the line up to the single-precision angle: a cross product near 0.
    EXPECT_NEAR(tip.x * end.y - tip.y * end.x, 0, 1e-3) << end.x << "," << end.y;
  }
}

TEST(ArcAngleOfPoint, MatchesFixtures) {
  for (const std::string& name : Fixtures().namesStartingWith("arc_angle_")) {
    const auto& v = Fixtures().values(name);
    ASSERT_EQ(v.size(), 3u) << name;
    EXPECT_EQ(double(ArcAngleOfPoint({100, 50}, 20, PointAt(v, 0))), v[2]) << name;
  }
}

TEST(AppendBezierPathWithArcWithCenter, StartsAtTheFromPointsAngle) {
  // From straight above the centre: starts at 90 degrees, the top of the circle.
  BezierPath above;
  appendBezierPathWithArcWithCenter(above, {0, 0}, 10, {0, 30}, {-10, 0});
  ASSERT_GE(above.elementCount(), 2u);
  ExpectNear(above.elementAt(0).points[0], {0, 10}, 1e-9, "above");
  ExpectNear(above.currentPoint(), {-10, 0}, 1e-9, "above end");

  // From the left of the centre by the radius or more: starts at 180.
  BezierPath left;
  appendBezierPathWithArcWithCenter(left, {0, 0}, 10, {-25, 3}, {10, 0});
  ExpectNear(left.elementAt(0).points[0], {-10, 0}, 1e-9, "left");
  ExpectNear(left.currentPoint(), {10, 0}, 1e-9, "left end");
  // Counter-clockwise from 180 to 0 (= 360) runs through the bottom.
  EXPECT_LT(left.bounds().minY(), -9.9);

  BezierPath none;  // a radius of zero or less adds nothing
  appendBezierPathWithArcWithCenter(none, {0, 0}, 0, {0, 30}, {30, 0});
  appendBezierPathWithArcWithCenter(none, {0, 0}, -5, {0, 30}, {30, 0});
  EXPECT_TRUE(none.isEmpty());
}

BezierPath FourElements() {
  BezierPath path;
  path.moveTo({0, 0});
  path.lineTo({10, 0});
  path.curveTo({20, 10}, {12, 0}, {20, 8});
  path.closePath();
  path.setLineWidth(3);
  return path;
}

TEST(RemoveLastElements, DropsOnlyWhatExists) {
  const BezierPath original = FourElements();
  BezierPath path = original;
  removeLastElements(path, 0);
  EXPECT_EQ(path, original);
  removeLastElements(path, 5);  // more than there are: nothing happens
  EXPECT_EQ(path, original);

  removeLastElements(path, 2);
  ASSERT_EQ(path.elementCount(), 2u);
  EXPECT_EQ(path.elementAt(1), original.elementAt(1));
  EXPECT_EQ(path.lineWidth(), 3.0);

  removeLastElements(path, 2);  // exactly all of them
  EXPECT_TRUE(path.isEmpty());
  removeLastElements(path, 1);  // and an empty path stays empty
  EXPECT_TRUE(path.isEmpty());
}

TEST(GetPointBeforeRotate, TurnsBothPointsAboutTheirSinglePrecisionMidpoint) {
  for (const std::string& name : Fixtures().namesStartingWith("before_rotate_")) {
    const auto& v = Fixtures().values(name);
    ASSERT_EQ(v.size(), 9u) << name;
    Point a = PointAt(v, 0), b = PointAt(v, 2);
    GetPointBeforeRotate(a, b, float(v[4]));
    ExpectNear(a, PointAt(v, 5), 1e-8, name);
    ExpectNear(b, PointAt(v, 7), 1e-8, name);
  }
}

TEST(PointBeforeRotateAt, UndoesARotationAboutTheCentre) {
  Point a{1.1, 2.2}, b{3.3, 4.4};  // no angle leaves the points exactly alone
  GetPointBeforeRotate(a, b, 0);
  EXPECT_EQ(a, (Point{1.1, 2.2}));
  EXPECT_EQ(b, (Point{3.3, 4.4}));
  EXPECT_EQ(PointBeforeRotateAt({1.1, 2.2}, {5, 5}, 0), (Point{1.1, 2.2}));
  // (15, 5) is (10, 0) from the centre; undoing 90 degrees turns it to (0, -10).
  ExpectNear(PointBeforeRotateAt({15, 5}, {5, 5}, 90), {5, -5}, 1e-12, "90");
  ExpectNear(PointBeforeRotateAt({5, 15}, {5, 5}, -90), {-5, 5}, 1e-12, "-90");
}

}  // namespace
}  // namespace paintdoc
