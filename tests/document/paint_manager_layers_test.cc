// The layer tree: finding, inserting, replacing, removing, reordering,
// grouping and ungrouping, moving into and out of groups and the saved
// structure. After every operation the cached picture must equal a fresh
// composition, and the paints it took are counted.
#include <gtest/gtest.h>

#include <functional>

#include "document/canvas_renderer.h"
#include "document/paint_manager.h"
#include "draws/draw_group.h"
#include "draws/draw_rectangle.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/values/not_found.h"
#include "raster/draw_image.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::ImagesMatch;

class CountedBox : public DrawRectangle {
 public:
  void drawInImage(const std::shared_ptr<Bitmap>& image) override {
    ++*paints_;
    DrawRectangle::drawInImage(image);
  }
  int* paints_ = nullptr;
};

class LayerTree : public ::testing::Test {
 public:
  // Boxes of distinct colours, overlapping so that order shows in pixels.
  std::shared_ptr<CountedBox> box(int i) {
    auto draw = MakeDraw<CountedBox>();
    draw->paints_ = &paints_;
    draw->setBezierPathWithBounds(MakeRect(2 * i, i, 12, 10));
    draw->setEnableStroke(false);
    draw->setEnableFill(true);
    draw->setFillColor(Color::calibratedRGB((i % 3) / 2.0, (i % 5) / 4.0, (i % 7) / 6.0, 1));
    return draw;
  }
  static std::shared_ptr<DrawGroup> group(const DrawList& members) {
    return DrawGroup::withDraws(members);
  }
  // Canvas: a, b, G{c, d}, e, H{f, g} (H on top), caches built.
  void SetUp() override {
    for (int i = 0; i < 7; ++i) d.push_back(box(i));
    g1 = group({d[2], d[3]});
    g2 = group({d[5], d[6]});
    for (const auto& draw : DrawList{d[0], d[1], g1, d[4], g2}) canvas->addDraw(draw);
    canvas->image();
    paints_ = 0;
  }
  // The cached picture against a fresh one; answers the paints the cached
  // one took.
  int checkPicture(const std::string& name) {
    paints_ = 0;
    auto cached = canvas->image();
    const int taken = std::exchange(paints_, 0);
    auto fresh = InitImageRep(40, 30);
    CanvasRenderer(*canvas, fresh, canvas->canvasRect()).paintAll();
    paints_ = 0;
    EXPECT_TRUE(ImagesMatch(*cached, *fresh, 0, "layers_" + name)) << name;
    return taken;
  }
  DrawList top() const { return canvas->allDraws(); }

  int paints_ = 0;
  std::shared_ptr<PaintManager> canvas = PaintManager::withSize({40, 30});
  DrawList d;
  std::shared_ptr<DrawGroup> g1, g2;
};

TEST_F(LayerTree, FindsOneLevelDeep) {
  EXPECT_TRUE(canvas->containsDraw(d[3]));
  EXPECT_FALSE(canvas->containsDraw(nullptr));
  EXPECT_EQ(canvas->groupForDraw(d[3]), g1);
  EXPECT_EQ(canvas->groupForDraw(g1), nullptr);
  EXPECT_EQ(canvas->indexOfDraw(g2), 4);
  EXPECT_EQ(canvas->indexOfDraw(d[3]), kNotFound);
  auto nested = box(9);
  EXPECT_FALSE(canvas->containsDraw(nested));
}

// Each operation with its expected result, tree and paints for the cached
// picture afterwards (the boxes painted again).
struct TreeCase {
  const char* name;
  std::function<bool(LayerTree&)> operation;
  std::function<DrawList(LayerTree&)> expectedTop;
  int paints;
};

TEST_F(LayerTree, OperationsKeepThePictureRight) {
  auto& t = *this;
  const std::vector<TreeCase> cases = {
      {"move the top group's member up: repainted at once",
       [](LayerTree& t) { return t.canvas->moveUpDraws({t.d[5]}); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.g2}; }, 0},
      {"move a lower group's member up: buffer dropped",
       [](LayerTree& t) { return t.canvas->moveUpDraws({t.d[2]}); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.g2}; }, 7},
      {"already on top: nothing moves",
       [](LayerTree& t) { return !t.canvas->moveUpDraws({t.g2}); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.g2}; }, 0},
      {"block of two moves down as one",
       [](LayerTree& t) { return t.canvas->moveDownDraws({t.d[1], t.g1}); },
       [](LayerTree& t) { return DrawList{t.d[1], t.g1, t.d[0], t.d[4], t.g2}; }, 7},
      {"insert in the middle",
       [](LayerTree& t) { return t.canvas->insertDraw(t.d.emplace_back(t.box(8)), 1); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[7], t.d[1], t.g1, t.d[4], t.g2}; }, 8},
      {"remove a member",
       [](LayerTree& t) { return t.canvas->removeDraw(t.d[3]); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.g2}; }, 6},
      {"replace a top-group member",
       [](LayerTree& t) { return t.canvas->replaceDraw(t.d[6], t.d.emplace_back(t.box(8))); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.g2}; }, 0},
      {"merge two draws and a group, placed at the topmost",
       [](LayerTree& t) { return t.canvas->mergeDraws({t.d[0], t.g1, t.d[4]}) != nullptr; },
       [](LayerTree& t) { return DrawList{t.d[1], t.d[0]->group()->shared_from_this(), t.g2}; },
       7},
      {"unmerge a lower group: the picture is unchanged",
       [](LayerTree& t) { return t.canvas->unMergeDraws({t.g1}).value() == DrawList{t.d[2], t.d[3]}; },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.d[2], t.d[3], t.d[4], t.g2}; }, 0},
      {"unmerge the top group: rebuilt",
       [](LayerTree& t) { return t.canvas->unMergeDraws({t.g2}).has_value(); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.d[5], t.d[6]}; }, 7},
      {"move draws into a group",
       [](LayerTree& t) { return t.canvas->moveDraws({t.d[0], t.d[6]}, t.g1, 1); },
       [](LayerTree& t) { return DrawList{t.d[1], t.g1, t.d[4], t.g2}; }, 7},
      {"move a member out to the top",
       [](LayerTree& t) { return t.canvas->moveDraws({t.d[2]}, nullptr, 5); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.g2, t.d[2]}; }, 7},
      {"put draws back where they were: no change",
       [](LayerTree& t) { return !t.canvas->moveDraws({t.d[1]}, nullptr, 2); },
       [](LayerTree& t) { return DrawList{t.d[0], t.d[1], t.g1, t.d[4], t.g2}; }, 0},
  };
  for (const TreeCase& c : cases) {
    SCOPED_TRACE(c.name);
    TearDown();
    t.d.clear();
    t.canvas = PaintManager::withSize({40, 30});
    SetUp();
    EXPECT_TRUE(c.operation(t));
    EXPECT_EQ(top(), c.expectedTop(t));
    EXPECT_EQ(checkPicture(c.name), c.paints);
  }
}

TEST_F(LayerTree, GroupOrderAfterMovesAndMerges) {
  ASSERT_TRUE(canvas->moveUpDraws({d[2]}));
  EXPECT_EQ(g1->draws(), (DrawList{d[3], d[2]}));
  EXPECT_FALSE(canvas->canMoveDrawsUp({d[2], g2}));
  EXPECT_TRUE(canvas->canMoveDrawsDown({d[2]}));
  auto merged = canvas->mergeDraws({d[0], g1, d[4]});
  ASSERT_NE(merged, nullptr);
  EXPECT_EQ(merged->draws(), (DrawList{d[0], d[3], d[2], d[4]}));
  EXPECT_EQ(d[3]->group(), merged.get());
  EXPECT_EQ(canvas->mergeDraws({d[5]}), nullptr);  // not top level
  auto withTarget = canvas->mergeDraws({d[5]}, d[1]);
  ASSERT_NE(withTarget, nullptr);
  EXPECT_EQ(withTarget->draws(), (DrawList{d[1], d[5]}));
  EXPECT_EQ(g2->draws(), (DrawList{d[6]}));
  EXPECT_EQ(top(), (DrawList{withTarget, merged, g2}));
}

TEST_F(LayerTree, UnmergeInsertsMembersInOrderAtTheGroupsPlace) {
  auto three = group({box(10), box(11), box(12)});
  const DrawList members = three->draws();
  ASSERT_TRUE(canvas->insertDraw(three, 2));
  ASSERT_TRUE(canvas->unMergeDraws({three}));
  const DrawList after = top();
  EXPECT_EQ(DrawList(after.begin() + 2, after.begin() + 5), members);
  for (const auto& member : members) EXPECT_EQ(member->group(), nullptr);
  EXPECT_FALSE(canvas->unMergeDraws({d[0]}).has_value());
}

TEST_F(LayerTree, BackgroundStaysAtTheBottom) {
  auto background = DrawImage::withImage(InitImageRep(40, 30));
  canvas->setBackgroundDraw(background);
  EXPECT_FALSE(canvas->insertDraw(box(9), 0));
  EXPECT_FALSE(canvas->replaceDraw(background, box(9)));  // only by an image
  EXPECT_FALSE(canvas->canMoveDrawsDown({d[0]}));
  EXPECT_EQ(canvas->savedLayerDrawsStatus().layers->size(), 5u);
  EXPECT_TRUE(canvas->removeDraw(background));
  EXPECT_EQ(canvas->backgroundDraw(), nullptr);
  EXPECT_TRUE(canvas->insertDraw(box(9), 0));
}

TEST_F(LayerTree, RestoringTheStatusUndoesStructureChanges) {
  const LayerStatus before = canvas->savedLayerDrawsStatus();
  EXPECT_EQ(canvas->restoreFromLayerStatus(before).value(), DrawList{});
  EXPECT_EQ(canvas->savedLayerDrawsStatus(), before);
  canvas->mergeDraws({d[0], g1});
  canvas->removeDraw(d[6]);
  const DrawList unknown = canvas->restoreFromLayerStatus(before).value();
  // d[0] is still held, by the merged group; g1 and d[6] are not.
  EXPECT_EQ(unknown, (DrawList{g1, d[6]}));
  EXPECT_EQ(canvas->savedLayerDrawsStatus(), before);
  EXPECT_EQ(d[2]->group(), g1.get());
  checkPicture("restored");
  EXPECT_FALSE(canvas->restoreFromLayerStatus(LayerStatus{before.layers, std::nullopt}));
  EXPECT_FALSE(canvas->restoreFromLayerStatus(LayerStatus{before.layers, std::vector<DrawList>{}}));
}

TEST_F(LayerTree, SelectsByRectangle) {
  EXPECT_TRUE(canvas->drawsInRect(MakeRect(0, 0, 1, 100)).empty());
  for (const auto& hidden : DrawList{d[1], d[4], g2}) hidden->setVisible(false);
  // Wholly inside: the group itself; partly: its members that meet it.
  EXPECT_EQ(canvas->drawsInRect(MakeRect(3.5, 1.5, 20, 20)), (DrawList{d[0], g1}));
  EXPECT_EQ(canvas->drawsInRect(MakeRect(0, 0, 5, 2.5)), (DrawList{d[0], d[2]}));
}

}  // namespace
}  // namespace paintdoc
