#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "shape_test_support.h"
#include "shapes/draw_shapes.h"
#include "support/geometry_near.h"

namespace paintdoc {
namespace {

std::shared_ptr<DrawRectMessage> RectBubble(const Rect& box, Point tip = DrawRectMessage::kInitArrow,
                                            Point a = DrawRectMessage::kInitArrowA,
                                            Point b = DrawRectMessage::kInitArrowB) {
  auto bubble = MakeDraw<DrawRectMessage>();
  bubble->setArrowPoint(tip, a, b);
  bubble->setBezierPathWithBounds(box);
  return bubble;
}

TEST(RectBubbleGeometry, NewBubblePointsDownFromItsBottomEdge) {
  auto bubble = RectBubble(MakeRect(0, 0, 100, 50));
  const RectBubbleGeometry geometry = bubble->getArrowPoint(MakeRect(0, 0, 100, 50));
  EXPECT_EQ(geometry.radius, 10.0f);
  test::ExpectPointNear(geometry.tip, {10, -35});
  test::ExpectPointNear(geometry.arrowA, {20, 0});
  test::ExpectPointNear(geometry.arrowB, {40, 0});
  test::ExpectPointNear(geometry.radiusKnob, {10, 40});

  // Tip, down to B, round the box and back from A.
  const BezierPath& path = *bubble->bezierPath();
  test::ExpectPointNear(test::EndOf(path, 0), {10, -35});
  test::ExpectPointNear(test::EndOf(path, 1), {40, 0});
  test::ExpectPointNear(test::EndOf(path, path.elementCount() - 2), {20, 0}, 1e-9);
  test::ExpectRectNear(path.bounds(), MakeRect(0, -35, 100, 85), 1e-6);
  test::ExpectRectNear(bubble->controlBounds(), MakeRect(0, -35, 100, 85), 1e-6);
}

TEST(RectBubbleGeometry, CornerRadiusIsAFractionOfTheHeightLimitedByTheBox) {
  struct Case {
    double fraction;
    Rect box;
    float expected;
  };
  const Case cases[] = {
      {0.9, MakeRect(0, 0, 100, 50), 25},  // at most half the height
      {0.2, MakeRect(0, 0, 20, 100), 10},  // at most half the width
      {0, MakeRect(0, 0, 100, 50), 0},
      {std::numeric_limits<double>::quiet_NaN(), MakeRect(0, 0, 100, 50), 0},
  };
  for (const Case& c : cases) {
    auto bubble = MakeDraw<DrawRectMessage>();
    bubble->setBezierPathWithData(ArchiveValue::dictionary(
        {{"ControlBounds", c.box}, {"Radius", c.fraction}}));
    EXPECT_EQ(bubble->getArrowPoint(c.box).radius, c.expected) << c.fraction;
  }
}

// The base ends go to the side the tip points to and onto the outline there;
// whatever they are, the outline still goes round the whole box.
TEST(RectBubbleGeometry, BaseEndsFollowTheTipOntoTheLowerOutline) {
  struct Case {
    const char* what;
    Point tip, a, b;
    Point expectedA, expectedB;
  };
  const Case cases[] = {
      {"left of the box", {-30, 25}, {20, 0}, {40, 0}, {0, 15}, {0, 10}},
      {"right of the box", {130, 25}, {20, 0}, {40, 0}, {100, 10}, {100, 15}},
      {"below the lower-left corner", {-30, -30}, {20, 0}, {40, 0}, {0, 10}, {40, 0}},
      {"ends pushed 5 apart", {50, -30}, {50, 0}, {52, 0}, {50, 0}, {55, 0}},
      {"end on the corner arc", {10, -35}, {5, 0}, {40, 0}, {5, 10 - std::sqrt(75.0)}, {40, 0}},
      {"end above the box", {10, -35}, {20, 80}, {40, 0}, {20, 0}, {40, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto bubble = RectBubble(MakeRect(0, 0, 100, 50), c.tip, c.a, c.b);
    const RectBubbleGeometry geometry = bubble->getArrowPoint(MakeRect(0, 0, 100, 50));
    test::ExpectPointNear(geometry.arrowA, c.expectedA, 1e-5);
    test::ExpectPointNear(geometry.arrowB, c.expectedB, 1e-5);
    const BezierPath& path = *bubble->bezierPath();
    EXPECT_TRUE(path.containsPoint({50, 25}));
    EXPECT_TRUE(path.containsPoint({90, 45}));
    EXPECT_TRUE(path.containsPoint({5, 45}));
    test::ExpectPointNear(test::EndOf(path, 0), c.tip);
  }
}

// A flip mirrors the pointer across the box; a vertical flip is the same
// plus a half turn.
TEST(BubbleFlip, MirrorsThePointerAndTurnsForAVerticalFlip) {
  for (const bool horizontal : {true, false}) {
    auto bubble = RectBubble(MakeRect(0, 0, 100, 50));
    bubble->flip(horizontal);
    test::ExpectPointNear(bubble->arrowPoint(), {90, -35});
    test::ExpectPointNear(bubble->arrowA(), {60, 0});
    test::ExpectPointNear(bubble->arrowB(), {80, 0});
    EXPECT_EQ(bubble->rotateDegree(), horizontal ? 0.0f : 180.0f);

    auto oval = MakeDraw<DrawEllipseMessage>();
    oval->setBezierPathWithBounds(MakeRect(0, 0, 100, 50));
    oval->flip(horizontal);
    test::ExpectPointNear(oval->arrowPoint(), {105, -5});
    EXPECT_EQ(oval->rotateDegree(), horizontal ? 0.0f : 180.0f);
  }
}

TEST(OvalBubbleOutline, OpensTowardTheTip) {
  struct Case {
    Point tip;
    Point expectedStart;  // the first point, (0.216, 0.091) of the box mirrored
  };
  const Case cases[] = {
      {{-5, -5}, {21.6, 9.1}},
      {{150, -5}, {78.4, 9.1}},
      {{-5, 150}, {21.6, 90.9}},
      {{150, 150}, {78.4, 90.9}},
  };
  for (const Case& c : cases) {
    auto bubble = MakeDraw<DrawEllipseMessage>();
    bubble->setArrowPoint(c.tip);
    const BezierPath path = bubble->bezierPathWithBounds(MakeRect(0, 0, 100, 100));
    ASSERT_EQ(path.elementCount(), 7u);
    test::ExpectPointNear(test::EndOf(path, 0), c.expectedStart, 1e-4);
    test::ExpectPointNear(test::EndOf(path, 5), c.tip);
    EXPECT_EQ(path.elementAt(6).type, PathElementType::ClosePath);
  }
}

// The pointer is an offset from the box, so moves and scales carry it along.
TEST(BubblePointer, TravelsWithTheBox) {
  auto bubble = RectBubble(MakeRect(0, 0, 100, 50));
  bubble->moveBy(10, 20);
  test::ExpectPointNear(test::EndOf(*bubble->bezierPath(), 0), {20, -15});
  bubble->scaleBy(2, 3, {0, 0}, false);
  test::ExpectPointNear(bubble->arrowPoint(), {20, -105});
  test::ExpectRectNear(bubble->controlBoundsBeforeRotation(), MakeRect(20, 60, 200, 150));
  test::ExpectPointNear(test::EndOf(*bubble->bezierPath(), 0), {40, -45});

  // A snapshot restores pointer and radius in another bubble.
  auto copy = MakeDraw<DrawRectMessage>();
  copy->setBezierPathWithData(bubble->bezierPathData());
  EXPECT_EQ(*copy->bezierPath(), *bubble->bezierPath());
}

TEST(BubblePointer, HostileOffsetsGiveABoundedOutline) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Point tips[] = {{1e30, -1e30}, {nan, nan}, {-1e300, 5}};
  for (const Point& tip : tips) {
    auto bubble = RectBubble(MakeRect(0, 0, 100, 50), tip, {1e30, nan}, {-1e30, 1e30});
    auto oval = MakeDraw<DrawEllipseMessage>();
    oval->setArrowPoint(tip);
    oval->setBezierPathWithBounds(MakeRect(0, 0, 100, 50));
    for (const BezierPath* path : {&*bubble->bezierPath(), &*oval->bezierPath()}) {
      const Rect bounds = path->bounds();
      EXPECT_TRUE(std::isfinite(bounds.size.width) && std::isfinite(bounds.size.height));
      EXPECT_LE(bounds.size.width, 2 * kMaxShapeExtent);
      EXPECT_LE(bounds.size.height, 2 * kMaxShapeExtent);
    }
  }
}

TEST(BubbleArchive, KeepsThePointerAndReadsMissingKeysAsZero) {
  auto bubble = RectBubble(MakeRect(0, 0, 100, 50), {-20, 10}, {0, 30}, {0, 15});
  auto decoded = test::RoundTrip<DrawRectMessage>(*bubble);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->arrowPoint(), (Point{-20, 10}));
  EXPECT_EQ(decoded->arrowA(), (Point{0, 30}));
  EXPECT_EQ(decoded->arrowB(), (Point{0, 15}));
  EXPECT_EQ(decoded->radius(), DrawRectMessage::kInitRadius);

  // An archive written before the corner radius existed draws square corners.
  auto old = test::RoundTrip<DrawRectMessage>(test::KeysAs("DrawRectMessage", [](auto& coder) {
    coder.encodeRectForKey(MakeRect(0, 0, 100, 50), "ControlBounds");
  }));
  ASSERT_TRUE(old);
  EXPECT_EQ(old->radius(), 0.0f);
  EXPECT_EQ(old->arrowPoint(), (Point{0, 0}));
  EXPECT_EQ(old->getArrowPoint(MakeRect(0, 0, 100, 50)).radius, 0.0f);

  auto oval = MakeDraw<DrawEllipseMessage>();
  oval->setArrowPoint({120, 70});
  auto decodedOval = test::RoundTrip<DrawEllipseMessage>(*oval);
  ASSERT_TRUE(decodedOval);
  EXPECT_EQ(decodedOval->arrowPoint(), (Point{120, 70}));
}

}  // namespace
}  // namespace paintdoc
