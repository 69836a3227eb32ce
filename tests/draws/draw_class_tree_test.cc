// The rules that depend on a class's traits: the fill a new draw starts with,
// its layer title, creation from the centre and when it has a border.
#include <gtest/gtest.h>

#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "raster/draw_airbrush.h"
#include "raster/draw_clear.h"
#include "raster/draw_eraser.h"
#include "raster/draw_fill.h"
#include "raster/draw_magic_selection.h"
#include "raster/draw_pen.h"
#include "draws/draw_rectangle.h"
#include "raster/draw_selections.h"
#include "raster/draw_image.h"
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

// Resizing gives a line a border but not a rectangle, whose own rule looks
// only at the outline trait; a group's border counts its visible members.
TEST(DrawClassTree, BorderFollowsResizingForLinesAndVisibleMembersForGroups) {
  auto line = MakeDraw<DrawLine>();
  line->setResizing(true);
  EXPECT_TRUE(line->hasBorder());
  auto rectangle = MakeDraw<DrawRectangle>();
  rectangle->setResizing(true);
  EXPECT_FALSE(rectangle->hasBorder());
  auto group = MakeDraw<DrawGroup>();
  EXPECT_FALSE(group->hasBorder());  // empty
  auto borderless = MakeDraw<DrawRectangle>();
  auto hidden = MakeDraw<DrawRectangle>();
  hidden->setVisible(false);
  group->setDraws({borderless, hidden});
  EXPECT_FALSE(group->hasBorder());  // one visible member without a border
  group->setDraws({borderless, MakeDraw<DrawEllipse>()});
  EXPECT_TRUE(group->hasBorder());  // a second visible member
  group->setDraws({MakeDraw<DrawFill>()});
  EXPECT_TRUE(group->hasBorder());  // a member with a border
  EXPECT_TRUE(MakeDraw<DrawEllipseSelection>()->startFromCenterWhenCreating());
  EXPECT_FALSE(MakeDraw<DrawEllipse>()->startFromCenterWhenCreating());
}

}  // namespace
}  // namespace paintdoc
