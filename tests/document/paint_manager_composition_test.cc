// Composition of the canvas: the two caches, which draws each operation
// paints (counted), the background and its mask.
#include <gtest/gtest.h>

#include "document/paint_manager.h"
#include "draws/draw_group.h"
#include "raster/draw_image.h"
#include "draws/draw_rectangle.h"
#include "platform/graphics/bitmap_functions.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::ImagesMatch;
using test::MakeImage;
using test::PixelAt;

constexpr Rgba8 kTransparent{0, 0, 0, 0};
constexpr Rgba8 kRed{255, 0, 0, 255};

// A filled rectangle that counts how often composition paints it.
class CountedBox : public DrawRectangle {
 public:
  void drawInImage(const std::shared_ptr<Bitmap>& image) override {
    ++*paints_;
    DrawRectangle::drawInImage(image);
  }
  void countInto(int* paints) { paints_ = paints; }

 private:
  int* paints_ = nullptr;
};

class Composition : public ::testing::Test {
 protected:
  std::shared_ptr<CountedBox> box(const Rect& rect, const Color& fill = Color::redColor()) {
    auto draw = MakeDraw<CountedBox>();
    draw->countInto(&paints_);
    draw->setBezierPathWithBounds(rect);
    draw->setEnableStroke(false);
    draw->setEnableFill(true);
    draw->setFillColor(fill);
    return draw;
  }
  // Paints counted since the last call.
  int takePaints() { return std::exchange(paints_, 0); }
  void addAll(std::initializer_list<std::shared_ptr<DrawBase>> draws) {
    for (const auto& draw : draws) canvas_->addDraw(draw);
  }
  static std::shared_ptr<DrawGroup> group(const DrawList& members) {
    auto made = MakeDraw<DrawGroup>();
    made->setDraws(members);
    return made;
  }

  std::shared_ptr<PaintManager> canvas_ = PaintManager::withSize({40, 30});

 private:
  int paints_ = 0;
};

TEST_F(Composition, ImageIsKeptWhileBothCachesExist) {
  auto empty = canvas_->image();
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->size(), MakeSize(40, 30));
  EXPECT_EQ(ImageRectByTrimEmpty(empty), ZeroRect());
  addAll({box(MakeRect(0, 0, 10, 10)), box(MakeRect(10, 0, 10, 10))});
  auto first = canvas_->image();
  EXPECT_EQ(takePaints(), 2);
  EXPECT_EQ(canvas_->image(), first);
  EXPECT_EQ(takePaints(), 0);
  // After dropping both caches everything is painted again.
  canvas_->clearMemeryBuffer();
  canvas_->image();
  EXPECT_EQ(takePaints(), 2);
}

TEST_F(Composition, HiddenTopDrawLeavesThePictureEqualToTheBuffer) {
  auto only = box(MakeRect(0, 0, 40, 30));
  canvas_->addDraw(only);
  EXPECT_EQ(PixelAt(*canvas_->image(), 5, 5), kRed);
  EXPECT_EQ(takePaints(), 1);
  // Hiding the only draw and repainting the top shows the empty buffer.
  only->setVisible(false);
  canvas_->respondToChangeOfDraws({only});
  EXPECT_EQ(takePaints(), 0);
  EXPECT_EQ(ImageRectByTrimEmpty(canvas_->image()), ZeroRect());

  canvas_ = PaintManager::withSize({40, 30});
  auto hidden = box(MakeRect(10, 0, 30, 30));
  hidden->setVisible(false);
  addAll({box(MakeRect(0, 0, 20, 30), Color::blueColor()), hidden});
  auto expected =
      MakeImage(40, 30, [](int x, int) { return x < 20 ? Rgba8{0, 0, 255, 255} : kTransparent; });
  EXPECT_TRUE(ImagesMatch(*canvas_->image(), *expected, 0, "invisible_top_draw"));
  EXPECT_EQ(takePaints(), 1);
  // A draw added over the hidden top puts nothing of it into the buffer.
  canvas_->addDraw(box(MakeRect(30, 0, 5, 5)));
  EXPECT_EQ(takePaints(), 0);
  EXPECT_EQ(PixelAt(*canvas_->image(), 25, 10), kTransparent);
}

TEST_F(Composition, ChangingTheTopDrawRepaintsOnlyIt) {
  auto bottom = box(MakeRect(0, 0, 10, 10));
  auto middle = box(MakeRect(10, 0, 10, 10));
  auto top = box(MakeRect(20, 0, 10, 10));
  addAll({bottom, middle, top});
  canvas_->image();
  EXPECT_EQ(takePaints(), 3);

  top->setFillColor(Color::greenColor());
  canvas_->respondToChangeOfDraws({top});
  EXPECT_EQ(takePaints(), 1);
  EXPECT_EQ(PixelAt(*canvas_->image(), 25, 5), (Rgba8{0, 255, 0, 255}));
  EXPECT_EQ(takePaints(), 0);

  // A lower draw drops the buffer; the next picture paints everything.
  canvas_->respondToChangeOfDraws({bottom});
  EXPECT_EQ(takePaints(), 0);
  canvas_->image();
  EXPECT_EQ(takePaints(), 3);
  // Two changed draws, the top among them, are not the top alone.
  canvas_->respondToChangeOfDraws({top, middle});
  canvas_->image();
  EXPECT_EQ(takePaints(), 3);
}

TEST_F(Composition, ChangesInsideGroupsRepaintTheTopGroupOrDropTheBuffer) {
  auto loose = box(MakeRect(0, 0, 5, 5));
  auto lowerMember = box(MakeRect(5, 0, 5, 5));
  auto topMember = box(MakeRect(10, 0, 5, 5));
  addAll({loose, group({lowerMember}), group({topMember})});
  canvas_->image();
  EXPECT_EQ(takePaints(), 3);

  canvas_->respondToChangeOfDraws({topMember});
  EXPECT_EQ(takePaints(), 1);  // repainted at once
  canvas_->image();
  EXPECT_EQ(takePaints(), 0);

  canvas_->respondToChangeOfDraws({topMember, lowerMember});
  EXPECT_EQ(takePaints(), 0);  // buffer dropped, nothing painted yet
  canvas_->image();
  EXPECT_EQ(takePaints(), 3);

  // A draw that is nowhere in the canvas changes nothing.
  canvas_->respondToChangeOfDraws({box(MakeRect(0, 0, 1, 1))});
  canvas_->image();
  EXPECT_EQ(takePaints(), 0);
}

TEST_F(Composition, AddingADrawPaintsOnlyThePreviousTopIntoTheBuffer) {
  auto first = box(MakeRect(0, 0, 20, 20), Color::blueColor());
  auto second = box(MakeRect(10, 10, 20, 20), Color::greenColor());
  auto third = box(MakeRect(20, 0, 20, 20));
  // Without a buffer nothing is painted.
  EXPECT_TRUE(canvas_->addDraw(first));
  EXPECT_TRUE(canvas_->addDraw(second));
  EXPECT_EQ(takePaints(), 0);
  canvas_->image();
  EXPECT_EQ(takePaints(), 2);

  EXPECT_TRUE(canvas_->addDraw(third));
  EXPECT_EQ(takePaints(), 1);  // `second` joins the buffer
  auto incremental = canvas_->image();
  EXPECT_EQ(takePaints(), 1);  // `third` on top

  auto fresh = PaintManager::withSize({40, 30});
  for (const auto& draw : {first, second, third}) fresh->addDraw(draw);
  EXPECT_TRUE(ImagesMatch(*incremental, *fresh->image(), 0, "add_draw_incremental"));

  EXPECT_FALSE(canvas_->addDraw(nullptr));
  EXPECT_FALSE(canvas_->addDraw(third));
  EXPECT_EQ(canvas_->allDraws().size(), 3u);
}

// A draw that empties the canvas while it is being painted.
class ListClearingBox : public DrawRectangle {
 public:
  explicit ListClearingBox(PaintManager* canvas) : canvas_(canvas) {}
  void drawInImage(const std::shared_ptr<Bitmap>&) override { canvas_->allDraws().clear(); }

 private:
  PaintManager* canvas_;
};

TEST_F(Composition, ThePaintingLoopFollowsAListThatShrinksUnderIt) {
  auto clearing = std::make_shared<ListClearingBox>(canvas_.get());
  clearing->init();
  addAll({clearing, box(MakeRect(0, 0, 5, 5)), box(MakeRect(0, 0, 5, 5))});
  EXPECT_TRUE(canvas_->image());
  EXPECT_EQ(takePaints(), 0);
  EXPECT_TRUE(canvas_->allDraws().empty());
}

TEST_F(Composition, VisibleDrawsLeaveOutHiddenDrawsAndGroupsWithNothingToShow) {
  const Rect r = MakeRect(0, 0, 5, 5);
  auto shown = box(r), hidden = box(r), hiddenMember = box(r);
  hidden->setVisible(false);
  hiddenMember->setVisible(false);
  auto showing = group({box(r), hiddenMember});
  canvas_->setBackgroundDraw(DrawImage::withImage(InitImageRep(4, 4)));
  addAll({shown, hidden, group({hiddenMember}), showing});
  EXPECT_EQ(canvas_->visibleDraws(), (DrawList{canvas_->backgroundDraw(), shown, showing}));
}

// A group in the collection comes as itself, never as its members; strangers are left out.
TEST_F(Composition, DrawsInLayerOrderLooksOneLevelIntoGroups) {
  const Rect r = MakeRect(0, 0, 1, 1);
  auto a = box(r), b = box(r), c = box(r), member1 = box(r), member2 = box(r);
  auto wholeGroup = group({c});
  addAll({a, group({member1, member2}), b, wholeGroup});
  EXPECT_EQ(canvas_->drawsInLayerOrder({wholeGroup, box(r), member2, b, member1, c, a}),
            (DrawList{a, member1, member2, b, wholeGroup}));
}

TEST(GetCenterRect, LargeImagesShrinkToFitAndAllAreCentred) {
  const Rect canvas = MakeRect(0, 0, 200, 100);
  EXPECT_EQ(GetCenterRect({400, 100}, canvas), MakeRect(0, 25, 200, 50));
  EXPECT_EQ(GetCenterRect({100, 400}, canvas), MakeRect(87.5, 0, 25, 100));
  EXPECT_EQ(GetCenterRect({400, 200}, canvas), MakeRect(0, 0, 200, 100));  // equal ratios: width rule
  EXPECT_EQ(GetCenterRect({50, 20}, canvas), MakeRect(75, 40, 50, 20));    // never enlarged
  // The ratio is rounded to single precision before it divides.
  const float ratio = static_cast<float>(300.0 / 200.0 * 1.1);
  EXPECT_EQ(GetCenterRect({330, 100}, canvas).size.height, 100 / static_cast<double>(ratio));
}

TEST_F(Composition, BackgroundImageIsFittedCentredAndReplacedInPlace) {
  auto canvasOf200 = PaintManager::withSize({200, 100});
  canvasOf200->addDraw(box(MakeRect(0, 0, 10, 10)));
  canvasOf200->setBackgroundImage(InitImageRep(400, 100));
  const std::shared_ptr<DrawImage> background = canvasOf200->backgroundDraw();
  ASSERT_TRUE(background);
  EXPECT_EQ(canvasOf200->allDraws().front(), background);
  EXPECT_EQ(background->controlBoundsBeforeRotation(), MakeRect(0, 25, 200, 50));

  canvasOf200->image();
  takePaints();
  auto smaller = InitImageRep(50, 20);
  canvasOf200->setBackgroundImage(smaller);
  EXPECT_EQ(canvasOf200->backgroundDraw(), background);  // the same draw, new pixels
  EXPECT_EQ(background->image(), smaller);
  EXPECT_EQ(background->controlBoundsBeforeRotation(), MakeRect(75, 40, 50, 20));
  canvasOf200->image();
  EXPECT_EQ(takePaints(), 1);  // the buffer was dropped and rebuilt below the top

  canvasOf200->setBackgroundImage(nullptr);
  EXPECT_FALSE(canvasOf200->backgroundDraw());
  EXPECT_EQ(canvasOf200->allDraws().size(), 1u);
}

// With the mask flag the picture keeps only what lies on the background's
// opaque pixels, scaled by their alpha; outside the background's rectangle
// everything is transparent.
TEST_F(Composition, MaskedBackgroundLeavesNothingOutsideItsRectangle) {
  auto canvas = PaintManager::withSize({100, 60});
  // 50 by 60, opaque white on the left half and half-transparent on the right.
  auto backgroundPixels = MakeImage(50, 60, [](int x, int) {
    return x < 25 ? Rgba8{255, 255, 255, 255} : Rgba8{128, 128, 128, 128};
  });
  canvas->setBackgroundImage(backgroundPixels);  // centred: (25, 0, 50, 60)
  canvas->addDraw(box(MakeRect(0, 0, 100, 60)));
  canvas->setMaskBackground(true);
  canvas->refreshImage();

  auto expected = MakeImage(100, 60, [](int x, int) {
    if (x < 25 || x >= 75) return kTransparent;
    return x < 50 ? kRed : Rgba8{128, 0, 0, 128};
  });
  EXPECT_TRUE(ImagesMatch(*canvas->image(), *expected, 1, "masked_background"));

  // Without the mask the top draw covers the canvas.
  canvas->setMaskBackground(false);
  canvas->refreshImage();
  EXPECT_EQ(PixelAt(*canvas->image(), 5, 5), kRed);
  EXPECT_EQ(PixelAt(*canvas->image(), 60, 5), kRed);
}

TEST_F(Composition, BackgroundIsPaintedBelowEveryOtherDraw) {
  auto canvas = PaintManager::withSize({20, 10});
  canvas->addDraw(box(MakeRect(0, 0, 10, 10)));
  canvas->addDraw(box(MakeRect(15, 0, 5, 10), Color::greenColor()));
  canvas->setBackgroundImage(MakeImage(20, 10, [](int, int) { return Rgba8{0, 0, 255, 255}; }));
  auto image = canvas->image();
  EXPECT_EQ(PixelAt(*image, 5, 5), kRed);
  EXPECT_EQ(PixelAt(*image, 12, 5), (Rgba8{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(*image, 17, 5), (Rgba8{0, 255, 0, 255}));
}

}  // namespace
}  // namespace paintdoc
