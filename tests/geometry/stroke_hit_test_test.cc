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

BezierPath Segment(double width, LineCapStyle cap = LineCapStyle::Butt) {
  BezierPath path;
  path.moveTo({0, 0});
  path.lineTo({100, 0});
  path.setLineWidth(width);
  path.setLineCapStyle(cap);
  return path;
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

BezierPath DashedArc() {
  BezierPath arc;
  arc.appendArc({0, 0}, 50, 0, 180);
  arc.setLineWidth(4);
  arc.setLineDash({1, 20}, 0);  // dashes do not thin the hit area
  return arc;
}

BezierPath Square() {
  BezierPath square = BezierPath::withRect(MakeRect(0, 0, 100, 100));
  square.setLineWidth(4);
  return square;
}

TEST(ContainsPointInStroking, HitAreaOfWidthCapsJoinsAndScale) {
  // The miter of the 30 degree corner reaches w / (2 sin 15°) = 19.3 along the
  // bisector; its ratio to the width, 1 / sin 15° = 3.86, is within a limit of 10.
  const Point nearMiterTip{100 + 17 * 0.9659, -17 * 0.2588};
  struct Case {
    const char* what;
    BezierPath path;
    Point point;
    float scale;
    bool hit;
  };
  const Case cases[] = {
      {"empty path", BezierPath(), {0, 0}, 1, false},
      {"zero width", Segment(0), {50, 0}, kNoMinimum, false},
      {"NaN width", Segment(std::numeric_limits<double>::quiet_NaN()), {50, 0}, 1, false},
      // Half the width either side; an even width has no half-unit shift.
      {"inside above", Segment(10), {50, 4.9}, kNoMinimum, true},
      {"inside below", Segment(10), {50, -4.9}, kNoMinimum, true},
      {"outside above", Segment(10), {50, 5.1}, kNoMinimum, false},
      {"outside below", Segment(10), {50, -5.1}, kNoMinimum, false},
      // Odd widths test the point shifted by half a unit: (49.5, 1.4), (49.5, -1.7).
      {"odd width shifted in", Segment(3), {50, 1.9}, kNoMinimum, true},
      {"odd width shifted out", Segment(3), {50, -1.2}, kNoMinimum, false},
      {"width 4 unshifted above", Segment(4), {50, 2.1}, kNoMinimum, false},
      {"width 4 unshifted below", Segment(4), {50, -1.9}, kNoMinimum, true},
      // Thin lines are tested five screen pixels wide: 2.5 units at scale 1,
      // 1.25 at scale 2, the real width at 0.45 and below.
      {"scale 1 in", Segment(2), {50, 2.4}, 1, true},
      {"scale 1 out", Segment(2), {50, 2.6}, 1, false},
      {"scale 2 in", Segment(2), {50, 1.2}, 2, true},
      {"scale 2 out", Segment(2), {50, 1.3}, 2, false},
      {"scale 0.45", Segment(2), {50, 1.2}, 0.45f, false},
      {"already five pixels", Segment(6), {50, 3.1}, 1, false},
      {"butt cap", Segment(10), {103, 0}, kNoMinimum, false},
      {"square cap in", Segment(10, LineCapStyle::Square), {104, 4}, kNoMinimum, true},
      {"square cap out", Segment(10, LineCapStyle::Square), {105.5, 0}, kNoMinimum, false},
      {"round cap in", Segment(10, LineCapStyle::Round), {104.5, 0}, kNoMinimum, true},
      {"round cap corner", Segment(10, LineCapStyle::Round), {104, 4}, kNoMinimum, false},
      {"miter", SharpCorner(LineJoinStyle::Miter, 10), nearMiterTip, kNoMinimum, true},
      {"miter over limit", SharpCorner(LineJoinStyle::Miter, 3.5), nearMiterTip, kNoMinimum,
       false},
      {"bevel", SharpCorner(LineJoinStyle::Bevel, 10), nearMiterTip, kNoMinimum, false},
      {"round join tip", SharpCorner(LineJoinStyle::Round, 10), nearMiterTip, kNoMinimum, false},
      {"round join disc", SharpCorner(LineJoinStyle::Round, 10), {104.5, -1}, kNoMinimum, true},
      {"arc top", DashedArc(), {0, 51.5}, kNoMinimum, true},
      {"arc 45 degrees", DashedArc(), {35.36, 35.36}, kNoMinimum, true},
      {"arc inside", DashedArc(), {0, 47.5}, kNoMinimum, false},
      {"arc centre", DashedArc(), {0, 0}, kNoMinimum, false},
      {"square interior", Square(), {50, 50}, kNoMinimum, false},
      {"square left edge", Square(), {1, 50}, kNoMinimum, true},
      {"square top edge", Square(), {50, 101}, kNoMinimum, true},
      {"square closing edge", Square(), {-1.5, 20}, kNoMinimum, true},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(containsPointInStroking(c.path, c.point, c.scale), c.hit) << c.what;
  }
}

TEST(ContainsPointInStroking, SeparateThreadsTestAtOnce) {
  const BezierPath line = Segment(10);
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
