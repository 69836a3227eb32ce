// The class tree: every draw class is registered under its archived name with
// its superclass, and answers its traits and display name.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/register_all_classes.h"
#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "raster/draw_raster.h"
#include "draws/draw_rectangle.h"
#include "raster/draw_selections.h"
#include "platform/values/class_registry.h"

namespace paintdoc {
namespace {

struct ExpectedClass {
  const char* name;
  const char* superclass;
  const char* displayName;  // nullptr: given by the class's own data later
  // Traits of a freshly initialised draw, in this order: classDrawBezierPath,
  // classDrawStroke, classDrawFill, copyWhenComposite, hasBorder, isSelectTool,
  // hasControlKnob, shouldAntialias, acceptMouseMoveEventWhenInitDraw,
  // canContinueInitWhenMouseUp.
  const char* traits;
};

// Read off the trait tables of the class tree: y = yes, n = no.
const ExpectedClass kClasses[] = {
    {"DrawBase", "NSObject", "Draw", "yynnnnyyyn"},
    {"DrawRectangle", "DrawBase", "Rectangle", "yyynnnyynn"},
    {"DrawEllipse", "DrawRectangle", "Ellipse", "yyynnnyynn"},
    {"DrawRoundRectangle", "DrawRectangle", "Round Rectangle", "yyynnnyynn"},
    {"DrawGradient", "DrawRectangle", "Gradient", "ynynnnyynn"},
    {"DrawLine", "DrawBase", "Line", "yynnnnyyyn"},
    {"DrawCurve", "DrawBase", "Curve", "yynnnnyyyn"},
    {"DrawBrokenLine", "DrawBase", "Broken Line", "yynnnnyyyn"},
    {"DrawFreePolygon", "DrawBase", "Free Polygon", "yyynnnyyyn"},
    {"DrawGroup", "DrawBase", "Group", "nnnnnnyyyn"},
    {"DrawRectShape", "DrawRectangle", "Shape", "yyynnnyynn"},
    {"DrawRectPolygon", "DrawRectShape", "Polygon", "yyynnnyynn"},
    {"DrawRectStar", "DrawRectShape", "Star", "yyynnnyynn"},
    {"DrawRectHeart", "DrawRectShape", "Heart", "yyynnnyynn"},
    {"DrawRectWaterDrip", "DrawRectShape", "Water Drip", "yyynnnyynn"},
    {"DrawRectLocation", "DrawRectShape", "Location", "yyynnnyynn"},
    {"DrawRectBookmark", "DrawRectShape", "Bookmark", "yyynnnyynn"},
    {"DrawRectCloud", "DrawRectShape", "Cloud", "yyynnnyynn"},
    {"DrawRectLightning", "DrawRectShape", "Lightning", "yyynnnyynn"},
    {"DrawRectPerson", "DrawRectShape", "Person", "yyynnnyynn"},
    {"DrawRectMail", "DrawRectShape", "Mail", "yyynnnyynn"},
    {"DrawRectiMac", "DrawRectShape", "iMac", "yyynnnyynn"},
    {"DrawRectAppleLogo", "DrawRectShape", "Apple Logo", "yyynnnyynn"},
    {"DrawRectButterfly", "DrawRectShape", "Butterfly", "yyynnnyynn"},
    {"DrawRectCamera", "DrawRectShape", "Camera", "yyynnnyynn"},
    {"DrawRectEye", "DrawRectShape", "Eye", "yyynnnyynn"},
    {"DrawRectHome", "DrawRectShape", "Home", "yyynnnyynn"},
    {"DrawRectRefresh", "DrawRectShape", "Refresh", "yyynnnyynn"},
    {"DrawRectFolder", "DrawRectShape", "Folder", "yyynnnyynn"},
    {"DrawRectPicture", "DrawRectShape", "Picture", "yyynnnyynn"},
    {"DrawRectClock", "DrawRectShape", "Clock", "yyynnnyynn"},
    {"DrawRectSignal", "DrawRectShape", "Signal", "yyynnnyynn"},
    {"DrawRectMessage", "DrawRectShape", "Message", "yyynnnyynn"},
    {"DrawEllipseMessage", "DrawRectShape", "Ellipse Message", "yyynnnyynn"},
    {"DrawText", "DrawRectangle", "Text", "nnynynyynn"},
    {"DrawBezierText", "DrawText", "Curved Text", "nnynynyynn"},
    {"DrawImage", "DrawRectangle", "Image", "nnynynyynn"},
    {"DrawFilter", "DrawImage", nullptr, "nnynynnynn"},
    {"DrawFill", "DrawBase", "Fill", "nnyyynnynn"},
    {"DrawMagicSelection", "DrawBase", "Draw", "nnnnyynynn"},
    {"DrawPen", "DrawBase", "Sketch", "yynnynyyny"},
    {"DrawEraser", "DrawPen", "Eraser", "yynyynnnny"},
    {"DrawClear", "DrawBase", "Clear", "ynyyynnyyn"},
    {"DrawAirbrush", "DrawBase", "Airbrush", "yynnynnnnn"},
    {"DrawSelection", "DrawRectangle", "Rectangle", "nnynyyyynn"},
    {"DrawCrop", "DrawSelection", "Rectangle", "nnynyyyynn"},
    {"DrawEllipseSelection", "DrawEllipse", "Ellipse", "nnynyyyynn"},
    {"DrawLassoSelection", "DrawBase", "Draw", "nnnnyynynn"},
    {"DrawPolygonSelection", "DrawFreePolygon", "Free Polygon", "nnynyyyyyn"},
};

std::vector<bool> TraitsOf(const DrawBase& draw) {
  return {draw.classDrawBezierPath(),
          draw.classDrawStroke(),
          draw.classDrawFill(),
          draw.copyWhenComposite(),
          draw.hasBorder(),
          draw.isSelectTool(),
          draw.hasControlKnob(),
          draw.shouldAntialias(),
          draw.acceptMouseMoveEventWhenInitDraw(),
          draw.canContinueInitWhenMouseUp()};
}

std::vector<bool> Parse(const char* traits) {
  std::vector<bool> parsed;
  for (const char* c = traits; *c; ++c) parsed.push_back(*c == 'y');
  return parsed;
}

std::shared_ptr<DrawBase> Create(const char* name) {
  auto draw = std::dynamic_pointer_cast<DrawBase>(ClassRegistry::shared().create(name));
  if (draw) draw->init();
  return draw;
}

TEST(DrawClassTree, EveryClassIsRegisteredWithItsSuperclassTraitsAndDisplayName) {
  RegisterAllClasses();
  for (const ExpectedClass& expected : kClasses) {
    SCOPED_TRACE(expected.name);
    const ClassInfo* info = ClassRegistry::shared().find(expected.name);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->superclass, expected.superclass);
    EXPECT_TRUE(ClassRegistry::shared().isKindOf(expected.name, "DrawBase"));
    EXPECT_EQ(ClassRegistry::shared().classChain(expected.name).back(), "NSObject");
    auto draw = Create(expected.name);
    ASSERT_NE(draw, nullptr);
    EXPECT_EQ(draw->className(), expected.name);
    EXPECT_EQ(TraitsOf(*draw), Parse(expected.traits));
    if (expected.displayName) {
      EXPECT_EQ(draw->name(), expected.displayName);
    }
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
