#include <gtest/gtest.h>

#include <vector>

#include "platform/values/class_registry.h"
#include "shape_test_support.h"
#include "shapes/draw_shapes.h"
#include "support/geometry_near.h"

namespace paintdoc {
namespace {

// A point of an outline: element `element`'s point `point` (0 and 1 the
// control points of a curve, 2 its end; 0 for moves and lines).
struct PointCheck {
  size_t element;
  int point;
  Point expected;
};

struct OutlineCase {
  const char* className;
  size_t elementCount;
  std::vector<PointCheck> points;
  Rect box = MakeRect(0, 0, 100, 100);
};

const std::vector<OutlineCase>& OutlineCases() {
  static const std::vector<OutlineCase> cases = {
      {"DrawRectHeart", 3, {{0, 0, {50, 0}}, {1, 2, {50, 82}}, {1, 0, {-49, 75}}, {2, 2, {50, 0}}}},
      {"DrawRectWaterDrip", 4, {{0, 0, {50, 100}}, {2, 0, {0, -11}}, {3, 2, {50, 100}}}},
      {"DrawRectLocation", 10, {{1, 2, {100, 65}}, {2, 2, {50, 0}}}},
      {"DrawRectBookmark", 8, {{1, 0, {50, 20}}, {3, 0, {100, 75}}, {5, 0, {25, 100}}}},
      // The corner radius is min(0.25 w, 0.3 h): 15 here.
      {"DrawRectBookmark", 8, {{3, 0, {100, 35}}, {5, 0, {15, 50}}}, MakeRect(0, 0, 100, 50)},
      {"DrawRectCloud", 6, {{0, 0, {17, 0}}, {4, 0, {105.2, 50}}, {4, 2, {83, 0}}}},
      {"DrawRectLightning", 7, {{1, 0, {50, 100}}, {3, 0, {100, 60}}}},
      // A box below one unit is drawn one unit wide and high.
      {"DrawRectLightning", 7, {{1, 0, {10.5, 21}}, {3, 0, {11, 20.6}}}, MakeRect(10, 20, 0.5, 0.5)},
      {"DrawRectPerson", 10, {{0, 0, {0, 0}}, {4, 2, {50, 100}}}},
      {"DrawRectMail", 15, {{0, 0, {10, 0}}, {3, 0, {100, 90}}}},
      {"DrawRectiMac", 28, {{0, 0, {28, 0}}}},
      {"DrawRectAppleLogo", 11, {{8, 0, {50, 82}}}},
      {"DrawRectButterfly", 22, {{0, 0, {50, 62}}, {10, 2, {50, 20}}, {11, 0, {51, 22}}}},
      {"DrawRectCamera", 25, {{0, 0, {10, 0}}}},
      {"DrawRectEye", 15, {{1, 2, {100, 50}}}},
      {"DrawRectHome", 31, {{0, 0, {50, 100}}}},
      {"DrawRectRefresh", 16, {{1, 2, {14.5, 85.6}}, {8, 0, {0, 50}}, {10, 0, {94, 6}}}},
      {"DrawRectFolder", 13, {{0, 0, {4, 0}}}},
      {"DrawRectPicture", 23, {{2, 0, {100, 100}}}},
      {"DrawRectClock", 13, {{0, 0, {85.4, 14.6}}, {1, 0, {104.9, 34.2}}}},
      {"DrawRectSignal", 20, {{5, 0, {27.8, 0}}, {7, 0, {43.7, 40.3}}, {17, 0, {100, 100}}}},
  };
  return cases;
}

std::shared_ptr<DrawRectShape> NewShape(const char* className) {
  RegisterAllClasses();
  auto shape = std::dynamic_pointer_cast<DrawRectShape>(ClassRegistry::shared().create(className));
  if (shape) shape->init();
  return shape;
}

// Each pictogram's outline in its box, and the same outline back from its
// archive (box kept, points in single precision).
TEST(FixedOutlines, EachPictogramDrawsItsTableOutlineAndSurvivesItsArchive) {
  for (const OutlineCase& c : OutlineCases()) {
    SCOPED_TRACE(c.className);
    auto shape = NewShape(c.className);
    ASSERT_TRUE(shape);
    shape->setBezierPathWithBounds(c.box);
    const BezierPath& path = *shape->bezierPath();
    ASSERT_EQ(path.elementCount(), c.elementCount);
    for (const PointCheck& check : c.points) {
      test::ExpectPointNear(path.elementAt(check.element).points[check.point], check.expected, 1e-3);
    }
    auto decoded = test::RoundTrip<DrawRectShape>(*shape);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->className(), c.className);
    EXPECT_EQ(decoded->controlBoundsBeforeRotation(), shape->controlBoundsBeforeRotation());
    const BezierPath& read = *decoded->bezierPath();
    ASSERT_EQ(read.elementCount(), path.elementCount());
    for (size_t i = 0; i < read.elementCount(); ++i) {
      EXPECT_EQ(read.elementAt(i).type, path.elementAt(i).type);
      test::ExpectPointNear(read.elementAt(i).endPoint(), path.elementAt(i).endPoint(), 1e-4);
    }
  }
}

// Cut-outs stay empty under the nonzero rule when the shape is filled, while
// what lies inside a cut-out ring (a lens, a pupil, mountains) is filled again.
TEST(FixedOutlines, HolesStayEmptyWhenFilled) {
  struct Case {
    const char* className;
    Point point;
    bool filled;
  };
  const Case cases[] = {
      {"DrawRectLocation", {50, 65}, false}, {"DrawRectLocation", {50, 20}, true},
      {"DrawRectClock", {50, 60}, false},    {"DrawRectClock", {25, 50}, true},
      {"DrawRectCamera", {50, 41 + 20}, false}, {"DrawRectCamera", {50, 41}, true},
      {"DrawRectEye", {50, 70}, false},      {"DrawRectEye", {50, 50}, true},
      {"DrawRectiMac", {50, 70}, false},     {"DrawRectiMac", {20, 30}, true},
      {"DrawRectHome", {73, 37}, false},     {"DrawRectHome", {50, 70}, false},
      {"DrawRectHome", {25, 40}, true},      {"DrawRectPicture", {80, 80}, false},
      {"DrawRectPicture", {60, 30}, true},   {"DrawRectMail", {50, 56}, false},
      {"DrawRectMail", {50, 30}, true},
  };
  for (const Case& c : cases) {
    auto shape = NewShape(c.className);
    ASSERT_TRUE(shape);
    const BezierPath path = shape->bezierPathWithBounds(MakeRect(0, 0, 100, 100));
    EXPECT_EQ(path.containsPoint(c.point, WindingRule::NonZero), c.filled)
        << c.className << " at " << c.point.x << ", " << c.point.y;
  }
}

}  // namespace
}  // namespace paintdoc
