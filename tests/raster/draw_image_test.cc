// Image layers: opacity and its attribute, the shift ratio, flipping, the
// archive with its fallbacks, the highlight, and the drawing rules as golden
// images built from the rules (opacity over a known background, a turned
// layer, the inner shadow).
#include "raster/draw_image.h"

#include <gtest/gtest.h>

#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "draws/canvas_view.h"
#include "platform/codecs/image_codecs.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/graphics/graphics_context.h"
#include "platform/values/log.h"
#include "support/archive_fixtures.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::ImagesMatch;
using test::KeysAs;
using test::MakeImage;
using test::PixelAt;

constexpr Rgba8 kClear{0, 0, 0, 0}, kRed{255, 0, 0, 255}, kGreen{0, 255, 0, 255},
    kBlue{0, 0, 255, 255}, kYellow{255, 255, 0, 255}, kWhite{255, 255, 255, 255};

std::shared_ptr<Bitmap> Solid(int width, int height, Rgba8 pixel) {
  return MakeImage(width, height, [=](int, int) { return pixel; });
}

// The layer decoded from exactly the keys `write` encodes.
std::shared_ptr<DrawImage> DecodeKeys(std::function<void(KeyedArchiver&)> write) {
  auto decoded = KeyedUnarchiver::unarchiveObjectWithData(
      SharedBytes(test::ArchiveRoot(KeysAs("DrawImage", std::move(write)))));
  return decoded ? std::dynamic_pointer_cast<DrawImage>(*decoded) : nullptr;
}

std::shared_ptr<DrawImage> RoundTrip(const DrawImage& layer) {
  return std::dynamic_pointer_cast<DrawImage>(
      DrawBase::objectWithEncodedData(SharedBytes(layer.encodedData())));
}

// --- the model

TEST(DrawImage, MadeFromABitmapAtItsPixelSizeWithFullOpacityAndNoLine) {
  EXPECT_EQ(DrawImage::withImage(nullptr), nullptr);
  auto bitmap = Solid(30, 20, kRed);
  bitmap->setSize({15, 10});  // the pixel size counts, not the point size
  auto layer = DrawImage::withImage(bitmap);
  ASSERT_TRUE(layer);
  EXPECT_EQ(layer->image(), bitmap);
  EXPECT_EQ(layer->pathBounds(), MakeRect(0, 0, 30, 20));
  EXPECT_EQ(layer->bezierPath()->lineWidth(), 0);
  EXPECT_EQ(layer->opacity(), 1.0f);
  EXPECT_EQ(layer->name(), "Image");
  EXPECT_FALSE(layer->classDrawBezierPath());
  EXPECT_TRUE(layer->shouldAntialias());
  EXPECT_TRUE(layer->drawFill());
  EXPECT_EQ(layer->imageForDrawing(), bitmap);
}

TEST(DrawImage, OpacityIsClampedAndANaNChangesNothing) {
  auto layer = DrawImage::withImage(Solid(2, 2, kRed));
  const struct {
    float given, kept;
  } cases[] = {{0.25f, 0.25f}, {1.5f, 1.0f}, {-0.2f, 0.0f}, {1.0f, 1.0f}, {0.0f, 0.0f}};
  for (const auto& c : cases) {
    layer->setOpacity(c.given);
    EXPECT_EQ(layer->opacity(), c.kept) << c.given;
  }
  layer->setOpacity(0.5f);
  LogCapture log;
  layer->setOpacity(std::nanf(""));
  EXPECT_EQ(layer->opacity(), 0.5f);
  EXPECT_TRUE(log.contains("Error: setOpacity"));
}

TEST(DrawImage, ShiftRatioIsTheImagesWidthOverItsHeight) {
  EXPECT_EQ(DrawImage::withImage(Solid(300, 200, kRed))->width2HeightRatioForShift(), 1.5f);
  EXPECT_EQ(DrawImage::withImage(Solid(20, 80, kRed))->width2HeightRatioForShift(), 0.25f);
  auto layer = DrawImage::withImage(Solid(3, 2, kRed));
  layer->setImage(nullptr);
  EXPECT_EQ(layer->width2HeightRatioForShift(), 1.0f);
  layer->setImage(Bitmap::create(5, 0));
  EXPECT_EQ(layer->width2HeightRatioForShift(), 1.0f);
}

TEST(DrawImage, AttributesCarryTheOpacityWhichChangesOnlyBeyondAThousandth) {
  auto layer = DrawImage::withImage(Solid(2, 2, kRed));
  layer->setOpacity(0.4f);
  DrawAttributes attributes = layer->drawAttributes();
  const ArchiveValue* opacity = attributes.find(DAKeyOpacity);
  ASSERT_TRUE(opacity);
  EXPECT_EQ(opacity->kind(), ArchiveValue::Kind::Float);
  EXPECT_EQ(opacity->toDouble(), 0.4f);
  // The layer's own look changes nothing.
  EXPECT_FALSE(layer->setDrawAttributes(attributes));

  const struct {
    double given;
    float kept;
    bool changed;
  } cases[] = {
      {0.4005, 0.4f, false},  // within a thousandth
      {0.402, 0.402f, true},
      {7.0, 1.0f, true},      // clamped
      {-1.0, 0.0f, true},
      {-0.0005, 0.0f, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.given);
    attributes.set(DAKeyOpacity, c.given);
    EXPECT_EQ(layer->setDrawAttributes(attributes), c.changed);
    EXPECT_FLOAT_EQ(layer->opacity(), c.kept);
  }
  // The opacity applies even when the dictionary carries no colour (where
  // the rest of the look is left alone), and a missing key leaves it.
  DrawAttributes onlyOpacity;
  onlyOpacity.set(DAKeyOpacity, 0.75);
  EXPECT_TRUE(layer->setDrawAttributes(onlyOpacity));
  EXPECT_EQ(layer->opacity(), 0.75f);
  EXPECT_FALSE(layer->setDrawAttributes(DrawAttributes{}));
  EXPECT_EQ(layer->opacity(), 0.75f);
}

TEST(DrawImage, FlipMirrorsThePixelsWithTheOutline) {
  // Left column red, right column blue; bottom row green on the left.
  auto bitmap = MakeImage(2, 2, [](int x, int y) {
    return x == 0 ? (y == 0 ? kGreen : kRed) : kBlue;
  });
  auto layer = DrawImage::withImage(bitmap);
  layer->setBezierPathWithBounds(MakeRect(10, 10, 2, 2));
  layer->flip(true);
  EXPECT_EQ(PixelAt(*layer->image(), 0, 0), kBlue);
  EXPECT_EQ(PixelAt(*layer->image(), 1, 0), kGreen);
  EXPECT_EQ(layer->pathBounds(), MakeRect(10, 10, 2, 2));
  layer->flip(false);
  EXPECT_EQ(PixelAt(*layer->image(), 1, 1), kGreen);
  EXPECT_EQ(bitmap->pixelAt(0, 1), kGreen);  // the original bitmap is untouched
}

// --- the archive

TEST(DrawImageArchive, WritesImageAndOpacityAfterTheRectanglesKeys) {
  auto layer = DrawImage::withImage(MakeImage(3, 2, [](int x, int y) {
    return Rgba8{static_cast<uint8_t>(x * 100), static_cast<uint8_t>(y * 200), 50, 255};
  }));
  layer->setBezierPathWithBounds(MakeRect(5, 6, 30, 20));
  layer->setOpacity(0.3f);
  layer->setRotateDegree(30);
  layer->setEnableInnerShadow(true);
  layer->setInnerShadow(DrawBase::defaultInnerShadow());
  const std::set<std::string> keys = test::ArchivedKeysOfRoot(layer->encodedData());
  EXPECT_TRUE(keys.count("Image"));
  EXPECT_TRUE(keys.count("Opacity"));
  EXPECT_TRUE(keys.count("BezierPath"));

  auto read = RoundTrip(*layer);
  ASSERT_TRUE(read);
  ASSERT_TRUE(read->image());
  EXPECT_TRUE(read->image()->samePixels(*layer->image()));
  EXPECT_EQ(read->opacity(), 0.3f);
  EXPECT_EQ(read->pathBounds(), MakeRect(5, 6, 30, 20));
  EXPECT_EQ(read->rotateDegree(), 30.0f);
  EXPECT_EQ(read->innerShadow(), DrawBase::defaultInnerShadow());
  EXPECT_EQ(read->bezierPath()->lineWidth(), 0);

  // A layer without an image writes the null reference and reads none.
  layer->setImage(nullptr);
  EXPECT_TRUE(test::ArchivedKeysOfRoot(layer->encodedData()).count("Image"));
  read = RoundTrip(*layer);
  ASSERT_TRUE(read);
  EXPECT_FALSE(read->image());
}

TEST(DrawImageArchive, OpacityFallsBackToOneAndIsClampedAndTheLineWidthIsZero) {
  auto path = BezierPath::withRect(MakeRect(0, 0, 4, 4));
  path.setLineWidth(7);
  const struct {
    const char* name;
    std::function<void(KeyedArchiver&)> opacity;
    float expected;
  } cases[] = {
      {"missing", [](KeyedArchiver&) {}, 1.0f},
      {"stored", [](KeyedArchiver& c) { c.encodeFloatForKey(0.25f, "Opacity"); }, 0.25f},
      {"as a double", [](KeyedArchiver& c) { c.encodeDoubleForKey(0.5, "Opacity"); }, 0.5f},
      {"above one", [](KeyedArchiver& c) { c.encodeFloatForKey(3.0f, "Opacity"); }, 1.0f},
      {"below zero", [](KeyedArchiver& c) { c.encodeFloatForKey(-3.0f, "Opacity"); }, 0.0f},
      {"not a number", [](KeyedArchiver& c) { c.encodeFloatForKey(std::nanf(""), "Opacity"); },
       1.0f},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto read = DecodeKeys([&](KeyedArchiver& coder) {
      coder.encodeBezierPathForKey(path, "BezierPath");
      c.opacity(coder);
    });
    ASSERT_TRUE(read);
    EXPECT_EQ(read->opacity(), c.expected);
    EXPECT_EQ(read->bezierPath()->lineWidth(), 0);
    EXPECT_FALSE(read->image());
  }
}

TEST(DrawImageArchive, ImageMayBeAWrappedImageOrImageFileData) {
  auto pixels = Solid(4, 3, kBlue);
  const auto png = WritePNG(*pixels);
  ASSERT_TRUE(png);
  ArchivedImage wrapped;
  wrapped.size = MakeSize(4, 3);
  wrapped.representations = {pixels};
  const std::function<void(KeyedArchiver&)> forms[] = {
      [&](KeyedArchiver& c) { c.encodeBitmapForKey(pixels, "Image"); },
      [&](KeyedArchiver& c) { c.encodeImageForKey(wrapped, "Image"); },
      [&](KeyedArchiver& c) { c.encodeDataForKey(*png, "Image"); },
  };
  for (const auto& write : forms) {
    auto read = DecodeKeys(write);
    ASSERT_TRUE(read);
    ASSERT_TRUE(read->image());
    EXPECT_TRUE(read->image()->samePixels(*pixels));
  }
}

// --- drawing

// A layer of `image` in `bounds`, drawn into a width × height bitmap that
// `background` fills first.
std::shared_ptr<Bitmap> DrawLayer(DrawImage& layer, int width, int height,
                                  Rgba8 background = kClear) {
  auto bitmap = Solid(width, height, background);
  BitmapFocus focus(bitmap);
  layer.draw();
  return bitmap;
}

Rgba8 Over(Rgba8 top, double fraction, Rgba8 below) {
  auto channel = [&](uint8_t t, uint8_t b) {
    const double a = top.alpha / 255.0 * fraction;
    return test::ToByte((t / 255.0 * fraction + b / 255.0 * (1 - a)));
  };
  return {channel(top.red, below.red), channel(top.green, below.green),
          channel(top.blue, below.blue), channel(top.alpha, below.alpha)};
}

// At half opacity over blue, at an origin rounded to whole units (12.4 →
// 12, 8.6 → 9) and stretched to twice its width.
TEST(DrawImageGolden, HalfOpacityOverAKnownBackground) {
  const Rgba8 halfGreen{0, 128, 0, 128};
  auto layer = DrawImage::withImage(MakeImage(5, 6, [&](int x, int) {
    return x < 2 ? kRed : halfGreen;  // 2 of 5 columns: 4 of 10 once stretched
  }));
  layer->setBezierPathWithBounds(MakeRect(12.4, 8.6, 10, 6));
  layer->setOpacity(0.5f);
  auto drawn = DrawLayer(*layer, 40, 30, kBlue);
  auto expected = MakeImage(40, 30, [&](int x, int y) {
    if (x < 12 || x >= 22 || y < 9 || y >= 15) return kBlue;
    return Over(x < 16 ? kRed : halfGreen, 0.5, kBlue);
  });
  // The stretched image's seam between red and green is filtered with the
  // high-quality kernel, which rings up to three pixels to either side.
  EXPECT_TRUE(ImagesMatch(*drawn, *expected, 1, "image_half_opacity",
                          [](int x, int) { return x >= 13 && x < 19; }));
}

// Turned by 90 degrees about its centre (20, 15): the image's left half comes
// to lie below, its bottom on the right.
TEST(DrawImageGolden, TurnedLayer) {
  // Quadrants by image coordinates u (from the left) and v (from the bottom).
  auto quadrant = [](double u, double v) {
    return u < 10 ? (v < 5 ? kRed : kGreen) : (v < 5 ? kBlue : kYellow);
  };
  auto layer = DrawImage::withImage(
      MakeImage(20, 10, [&](int x, int y) { return quadrant(x + 0.5, y + 0.5); }));
  layer->setBezierPathWithBounds(MakeRect(10, 10, 20, 10));
  layer->setRotateDegree(90);
  auto drawn = DrawLayer(*layer, 40, 30);
  auto expected = MakeImage(40, 30, [&](int px, int py) {
    const double x = px + 0.5, y = py + 0.5;
    if (x < 15 || x >= 25 || y < 5 || y >= 25) return kClear;
    // Undo the turn: (x, y) came from (20 + (y − 15), 15 − (x − 20)).
    return quadrant(y - 15 + 10, 25 - x);
  });
  EXPECT_TRUE(ImagesMatch(*drawn, *expected, 1, "image_turned"));
}

// The inner shadow: the image's shape is cut out of the path, and a band of
// the shadow's colour lies along the inner edges of what is left, on the
// side away from the offset: inside the frame along its left and top edges,
// and below and right of the opaque square, as if the square stood out.
TEST(DrawImageGolden, InnerShadowAlongTheEdgesOfTheCutOutImage) {
  auto layer = DrawImage::withImage(MakeImage(20, 20, [](int x, int y) {
    return x >= 5 && x < 15 && y >= 5 && y < 15 ? kRed : kClear;
  }));
  layer->setBezierPathWithBounds(MakeRect(10, 10, 20, 20));
  layer->setEnableInnerShadow(true);
  layer->setInnerShadow(Shadow(Color::calibratedWhite(0, 0.5), {3, -3}, 0));
  auto drawn = DrawLayer(*layer, 40, 40, kWhite);
  const Rgba8 band = Over({0, 0, 0, 255}, 0.5, kWhite);
  auto inFrame = [](double x, double y) { return x >= 10 && x < 30 && y >= 10 && y < 30; };
  auto inSquare = [](double x, double y) { return x >= 15 && x < 25 && y >= 15 && y < 25; };
  auto expected = MakeImage(40, 40, [&](int px, int py) {
    const double x = px + 0.5, y = py + 0.5;
    if (inSquare(x, y)) return kRed;
    if (!inFrame(x, y)) return kWhite;
    // The shadow of what is left falls 3 right and 3 down; the band is where
    // it does not.
    const double fromX = x - 3, fromY = y + 3;
    const bool shadowed = inFrame(fromX, fromY) && !inSquare(fromX, fromY);
    return shadowed ? kWhite : band;
  });
  EXPECT_TRUE(ImagesMatch(*drawn, *expected, 1, "image_inner_shadow"));

  // An opaque image fills its path: nothing is left for the shadow.
  auto opaque = DrawImage::withImage(Solid(20, 20, kRed));
  opaque->setBezierPathWithBounds(MakeRect(10, 10, 20, 20));
  opaque->setEnableInnerShadow(true);
  opaque->setInnerShadow(Shadow(Color::calibratedWhite(0, 0.5), {3, -3}, 0));
  EXPECT_TRUE(ImagesMatch(*DrawLayer(*opaque, 40, 40, kWhite), *MakeImage(40, 40, [](int x, int y) {
    return x >= 10 && x < 30 && y >= 10 && y < 30 ? kRed : kWhite;
  }), 0, "image_inner_shadow_opaque"));

  // Below an opacity of 0.01 the inner shadow is left out.
  layer->setOpacity(0.005f);
  auto faint = DrawLayer(*layer, 40, 40, kWhite);
  EXPECT_EQ(PixelAt(*faint, 11, 28), kWhite);
}

TEST(DrawImageGolden, DropShadowFollowsTheImagesPixels) {
  auto layer = DrawImage::withImage(MakeImage(10, 10, [](int x, int) {
    return x < 5 ? kRed : kClear;
  }));
  layer->setBezierPathWithBounds(MakeRect(10, 10, 10, 10));
  layer->setEnableShadow(true);
  layer->setShadow(Shadow(Color::blackColor(), {6, -4}, 0));
  auto drawn = DrawLayer(*layer, 30, 30, kWhite);
  auto expected = MakeImage(30, 30, [](int px, int py) {
    const double x = px + 0.5, y = py + 0.5;
    if (x >= 10 && x < 15 && y >= 10 && y < 20) return kRed;
    if (x >= 16 && x < 21 && y >= 6 && y < 16) return Rgba8{0, 0, 0, 255};
    return kWhite;
  });
  EXPECT_TRUE(ImagesMatch(*drawn, *expected, 1, "image_drop_shadow"));
}

TEST(DrawImageGolden, NothingIsDrawnWithoutAnImage) {
  auto layer = DrawImage::withImage(Solid(4, 4, kRed));
  layer->setEnableShadow(true);
  layer->setShadow(DrawBase::defaultShadow());
  layer->setImage(nullptr);
  auto drawn = DrawLayer(*layer, 10, 10, kWhite);
  EXPECT_TRUE(ImagesMatch(*drawn, *Solid(10, 10, kWhite), 0, "image_without_pixels"));
}

// --- the highlight

class View : public CanvasView {
 public:
  View(float zoom, bool external) : zoom_(zoom), external_(external) {}
  float scale() const override { return zoom_; }
  AffineTransform transformForDrawing() const override {
    return AffineTransform::scaling(zoom_, zoom_);
  }
  bool highlightFromExternal() const override { return external_; }
  Size canvasSize() const override { return MakeSize(100, 100); }
  Point convertPointFromWindow(Point p) const override { return p; }
  Point convertPointToCanvasWithoutRound(Point p) const override {
    return {p.x / zoom_, p.y / zoom_};
  }
  Point convertPointFromCanvas(Point p) const override { return {p.x * zoom_, p.y * zoom_}; }
  Rect convertRectFromCanvas(Rect r) const override {
    return MakeRect(r.origin.x * zoom_, r.origin.y * zoom_, r.width() * zoom_, r.height() * zoom_);
  }

 private:
  float zoom_;
  bool external_;
};

TEST(DrawImage, HighlightOutlinesTheBoxAndShowsTheImageOnlyFromOutside) {
  auto layer = DrawImage::withImage(Solid(10, 10, kRed));
  layer->setBezierPathWithBounds(MakeRect(5, 5, 10, 10));
  layer->setOpacity(0.2f);  // the highlight shows the image at full opacity
  for (bool external : {false, true}) {
    SCOPED_TRACE(external);
    auto view = InitImageRep(40, 40);
    {
      BitmapFocus focus(view);
      layer->drawHighlightInCanvasView(View(2, external));
    }
    // The centre of the box (view pixels 20, 20) shows the image or nothing.
    EXPECT_EQ(PixelAt(*view, 20, 20), external ? kRed : kClear);
    // The outline lies on the box's edge at x = 10 view pixels, 2 pixels wide.
    EXPECT_EQ(PixelAt(*view, 9, 20).alpha, 255);
    EXPECT_EQ(PixelAt(*view, 10, 20).alpha, 255);
    EXPECT_EQ(PixelAt(*view, 8, 20).alpha, 0);
    EXPECT_NE(PixelAt(*view, 9, 20), kRed);
  }
}

}  // namespace
}  // namespace paintdoc
