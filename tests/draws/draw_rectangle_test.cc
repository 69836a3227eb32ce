#include "draws/draw_rectangle.h"

#include <gtest/gtest.h>


#include "document/register_all_classes.h"
#include "raster/draw_selections.h"
#include "support/geometry_near.h"

namespace paintdoc {
namespace {

// The draw archived alone and read back as a draw of its recorded class.
template <class T>
std::shared_ptr<T> RoundTrip(const DrawBase& draw) {
  RegisterAllClasses();
  auto decoded = DrawBase::objectWithEncodedData(SharedBytes(draw.encodedData()));
  return std::dynamic_pointer_cast<T>(decoded);
}

// Archives a plain rectangle's keys under the round rectangle's class name:
// what an archive without "XRadius" and "YRadius" decodes to.
class RoundRectangleWithoutRadii : public DrawRectangle {
 public:
  std::string className() const override { return "DrawRoundRectangle"; }
};

TEST(DrawRectangleDefaults, EachShapeStartsWithItsOwnLineStyleAndFill) {
  auto rectangle = MakeDraw<DrawRectangle>();
  EXPECT_EQ(rectangle->bezierPath()->lineJoinStyle(), LineJoinStyle::Miter);
  EXPECT_EQ(rectangle->bezierPath()->lineCapStyle(), LineCapStyle::Square);
  EXPECT_TRUE(rectangle->enableStroke());
  EXPECT_FALSE(rectangle->enableFill());

  auto ellipse = MakeDraw<DrawEllipse>();
  EXPECT_EQ(ellipse->bezierPath()->lineCapStyle(), LineCapStyle::Round);
  EXPECT_EQ(ellipse->bezierPath()->lineJoinStyle(), LineJoinStyle::Miter);

  auto rounded = MakeDraw<DrawRoundRectangle>();
  EXPECT_EQ(rounded->xRadius(), 30.0f);
  EXPECT_EQ(rounded->yRadius(), 30.0f);

  auto gradient = MakeDraw<DrawGradient>();
  EXPECT_FALSE(gradient->enableStroke());
  EXPECT_TRUE(gradient->enableFill());
  EXPECT_TRUE(gradient->fillWithGradient());
  EXPECT_EQ(gradient->fillGradientDegree(), 0.0f);
  ASSERT_TRUE(gradient->fillGradient());
  EXPECT_EQ(*gradient->fillGradient(),
            Gradient::withStartingColor(Color::calibratedWhite(0, 1), Color::calibratedWhite(0.5, 1)));
}

TEST(SetBezierPathWithBounds, RaisesAZeroBoxToOneUnitAndKeepsTheLineAttributes) {
  auto rectangle = MakeDraw<DrawRectangle>();
  rectangle->setBezierPathLineWidth(5);
  rectangle->setLineDashStyle("6:3");
  rectangle->setBezierPathWithBounds(MakeRect(5, 5, 0, 0));
  const BezierPath& path = *rectangle->bezierPath();
  EXPECT_EQ(path.bounds(), MakeRect(5, 5, 1, 1));
  EXPECT_EQ(path.elementCount(), 5u);
  EXPECT_EQ(path.lineWidth(), 5.0);
  EXPECT_EQ(rectangle->lineDashStyle(), "6:3");
  EXPECT_EQ(path.lineJoinStyle(), LineJoinStyle::Miter);

  // Rebuilding replaces the outline rather than adding to it.
  rectangle->setBezierPathWithBounds(MakeRect(10, 20, 30, 40));
  EXPECT_EQ(rectangle->bezierPath()->elementCount(), 5u);
  EXPECT_EQ(rectangle->bezierPath()->bounds(), MakeRect(10, 20, 30, 40));
}

TEST(BezierPathWithBounds, EachClassDrawsItsOwnOutlineIntoTheBox) {
  const Rect box = MakeRect(10, 20, 80, 40);
  auto ellipse = MakeDraw<DrawEllipse>();
  ellipse->setBezierPathLineWidth(3);
  const BezierPath oval = ellipse->bezierPathWithBounds(box);
  EXPECT_EQ(oval.elements(), BezierPath::withOvalInRect(box).elements());
  EXPECT_EQ(oval.lineWidth(), 3.0);
  EXPECT_EQ(oval.lineCapStyle(), LineCapStyle::Round);
  // The draw's own outline is not touched by asking.
  EXPECT_TRUE(ellipse->bezierPath()->isEmpty());

  auto rounded = MakeDraw<DrawRoundRectangle>();
  EXPECT_EQ(rounded->bezierPathWithBounds(box).elements(),
            BezierPath::withRoundedRect(box, 30, 30).elements());

  // A degenerate box is raised before the outline is made.
  EXPECT_EQ(ellipse->bezierPathWithBounds(MakeRect(3, 4, 0.2, -7)).bounds(), MakeRect(3, 4, 1, 1));
}

TEST(InitBoundsWithStablePoint, SpansThePointsOrCentresOnTheStablePoint) {
  auto rectangle = MakeDraw<DrawRectangle>();
  EXPECT_EQ(rectangle->initBoundsWithStablePoint({10, 10}, {4, 16}), MakeRect(4, 10, 6, 6));
  auto fromCenter = MakeDraw<DrawEllipseSelection>();
  EXPECT_EQ(fromCenter->initBoundsWithStablePoint({10, 10}, {4, 16}), MakeRect(4, 4, 12, 12));
  // Single precision: 0.1 is the float nearest to it, widened.
  const Rect narrow = rectangle->initBoundsWithStablePoint({0, 0}, {0.1, 0.1});
  EXPECT_EQ(narrow.size.width, static_cast<double>(0.1f));
}

TEST(DrawRoundRectangleRadii, NegativeRadiiAreIgnoredAndValidOnesRebuildTheOutline) {
  auto rounded = MakeDraw<DrawRoundRectangle>();
  rounded->setBezierPathWithBounds(MakeRect(0, 0, 100, 50));
  rounded->setXRadius(-1, 10);
  rounded->setXRadius(10, -1);
  EXPECT_EQ(rounded->xRadius(), 30.0f);
  EXPECT_EQ(rounded->yRadius(), 30.0f);

  rounded->setXRadius(8, 4);
  EXPECT_EQ(rounded->xRadius(), 8.0f);
  EXPECT_EQ(rounded->bezierPath()->elements(),
            BezierPath::withRoundedRect(MakeRect(0, 0, 100, 50), 8, 4).elements());
  // An empty outline stays empty; only the radii change.
  auto empty = MakeDraw<DrawRoundRectangle>();
  empty->setXRadius(5, 5);
  EXPECT_TRUE(empty->bezierPath()->isEmpty());
  EXPECT_EQ(empty->xRadius(), 5.0f);
}

TEST(DrawRoundRectangleRadii, ScaleWithTheirAxesOrProportionallyWhenLineWidthsResize) {
  auto rounded = MakeDraw<DrawRoundRectangle>();
  rounded->setBezierPathWithBounds(MakeRect(0, 0, 100, 50));
  rounded->setXRadius(10, 10);
  rounded->scaleBy(2, 3, Point{}, false);
  EXPECT_EQ(rounded->xRadius(), 20.0f);
  EXPECT_EQ(rounded->yRadius(), 30.0f);
  rounded->scaleBy(2, 3, Point{}, true);
  EXPECT_EQ(rounded->xRadius(), 40.0f);
  EXPECT_EQ(rounded->yRadius(), 60.0f);
  rounded->scaleBy(0, 3, Point{}, false);
  EXPECT_EQ(rounded->xRadius(), 40.0f);
  // 100 by 50 scaled by (2, 3), then by (2, 2).
  EXPECT_EQ(rounded->bezierPath()->bounds(), MakeRect(0, 0, 400, 300));
}

TEST(DrawGradientFill, AlwaysFillsWithAGradient) {
  auto gradient = MakeDraw<DrawGradient>();
  gradient->setFillWithGradient(false);
  EXPECT_TRUE(gradient->fillWithGradient());
  const Gradient redToBlue = Gradient::withStartingColor(Color::redColor(), Color::blueColor());
  gradient->setFillGradient(redToBlue);
  gradient->setFillGradient(std::nullopt);
  EXPECT_EQ(gradient->fillGradient(), redToBlue);
  // Through the base class the same rules hold.
  DrawBase& base = *gradient;
  base.setFillWithGradient(false);
  base.setFillGradient(std::nullopt);
  EXPECT_TRUE(gradient->fillWithGradient());
  EXPECT_TRUE(gradient->fillGradient());
}

// Radii are rounded on reading, and missing ones read as zero, not as the default.
TEST(BoundedShapeArchives, RoundRectangleRadiiAreRoundedOnReadingOrZeroWhenMissing) {
  auto rounded = MakeDraw<DrawRoundRectangle>();
  rounded->setBezierPathWithBounds(MakeRect(0, 0, 100, 50));
  rounded->setXRadius(12.4f, 7.6f);
  auto decoded = RoundTrip<DrawRoundRectangle>(*rounded);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->xRadius(), 12.0f);
  EXPECT_EQ(decoded->yRadius(), 8.0f);
  // The outline itself is archived, not rebuilt from the radii.
  test::ExpectRectNear(decoded->bezierPath()->bounds(), MakeRect(0, 0, 100, 50), 1e-4);
  EXPECT_EQ(decoded->bezierPath()->elementCount(), rounded->bezierPath()->elementCount());
  decoded = RoundTrip<DrawRoundRectangle>(*MakeDraw<RoundRectangleWithoutRadii>());
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->xRadius(), 0.0f);
  EXPECT_EQ(decoded->yRadius(), 0.0f);
}

TEST(BoundedShapeArchives, DecodedEllipseHasRoundCapsWhateverItsPathSaid) {
  // A rectangle's path (square caps) archived under the ellipse's class name.
  class EllipseWithSquareCaps : public DrawRectangle {
   public:
    std::string className() const override { return "DrawEllipse"; }
  };
  auto standIn = MakeDraw<EllipseWithSquareCaps>();
  standIn->setBezierPathWithBounds(MakeRect(0, 0, 20, 10));
  ASSERT_EQ(standIn->bezierPath()->lineCapStyle(), LineCapStyle::Square);
  auto decoded = RoundTrip<DrawEllipse>(*standIn);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->bezierPath()->lineCapStyle(), LineCapStyle::Round);
}

TEST(BoundedShapeArchives, DecodedGradientBoxFillsWithAGradientEvenWhenNoneWasStored) {
  auto gradient = MakeDraw<DrawGradient>();
  gradient->setBezierPathWithBounds(MakeRect(0, 0, 20, 10));
  gradient->setFillGradientDegree(45);
  gradient->setFillGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()));
  auto decoded = RoundTrip<DrawGradient>(*gradient);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->fillGradient(), gradient->fillGradient());
  EXPECT_EQ(decoded->fillGradientDegree(), 45.0f);

  // With fill off no gradient keys are written at all.
  gradient->setEnableFill(false);
  decoded = RoundTrip<DrawGradient>(*gradient);
  ASSERT_TRUE(decoded);
  EXPECT_TRUE(decoded->fillWithGradient());
  EXPECT_EQ(decoded->fillGradient(), DrawGradient::defaultGradient());
  EXPECT_FALSE(decoded->enableStroke());
}

}  // namespace
}  // namespace paintdoc
