// The canvas: creation with its rounding rules, the background's place in
// the list, release order and archive.
#include <gtest/gtest.h>

#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_group.h"
#include "raster/draw_image.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/values/bitmap.h"
#include "support/archive_fixtures.h"

namespace paintdoc {
namespace {

using test::KeysAs;

std::shared_ptr<PaintManager> Decode(const std::vector<uint8_t>& archive) {
  RegisterAllClasses();
  return KeyedUnarchiver::unarchiveObjectWithData<PaintManager>(SharedBytes::copyOf(archive))
      .value_or(nullptr);
}

// A canvas decoded from exactly the keys `write` encodes.
std::shared_ptr<PaintManager> DecodeKeys(std::function<void(KeyedArchiver&)> write) {
  return Decode(test::ArchiveRoot(KeysAs("PaintManager", std::move(write))));
}

TEST(PaintManagerCreation, WithSizeTruncatesSetSizeRoundsHalvesAwayFromZero) {
  const struct {
    Size given, created, set;
  } cases[] = {
      {{640.7, 480.2}, {640, 480}, {641, 480}},
      {{99.9, -0.5}, {99, 0}, {100, -1}},
      {{-3.7, 2.5}, {-3, 2}, {-4, 3}},
      {{0.5, 2.4999}, {0, 2}, {1, 2}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.given.width << " x " << c.given.height);
    auto canvas = PaintManager::withSize(c.given);
    EXPECT_EQ(canvas->canvasSize(), c.created);
    canvas->setSize(c.given);
    EXPECT_EQ(canvas->canvasSize(), c.set);
  }
  // Beyond the 32-bit range the side saturates; NaN gives 0.
  EXPECT_EQ(PaintManager::withSize({1e12, std::nan("")})->canvasSize(), (Size{2147483647.0, 0}));
}

TEST(PaintManagerCreation, FromAnImageTheImageIsTheOnlyDrawAndTheBackground) {
  auto picture = Bitmap::create(300, 200);
  picture->setPixelAt(0, 0, {255, 0, 0, 255});  // top-left, opaque red
  for (auto canvas : {PaintManager::withImage(picture), PaintManager::withImageRep(picture)}) {
    EXPECT_EQ(canvas->canvasSize(), (Size{300, 200}));
    ASSERT_EQ(canvas->allDraws().size(), 1u);
    ASSERT_NE(canvas->backgroundDraw(), nullptr);
    EXPECT_EQ(canvas->allDraws()[0], canvas->backgroundDraw());
    EXPECT_EQ(canvas->backgroundDraw()->pathBounds(), MakeRect(0, 0, 300, 200));
    EXPECT_EQ(canvas->image()->pixelAt(0, 0), (Rgba8{255, 0, 0, 255}));
  }
  // The bitmap itself becomes the background.
  EXPECT_EQ(PaintManager::withImageRep(picture)->backgroundDraw()->image(), picture);
  // No image: an empty 100 by 100 canvas.
  for (auto canvas : {PaintManager::withImage(nullptr), PaintManager::withImageRep(nullptr)}) {
    EXPECT_EQ(canvas->canvasSize(), (Size{100, 100}));
    EXPECT_TRUE(canvas->allDraws().empty());
  }
}

TEST(PaintManagerAccessors, BackgroundIsAlwaysElementZeroListedOnceAndToppestIsTheLast) {
  auto canvas = PaintManager::withSize({10, 10});
  EXPECT_EQ(canvas->toppestDraw(), nullptr);
  auto line = MakeDraw<DrawLine>();
  auto first = MakeDraw<DrawImage>();
  auto second = MakeDraw<DrawImage>();
  canvas->setBackgroundDraw(first);
  EXPECT_EQ(canvas->toppestDraw(), first);  // the background alone
  canvas->allDraws() = {line, second};
  canvas->setBackgroundDraw(first);
  EXPECT_EQ(canvas->allDraws(), (DrawList{first, line, second}));
  EXPECT_EQ(canvas->toppestDraw(), second);
  // A draw already in the list moves to the bottom; the old background leaves.
  canvas->setBackgroundDraw(second);
  EXPECT_EQ(canvas->allDraws(), (DrawList{second, line}));
  EXPECT_EQ(canvas->backgroundDraw(), second);
  canvas->setBackgroundDraw(nullptr);
  EXPECT_EQ(canvas->allDraws(), (DrawList{line}));
  EXPECT_EQ(canvas->backgroundDraw(), nullptr);
  canvas->setBackgroundDraw(nullptr);  // nothing to remove
  EXPECT_EQ(canvas->allDraws(), (DrawList{line}));
}

// Someone else still holds the group: releasing the canvas must still break
// the member's link to it.
TEST(PaintManagerRelease, GroupsLetGoOfTheirMembersFirst) {
  auto member = MakeDraw<DrawLine>();
  auto canvas = PaintManager::withSize({10, 10});
  auto group = MakeDraw<DrawGroup>();
  group->setDraws({member});
  canvas->allDraws().push_back(group);
  EXPECT_EQ(member->group(), group.get());
  canvas.reset();
  EXPECT_EQ(member->group(), nullptr);
  EXPECT_TRUE(group->draws().empty());
}

TEST(PaintManagerArchive, RoundTripWritesTheFourKeysAndKeepsBackgroundAtIndexZero) {
  auto canvas = PaintManager::withSize({64, 48});
  EXPECT_EQ(test::ArchivedKeysOfRoot(KeyedArchiver::archivedDataWithRootObject(*canvas)),
            (std::set<std::string>{"CanvasSize", "DrawsArray", "HasBackground",
                                   "MaskWithBackground"}));
  canvas->allDraws() = {MakeDraw<DrawRectangle>(), MakeDraw<DrawLine>()};
  canvas->setBackgroundDraw(MakeDraw<DrawImage>());
  canvas->setMaskBackground(true);
  auto copy = Decode(KeyedArchiver::archivedDataWithRootObject(*canvas));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->canvasSize(), (Size{64, 48}));
  ASSERT_EQ(copy->allDraws().size(), 3u);
  EXPECT_EQ(copy->allDraws()[0], copy->backgroundDraw());
  EXPECT_EQ(copy->allDraws()[0]->className(), "DrawImage");
  EXPECT_EQ(copy->allDraws()[1]->className(), "DrawRectangle");
  EXPECT_EQ(copy->allDraws()[2]->className(), "DrawLine");
  EXPECT_TRUE(copy->maskBackground());
}

// The flag needs a leading image; a leading image without it is an ordinary layer.
TEST(PaintManagerArchive, BackgroundFlagNeedsALeadingImage) {
  const KeysAs rectangle("DrawRectangle", [](KeyedArchiver&) {});
  const KeysAs image("DrawImage", [](KeyedArchiver&) {});
  auto decode = [](std::vector<const Codable*> draws, bool flag) {
    return DecodeKeys([&](KeyedArchiver& c) {
      c.encodeObjectArrayForKey(draws, "DrawsArray");
      if (flag) c.encodeBoolForKey(true, "HasBackground");
    });
  };
  auto noBackground = decode({&rectangle, &image}, true);
  EXPECT_EQ(noBackground->backgroundDraw(), nullptr);
  EXPECT_EQ(noBackground->allDraws().size(), 2u);
  auto background = decode({&image, &rectangle}, true);
  EXPECT_EQ(background->backgroundDraw(), background->allDraws()[0]);
  auto unflagged = decode({&image}, false);
  EXPECT_EQ(unflagged->backgroundDraw(), nullptr);
  EXPECT_EQ(unflagged->allDraws().size(), 1u);
}

TEST(PaintManagerArchive, MissingKeysGiveAnEmptyZeroCanvasAndSizeIsReadWithoutRounding) {
  auto canvas = DecodeKeys([](KeyedArchiver&) {});
  ASSERT_NE(canvas, nullptr);
  EXPECT_EQ(canvas->canvasSize(), (Size{0, 0}));
  EXPECT_TRUE(canvas->allDraws().empty());
  EXPECT_FALSE(canvas->maskBackground());
  canvas = DecodeKeys([](KeyedArchiver& c) { c.encodeStringForKey("{100.75, 20.5}", "CanvasSize"); });
  EXPECT_EQ(canvas->canvasSize(), (Size{100.75, 20.5}));
}

TEST(PaintManagerArchive, UnknownClassesAndRepeatedDrawsAreLeftOut) {
  const KeysAs line("DrawLine", [](KeyedArchiver&) {});
  const KeysAs future("DrawFromTheFuture", [](KeyedArchiver&) {});
  const KeysAs group("DrawGroup", [&](KeyedArchiver& c) {
    c.encodeObjectArrayForKey({&line}, "Draws");
  });
  // The line is placed at the top level twice and inside the group.
  auto canvas = DecodeKeys([&](KeyedArchiver& c) {
    c.encodeObjectArrayForKey({&line, &future, &group, &line}, "DrawsArray");
  });
  ASSERT_NE(canvas, nullptr);
  ASSERT_EQ(canvas->allDraws().size(), 1u);
  auto decodedGroup = std::dynamic_pointer_cast<DrawGroup>(canvas->allDraws()[0]);
  ASSERT_NE(decodedGroup, nullptr);
  ASSERT_EQ(decodedGroup->draws().size(), 1u);
  EXPECT_EQ(decodedGroup->draws()[0]->className(), "DrawLine");
}

}  // namespace
}  // namespace paintdoc
