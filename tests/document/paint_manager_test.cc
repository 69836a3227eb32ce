// The canvas: creation with its rounding rules, accessors, background,
// release order and archive.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_group.h"
#include "draws/draw_image.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/bitmap.h"
#include "support/archive_fixtures.h"

namespace paintdoc {
namespace {

using test::ArchivedKeysOfRoot;
using test::KeysAs;

std::shared_ptr<PaintManager> Decode(const std::vector<uint8_t>& archive) {
  RegisterAllClasses();
  return KeyedUnarchiver::unarchiveObjectWithData<PaintManager>(SharedBytes::copyOf(archive));
}

std::shared_ptr<PaintManager> RoundTrip(const PaintManager& canvas) {
  return Decode(KeyedArchiver::archivedDataWithRootObject(canvas));
}

TEST(PaintManagerCreation, SizeIsTruncatedTowardZero) {
  EXPECT_EQ(PaintManager::withSize({640.7, 480.2})->canvasSize(), (Size{640, 480}));
  EXPECT_EQ(PaintManager::withSize({99.9, -0.5})->canvasSize(), (Size{99, 0}));
  EXPECT_EQ(PaintManager::withSize({-3.7, 0})->canvasSize(), (Size{-3, 0}));
  // Beyond the 32-bit range the side saturates; NaN gives 0.
  EXPECT_EQ(PaintManager::withSize({1e12, std::nan("")})->canvasSize(),
            (Size{2147483647.0, 0}));
}

TEST(PaintManagerCreation, NewCanvasIsEmpty) {
  auto canvas = PaintManager::withSize({10, 10});
  EXPECT_TRUE(canvas->allDraws().empty());
  EXPECT_EQ(canvas->backgroundDraw(), nullptr);
  EXPECT_FALSE(canvas->maskBackground());
  EXPECT_EQ(canvas->toppestDraw(), nullptr);
  EXPECT_EQ(PaintManager::version(), 10);
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
  // The bitmap is used as it is only without the TIFF trip.
  EXPECT_EQ(PaintManager::withImageRep(picture)->backgroundDraw()->image(), picture);
  EXPECT_NE(PaintManager::withImage(picture)->backgroundDraw()->image(), picture);
}

TEST(PaintManagerCreation, FromNoImageAnEmptyHundredByHundredCanvas) {
  for (auto canvas : {PaintManager::withImage(nullptr), PaintManager::withImageRep(nullptr)}) {
    EXPECT_EQ(canvas->canvasSize(), (Size{100, 100}));
    EXPECT_TRUE(canvas->allDraws().empty());
    EXPECT_EQ(canvas->backgroundDraw(), nullptr);
  }
}

TEST(PaintManagerCreation, SetSizeRoundsHalvesAwayFromZero) {
  auto canvas = PaintManager::withSize({1, 1});
  canvas->setSize({640.7, 480.2});
  EXPECT_EQ(canvas->canvasSize(), (Size{641, 480}));
  canvas->setSize({0.5, -0.5});
  EXPECT_EQ(canvas->canvasSize(), (Size{1, -1}));
  canvas->setSize({2.5, 2.4999});
  EXPECT_EQ(canvas->canvasSize(), (Size{3, 2}));
}

TEST(PaintManagerAccessors, ToppestDrawIsTheLastElement) {
  auto canvas = PaintManager::withSize({10, 10});
  auto background = MakeDraw<DrawImage>();
  canvas->setBackgroundDraw(background);
  EXPECT_EQ(canvas->toppestDraw(), background);  // the background alone
  auto line = MakeDraw<DrawLine>();
  canvas->allDraws().push_back(line);
  EXPECT_EQ(canvas->toppestDraw(), line);
}

TEST(PaintManagerAccessors, BackgroundIsAlwaysElementZeroAndListedOnce) {
  auto canvas = PaintManager::withSize({10, 10});
  auto line = MakeDraw<DrawLine>();
  auto first = MakeDraw<DrawImage>();
  auto second = MakeDraw<DrawImage>();
  canvas->allDraws() = {line, second};
  canvas->setBackgroundDraw(first);
  EXPECT_EQ(canvas->allDraws(), (DrawList{first, line, second}));
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

TEST(PaintManagerAccessors, ImageIsABitmapOfTheCanvasSize) {
  auto canvas = PaintManager::withSize({30, 20});
  auto image = canvas->image();
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->pixelsWide(), 30);
  EXPECT_EQ(image->pixelsHigh(), 20);
  EXPECT_EQ(canvas->image(), image);  // cached until released
  canvas->clearMemeryBuffer();
  EXPECT_NE(canvas->image(), nullptr);
}

TEST(PaintManagerRelease, GroupsLetGoOfTheirMembersFirst) {
  auto member = MakeDraw<DrawLine>();
  {
    auto canvas = PaintManager::withSize({10, 10});
    auto group = MakeDraw<DrawGroup>();
    group->setDraws({member});
    canvas->allDraws().push_back(group);
    EXPECT_EQ(member->group(), group.get());
    // Someone else still holds the group: releasing the canvas must still
    // break the member's link to it.
    auto keep = group;
    canvas.reset();
    EXPECT_EQ(member->group(), nullptr);
    EXPECT_TRUE(keep->draws().empty());
  }
}

TEST(PaintManagerArchive, WritesTheFourKeysInTheirForms) {
  auto canvas = PaintManager::withSize({640, 480});
  EXPECT_EQ(ArchivedKeysOfRoot(KeyedArchiver::archivedDataWithRootObject(*canvas)),
            (std::set<std::string>{"CanvasSize", "DrawsArray", "HasBackground",
                                   "MaskWithBackground"}));
}

TEST(PaintManagerArchive, RoundTripKeepsBackgroundAtIndexZeroAndTheMaskFlag) {
  auto canvas = PaintManager::withSize({64, 48});
  canvas->allDraws() = {MakeDraw<DrawRectangle>(), MakeDraw<DrawLine>()};
  canvas->setBackgroundDraw(MakeDraw<DrawImage>());
  canvas->setMaskBackground(true);
  auto copy = RoundTrip(*canvas);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->canvasSize(), (Size{64, 48}));
  ASSERT_EQ(copy->allDraws().size(), 3u);
  EXPECT_EQ(copy->allDraws()[0], copy->backgroundDraw());
  EXPECT_EQ(copy->allDraws()[0]->className(), "DrawImage");
  EXPECT_EQ(copy->allDraws()[1]->className(), "DrawRectangle");
  EXPECT_EQ(copy->allDraws()[2]->className(), "DrawLine");
  EXPECT_TRUE(copy->maskBackground());
}

TEST(PaintManagerArchive, BackgroundFlagNeedsALeadingImage) {
  const KeysAs rectangle("DrawRectangle", [](KeyedArchiver&) {});
  const KeysAs image("DrawImage", [](KeyedArchiver&) {});
  auto withFirst = [](const KeysAs& first, const KeysAs& second) {
    return Decode(test::ArchiveRoot(KeysAs("PaintManager", [&](KeyedArchiver& c) {
      c.encodeObjectArrayForKey({&first, &second}, "DrawsArray");
      c.encodeBoolForKey(true, "HasBackground");
    })));
  };
  auto noBackground = withFirst(rectangle, image);
  EXPECT_EQ(noBackground->backgroundDraw(), nullptr);
  EXPECT_EQ(noBackground->allDraws().size(), 2u);
  auto background = withFirst(image, rectangle);
  EXPECT_EQ(background->backgroundDraw(), background->allDraws()[0]);
  // A leading image without the flag stays an ordinary layer.
  auto unflagged = Decode(test::ArchiveRoot(KeysAs("PaintManager", [&](KeyedArchiver& c) {
    c.encodeObjectArrayForKey({&image}, "DrawsArray");
  })));
  EXPECT_EQ(unflagged->backgroundDraw(), nullptr);
  EXPECT_EQ(unflagged->allDraws().size(), 1u);
}

TEST(PaintManagerArchive, MissingKeysGiveAnEmptyZeroCanvas) {
  auto canvas = Decode(test::ArchiveRoot(KeysAs("PaintManager", [](KeyedArchiver&) {})));
  ASSERT_NE(canvas, nullptr);
  EXPECT_EQ(canvas->canvasSize(), (Size{0, 0}));
  EXPECT_TRUE(canvas->allDraws().empty());
  EXPECT_FALSE(canvas->maskBackground());
}

TEST(PaintManagerArchive, SizeIsReadWithoutRounding) {
  auto canvas = Decode(test::ArchiveRoot(KeysAs("PaintManager", [](KeyedArchiver& c) {
    c.encodeStringForKey("{100.75, 20.5}", "CanvasSize");
  })));
  EXPECT_EQ(canvas->canvasSize(), (Size{100.75, 20.5}));
}

TEST(PaintManagerArchive, UnknownClassesAndRepeatedDrawsAreLeftOut) {
  const KeysAs line("DrawLine", [](KeyedArchiver&) {});
  const KeysAs future("DrawFromTheFuture", [](KeyedArchiver&) {});
  const KeysAs group("DrawGroup", [&](KeyedArchiver& c) {
    c.encodeObjectArrayForKey({&line}, "Draws");
  });
  auto canvas = Decode(test::ArchiveRoot(KeysAs("PaintManager", [&](KeyedArchiver& c) {
    // The line is placed at the top level twice and inside the group.
    c.encodeObjectArrayForKey({&line, &future, &group, &line}, "DrawsArray");
  })));
  ASSERT_NE(canvas, nullptr);
  ASSERT_EQ(canvas->allDraws().size(), 1u);
  auto decodedGroup = std::dynamic_pointer_cast<DrawGroup>(canvas->allDraws()[0]);
  ASSERT_NE(decodedGroup, nullptr);
  ASSERT_EQ(decodedGroup->draws().size(), 1u);
  EXPECT_EQ(decodedGroup->draws()[0]->className(), "DrawLine");
}

}  // namespace
}  // namespace paintdoc
