#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "platform/values/log.h"
#include "shape_test_support.h"
#include "shapes/draw_shapes.h"
#include "support/geometry_near.h"

namespace paintdoc {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<Point> CornersOf(const BezierPath& path) {
  std::vector<Point> corners;
  for (const PathElement& element : path.elements()) {
    if (element.type != PathElementType::ClosePath) corners.push_back(element.endPoint());
  }
  return corners;
}

std::vector<Point> PointsOnCircle(Point center, double radius, int count) {
  std::vector<Point> points;
  for (int k = 0; k < count; ++k) {
    const double radians = (90.0 + 360.0 * k / count) * M_PI / 180.0;
    points.push_back({center.x + radius * std::cos(radians), center.y + radius * std::sin(radians)});
  }
  return points;
}

TEST(PolygonOutline, CornersStartAtTheTopAndFollowTheBox) {
  struct Case {
    const char* what;
    int64_t corners;
    Rect box;
    std::vector<Point> expected;
    double tolerance;
  };
  const Case cases[] = {
      {"diamond on the middles of the sides", 4, MakeRect(0, 0, 100, 50),
       {{50, 50}, {0, 25}, {50, 0}, {100, 25}}, 0},
      {"equilateral triangle above the bottom", 3, MakeRect(0, 0, 100, 100),
       {{50, 100}, {0, 13.39746}, {100, 13.39746}}, 1e-4},
      {"pentagon of a square box on the circle", 5, MakeRect(0, 0, 100, 100),
       PointsOnCircle({50, 50}, 50, 5), 1e-4},
      {"half-unit box drawn one unit wide", 4, MakeRect(10, 20, 0.5, 0.5),
       {{10.5, 21}, {10, 20.5}, {10.5, 20}, {11, 20.5}}, 0},
      // 150 degrees pulled halfway toward 180 by a 2:1 box: 165 degrees.
      {"hexagon of a wide box, first two corners", 6, MakeRect(0, 0, 200, 100),
       {{100, 100}, {11.8588, 73.6174}}, 1e-3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto polygon = MakeDraw<DrawRectPolygon>();
    polygon->setPointsCount(c.corners);
    const BezierPath path = polygon->bezierPathWithBounds(c.box);
    EXPECT_EQ(path.elementAt(path.elementCount() - 1).type, PathElementType::ClosePath);
    const std::vector<Point> corners = CornersOf(path);
    ASSERT_EQ(corners.size(), static_cast<size_t>(c.corners));
    for (size_t i = 0; i < c.expected.size(); ++i) {
      test::ExpectPointNear(corners[i], c.expected[i], c.tolerance);
    }
  }
}

// In a flat box the corrected angles still give distinct points on the
// inscribed ellipse, one per corner.
TEST(PolygonOutline, CornersOfFlatBoxesStayOnTheEllipse) {
  for (const int64_t corners : {5, 6, 7, 9}) {
    for (const Rect& box : {MakeRect(0, 0, 200, 60), MakeRect(10, 10, 40, 160)}) {
      auto polygon = MakeDraw<DrawRectPolygon>();
      polygon->setPointsCount(corners);
      const std::vector<Point> points = CornersOf(polygon->bezierPathWithBounds(box));
      ASSERT_EQ(points.size(), static_cast<size_t>(corners));
      for (size_t i = 0; i < points.size(); ++i) {
        const double dx = (points[i].x - box.midX()) / (box.size.width / 2);
        const double dy = (points[i].y - box.midY()) / (box.size.height / 2);
        EXPECT_NEAR(dx * dx + dy * dy, 1.0, 1e-4) << corners << " corners";
        const Point& next = points[(i + 1) % points.size()];
        EXPECT_GT(std::hypot(next.x - points[i].x, next.y - points[i].y), 1.0);
      }
    }
  }
}

TEST(PolygonCorners, CountIsKeptBetweenThreeAndTheBoundAndNamesTheShape) {
  auto polygon = MakeDraw<DrawRectPolygon>();
  EXPECT_EQ(polygon->pointsCount(), 6);
  EXPECT_EQ(polygon->name(), "Polygon");
  polygon->setBezierPathWithBounds(MakeRect(0, 0, 100, 100));

  polygon->setPointsCount(2);
  EXPECT_EQ(polygon->pointsCount(), 3);
  EXPECT_EQ(polygon->name(), "Triangle");
  EXPECT_EQ(CornersOf(*polygon->bezierPath()).size(), 3u);

  LogCapture log;
  polygon->setPointsCount(1'000'000'000);
  EXPECT_EQ(polygon->pointsCount(), DrawRectPolygon::kMaxPointsCount);
  EXPECT_EQ(CornersOf(*polygon->bezierPath()).size(),
            static_cast<size_t>(DrawRectPolygon::kMaxPointsCount));
  EXPECT_TRUE(log.contains("Error: "));
}

TEST(PolygonCorners, DecodedCountIsRaisedToThreeOrDefaultsToSix) {
  struct Case {
    bool written;
    int64_t stored;
    int64_t expected;
  };
  for (const Case& c : {Case{true, 1, 3}, Case{false, 0, 6}, Case{true, 7, 7},
                        Case{true, int64_t{1} << 40, DrawRectPolygon::kMaxPointsCount}}) {
    LogCapture quiet;
    auto decoded = test::RoundTrip<DrawRectPolygon>(test::KeysAs("DrawRectPolygon", [&](auto& coder) {
      if (c.written) coder.encodeIntegerForKey(c.stored, "PointsCount");
    }));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->pointsCount(), c.expected) << c.stored;
  }
}

TEST(StarInnerSize, FractionsOfTheBoxFallBackToFourTenths) {
  struct Case {
    Size fractions;
    Size expected;
  };
  const Case cases[] = {
      {{0.9, 0.2}, {90, 20}},   {{1.5, 0.5}, {40, 50}},  {{0, 0}, {40, 40}},
      {{-0.3, kNaN}, {40, 40}}, {{0.005, 1}, {40, 100}},
  };
  for (const Case& c : cases) {
    auto star = MakeDraw<DrawRectStar>();
    star->setInnerSize(c.fractions);
    const Size inner = star->effectiveInnerSizeWithControlSize({100, 100});
    EXPECT_DOUBLE_EQ(inner.width, c.expected.width) << c.fractions.width;
    EXPECT_DOUBLE_EQ(inner.height, c.expected.height) << c.fractions.height;
  }
}

TEST(StarOutline, AlternatesOuterAndInnerPointsFromTheTop) {
  auto star = MakeDraw<DrawRectStar>();
  star->setBezierPathWithBounds(MakeRect(0, 0, 100, 100));
  const BezierPath& path = *star->bezierPath();
  ASSERT_EQ(path.elementCount(), 11u);
  test::ExpectPointNear(test::EndOf(path, 0), {50, 100}, 1e-4);
  // The sixth point is the inner one straight down: the default inner
  // ellipse is 40 by 40 about the centre.
  test::ExpectPointNear(test::EndOf(path, 5), {50, 30}, 1e-4);
  EXPECT_EQ(path.lineJoinStyle(), LineJoinStyle::Round);
}

TEST(StarPathData, RestoresBoxAndInnerSizeAndIgnoresDataWithoutABox) {
  auto star = MakeDraw<DrawRectStar>();
  star->setInnerSize({0.3, 0.6});
  star->setBezierPathWithBounds(MakeRect(5, 5, 80, 40));
  const ArchiveValue snapshot = star->bezierPathData();
  const BezierPath outline = *star->bezierPath();

  auto other = MakeDraw<DrawRectStar>();
  other->setBezierPathWithData(snapshot);
  EXPECT_EQ(*other->bezierPath(), outline);
  other->setBezierPathWithData(ArchiveValue::dictionary({{"InnerSize", Size{0.1, 0.1}}}));
  EXPECT_EQ(other->innerSize(), (Size{0.3, 0.6}));
  other->setBezierPathWithData(ArchiveValue());
  EXPECT_EQ(other->controlBoundsBeforeRotation(), ZeroRect());
  EXPECT_EQ(other->innerSize(), (Size{0, 0}));
}

// Moves and scales carry the box along; proportional scaling uses sx for both
// axes of the box, and a star's inner fractions scale with the factors.
TEST(ShapeControlBounds, FollowsMovesAndScales) {
  struct Case {
    float sx, sy;
    bool resizeLineWidth;
    Rect expectedBox;
    Size expectedInner;
  };
  const Case cases[] = {
      {2, 3, false, MakeRect(20, 60, 40, 60), {0.6, 0.9}},
      {2, 3, true, MakeRect(20, 40, 40, 40), {0.6, 0.6}},
      {0, 3, false, MakeRect(10, 20, 20, 20), {0.3, 0.3}},
  };
  for (const Case& c : cases) {
    auto star = MakeDraw<DrawRectStar>();
    star->setInnerSize({0.3, 0.3});
    star->setBezierPathWithBounds(MakeRect(0, 0, 20, 20));
    star->moveBy(10, 20);
    star->scaleBy(c.sx, c.sy, {0, 0}, c.resizeLineWidth);
    test::ExpectRectNear(star->controlBoundsBeforeRotation(), c.expectedBox, 1e-6);
    EXPECT_NEAR(star->innerSize().width, c.expectedInner.width, 1e-6);
    EXPECT_NEAR(star->innerSize().height, c.expectedInner.height, 1e-6);
  }
}

TEST(ShapeArchive, KeepsBoxCornersAndInnerSize) {
  auto polygon = MakeDraw<DrawRectPolygon>();
  polygon->setPointsCount(8);
  polygon->setBezierPathWithBounds(MakeRect(3, 4, 50, 60));
  auto decodedPolygon = test::RoundTrip<DrawRectPolygon>(*polygon);
  ASSERT_TRUE(decodedPolygon);
  EXPECT_EQ(decodedPolygon->pointsCount(), 8);
  EXPECT_EQ(decodedPolygon->controlBoundsBeforeRotation(), MakeRect(3, 4, 50, 60));
  EXPECT_EQ(decodedPolygon->bezierPath()->elementCount(), polygon->bezierPath()->elementCount());

  auto star = MakeDraw<DrawRectStar>();
  star->setInnerSize({0.25, 0.5});
  auto decodedStar = test::RoundTrip<DrawRectStar>(*star);
  ASSERT_TRUE(decodedStar);
  EXPECT_EQ(decodedStar->innerSize(), (Size{0.25, 0.5}));
  EXPECT_EQ(decodedStar->bezierPath()->lineJoinStyle(), LineJoinStyle::Round);
}

// A box that is not a number or absurdly far out leaves every shape empty
// (nothing drawn) instead of an outline of overflowing points.
TEST(ShapeControlBounds, OutOfRangeBoxesDrawNothing) {
  const double huge = 1e30;
  const Rect boxes[] = {MakeRect(kNaN, 0, 10, 10), MakeRect(0, 0, huge, huge),
                        MakeRect(-huge, 0, 10, 10),
                        MakeRect(0, 0, std::numeric_limits<double>::infinity(), 5)};
  const std::vector<std::shared_ptr<DrawRectShape>> shapes = {
      MakeDraw<DrawRectPolygon>(), MakeDraw<DrawRectStar>(), MakeDraw<DrawRectCloud>(),
      MakeDraw<DrawRectMessage>(), MakeDraw<DrawEllipseMessage>()};
  for (const auto& shape : shapes) {
    for (const Rect& box : boxes) {
      LogCapture log;
      shape->setBezierPathWithBounds(MakeRect(0, 0, 10, 10));
      shape->setBezierPathWithBounds(box);
      EXPECT_TRUE(shape->bezierPath()->isEmpty()) << shape->className();
      EXPECT_EQ(shape->controlBoundsBeforeRotation(), ZeroRect());
      EXPECT_TRUE(log.contains("Error: "));
    }
  }
}

}  // namespace
}  // namespace paintdoc
