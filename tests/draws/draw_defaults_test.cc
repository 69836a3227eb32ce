// What a new draw's state depends on: the class's stroke trait and its
// display name.
#include <gtest/gtest.h>

#include "draws/draw_base.h"
#include "raster/draw_image.h"
#include "raster/draw_raster.h"
#include "draws/draw_rectangle.h"
#include "text/draw_text.h"

namespace paintdoc {
namespace {

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

}  // namespace
}  // namespace paintdoc
