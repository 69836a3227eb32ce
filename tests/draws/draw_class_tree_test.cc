// The class tree: every draw class is registered under its archived name with
// its superclass; the rules that depend on a class's traits.
#include <gtest/gtest.h>

#include <utility>

#include "document/register_all_classes.h"
#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "raster/draw_raster.h"
#include "draws/draw_rectangle.h"
#include "raster/draw_selections.h"
#include "platform/values/class_registry.h"

namespace paintdoc {
namespace {

// Each archived class name with its superclass: the chain written into
// archives as "$classes", which other readers fall back along.
const std::pair<const char*, const char*> kClasses[] = {
    {"DrawBase", "NSObject"}, {"DrawRectangle", "DrawBase"}, {"DrawEllipse", "DrawRectangle"},
    {"DrawRoundRectangle", "DrawRectangle"}, {"DrawGradient", "DrawRectangle"},
    {"DrawLine", "DrawBase"}, {"DrawCurve", "DrawBase"}, {"DrawBrokenLine", "DrawBase"},
    {"DrawFreePolygon", "DrawBase"}, {"DrawGroup", "DrawBase"}, {"DrawRectShape", "DrawRectangle"},
    {"DrawRectPolygon", "DrawRectShape"}, {"DrawRectStar", "DrawRectShape"},
    {"DrawRectHeart", "DrawRectShape"}, {"DrawRectWaterDrip", "DrawRectShape"},
    {"DrawRectLocation", "DrawRectShape"}, {"DrawRectBookmark", "DrawRectShape"},
    {"DrawRectCloud", "DrawRectShape"}, {"DrawRectLightning", "DrawRectShape"},
    {"DrawRectPerson", "DrawRectShape"}, {"DrawRectMail", "DrawRectShape"},
    {"DrawRectiMac", "DrawRectShape"}, {"DrawRectAppleLogo", "DrawRectShape"},
    {"DrawRectButterfly", "DrawRectShape"}, {"DrawRectCamera", "DrawRectShape"},
    {"DrawRectEye", "DrawRectShape"}, {"DrawRectHome", "DrawRectShape"},
    {"DrawRectRefresh", "DrawRectShape"}, {"DrawRectFolder", "DrawRectShape"},
    {"DrawRectPicture", "DrawRectShape"}, {"DrawRectClock", "DrawRectShape"},
    {"DrawRectSignal", "DrawRectShape"}, {"DrawRectMessage", "DrawRectShape"},
    {"DrawEllipseMessage", "DrawRectShape"}, {"DrawText", "DrawRectangle"},
    {"DrawBezierText", "DrawText"}, {"DrawImage", "DrawRectangle"}, {"DrawFilter", "DrawImage"},
    {"DrawFill", "DrawBase"}, {"DrawMagicSelection", "DrawBase"}, {"DrawPen", "DrawBase"},
    {"DrawEraser", "DrawPen"}, {"DrawClear", "DrawBase"}, {"DrawAirbrush", "DrawBase"},
    {"DrawSelection", "DrawRectangle"}, {"DrawCrop", "DrawSelection"},
    {"DrawEllipseSelection", "DrawEllipse"}, {"DrawLassoSelection", "DrawBase"},
    {"DrawPolygonSelection", "DrawFreePolygon"}
};

std::shared_ptr<DrawBase> Create(const char* name) {
  auto draw = std::dynamic_pointer_cast<DrawBase>(ClassRegistry::shared().create(name));
  if (draw) draw->init();
  return draw;
}

TEST(DrawClassTree, EveryClassIsRegisteredWithItsSuperclass) {
  RegisterAllClasses();
  for (const auto& [name, superclass] : kClasses) {
    SCOPED_TRACE(name);
    const ClassInfo* info = ClassRegistry::shared().find(name);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->superclass, superclass);
    EXPECT_EQ(ClassRegistry::shared().classChain(name).back(), "NSObject");
    auto draw = Create(name);
    ASSERT_NE(draw, nullptr);
    EXPECT_EQ(draw->className(), name);
  }
}

TEST(DrawClassTree, ShiftRatiosAndCreationFromTheCentre) {
  RegisterAllClasses();
  auto ratio = [](const char* name) {
    return std::dynamic_pointer_cast<DrawRectangle>(Create(name))->width2HeightRatioForShift();
  };
  EXPECT_EQ(ratio("DrawRectangle"), 1.0f);
  EXPECT_EQ(ratio("DrawRectHeart"), 1.1f);
  EXPECT_EQ(ratio("DrawRectAppleLogo"), 0.858f);
  EXPECT_EQ(ratio("DrawRectRefresh"), 1.0f);  // inherited
  EXPECT_EQ(ratio("DrawEllipseMessage"), 1.8f);
  EXPECT_TRUE(MakeDraw<DrawEllipseSelection>()->startFromCenterWhenCreating());
  EXPECT_FALSE(MakeDraw<DrawEllipse>()->startFromCenterWhenCreating());
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
}

}  // namespace
}  // namespace paintdoc
