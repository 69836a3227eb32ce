// Masks, flood fills, fill layers and freehand strokes, checked through the
// pixels they compose to.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "document/canvas_renderer.h"
#include "document/paint_manager.h"
#include "draws/draw_rectangle.h"
#include "raster/draw_eraser.h"
#include "raster/draw_fill.h"
#include "raster/image_fill.h"
#include "raster/image_mask.h"
#include "raster/spray_random.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::ImagesMatch;
using test::MakeImage;
using test::PixelAt;

const Rgba8 kClear{};
const Rgba8 kRed{255, 0, 0, 255};
const Rgba8 kBlue{0, 0, 255, 255};

std::shared_ptr<ImageMask> Mask(std::vector<uint8_t> bytes, int x, int y, int w, int h) {
  return std::make_shared<ImageMask>(std::move(bytes), x, y, w, h);
}

std::shared_ptr<Bitmap> Render(const PaintManager& canvas, int wide, int high) {
  auto bitmap = Bitmap::create(wide, high);
  CanvasRenderer renderer(canvas, bitmap, MakeRect(0, 0, canvas.canvasSize().width,
                                                   canvas.canvasSize().height));
  renderer.paintAll();
  EXPECT_FALSE(renderer.failed()) << renderer.failure();
  return bitmap;
}

TEST(ImageMask, ArchiveRoundTripAndRefusals) {
  const ImageMask mask({1, 0, 1, 1, 1, 0}, -2, 5, 3, 2);
  const std::vector<uint8_t> data = KeyedArchiver::archivedDataWithRootObject(mask);
  auto decoded = KeyedUnarchiver::unarchiveObjectWithData<ImageMask>(SharedBytes(data));
  ASSERT_TRUE(decoded) << decoded.reason();
  EXPECT_EQ((*decoded)->maskData(), mask.maskData());
  EXPECT_EQ((*decoded)->maskRect(), MakeRect(-2, 5, 3, 2));

  struct Case {
    std::vector<uint8_t> bytes;
    int64_t w, h;
    bool accepted;
  } cases[] = {
      {{1, 1, 1, 1}, 2, 2, true},
      {{1, 1, 1}, 2, 2, false},              // data shorter than its size
      {{1, 1}, 100000, 100000, false},       // absurd size
      {{1}, 0, 1, false},                    // no area
      {{1}, -1, -1, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(bool(ImageMask::fromData(c.bytes, 0, 0, c.w, c.h)), c.accepted) << c.w << "x" << c.h;
  }
}

TEST(ImageMask, PathForFillChoosesRectRunsOrNothing) {
  bool stroke = false;
  auto full = Mask({1, 1, 1, 1, 1, 1, 1, 1, 1}, 4, 5, 3, 3)->bezierPathForFill(stroke);
  ASSERT_TRUE(full);
  EXPECT_FALSE(stroke);
  EXPECT_EQ(full->bounds(), MakeRect(4, 5, 3, 3));

  auto holed = Mask({1, 1, 1, 1, 0, 1, 1, 1, 1}, 4, 5, 3, 3)->bezierPathForFill(stroke);
  ASSERT_TRUE(holed);
  EXPECT_TRUE(stroke);
  // Rows from the bottom: one run, two single pixels, one run.
  ASSERT_EQ(holed->elementCount(), 8u);
  EXPECT_EQ(holed->elementAt(2).endPoint(), (Point{4, 6}));
  EXPECT_EQ(holed->elementAt(5).endPoint(), (Point{6, 6}));

  std::vector<uint8_t> speckled(200 * 200);
  for (size_t i = 0; i < speckled.size(); ++i) speckled[i] = ((i / 200 + i) % 2) ? 1 : 0;
  EXPECT_FALSE(Mask(speckled, 0, 0, 200, 200)->bezierPathForFill(stroke));
}

TEST(ImageMask, ScaleRotateFlip) {
  auto mask = Mask({1, 0, 0, 0, 0, 1}, 1, 1, 3, 2);
  auto scaled = mask->imageMaskScaledBy(2, 2);
  ASSERT_TRUE(scaled);
  EXPECT_EQ(scaled->maskRect(), MakeRect(2, 2, 6, 4));
  EXPECT_EQ(scaled->maskData()[0], 1);
  EXPECT_EQ(scaled->maskData()[7], 1);
  EXPECT_EQ(scaled->maskData()[23], 1);
  EXPECT_EQ(scaled->maskData()[2], 0);

  auto turned = mask->imageMaskRotatedByDegree(-90);
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->maskRect().size, (Size{2, 3}));
  EXPECT_FALSE(mask->imageMaskRotatedByDegree(45));
  EXPECT_FALSE(mask->imageMaskRotatedByDegree(360));

  mask->flip(true);
  EXPECT_EQ(mask->maskData(), (std::vector<uint8_t>{0, 0, 1, 1, 0, 0}));
}

// A 5 × 5 white image with a blue diagonal from the lower left to the upper
// right: the two white halves touch only at corners.
std::shared_ptr<Bitmap> Diagonal() {
  return MakeImage(5, 5, [](int x, int y) { return x == y ? kBlue : Rgba8{255, 255, 255, 255}; });
}

TEST(ImageFill, RegionsAreFourConnected) {
  struct Case {
    const char* name;
    std::shared_ptr<Bitmap> image;
    Point seed;
    uint8_t tolerance;
    int filledPixels;
    bool fillAll;
  } cases[] = {
      {"diagonal does not leak", Diagonal(), {0, 4}, 0, 10, false},
      {"diagonal joins at its own colour", Diagonal(), {0, 4}, 255, 25, true},
      {"single colour fills everything", MakeImage(7, 3, [](int, int) { return kRed; }),
       {3, 1}, 0, 21, true},
  };
  for (const Case& c : cases) {
    auto fill = ImageFill::withImage(c.image, c.seed);
    ASSERT_TRUE(fill) << c.name;
    fill->setFillColor(Color::calibratedRGB(0, 1, 0));
    fill->fillWithTolerance(c.tolerance);
    int filled = 0;
    for (int y = 0; y < c.image->pixelsHigh(); ++y) {
      for (int x = 0; x < c.image->pixelsWide(); ++x) {
        const bool inRegion = fill->isPointFilled({double(x), double(y)});
        filled += inRegion;
        const Rgba8 green{0, 255, 0, 255};
        EXPECT_EQ(PixelAt(*fill->fillImage(), x, y), inRegion ? green : kClear)
            << c.name << " at " << x << "," << y;
      }
    }
    EXPECT_EQ(filled, c.filledPixels) << c.name;
    EXPECT_EQ(fill->isFillAllRect(), c.fillAll) << c.name;
  }
  EXPECT_FALSE(ImageFill::withImage(Diagonal(), {4.6, 0}));
  EXPECT_TRUE(ImageFill::withImage(Diagonal(), {-0.4, 0}));
}

TEST(ImageFill, ShrinkingClearsAndLargeCanvasNeedsNoRecursion) {
  // A spiral-free but huge region: a 4000 × 4000 canvas with one column of
  // another colour; the search walks it without deep calls.
  auto big = Bitmap::create(4000, 4000);
  for (int y = 0; y < 4000; ++y) big->setPixelAt(2000, y, kRed);
  auto fill = ImageFill::withImage(big, {10, 10});
  ASSERT_TRUE(fill);
  fill->setFillColor(Color::blackColor());
  fill->fillWithTolerance(0);
  EXPECT_EQ(fill->fillRect(), MakeRect(0, 0, 2000, 4000));
  fill->fillWithTolerance(255);
  EXPECT_EQ(fill->fillRect(), MakeRect(0, 0, 4000, 4000));
  fill->fillWithTolerance(0);
  EXPECT_EQ(PixelAt(*fill->fillImage(), 3000, 5), kClear) << "the larger region was cleared";
}

TEST(ImageFill, BorderOfASquareRunsThroughOuterPixelCentres) {
  auto image = MakeImage(7, 7, [](int x, int y) {
    return (x >= 2 && x <= 4 && y >= 2 && y <= 4) ? kRed : kBlue;
  });
  auto fill = ImageFill::withImage(image, {3, 3});
  fill->fillWithTolerance(0);
  EXPECT_EQ(fill->fillRect(), MakeRect(2, 2, 3, 3));
  const BezierPath border = fill->fillBorder();
  EXPECT_EQ(border.bounds(), MakeRect(2, 2, 2, 2));
  EXPECT_FALSE(border.isEmpty());
}

// Each fill form composes to exactly its region, also when the canvas is
// drawn at half size (a thumbnail).
TEST(DrawFill, FormsComposeToTheirRegionAtAnyScale) {
  std::vector<uint8_t> ring(8 * 8, 1);
  for (int y = 2; y < 6; ++y) {
    for (int x = 2; x < 6; ++x) ring[size_t(y * 8 + x)] = 0;
  }
  struct Case {
    const char* name;
    std::shared_ptr<ImageMask> mask;
    int64_t type;
  } cases[] = {
      {"rectangle", Mask(std::vector<uint8_t>(64, 1), 4, 4, 8, 8), DrawFill::kFillTypeRect},
      {"runs", Mask(ring, 4, 4, 8, 8), DrawFill::kFillTypeRuns},
  };
  for (const Case& c : cases) {
    for (int pass = 0; pass < 2; ++pass) {
      auto fill = DrawFill::withImageMask(c.mask);
      ASSERT_EQ(fill->fillType(), c.type) << c.name;
      fill->setFillColor(Color::calibratedRGB(1, 0, 0));
      // The same region held as a mask paints the same pixels.
      if (pass == 1) {
        const std::vector<uint8_t> archived = KeyedArchiver::archivedDataWithRootObject(*fill);
        auto decoded = KeyedUnarchiver::unarchiveObjectWithData<DrawFill>(SharedBytes(archived));
        ASSERT_TRUE(decoded) << decoded.reason();
        fill = *decoded;
        EXPECT_EQ(fill->fillType(), c.type) << c.name << " read back";
      }
      PaintManager canvas;
      canvas.setSize({16, 16});
      canvas.addDraw(fill);
      auto full = Render(canvas, 16, 16);
      auto expected = MakeImage(16, 16, [&](int x, int y) {
        return c.mask->fillAtPoint({double(x), double(y)}) ? kRed : kClear;
      });
      EXPECT_TRUE(ImagesMatch(*full, *expected, 0, std::string("fill-") + c.name)) << c.name;
      auto half = Render(canvas, 8, 8);
      EXPECT_EQ(PixelAt(*half, 2, 2), kRed) << c.name << " thumbnail";
      EXPECT_EQ(PixelAt(*half, 0, 0), kClear) << c.name << " thumbnail";
    }
  }
}

TEST(DrawFill, MaskFillReplacesOnlyCoveredPixels) {
  std::vector<uint8_t> checker(10 * 10);
  for (int i = 0; i < 100; ++i) checker[size_t(i)] = ((i / 10 + i) % 2) ? 1 : 0;
  auto mask = Mask(checker, 0, 0, 10, 10);
  // Held as the mask itself, as a speckled region read from a file is.
  auto decoded = DrawFill::withImageMask(mask);
  ASSERT_NE(decoded->fillType(), DrawFill::kFillTypeRect);
  PaintManager canvas;
  canvas.setSize({10, 10});
  auto under = MakeDraw<DrawRectangle>();
  under->setBezierPathWithBounds(MakeRect(0, 0, 10, 10));
  under->setEnableStroke(false);
  under->setEnableFill(true);
  under->setFillColor(Color::calibratedRGB(0, 0, 1));
  canvas.addDraw(under);
  decoded->setFillColor(Color::clearColor());
  canvas.addDraw(decoded);
  auto picture = Render(canvas, 10, 10);
  auto expected = MakeImage(10, 10, [&](int x, int y) {
    return mask->fillAtPoint({double(x), double(y)}) ? kClear : kBlue;
  });
  EXPECT_TRUE(ImagesMatch(*picture, *expected, 0, "mask-fill"));
}

TEST(DrawEraser, StrokeOverAFilledRectangleComposesToClearPixels) {
  PaintManager canvas;
  canvas.setSize({20, 20});
  auto rect = MakeDraw<DrawRectangle>();
  rect->setBezierPathWithBounds(MakeRect(0, 0, 20, 20));
  rect->setEnableStroke(false);
  rect->setEnableFill(true);
  rect->setFillColor(Color::calibratedRGB(1, 0, 0));
  canvas.addDraw(rect);
  auto eraser = MakeDraw<DrawEraser>();
  eraser->setStrokeColor(Color::calibratedRGB(0, 1, 0));
  BezierPath stroke;
  stroke.moveTo({2, 10});
  stroke.lineTo({18, 10});
  eraser->setBezierPathWithData(ArchiveValue(stroke));
  canvas.addDraw(eraser);
  auto picture = Render(canvas, 20, 20);
  EXPECT_EQ(PixelAt(*picture, 10, 10), kClear);
  EXPECT_EQ(PixelAt(*picture, 10, 3), kRed);
}

TEST(SprayRandom, FollowsTheCLibraryGenerator) {
  srandom(1);
  SprayRandom generator;
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(generator.next(), random()) << "number " << i;
}

}  // namespace
}  // namespace paintdoc
