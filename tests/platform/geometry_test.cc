#include "platform/values/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platform/values/affine_transform.h"

namespace paintdoc {
namespace {

TEST(GeometryText, WritesIntegersWithoutPointAndKeepsFullPrecision) {
  EXPECT_EQ(StringFromPoint({62, 62}), "{62, 62}");
  EXPECT_EQ(StringFromRect(MakeRect(-269, -168.5, 538, 337)), "{{-269, -168.5}, {538, 337}}");
  EXPECT_EQ(StringFromRect(MakeRect(1, 116.45652049779892, 235, 16)),
            "{{1, 116.45652049779892}, {235, 16}}");
  EXPECT_EQ(StringFromSize({0.1, -0.0}), "{0.1, 0}");
}

TEST(GeometryText, RoundTripsEveryForm) {
  const Rect r = MakeRect(0.1 + 0.2, -1e-7, 12345.678901234, 3);
  EXPECT_EQ(RectFromString(StringFromRect(r)), r);
  const Point p{1.0 / 3.0, -2.5};
  EXPECT_EQ(PointFromString(StringFromPoint(p)), p);
  const Size s{1e20, 7};
  EXPECT_EQ(SizeFromString(StringFromSize(s)), s);
}

TEST(GeometryText, ParsesLenientlyWithMissingNumbersAsZero) {
  EXPECT_EQ(PointFromString("{3}"), (Point{3, 0}));
  EXPECT_EQ(PointFromString(""), (Point{0, 0}));
  EXPECT_EQ(SizeFromString("  {  4.5 ,7 } trailing"), (Size{4.5, 7}));
  EXPECT_EQ(RectFromString("{{1, 2}, {3"), MakeRect(1, 2, 3, 0));
  EXPECT_EQ(PointFromString("{+2, -.5}"), (Point{2, -0.5}));
  EXPECT_EQ(PointFromString("{abc, 1e400, 5}"), (Point{0, 5}));
}

TEST(RectOperations, UnionIgnoresEmptyRectangles) {
  const Rect a = MakeRect(10, 10, 5, 5);
  EXPECT_EQ(RectUnion(a, ZeroRect()), a);
  EXPECT_EQ(RectUnion(MakeRect(100, 100, 0, 30), a), a);
  EXPECT_EQ(RectUnion(a, MakeRect(0, 0, 1, 1)), MakeRect(0, 0, 15, 15));
}

TEST(RectOperations, IntersectionIntegralInsetAndContainment) {
  EXPECT_EQ(RectIntersection(MakeRect(0, 0, 10, 10), MakeRect(5, 5, 10, 10)), MakeRect(5, 5, 5, 5));
  EXPECT_EQ(RectIntersection(MakeRect(0, 0, 10, 10), MakeRect(10, 0, 5, 5)), ZeroRect());
  EXPECT_EQ(RectIntegral(MakeRect(0.5, -0.5, 1.2, 1)), MakeRect(0, -1, 2, 2));
  EXPECT_EQ(RectIntegral(MakeRect(3, 3, 0, 4)), ZeroRect());
  EXPECT_EQ(RectInset(MakeRect(0, 0, 10, 10), 2, -1), MakeRect(2, -1, 6, 12));
  EXPECT_EQ(RectOffset(MakeRect(1, 2, 3, 4), -1, 1), MakeRect(0, 3, 3, 4));
  EXPECT_TRUE(PointInRect({0, 0}, MakeRect(0, 0, 1, 1)));
  EXPECT_FALSE(PointInRect({1, 0.5}, MakeRect(0, 0, 1, 1)));
  EXPECT_TRUE(RectContainsRect(MakeRect(0, 0, 10, 10), MakeRect(0, 0, 10, 10)));
  EXPECT_FALSE(RectContainsRect(MakeRect(0, 0, 10, 10), MakeRect(5, 5, 6, 1)));
  EXPECT_TRUE(RectIsEmpty(MakeRect(0, 0, -1, 5)));
}

TEST(AffineTransformComposition, AppendMeansFirstThisThenThat) {
  AffineTransform t = AffineTransform::translation(10, 0);
  t.append(AffineTransform::rotationDegrees(90));
  const Point p = t.transformPoint({1, 0});  // (11, 0) rotated a quarter turn
  EXPECT_NEAR(p.x, 0, 1e-12);
  EXPECT_NEAR(p.y, 11, 1e-12);

  AffineTransform u = AffineTransform::translation(10, 0);
  u.prepend(AffineTransform::rotationDegrees(90));  // rotate first: (0, 1), then move
  const Point q = u.transformPoint({1, 0});
  EXPECT_NEAR(q.x, 10, 1e-12);
  EXPECT_NEAR(q.y, 1, 1e-12);
}

TEST(AffineTransformComposition, StepMethodsApplyBeforeTheExistingTransform) {
  AffineTransform t = AffineTransform::translation(5, 5);
  t.scale(2, 3);  // scaling happens first, then the translation
  EXPECT_EQ(t.transformPoint({1, 1}), (Point{7, 8}));
  EXPECT_EQ(t.transformSize({1, 1}), (Size{2, 3}));
}

TEST(AffineTransformComposition, RotationAboutACentreAndItsInverse) {
  const Point c{50, 20};
  AffineTransform t = AffineTransform::translation(-c.x, -c.y);
  t.append(AffineTransform::rotationDegrees(30));
  t.append(AffineTransform::translation(c.x, c.y));
  EXPECT_NEAR(t.transformPoint(c).x, c.x, 1e-12);
  const Point p = t.transformPoint({60, 20});
  EXPECT_NEAR(p.x, 50 + 10 * std::cos(std::numbers::pi / 6), 1e-9);
  EXPECT_NEAR(p.y, 20 + 10 * std::sin(std::numbers::pi / 6), 1e-9);
  const Point back = t.inverted().transformPoint(p);
  EXPECT_NEAR(back.x, 60, 1e-9);
  EXPECT_NEAR(back.y, 20, 1e-9);

  AffineTransform singular = AffineTransform::scaling(0, 1);
  EXPECT_FALSE(singular.invert());
  EXPECT_EQ(singular, AffineTransform::scaling(0, 1));
}

}  // namespace
}  // namespace paintdoc
