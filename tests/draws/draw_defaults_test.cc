// What a new draw holds: the zero state of construction, the defaults of
// init(), and how they depend on the class's stroke trait.
#include <gtest/gtest.h>

#include <cstdlib>

#include "draws/draw_base.h"
#include "raster/draw_image.h"
#include "raster/draw_raster.h"
#include "draws/draw_rectangle.h"
#include "text/draw_text.h"

namespace paintdoc {
namespace {

TEST(DrawDefaults, InitSetsPathColoursFlagsAndMeasures) {
  auto draw = MakeDraw<DrawBase>();
  ASSERT_TRUE(draw->bezierPath().has_value());
  const BezierPath& path = *draw->bezierPath();
  EXPECT_TRUE(path.isEmpty());
  EXPECT_EQ(path.lineWidth(), 2.0);
  EXPECT_EQ(path.lineCapStyle(), LineCapStyle::Square);
  EXPECT_EQ(path.lineJoinStyle(), LineJoinStyle::Bevel);
  EXPECT_TRUE(path.lineDash().empty());
  EXPECT_EQ(path.lineDashPhase(), 0.0);
  EXPECT_EQ(draw->strokeColor(), Color::blackColor());
  EXPECT_EQ(draw->fillColor(), Color::blackColor());
  EXPECT_FALSE(draw->fillGradient().has_value());
  EXPECT_EQ(draw->fillGradientDegree(), 90.0f);
  EXPECT_EQ(draw->fillGradientCenter(), (Point{0, 0}));
  EXPECT_EQ(draw->group(), nullptr);
  EXPECT_TRUE(draw->visible());
  EXPECT_TRUE(draw->smooth());
  EXPECT_FALSE(draw->shadow().has_value());
  EXPECT_FALSE(draw->innerShadow().has_value());
  EXPECT_EQ(draw->reflection(), 0.0f);
  EXPECT_EQ(draw->reflectionDis(), -10060.0f);
  const bool switchedOff[] = {draw->fillWithGradient(), draw->fillRadialGradient(), draw->locked(),
                              draw->enableShadow(), draw->enableInnerShadow(),
                              draw->enableReflection(), draw->rotating(), draw->resizing(),
                              draw->isEditingFillGradient(), draw->creatingWithEvent()};
  for (size_t i = 0; i < std::size(switchedOff); ++i) EXPECT_FALSE(switchedOff[i]) << "flag " << i;
}

TEST(DrawDefaults, ConstructionAloneLeavesEveryFieldZero) {
  DrawRectangle draw;
  EXPECT_FALSE(draw.bezierPath().has_value());
  EXPECT_FALSE(draw.strokeColor().has_value());
  EXPECT_FALSE(draw.enableStroke());
  EXPECT_FALSE(draw.enableFill());
  EXPECT_FALSE(draw.visible());
  EXPECT_FALSE(draw.smooth());
  EXPECT_EQ(draw.fillGradientDegree(), 0.0f);
  EXPECT_EQ(draw.reflectionDis(), 0.0f);
}

// The fill flag is the opposite of classDrawStroke, not classDrawFill: a
// rectangle (which answers classDrawFill yes) still starts unfilled.
TEST(DrawDefaults, FillStartsAsTheOppositeOfTheStrokeTrait) {
  struct Case {
    std::shared_ptr<DrawBase> draw;
    bool stroke;
  };
  const Case cases[] = {
      {MakeDraw<DrawBase>(), true},     {MakeDraw<DrawRectangle>(), true},
      {MakeDraw<DrawGradient>(), false}, {MakeDraw<DrawText>(), false},
      {MakeDraw<DrawImage>(), false},    {MakeDraw<DrawClear>(), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.draw->className());
    EXPECT_EQ(c.draw->enableStroke(), c.stroke);
    EXPECT_EQ(c.draw->enableFill(), !c.stroke);
  }
  EXPECT_TRUE(MakeDraw<DrawRectangle>()->classDrawFill());
}

TEST(DrawDefaults, LayerTitleIsTheDisplayNameUntilOneIsSet) {
  auto ellipse = MakeDraw<DrawEllipse>();
  EXPECT_EQ(ellipse->layerTitle(), "Ellipse");
  ellipse->setLayerTitle("Sun");
  EXPECT_EQ(ellipse->layerTitle(), "Sun");
  ellipse->setLayerTitle(std::string());
  EXPECT_EQ(ellipse->layerTitle(), "");  // an empty title is still a title
  ellipse->setLayerTitle(std::nullopt);
  EXPECT_EQ(ellipse->layerTitle(), "Ellipse");
}

TEST(DrawDefaults, ExportedConstantsHoldTheirValues) {
  DrawBase::initialize();
  EXPECT_EQ(borderDashStyle[0], 4.0);
  EXPECT_EQ(borderDashStyle[1], 4.0);
  EXPECT_EQ(borderDaskPhaseCount, 2);
  const double highlight[] = {29 / 255.0, 89 / 255.0, 236 / 255.0, 1.0};
  for (int i = 0; i < 4; ++i) EXPECT_DOUBLE_EQ(colorDrawBaseHighlight.components()[i], highlight[i]);
  EXPECT_EQ(colorDrawBaseHighlight.colorSpace(), ColorSpaceKind::CalibratedRGB);
  // Without a desktop scale setting the display counts as single density.
  if (std::getenv("GDK_SCALE") == nullptr) {
    EXPECT_EQ(borderLineWidth, 1.0f);
  }
}

}  // namespace
}  // namespace paintdoc
