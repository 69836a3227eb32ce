// Canvases with a background and image layers saved through the library's
// archiver and read back, as a user of the library would: the pixels, the
// layers' settings and the composed picture all come back.
#include <gtest/gtest.h>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_rectangle.h"
#include "raster/draw_image.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::ImagesMatch;
using test::MakeImage;

constexpr Rgba8 kClear{0, 0, 0, 0}, kRed{255, 0, 0, 255}, kWhite{255, 255, 255, 255};

std::shared_ptr<PaintManager> SavedAndRead(const PaintManager& canvas) {
  RegisterAllClasses();
  auto read = KeyedUnarchiver::unarchiveObjectWithData<PaintManager>(
      SharedBytes(KeyedArchiver::archivedDataWithRootObject(canvas)));
  EXPECT_TRUE(read) << read.reason();
  return read.value_or(nullptr);
}

std::shared_ptr<Bitmap> Gradient(int width, int height) {
  return MakeImage(width, height, [=](int x, int y) {
    return Rgba8{static_cast<uint8_t>(x * 255 / width), static_cast<uint8_t>(y * 255 / height),
                 160, 255};
  });
}

TEST(ImageLayersArchive, ACanvasMadeFromAnImageComposesTheSameAfterSaving) {
  auto canvas = PaintManager::withImage(Gradient(64, 48));
  const auto before = canvas->image();
  auto read = SavedAndRead(*canvas);
  ASSERT_TRUE(read);
  ASSERT_TRUE(read->backgroundDraw());
  EXPECT_EQ(read->allDraws().front(), read->backgroundDraw());
  ASSERT_TRUE(read->backgroundDraw()->image());
  EXPECT_TRUE(ImagesMatch(*read->image(), *before, 0, "image_only_canvas_read"));
}

// A background with transparent corners, masked, under image layers with
// opacity, a turn, a flip and an inner shadow, and one rectangle.
std::shared_ptr<PaintManager> LayeredCanvas() {
  auto canvas = PaintManager::withSize({80, 60});
  canvas->setBackgroundImage(MakeImage(60, 60, [](int x, int y) {
    const bool corner = (x < 10 || x >= 50) && (y < 10 || y >= 50);
    return corner ? kClear : Rgba8{200, 220, 240, 255};
  }));
  canvas->setMaskBackground(true);

  auto faded = DrawImage::withImage(Gradient(30, 20));
  faded->setBezierPathWithBounds(MakeRect(5, 5, 40, 30));
  faded->setOpacity(0.5f);
  canvas->addDraw(faded);

  auto turned = DrawImage::withImage(Gradient(16, 8));
  turned->setBezierPathWithBounds(MakeRect(40, 30, 32, 16));
  turned->setRotateDegree(30);
  turned->flip(true);
  turned->setEnableShadow(true);
  turned->setShadow(Shadow(Color::calibratedWhite(0, 0.6), {3, -3}, 2));
  canvas->addDraw(turned);

  auto box = MakeDraw<DrawRectangle>();
  box->setBezierPathWithBounds(MakeRect(20, 40, 10, 10));
  box->setEnableFill(true);
  box->setFillColor(Color::redColor());
  canvas->addDraw(box);

  auto cutout = DrawImage::withImage(MakeImage(20, 20, [](int x, int y) {
    return x >= 5 && x < 15 && y >= 5 && y < 15 ? kRed : kClear;
  }));
  cutout->setBezierPathWithBounds(MakeRect(50, 2, 20, 20));
  cutout->setEnableInnerShadow(true);
  cutout->setInnerShadow(Shadow(Color::calibratedWhite(0, 0.5), {2, -2}, 1));
  canvas->addDraw(cutout);
  return canvas;
}

TEST(ImageLayersArchive, BackgroundAndImageLayersComeBackWithTheirPixelsAndSettings) {
  auto canvas = LayeredCanvas();
  const auto before = canvas->image();
  auto read = SavedAndRead(*canvas);
  ASSERT_TRUE(read);
  ASSERT_EQ(read->allDraws().size(), canvas->allDraws().size());
  EXPECT_TRUE(read->maskBackground());
  ASSERT_TRUE(read->backgroundDraw());
  EXPECT_EQ(read->backgroundDraw()->controlBoundsBeforeRotation(), MakeRect(10, 0, 60, 60));
  for (size_t i = 0; i < canvas->allDraws().size(); ++i) {
    SCOPED_TRACE(i);
    const auto* original = dynamic_cast<const DrawImage*>(canvas->allDraws()[i].get());
    const auto* copy = dynamic_cast<const DrawImage*>(read->allDraws()[i].get());
    ASSERT_EQ(original == nullptr, copy == nullptr);
    if (!original) continue;
    ASSERT_TRUE(copy->image());
    EXPECT_TRUE(copy->image()->samePixels(*original->image()));
    EXPECT_EQ(copy->opacity(), original->opacity());
    EXPECT_EQ(copy->pathBounds(), original->pathBounds());
    EXPECT_EQ(copy->rotateDegree(), original->rotateDegree());
    EXPECT_EQ(copy->innerShadow(), original->innerShadow());
  }
  EXPECT_TRUE(ImagesMatch(*read->image(), *before, 0, "layered_canvas_read"));
}

// The mask after a save and a load, from the rules: only what lies on the
// background's opaque pixels is left, scaled by their alpha.
TEST(ImageLayersArchive, MaskedBackgroundStillMasksAfterSaving) {
  auto canvas = PaintManager::withSize({60, 40});
  canvas->setBackgroundImage(MakeImage(30, 40, [](int x, int) {
    return x < 15 ? kWhite : Rgba8{128, 128, 128, 128};
  }));  // centred: 15…45
  auto cover = DrawImage::withImage(MakeImage(6, 4, [](int, int) { return kRed; }));
  cover->setBezierPathWithBounds(MakeRect(0, 0, 60, 40));
  canvas->addDraw(cover);
  canvas->setMaskBackground(true);
  auto read = SavedAndRead(*canvas);
  ASSERT_TRUE(read);
  auto expected = MakeImage(60, 40, [](int x, int) {
    if (x < 15 || x >= 45) return kClear;
    return x < 30 ? kRed : Rgba8{128, 0, 0, 128};
  });
  EXPECT_TRUE(ImagesMatch(*read->image(), *expected, 1, "masked_background_read"));
}

}  // namespace
}  // namespace paintdoc
