#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "draws/draw_base.h"
#include "platform/values/log.h"
#include "support/geometry_near.h"

namespace paintdoc {
namespace {

// A draw that counts the hooks the geometry operations call.
class ProbeDraw : public DrawBase {
 public:
  std::string className() const override { return "ProbeDraw"; }
  void clearHighlightCache() override { ++highlightClears; }
  void setBezierPathWithData(const ArchiveValue& data) override {
    ++pathDataResets;
    DrawBase::setBezierPathWithData(data);
  }
  void setFields(float rotation) { fRotateDegree_ = rotation; }
  BezierPath& path() { return *bezierPath_; }

  int highlightClears = 0;
  int pathDataResets = 0;
};

using test::ExpectPointNear;
using test::ExpectRectNear;

// A draw of the given outline and rotation.
std::shared_ptr<ProbeDraw> PathDraw(const BezierPath& path, float rotation = 0) {
  auto draw = MakeDraw<ProbeDraw>();
  draw->setBezierPathWithData(ArchiveValue(path));
  draw->setFields(rotation);
  draw->pathDataResets = 0;
  return draw;
}
std::shared_ptr<ProbeDraw> RectDraw(const Rect& rect, float rotation = 0) {
  return PathDraw(BezierPath::withRect(rect), rotation);
}

TEST(DrawBaseBounds, MissingOrEmptyPathGivesZeroRectAndIdentity) {
  DrawBase bare;  // zero state: no path at all
  auto empty = PathDraw(BezierPath(), 30);
  for (const DrawBase* draw : std::initializer_list<const DrawBase*>{&bare, empty.get()}) {
    EXPECT_EQ(draw->pathBounds(), ZeroRect());
    EXPECT_EQ(draw->controlBounds(), ZeroRect());
    EXPECT_TRUE(draw->transform().isIdentity());
    EXPECT_TRUE(draw->invertTransform().isIdentity());
  }
}

TEST(DrawBaseBounds, ControlBoundsOfRotatedSquareGrowBySquareRootOfTwo) {
  const auto square = RectDraw(MakeRect(10, 20, 40, 40), 45);
  EXPECT_EQ(square->pathBounds(), MakeRect(10, 20, 40, 40));
  EXPECT_EQ(square->rotateCenter(), (Point{30, 40}));
  const double side = 40 * std::sqrt(2.0);
  ExpectRectNear(square->controlBounds(), MakeRect(30 - side / 2, 40 - side / 2, side, side));
}

TEST(DrawBaseBounds, ControlBoundsCoverCurveControlPoints) {
  BezierPath curve;
  curve.moveTo({0, 0});
  curve.curveTo({100, 0}, {25, 80}, {75, 80});
  auto draw = PathDraw(curve);
  EXPECT_EQ(draw->pathBounds(), MakeRect(0, 0, 100, 60));  // the curve peaks at 0.75 x 80
  EXPECT_EQ(draw->controlBounds(), MakeRect(0, 0, 100, 80));
}

TEST(DrawBaseTransform, TurnsAboutTheCentreAndBack) {
  const auto draw = RectDraw(MakeRect(0, 0, 20, 10), 90);
  // The corner (20, 5) lies 10 right of the centre (10, 5); a quarter turn
  // counter-clockwise puts it 10 above.
  ExpectPointNear(draw->pointAfterRotate({20, 5}), {10, 15});
  ExpectPointNear(draw->pointBeforeRotate({10, 15}), {20, 5});
  const Point p{3.25, -7.5};
  ExpectPointNear(draw->pointBeforeRotate(draw->pointAfterRotate(p)), p);
  // Unrotated: points come back untouched, bit for bit.
  const auto flat = RectDraw(MakeRect(0, 0, 20, 10));
  EXPECT_EQ(flat->pointAfterRotate({0.1, 0.2}), (Point{0.1, 0.2}));
  EXPECT_TRUE(flat->transform().isIdentity());
}

TEST(DrawBaseRotation, SetRotateDegreeNormalisesRefusesNonFiniteAndBoundsHugeAngles) {
  auto draw = MakeDraw<ProbeDraw>();
  const std::pair<float, float> normalised[] = {{190, -170}, {-540, -180}, {180, 180},
                                                {-180, -180}, {900, 180},  {-181, 179}};
  for (auto [given, kept] : normalised) {
    draw->setRotateDegree(given);
    EXPECT_EQ(draw->rotateDegree(), kept) << given;
  }
  draw->setRotateDegree(45);
  {
    LogCapture log;
    draw->setRotateDegree(std::numeric_limits<float>::quiet_NaN());
    draw->setRotateDegree(std::numeric_limits<float>::infinity());
    EXPECT_TRUE(log.contains("Error: "));
  }
  EXPECT_EQ(draw->rotateDegree(), 45);
  draw->setRotateDegree(3.0e30f);
  EXPECT_GE(draw->rotateDegree(), -180);
  EXPECT_LE(draw->rotateDegree(), 180);
}

// The angle adds up without normalising; the centre turns about the pivot
// while the outline is only moved.
TEST(DrawBaseRotation, RotateByDegreeAddsAndTurnsTheCentreAboutThePivot) {
  const auto draw = RectDraw(MakeRect(20, -5, 10, 10), 100);  // centre (25, 0)
  draw->rotateByDegree(90, {0, 0});
  draw->rotateByDegree(90, {0, 0});
  EXPECT_EQ(draw->rotateDegree(), 280);
  ExpectPointNear(draw->rotateCenter(), {-25, 0}, 1e-5);
  EXPECT_EQ(draw->pathBounds().size, (Size{10, 10}));
  const auto outside = RectDraw(MakeRect(10, 0, 4, 2));  // centre (12, 1)
  outside->rotateByDegree(-90, {2, 1});                  // 10 right of the pivot -> 10 below
  ExpectPointNear(outside->rotateCenter(), {2, -9}, 1e-5);
  EXPECT_EQ(outside->pathBounds().size, (Size{4, 2}));
  EXPECT_EQ(outside->rotateDegree(), -90);
}

TEST(DrawBaseRotation, ApplyRotationBakesTheTurnIntoTheOutline) {
  const auto draw = RectDraw(MakeRect(0, 0, 20, 10), 90);
  const Rect turnedBox = draw->controlBounds();
  draw->applyRotationToBezierPath();
  EXPECT_EQ(draw->rotateDegree(), 0);
  ExpectRectNear(draw->pathBounds(), turnedBox);
  ExpectRectNear(draw->pathBounds(), MakeRect(5, -5, 10, 20));
  EXPECT_EQ(draw->pathDataResets, 1);
}

TEST(DrawBaseMove, MoveByTranslatesTheOutline) {
  const auto draw = RectDraw(MakeRect(1, 2, 3, 4));
  draw->moveBy(10, -20);
  EXPECT_EQ(draw->pathBounds(), MakeRect(11, -18, 3, 4));
  DrawBase bare;
  bare.moveBy(1, 1);  // no path: nothing to move
  EXPECT_EQ(bare.pathBounds(), ZeroRect());
}

TEST(DrawBaseFlip, HorizontalFlipKeepsCentreAndNegatesRotation) {
  BezierPath triangle;
  triangle.moveTo({0, 0});
  triangle.lineTo({30, 0});
  triangle.lineTo({0, 10});
  triangle.closePath();
  auto draw = PathDraw(triangle, 30);
  const Point center = draw->rotateCenter();
  draw->flip(true);
  EXPECT_EQ(draw->rotateCenter(), center);
  EXPECT_EQ(draw->rotateDegree(), -30);
  const BezierPath& flipped = *draw->bezierPath();
  EXPECT_EQ(flipped.elementAt(0).points[0], (Point{30, 0}));
  EXPECT_EQ(flipped.elementAt(1).points[0], (Point{0, 0}));
  EXPECT_EQ(flipped.elementAt(2).points[0], (Point{30, 10}));
  EXPECT_EQ(draw->highlightClears, 1);
  // An empty outline is left alone.
  auto empty = PathDraw(BezierPath(), 30);
  empty->flip(true);
  EXPECT_EQ(empty->rotateDegree(), 30);
  EXPECT_EQ(empty->highlightClears, 0);
}

TEST(DrawBaseFlip, VerticalFlipMirrorsTopToBottom) {
  BezierPath path;
  path.moveTo({0, 10});
  path.lineTo({8, 16});
  const auto draw = PathDraw(path);
  draw->flip(false);
  EXPECT_EQ(draw->bezierPath()->elementAt(0).points[0], (Point{0, 16}));
  EXPECT_EQ(draw->bezierPath()->elementAt(1).points[0], (Point{8, 10}));
  EXPECT_EQ(draw->rotateDegree(), 0);
}

TEST(DrawBaseFlip, FlipWithCentreMirrorsAcrossThatCentre) {
  const auto draw = RectDraw(MakeRect(10, 0, 4, 2));  // centre (12, 1)
  draw->flip(true, {20, 100});                        // mirrored: centre (28, 1)
  EXPECT_EQ(draw->pathBounds(), MakeRect(26, 0, 4, 2));
  draw->flip(false, {20, 5});                         // centre y 1 -> 9
  EXPECT_EQ(draw->pathBounds(), MakeRect(26, 8, 4, 2));
}

// A stroked, shadowed draw with a 2-wide {6, 3} dash at phase 1.
std::shared_ptr<ProbeDraw> StyledDraw() {
  auto draw = RectDraw(MakeRect(10, 10, 10, 10));
  draw->setBezierPathLineWidth(2);
  draw->setBezierPathLineDash(std::vector<double>{6, 3});
  draw->setShadow(Shadow(std::nullopt, {4, -2}, 3));
  draw->setEnableShadow(true);
  draw->setInnerShadow(Shadow(std::nullopt, {1, 1}, 5));
  draw->setEnableInnerShadow(false);
  return draw;
}

TEST(DrawBaseScale, ResizingLineWidthScalesProportionally) {
  const auto draw = StyledDraw();
  draw->path().setLineDash({6, 3}, 1.5);
  draw->scaleBy(2, 3, {0, 0}, true);
  EXPECT_EQ(draw->pathBounds(), MakeRect(20, 20, 20, 20));  // by (2, 2), not (2, 3)
  EXPECT_EQ(draw->bezierPath()->lineWidth(), 4);
  EXPECT_EQ(draw->bezierPath()->lineDash(), (std::vector<double>{12, 6}));
  EXPECT_EQ(draw->bezierPath()->lineDashPhase(), 1.5);  // the phase is kept
  EXPECT_EQ(draw->shadow()->shadowBlurRadius(), 6);
  EXPECT_EQ(draw->shadow()->shadowOffset(), (Size{8, -4}));
  // The inner shadow is off, so it keeps its size.
  EXPECT_EQ(draw->innerShadow()->shadowBlurRadius(), 5);
  EXPECT_EQ(draw->highlightClears, 1);
}

TEST(DrawBaseScale, WithoutResizingOnlyTheOutlineChangesAndZeroFactorsNothing) {
  const auto draw = StyledDraw();
  draw->scaleBy(0, 2, {0, 0}, true);
  draw->scaleBy(2, 0, {0, 0}, false);
  EXPECT_EQ(draw->pathBounds(), MakeRect(10, 10, 10, 10));
  EXPECT_EQ(draw->highlightClears, 0);
  draw->scaleBy(2, 3, {10, 10}, false);  // about the lower left corner
  EXPECT_EQ(draw->pathBounds(), MakeRect(10, 10, 20, 30));
  EXPECT_EQ(draw->bezierPath()->lineWidth(), 2);
  EXPECT_EQ(draw->bezierPath()->lineDash(), (std::vector<double>{6, 3}));
  EXPECT_EQ(draw->shadow()->shadowBlurRadius(), 3);
}

TEST(DrawBaseScale, RadialGradientCentreIsMultipliedWithoutTranslation) {
  const auto draw = StyledDraw();
  draw->setFillGradientCenter({0.5, -0.25});
  draw->setFillWithGradient(true);
  draw->scaleBy(2, 3, {100, 100}, false);
  EXPECT_EQ(draw->fillGradientCenter(), (Point{0.5, -0.25}));  // linear: untouched
  draw->setFillRadialGradient(true);
  draw->scaleBy(2, 3, {100, 100}, false);
  EXPECT_EQ(draw->fillGradientCenter(), (Point{1, -0.75}));
}

TEST(DrawBaseScale, ClassesWithoutStrokeKeepTheirLineWidth) {
  class Unstroked : public ProbeDraw {
   public:
    bool classDrawStroke() const override { return false; }
  };
  auto draw = MakeDraw<Unstroked>();
  draw->setBezierPathWithData(ArchiveValue(BezierPath::withRect(MakeRect(0, 0, 1, 1))));
  draw->setBezierPathLineWidth(3);
  draw->scaleBy(2, 2, {0, 0}, true);
  EXPECT_EQ(draw->bezierPath()->lineWidth(), 3);
  EXPECT_EQ(draw->pathBounds(), MakeRect(0, 0, 2, 2));
}

// The dash keeps its proportion to the width, except from width 0; a dash of
// one entry makes the line solid.
TEST(DrawBaseLine, DashKeepsItsProportionToTheWidth) {
  const auto draw = StyledDraw();
  draw->setBezierPathLineWidth(4);
  EXPECT_EQ(draw->bezierPath()->lineWidth(), 4);
  EXPECT_EQ(draw->bezierPath()->lineDash(), (std::vector<double>{12, 6}));
  EXPECT_EQ(draw->bezierPath()->lineDashPhase(), 0);
  draw->setBezierPathLineWidth(0);
  EXPECT_EQ(draw->bezierPath()->lineDash(), (std::vector<double>{0, 0}));
  draw->setBezierPathLineDash(std::vector<double>{6, 3});
  draw->setBezierPathLineWidth(5);
  EXPECT_EQ(draw->bezierPath()->lineDash(), (std::vector<double>{6, 3}));
  EXPECT_EQ(draw->bezierPath()->lineWidth(), 5);
  draw->setBezierPathLineDash(std::vector<double>{5});
  EXPECT_TRUE(draw->bezierPath()->lineDash().empty());
}

TEST(DrawBaseLine, SettersCreateAMissingPath) {
  DrawBase widthOnly;
  widthOnly.setBezierPathLineWidth(3);
  ASSERT_TRUE(widthOnly.bezierPath().has_value());
  EXPECT_TRUE(widthOnly.bezierPath()->isEmpty());
  EXPECT_EQ(widthOnly.bezierPath()->lineWidth(), 3);

  DrawBase dashOnly;
  dashOnly.setBezierPathLineDash(std::vector<double>{2, 1});
  ASSERT_TRUE(dashOnly.bezierPath().has_value());
  EXPECT_EQ(dashOnly.bezierPath()->lineDash(), (std::vector<double>{2, 1}));
}

}  // namespace
}  // namespace paintdoc
