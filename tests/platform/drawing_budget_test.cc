// The measures behind the drawing budget: crossings of device edges,
// flattened edge counts in device space, sub-pixel dashes and gradients
// resampled to a bounded number of stops.
#include "platform/graphics/drawing_budget.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/graphics/edge_crossings.h"

namespace paintdoc::drawing {
namespace {

constexpr double kCountEverything = 1e18;

// `count` vertical edges at x = 10, 20, ... from y = 0 to `height`.
std::vector<DeviceEdge> Verticals(int count, double height) {
  std::vector<DeviceEdge> edges;
  for (int i = 1; i <= count; ++i) edges.push_back({10.0 * i, 0, 10.0 * i, height});
  return edges;
}

// `count` edges rising from (0, y) to (1000, y + 400) at y = 0, 2, 4, ...:
// parallel, never crossing each other.
std::vector<DeviceEdge> Parallels(int count) {
  std::vector<DeviceEdge> edges;
  for (int i = 0; i < count; ++i) edges.push_back({0, 2.0 * i, 1000, 2.0 * i + 400});
  return edges;
}

std::vector<DeviceEdge> Joined(std::vector<DeviceEdge> a, const std::vector<DeviceEdge>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Lines corner to corner of a square, all through its middle, and their
// mirror images: each line of one family crosses every line of the other.
std::vector<DeviceEdge> Fan(int count) {
  std::vector<DeviceEdge> edges;
  for (int i = 0; i < count; ++i) {
    edges.push_back({10.0 + i, 0, 990.0 - i, 1000});
    edges.push_back({990.0 - i, 0, 10.0 + i, 1000});
  }
  return edges;
}

TEST(EdgeCrossings, CountsRowsAndCrossingPairs) {
  const Rect visible = MakeRect(0, 0, 1000, 1000);
  struct Case {
    const char* name;
    std::vector<DeviceEdge> edges;
    double rows, intersections;
  };
  const Case cases[] = {
      {"parallel verticals", Verticals(50, 300), 50 * 300, 0},
      {"parallel slopes", Parallels(100), 100 * 400, 0},
      // 50 verticals between x = 10 and 500 cross each slope that spans them.
      {"verticals across slopes", Joined(Verticals(50, 1000), Parallels(100)),
       50 * 1000 + 100 * 400, 50 * 100},
      // Two families of 40 lines: every pair of the same family meets at the
      // middle too (the count does not tell a touch from a crossing).
      {"fan", Fan(40), 80 * 1000, 80 * 79 / 2},
      // Rows outside the visible area do not count.
      {"verticals reaching past the bottom", Verticals(10, 5000), 10 * 1000, 0},
  };
  for (const Case& c : cases) {
    EdgeCrossings counted = CountCrossings(c.edges, visible, kCountEverything);
    EXPECT_NEAR(counted.rows, c.rows, 1) << c.name;
    EXPECT_NEAR(counted.intersections, c.intersections, 0.02 * c.intersections + 2) << c.name;
    EXPECT_FALSE(counted.stoppedEarly) << c.name;
  }
}

TEST(EdgeCrossings, StopsCountingPastEnough) {
  // 5000 crossings spread over some 600 rows.
  EdgeCrossings counted = CountCrossings(Joined(Verticals(50, 1000), Parallels(100)),
                                         MakeRect(0, 0, 1000, 1000), 1000);
  EXPECT_TRUE(counted.stoppedEarly);
  EXPECT_GT(counted.intersections, 1000);
  EXPECT_LT(counted.intersections, 5000);
}

TEST(DeviceEdges, CurvesFlattenIntoMorePiecesTheLargerTheyAreDrawn) {
  BezierPath wave;
  wave.moveTo({0, 0});
  wave.curveTo({100, 0}, {30, 80}, {70, -80});
  struct Case {
    double scale;
    double pieces;
  };
  // ⌈√(¾ · |second difference| / 0.1)⌉: the control points' second difference
  // of 240.2 units makes 43 pieces at scale 1, and √100 times more at 100.
  for (Case c : {Case{0.01, 5}, Case{1, 43}, Case{100, 425}}) {
    AffineTransform scale = AffineTransform::scaling(c.scale, c.scale);
    double count = FlattenedEdgeCount(wave, scale, 0.1);
    EXPECT_EQ(count, c.pieces + 1) << c.scale;  // and the edge closing the fill
    EXPECT_EQ(FlattenedEdges(wave, scale, 0.1, /*closeSubpaths=*/true).size(), count);
    EXPECT_EQ(FlattenedEdges(wave, scale, 0.1, /*closeSubpaths=*/false).size(), c.pieces);
  }
}

TEST(DrawingBudget, DashesShorterThanAPixelDrawSolidByTheirCoverage) {
  struct Case {
    std::vector<double> dash;
    LineCapStyle cap;
    double scale;
    std::optional<double> coverage;
  };
  const Case cases[] = {
      {{0.01, 0.01}, LineCapStyle::Butt, 1, 0.5},
      {{0.01, 0.03}, LineCapStyle::Butt, 1, 0.25},
      {{0.3}, LineCapStyle::Butt, 1, 0.5},          // an odd pattern alternates
      {{0.01, 0.5}, LineCapStyle::Square, 1, 1.0},  // caps of width 1 close the gaps
      {{0.01, 0.01}, LineCapStyle::Butt, 100, std::nullopt},  // two device pixels: shown
      {{3, 1}, LineCapStyle::Butt, 1, std::nullopt},
      {{}, LineCapStyle::Butt, 1, std::nullopt},
      {{0.01, -0.01}, LineCapStyle::Butt, 1, std::nullopt},  // invalid: drawn solid anyway
  };
  for (const Case& c : cases) {
    BezierPath line;
    line.moveTo({0, 0});
    line.lineTo({100, 0});
    line.setLineDash(c.dash, 0);
    line.setLineCapStyle(c.cap);
    std::optional<double> coverage =
        SubpixelDashCoverage(line, AffineTransform::scaling(c.scale, c.scale));
    ASSERT_EQ(coverage.has_value(), c.coverage.has_value()) << c.dash.size() << " " << c.scale;
    if (coverage) {
      EXPECT_NEAR(*coverage, *c.coverage, 1e-9);
    }
  }
}

TEST(DrawingBudget, GradientsOfManyStopsAreResampledAlongTheSameColours) {
  // A ramp from black to white through 5000 stops, and one that jumps.
  std::vector<Color> ramp, steps;
  for (int i = 0; i < 5000; ++i) {
    ramp.push_back(Color::calibratedRGB(i / 4999.0, i / 4999.0, i / 4999.0));
    steps.push_back(i < 2500 ? Color::calibratedRGB(1, 0, 0) : Color::calibratedRGB(0, 0, 1, 0.5));
  }
  for (const Gradient& original : {Gradient::withColors(ramp), Gradient::withColors(steps)}) {
    Gradient bounded = WithBoundedStops(original);
    ASSERT_LT(bounded.numberOfColorStops(), 2000u);
    for (double location : {0.0, 0.1, 0.3337, 0.49, 0.51, 0.75, 1.0}) {
      RGBA expected = original.interpolatedColorAtLocation(location);
      RGBA actual = bounded.interpolatedColorAtLocation(location);
      EXPECT_NEAR(actual.red, expected.red, 1.0 / 255) << location;
      EXPECT_NEAR(actual.blue, expected.blue, 1.0 / 255) << location;
      EXPECT_NEAR(actual.alpha, expected.alpha, 1.0 / 255) << location;
    }
  }
  Gradient few = Gradient::withStartingColor(Color::redColor(), Color::blueColor());
  EXPECT_EQ(WithBoundedStops(few), few);
}

}  // namespace
}  // namespace paintdoc::drawing
