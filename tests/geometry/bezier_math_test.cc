#include "geometry/bezier_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/fixture_file.h"

namespace paintdoc {
namespace {

using test::FixtureFile;
using test::PointAt;

const FixtureFile& Fixtures() { return test::SinglePrecisionFixtures(); }

constexpr Point kStart = test::kCurveStart, kControl1 = test::kCurveControl1,
                kControl2 = test::kCurveControl2, kEnd = test::kCurveEnd;
// A curve off the float grid.
const Point kOddStart{0.1, 0.2}, kOddControl1{33.33333, 0.7}, kOddControl2{66.66667, 100.3},
    kOddEnd{99.9, 100.1};

TEST(CubicBezier, MatchesSinglePrecisionFormula) {
  for (const std::string& name : Fixtures().namesStartingWith("cubic_bezier_")) {
    const auto& v = Fixtures().values(name);
    ASSERT_EQ(v.size(), 6u) << name;
    const float result = CubicBezier(float(v[0]), float(v[1]), float(v[2]), float(v[3]),
                                     float(v[4]));
    EXPECT_EQ(double(result), v[5]) << name;
  }
}

TEST(CubicBezierPoint, RoundsInputsAndResultToSingle) {
  for (const std::string& name : Fixtures().namesStartingWith("cubic_point_")) {
    const auto& v = Fixtures().values(name);
    ASSERT_EQ(v.size(), 3u) << name;
    const bool odd = name.find("odd") != std::string::npos;
    const Point p = odd ? CubicBezierPoint(v[0], kOddStart, kOddControl1, kOddControl2, kOddEnd)
                        : CubicBezierPoint(v[0], kStart, kControl1, kControl2, kEnd);
    EXPECT_EQ(p, PointAt(v, 1)) << name;
  }
  // The end points come back as their single-precision values.
  EXPECT_EQ(CubicBezierPoint(0, kOddStart, kOddControl1, kOddControl2, kOddEnd),
            (Point{double(0.1f), double(0.2f)}));
  EXPECT_EQ(CubicBezierPoint(1, kOddStart, kOddControl1, kOddControl2, kOddEnd),
            (Point{double(99.9f), double(100.1f)}));
}

TEST(CubicBezierLength, SumsTheFixedSamples) {
  EXPECT_EQ(CubicBezierLength(kStart, kControl1, kControl2, kEnd),
            Fixtures().values("cubic_length_s").at(0));
  EXPECT_EQ(CubicBezierLength(kOddStart, kOddControl1, kOddControl2, kOddEnd),
            Fixtures().values("cubic_length_odd").at(0));
}

TEST(CubicBezierLength, StraightCurveMeasuresItsChord) {
  EXPECT_NEAR(CubicBezierLength({0, 0}, {6, 8}, {27, 36}, {30, 40}), 50.0, 1e-4);
  EXPECT_NEAR(CubicBezierLength({0, 0}, {1, 1}, {2, 2}, {3, 3}), 3 * std::sqrt(2.0), 1e-5);
  EXPECT_EQ(CubicBezierLength({5, 5}, {5, 5}, {5, 5}, {5, 5}), 0.0);
}

TEST(CubicBezierLengthTarget, ResumesAndOnlyMovesTheRecordForward) {
  // One record carried through targets 30, 75.5, 75.5, 20 and beyond the end:
  // target, result, step, curve length, curve point.
  BezierFindPointDetails record;
  for (int i = 0; i < 5; ++i) {
    const auto& v = Fixtures().values("length_target_" + std::to_string(i));
    ASSERT_EQ(v.size(), 6u);
    const double result = CubicBezierLengthTarget(kStart, kControl1, kControl2, kEnd, &record,
                                                  v[0]);
    EXPECT_EQ(result, v[1]) << "case " << i;
    EXPECT_EQ(double(record.curveStep), v[2]) << "case " << i;
    EXPECT_EQ(record.curveLength, v[3]) << "case " << i;
    EXPECT_EQ(record.curvePoint, PointAt(v, 4)) << "case " << i;
  }
}

TEST(CubicBezierLengthTarget, UnreachedTargetAnswersTheCurveLength) {
  const double length = CubicBezierLength(kStart, kControl1, kControl2, kEnd);
  EXPECT_EQ(CubicBezierLengthTarget(kStart, kControl1, kControl2, kEnd, nullptr, 1e9), length);
  EXPECT_EQ(CubicBezierLengthTarget(kStart, kControl1, kControl2, kEnd, nullptr,
                                    std::numeric_limits<double>::quiet_NaN()),
            length);
  EXPECT_EQ(CubicBezierLengthTarget(kStart, kControl1, kControl2, kEnd, nullptr, length / 2),
            -1.0);
}

TEST(CubicBezierLengthTarget, RecordPastTheLastStepAnswersItsLengthAtOnce) {
  BezierFindPointDetails record;
  record.curveStep = kCubicBezierSampleSteps + 1;
  record.curveLength = 12.5;
  EXPECT_EQ(CubicBezierLengthTarget(kStart, kControl1, kControl2, kEnd, &record, 13), 12.5);
  // A target below the record's length starts over from the first sample.
  EXPECT_EQ(CubicBezierLengthTarget(kStart, kControl1, kControl2, kEnd, &record, 10), -1.0);
  EXPECT_EQ(record.curveStep, kCubicBezierSampleSteps + 1);
}

TEST(InterpolatePointFromElement, MoveLineAndClose) {
  const std::array<Point, 3> points{Point{10, 4}, Point{}, Point{}};
  Point tangent;
  EXPECT_EQ(InterpolatePointFromElement(PathElementType::MoveTo, points, {1, 1}, {0, 0}, 0.5,
                                        &tangent),
            (Point{1, 1}));
  EXPECT_TRUE(IsNullPoint(tangent));

  EXPECT_EQ(InterpolatePointFromElement(PathElementType::LineTo, points, {2, 0}, {0, 0}, 0.5,
                                        &tangent),
            (Point{6, 2}));
  EXPECT_EQ(tangent, (Point{8, 4}));

  // A close runs back to the subpath start, ignoring the element's points.
  EXPECT_EQ(InterpolatePointFromElement(PathElementType::ClosePath, points, {4, 8}, {0, 0},
                                        0.25, &tangent),
            (Point{3, 6}));
  EXPECT_EQ(tangent, (Point{-4, -8}));
}

TEST(InterpolatePointFromElement, CurveTangentAgainstPointAtNineTenths) {
  const std::array<Point, 3> points{kControl1, kControl2, kEnd};
  for (const char* name : {"interpolate_curve_0", "interpolate_curve_1"}) {
    const auto& v = Fixtures().values(name);
    ASSERT_EQ(v.size(), 5u);
    Point tangent;
    const Point p = InterpolatePointFromElement(PathElementType::CurveTo, points, kStart,
                                                {0, 0}, v[0], &tangent);
    EXPECT_EQ(p, PointAt(v, 1)) << name;
    EXPECT_EQ(tangent, PointAt(v, 3)) << name;
  }
}

TEST(InterpolatePointFromElement, UnknownTypeGivesNullPointAndKeepsTangent) {
  Point tangent{7, 7};
  const Point p = InterpolatePointFromElement(static_cast<PathElementType>(9), {}, {1, 1},
                                              {0, 0}, 0.5, &tangent);
  EXPECT_TRUE(IsNullPoint(p));
  EXPECT_EQ(tangent, (Point{7, 7}));
}

}  // namespace
}  // namespace paintdoc
