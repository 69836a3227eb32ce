#include "geometry/stroke_hit_test.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

#include "geometry/cairo_path.h"

namespace paintdoc {
namespace {

// A scale at or below 0.45 turns the minimum hit width off.
constexpr float kNoMinimum = 0.4f;

BezierPath Segment(Point from, Point to, double width) {
  BezierPath path;
  path.moveTo(from);
  path.lineTo(to);
  path.setLineWidth(width);
  return path;
}

TEST(ContainsPointInStroking, EmptyPathOrNoWidthHitsNothing) {
  EXPECT_FALSE(containsPointInStroking(BezierPath(), {0, 0}, 1));
  EXPECT_FALSE(containsPointInStroking(Segment({0, 0}, {100, 0}, 0), {50, 0}, kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(
      Segment({0, 0}, {100, 0}, std::numeric_limits<double>::quiet_NaN()), {50, 0}, 1));
}

TEST(ContainsPointInStroking, HalfTheWidthEitherSide) {
  const BezierPath line = Segment({0, 0}, {100, 0}, 10);  // even: no half-pixel shift
  EXPECT_TRUE(containsPointInStroking(line, {50, 4.9}, kNoMinimum));
  EXPECT_TRUE(containsPointInStroking(line, {50, -4.9}, kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(line, {50, 5.1}, kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(line, {50, -5.1}, kNoMinimum));
}

TEST(ContainsPointInStroking, OddWidthsShiftThePointByHalfAUnit) {
  const BezierPath line = Segment({0, 0}, {100, 0}, 3);
  // (50, 1.9) is tested as (49.5, 1.4): inside the 1.5 half width.
  EXPECT_TRUE(containsPointInStroking(line, {50, 1.9}, kNoMinimum));
  // (50, -1.2) is tested as (49.5, -1.7): outside.
  EXPECT_FALSE(containsPointInStroking(line, {50, -1.2}, kNoMinimum));
  // Width 4 has an even integer part: no shift.
  const BezierPath even = Segment({0, 0}, {100, 0}, 4);
  EXPECT_FALSE(containsPointInStroking(even, {50, 2.1}, kNoMinimum));
  EXPECT_TRUE(containsPointInStroking(even, {50, -1.9}, kNoMinimum));
}

TEST(ContainsPointInStroking, ThinLinesGetFiveScreenPixels) {
  const BezierPath line = Segment({0, 0}, {100, 0}, 2);
  // Scale 1: 2 < 5 pixels, so the line is tested 5 wide (2.5 either side).
  EXPECT_TRUE(containsPointInStroking(line, {50, 2.4}, 1));
  EXPECT_FALSE(containsPointInStroking(line, {50, 2.6}, 1));
  // Scale 2: 2 x 2 = 4 < 5, so 2.5 units wide (1.25 either side).
  EXPECT_TRUE(containsPointInStroking(line, {50, 1.2}, 2));
  EXPECT_FALSE(containsPointInStroking(line, {50, 1.3}, 2));
  // Scale 0.45 and below: the real width.
  EXPECT_FALSE(containsPointInStroking(line, {50, 1.2}, 0.45f));
  // A line already 5 screen pixels wide is left as it is.
  const BezierPath wide = Segment({0, 0}, {100, 0}, 6);
  EXPECT_FALSE(containsPointInStroking(wide, {50, 3.1}, 1));
}

TEST(ContainsPointInStroking, CapsDecideTheEnds) {
  BezierPath line = Segment({0, 0}, {100, 0}, 10);
  EXPECT_FALSE(containsPointInStroking(line, {103, 0}, kNoMinimum));  // butt
  line.setLineCapStyle(LineCapStyle::Square);
  EXPECT_TRUE(containsPointInStroking(line, {104, 4}, kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(line, {105.5, 0}, kNoMinimum));
  line.setLineCapStyle(LineCapStyle::Round);
  EXPECT_TRUE(containsPointInStroking(line, {104.5, 0}, kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(line, {104, 4}, kNoMinimum));  // outside the disc
}

// A sharp corner at (100, 0): in from the left, back out at a 30 degree angle.
BezierPath SharpCorner(LineJoinStyle join, double miterLimit) {
  BezierPath path;
  path.moveTo({0, 0});
  path.lineTo({100, 0});
  path.lineTo({13.4, 50});
  path.setLineWidth(10);
  path.setLineJoinStyle(join);
  path.setMiterLimit(miterLimit);
  return path;
}

TEST(ContainsPointInStroking, JoinsAndMiterLimitShapeCorners) {
  // The miter of a 30 degree corner reaches w / (2 sin 15°) = 19.3 from the
  // corner along the bisector, which points to (-cos 15°, -sin 15°) reversed.
  const Point nearMiterTip{100 + 17 * 0.9659, -17 * 0.2588};
  // Miter length / width = 1 / sin 15° = 3.86: within the default limit of 10.
  EXPECT_TRUE(containsPointInStroking(SharpCorner(LineJoinStyle::Miter, 10), nearMiterTip,
                                      kNoMinimum));
  // Below that ratio the miter falls back to a bevel.
  EXPECT_FALSE(containsPointInStroking(SharpCorner(LineJoinStyle::Miter, 3.5), nearMiterTip,
                                       kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(SharpCorner(LineJoinStyle::Bevel, 10), nearMiterTip,
                                       kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(SharpCorner(LineJoinStyle::Round, 10), nearMiterTip,
                                       kNoMinimum));
  // A round join covers the disc of half the width around the corner.
  EXPECT_TRUE(containsPointInStroking(SharpCorner(LineJoinStyle::Round, 10), {104.5, -1},
                                      kNoMinimum));
}

TEST(ContainsPointInStroking, CurvesAndDashes) {
  BezierPath arc;
  arc.appendArc({0, 0}, 50, 0, 180);
  arc.setLineWidth(4);
  arc.setLineDash({1, 20}, 0);  // dashes do not thin the hit area
  EXPECT_TRUE(containsPointInStroking(arc, {0, 51.5}, kNoMinimum));
  EXPECT_TRUE(containsPointInStroking(arc, {35.36, 35.36}, kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(arc, {0, 47.5}, kNoMinimum));
  EXPECT_FALSE(containsPointInStroking(arc, {0, 0}, kNoMinimum));
}

TEST(ContainsPointInStroking, InteriorOfAClosedShapeIsNotTheStroke) {
  BezierPath square = BezierPath::withRect(MakeRect(0, 0, 100, 100));
  square.setLineWidth(4);
  EXPECT_FALSE(containsPointInStroking(square, {50, 50}, kNoMinimum));
  EXPECT_TRUE(containsPointInStroking(square, {1, 50}, kNoMinimum));
  EXPECT_TRUE(containsPointInStroking(square, {50, 101}, kNoMinimum));
  // The closing edge is stroked too.
  EXPECT_TRUE(containsPointInStroking(square, {-1.5, 20}, kNoMinimum));
}

TEST(ContainsPointInStroking, SeparateThreadsTestAtOnce) {
  const BezierPath line = Segment({0, 0}, {100, 0}, 10);
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        if (!containsPointInStroking(line, {double(i % 100), 4}, kNoMinimum)) ++wrong;
        if (containsPointInStroking(line, {double(i % 100), 6}, kNoMinimum)) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong.load(), 0);
}

TEST(AppendBezierPathToCairo, CopiesEveryElementInOrder) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1);
  cairo_t* cr = cairo_create(surface);
  EXPECT_FALSE(AppendBezierPathToCairo(cr, BezierPath()));

  BezierPath path;
  path.moveTo({1, 2});
  path.lineTo({3, 4});
  path.curveTo({9, 10}, {5, 6}, {7, 8});
  path.closePath();
  ASSERT_TRUE(AppendBezierPathToCairo(cr, path));
  cairo_path_t* copy = cairo_copy_path(cr);
  // cairo reports the close followed by a move back to the subpath start.
  const std::vector<double> expected{CAIRO_PATH_MOVE_TO, 1, 2, CAIRO_PATH_LINE_TO, 3, 4,
                                     CAIRO_PATH_CURVE_TO, 5, 6, 7, 8, 9, 10,
                                     CAIRO_PATH_CLOSE_PATH, CAIRO_PATH_MOVE_TO, 1, 2};
  std::vector<double> actual;
  for (int i = 0; i < copy->num_data; i += copy->data[i].header.length) {
    const cairo_path_data_t* data = &copy->data[i];
    actual.push_back(data->header.type);
    for (int k = 1; k < data->header.length; ++k) {
      actual.push_back(data[k].point.x);
      actual.push_back(data[k].point.y);
    }
  }
  EXPECT_EQ(actual, expected);
  cairo_path_destroy(copy);
  cairo_destroy(cr);
  cairo_surface_destroy(surface);
}

}  // namespace
}  // namespace paintdoc
