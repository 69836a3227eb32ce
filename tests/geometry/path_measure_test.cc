#include "geometry/path_measure.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/fixture_file.h"
#include "geometry/bezier_math.h"

namespace paintdoc {
namespace {

using test::FixtureFile;
using test::PointAt;

const FixtureFile& Fixtures() { return test::SinglePrecisionFixtures(); }

constexpr Point kStart = test::kCurveStart, kControl1 = test::kCurveControl1,
                kControl2 = test::kCurveControl2, kEnd = test::kCurveEnd;

BezierPath MoveLine(Point from, Point to) {
  BezierPath path;
  path.moveTo(from);
  path.lineTo(to);
  return path;
}

// The S curve followed by a second curve, as curved text carries it.
BezierPath TwoCurves() {
  BezierPath path;
  path.moveTo(kStart);
  path.curveTo(kEnd, kControl1, kControl2);
  path.curveTo({260, 50}, {180, 100}, {220, 0});
  return path;
}

TEST(PathLineLength, LineAfterCurveIsMeasuredFromFirstControlPoint) {
  BezierPath path;
  path.moveTo(kStart);
  path.curveTo(kEnd, kControl1, kControl2);
  path.lineTo({200, 10});
  const double length = pathLineLength(path);
  EXPECT_EQ(length, Fixtures().values("path_length_move_curve_line").at(0));
  // Independently of the fixture: the curve plus the line from C1, in single precision.
  const double curve = CubicBezierLength(kStart, kControl1, kControl2, kEnd);
  const float sum = float(double(float(curve)) + PointDistanceFromPoint(kControl1, {200, 10}));
  EXPECT_EQ(length, double(sum));
}

TEST(PathLineLength, CloseAddsWayBackButKeepsCurrentPoint) {
  BezierPath path;
  path.moveTo({0, 0});
  path.lineTo({3, 0});
  path.lineTo({3, 4});
  path.closePath();       // adds 5 back to the origin ...
  path.lineTo({10, 4});   // ... but this line is measured from (3, 4): 7
  EXPECT_EQ(pathLineLength(path), 19.0);
  EXPECT_EQ(pathLineLength(BezierPath()), 0.0);
}

TEST(PathLineLength, SumIsKeptInSinglePrecision) {
  // 0.1 in double steps would not round the same way as the float sum.
  BezierPath path;
  path.moveTo({0, 0});
  float expected = 0;
  for (int i = 1; i <= 10; ++i) {
    path.lineTo({0.1 * i, 0});
    expected = float(double(expected) + (0.1 * i - 0.1 * (i - 1)));
  }
  EXPECT_EQ(pathLineLength(path), double(expected));
}

TEST(PointAtPercent, EmptyPathTinyFractionsAndTheEnd) {
  EXPECT_TRUE(IsNullPoint(pointAtPercent(BezierPath(), 0.5)));
  const BezierPath line = MoveLine({3, 4}, {13, 4});
  EXPECT_EQ(pointAtPercent(line, 0), (Point{3, 4}));
  EXPECT_EQ(pointAtPercent(line, 0.0000099), (Point{3, 4}));
  EXPECT_NE(pointAtPercent(line, 0.0000101), (Point{3, 4}));
  EXPECT_EQ(pointAtPercent(line, 1.0), (Point{13, 4}));
  EXPECT_TRUE(IsNullPoint(pointAtPercent(line, 1.01)));
}

TEST(PointAtPercent, MidpointOfLineWithLineTangent) {
  BezierFindPointDetails record;
  // The total is a single-precision sum, so the half-way point is off by that rounding.
  const Point p = pointAtPercent(MoveLine({2, 2}, {12, 6}), 0.5, &record);
  EXPECT_NEAR(p.x, 7, 1e-6);
  EXPECT_NEAR(p.y, 4, 1e-6);
  EXPECT_EQ(record.tangent, (Point{10, 4}));
  EXPECT_EQ(record.elementIndex, 1u);
  EXPECT_EQ(record.subpathStart, (Point{2, 2}));
  EXPECT_EQ(record.lengthBeforeElement, 0.0);
  EXPECT_EQ(record.totalLength, 0.0);  // the measured total is not written back
}

TEST(PointAtPercent, GivenTotalLengthOverridesTheMeasure) {
  BezierFindPointDetails record;
  record.totalLength = 5;  // the path is 10 long; 0.5 of 5 is 2.5 along
  EXPECT_EQ(pointAtPercent(MoveLine({0, 0}, {10, 0}), 0.5, &record), (Point{2.5, 0}));
}

TEST(PointAtPercent, CloseRunsBackToSubpathStart) {
  BezierPath path;
  path.moveTo({0, 0});
  path.lineTo({4, 0});
  path.lineTo({4, 3});
  path.closePath();  // total 12; 0.75 is 9 along: 2 units into the 5-unit close
  BezierFindPointDetails record;
  const Point p = pointAtPercent(path, 0.75, &record);
  EXPECT_NEAR(p.x, 4 - 4 * 0.4, 1e-12);
  EXPECT_NEAR(p.y, 3 - 3 * 0.4, 1e-12);
  EXPECT_EQ(record.tangent, (Point{-4, -3}));
  EXPECT_EQ(record.elementIndex, 3u);
}

// A fresh record for each fraction; fixture cases hold the fraction, point,
// tangent and element index.
TEST(PointAtPercent, FreshRecordsFollowThePath) {
  BezierPath mixed;
  mixed.moveTo({0, 0});
  mixed.lineTo({50, 0});
  mixed.curveTo({100, 0}, {60, 30}, {90, 30});
  mixed.closePath();
  const std::vector<std::pair<std::string, BezierPath>> paths{{"fresh_two_curves_", TwoCurves()},
                                                              {"mixed_path_", mixed}};
  for (const auto& [prefix, path] : paths) {
    const auto names = Fixtures().namesStartingWith(prefix);
    EXPECT_GE(names.size(), 3u) << prefix;
    for (const std::string& name : names) {
      const auto& v = Fixtures().values(name);
      ASSERT_EQ(v.size(), 6u) << name;
      BezierFindPointDetails record;
      const Point p = pointAtPercent(path, v[0], &record);
      EXPECT_EQ(p, PointAt(v, 1)) << name;
      if (IsNullPoint(p)) continue;
      EXPECT_EQ(record.tangent, PointAt(v, 3)) << name;
      EXPECT_EQ(double(record.elementIndex), v[5]) << name;
    }
  }
}

TEST(PointAtPercent, SharedRecordShiftsPositionsAfterTheFirstElement) {
  // Glyph layout: one record for the whole run of increasing fractions. Once a
  // point is found in the second curve, later searches start from the stored
  // length while walking from the first element again.
  const BezierPath path = TwoCurves();
  BezierFindPointDetails record;
  for (int i = 1; i <= 9; ++i) {
    const auto& v = Fixtures().values("layout_two_curves_" + std::to_string(i));
    ASSERT_EQ(v.size(), 7u);
    const Point p = pointAtPercent(path, v[0], &record);
    EXPECT_EQ(p, PointAt(v, 1)) << "fraction " << v[0];
    EXPECT_EQ(record.tangent, PointAt(v, 3)) << "fraction " << v[0];
    EXPECT_EQ(double(record.elementIndex), v[5]) << "fraction " << v[0];
    EXPECT_EQ(record.lengthBeforeElement, v[6]) << "fraction " << v[0];
  }
}

}  // namespace
}  // namespace paintdoc
