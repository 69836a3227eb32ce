// Groups: bounds of empty groups, turns by right angles only, stretching
// with turned members, painting nested and turned groups against images
// built from the rules, refusal of cycles and of nesting too deep, and the
// shape code written from a group's outline.
#include <gtest/gtest.h>

#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/graphics/graphics_context.h"
#include "platform/values/log.h"
#include "support/drawing_test_support.h"

namespace paintdoc {
namespace {

using test::Draw;
using test::ImagesMatch;
using test::Inside;
using test::MakeImage;
using test::Premultiplied;

constexpr Rgba8 kTransparent{0, 0, 0, 0};

std::shared_ptr<DrawRectangle> Box(const Rect& rect, const Color& fill) {
  auto box = MakeDraw<DrawRectangle>();
  box->setBezierPathWithBounds(rect);
  box->setEnableStroke(false);
  box->setEnableFill(true);
  box->setFillColor(fill);
  return box;
}

TEST(DrawGroupGeometry, EmptyAndHiddenGroupsMeasureNothing) {
  auto empty = MakeDraw<DrawGroup>();
  auto hidden = Box(MakeRect(0, 0, 10, 10), Color::redColor());
  hidden->setVisible(false);
  auto allHidden = DrawGroup::withDraws({hidden});
  for (const auto& group : {empty, allHidden}) {
    EXPECT_TRUE(RectIsEmpty(group->drawRect()));
    EXPECT_TRUE(RectIsEmpty(group->pathBounds()));
    EXPECT_TRUE(RectIsEmpty(group->renderedRect()));
    EXPECT_FALSE(group->hasVisibleDraw());
    EXPECT_FALSE(group->hasBorder());
    EXPECT_EQ(group->renderedImage(), nullptr);
  }
  LogCapture log;
  empty->_draw();
  EXPECT_TRUE(log.contains("Error: Can't use draw for a group, please use drawInImage!"));
}

TEST(DrawGroupGeometry, TurnsOnlyByRightAngles) {
  struct Case {
    float degrees;
    bool turns;
  };
  for (const Case& c : {Case{90, true}, Case{180, true}, Case{-90, true}, Case{90.005f, true},
                        Case{45, false}, Case{90.02f, false}}) {
    auto member = Box(MakeRect(0, 0, 20, 10), Color::redColor());
    auto group = DrawGroup::withDraws({member});
    LogCapture log;
    group->setRotateDegree(c.degrees);
    EXPECT_EQ(member->rotateDegree() != 0, c.turns) << c.degrees;
    EXPECT_EQ(log.contains("Error: Group can't be rotated with degree: "), !c.turns) << c.degrees;
    EXPECT_EQ(group->rotateDegree(), 0) << c.degrees;
  }
}

TEST(DrawGroupGeometry, StretchingSkipsOnlyTheSkewedMember) {
  auto upright = Box(MakeRect(0, 0, 10, 10), Color::redColor());
  auto skewed = Box(MakeRect(20, 0, 10, 10), Color::redColor());
  skewed->setRotateDegree(30);
  auto standing = Box(MakeRect(40, 0, 20, 10), Color::redColor());
  standing->setRotateDegree(90);
  auto group = DrawGroup::withDraws({upright, skewed, standing});
  const Rect skewedBefore = skewed->pathBounds();
  LogCapture log;
  group->scaleBy(2, 1, {0, 0}, false);
  EXPECT_EQ(log.messages(), std::vector<std::string>{"Error: This group can't be resized!"});
  EXPECT_EQ(upright->pathBounds(), MakeRect(0, 0, 20, 10));
  EXPECT_EQ(skewed->pathBounds(), skewedBefore);
  // Standing on its side, the member grows along its own height, which lies
  // across the canvas: 20 by 20 on the canvas. Its centre moves by
  // (centre - own centre) * (1 - sx) in both axes: from (50, 5) to (100, 10).
  EXPECT_EQ(standing->drawRect(), MakeRect(90, 0, 20, 20));
}

TEST(DrawGroupGeometry, RefusesCyclesAndDeepNesting) {
  auto group = MakeDraw<DrawGroup>();
  auto outer = DrawGroup::withDraws({group});
  LogCapture log;
  group->setDraws({outer, Box(MakeRect(0, 0, 5, 5), Color::redColor())});
  EXPECT_EQ(group->draws().size(), 1u);
  EXPECT_FALSE(group->insertDraw(group, 0));
  EXPECT_TRUE(log.contains("Error: a group can't contain itself"));

  // A chain deeper than groups may nest: measured empty, drawing refused.
  std::shared_ptr<DrawBase> chain = Box(MakeRect(0, 0, 5, 5), Color::redColor());
  for (int i = 0; i < 2000; ++i) chain = DrawGroup::withDraws({chain});
  EXPECT_TRUE(RectIsEmpty(chain->drawRect()));
  auto bitmap = Draw(10, 10, [&](GraphicsContext& context) {
    chain->drawInImage(nullptr);
    EXPECT_TRUE(context.failed());
  });
  chain->moveBy(1, 1);
}

TEST(DrawGroupPainting, NestedAndTurnedGroups) {
  const Color red = Color::calibratedRGB(1, 0, 0, 1);
  const Color blue = Color::calibratedRGB(0, 0, 1, 1);
  const Rgba8 redPixel = Premultiplied(1, 0, 0, 1);
  const Rgba8 bluePixel = Premultiplied(0, 0, 1, 1);

  // A group inside a group paints into the same bitmap, in member order.
  auto nested = DrawGroup::withDraws(
      {Box(MakeRect(5, 5, 20, 10), red),
       DrawGroup::withDraws({Box(MakeRect(15, 10, 20, 15), blue)})});
  auto nestedImage = Draw(40, 30, [&](GraphicsContext&) { nested->drawInImage(nullptr); });
  EXPECT_TRUE(ImagesMatch(*nestedImage, *MakeImage(40, 30, [&](int x, int y) {
    if (Inside(x, y, 15, 10, 35, 25)) return bluePixel;
    return Inside(x, y, 5, 5, 25, 15) ? redPixel : kTransparent;
  }), 1, "group_nested"));

  // Turned by 90 degrees about the group's centre (30, 35): each member
  // stands up, 10 wide and 20 high.
  auto left = Box(MakeRect(10, 30, 20, 10), red);
  auto right = Box(MakeRect(30, 30, 20, 10), blue);
  auto turned = DrawGroup::withDraws({left, right});
  turned->setRotateDegree(90);
  auto turnedImage = Draw(60, 60, [&](GraphicsContext&) { turned->drawInImage(nullptr); });
  EXPECT_TRUE(ImagesMatch(*turnedImage, *MakeImage(60, 60, [&](int x, int y) {
    if (Inside(x, y, 25, 15, 35, 35)) return redPixel;
    return Inside(x, y, 25, 35, 35, 55) ? bluePixel : kTransparent;
  }), 1, "group_turned_90"));

  // The group alone: its rendered image holds exactly its members.
  auto alone = turned->renderedImage();
  ASSERT_NE(alone, nullptr);
  EXPECT_EQ(alone->pixelsWide(), 10);
  EXPECT_EQ(alone->pixelsHigh(), 40);
  EXPECT_EQ(test::PixelAt(*alone, 5, 5), redPixel);
  EXPECT_EQ(test::PixelAt(*alone, 5, 35), bluePixel);
}

TEST(DrawGroupShapeCode, WritesTheOutlineRelativeToItsBox) {
  auto stroked = [](const BezierPath& path, float degrees) {
    auto line = MakeDraw<DrawBrokenLine>();
    line->setBezierPathWithData(ArchiveValue(path));
    line->setStrokeColor(Color::blackColor());
    line->setRotateDegree(degrees);
    return line;
  };
  BezierPath square;
  square.moveTo({10, 10});
  square.lineTo({30, 10});
  square.lineTo({30, 20});
  square.lineTo({10, 20});
  square.lineTo({10, 10});
  BezierPath touching;  // starts where the square ended
  touching.moveTo({11, 11});
  touching.lineTo({20, 15});

  LogCapture log;
  DrawGroup::withDraws({stroked(square, 0.5f), stroked(touching, 0)})->createShapeCode();
  EXPECT_EQ(log.messages(),
            (std::vector<std::string>{
                "w : h = 2.000",
                "\n[path moveToPoint:NSMakePoint(xMin + 0.000 * w, yMin + 0.000 * h)];"
                "\n[path lineToPoint:NSMakePoint(xMin + 1.000 * w, yMin + 0.000 * h)];"
                "\n[path lineToPoint:NSMakePoint(xMin + 1.000 * w, yMin + 1.000 * h)];"
                "\n[path lineToPoint:NSMakePoint(xMin + 0.000 * w, yMin + 1.000 * h)];"
                "\n[path closePath];"
                "\n[path lineToPoint:NSMakePoint(xMin + 0.500 * w, yMin + 0.500 * h)];"}));

  log.clear();
  DrawGroup::withDraws({stroked(square, 2)})->createShapeCode();
  EXPECT_NE(log.messages().at(0), "w : h = 2.000");  // taken as displayed, turned

  log.clear();
  auto unstroked = Box(MakeRect(0, 0, 5, 5), Color::redColor());
  DrawGroup::withDraws({unstroked})->createShapeCode();
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"w : h = nan", ""}));
}

}  // namespace
}  // namespace paintdoc
