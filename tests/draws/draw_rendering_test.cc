// The rendering pipeline of DrawBase: which layers of painting apply, the
// rectangles that bound them, and the painted pixels of fills, strokes,
// shadows, gradients and reflections, compared with images built from the
// drawing rules.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>
#include <numbers>

#include "document/paint_manager.h"
#include "raster/draw_airbrush.h"
#include "raster/draw_clear.h"
#include "raster/draw_eraser.h"
#include "raster/draw_fill.h"
#include "raster/draw_magic_selection.h"
#include "raster/draw_pen.h"
#include "draws/draw_rectangle.h"
#include "raster/draw_selections.h"
#include "platform/graphics/graphics_context.h"
#include "platform/values/log.h"
#include "platform/graphics/bitmap_functions.h"
#include "support/geometry_near.h"
#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

using test::ImagesMatch;
using test::MakeImage;
using test::PixelAt;
using test::PixelValue;

constexpr Rgba8 kTransparent{0, 0, 0, 0};

// --- building draws

std::shared_ptr<DrawRectangle> Rectangle(const Rect& box, std::optional<Color> fill,
                                         std::optional<Color> stroke, double lineWidth = 2) {
  auto draw = MakeDraw<DrawRectangle>();
  draw->setBezierPathWithBounds(box);
  draw->setBezierPathLineWidth(static_cast<float>(lineWidth));
  draw->setEnableFill(fill.has_value());
  if (fill) draw->setFillColor(*fill);
  draw->setEnableStroke(stroke.has_value());
  if (stroke) draw->setStrokeColor(*stroke);
  return draw;
}

// The draws composed bottom first on a transparent canvas.
std::shared_ptr<Bitmap> Compose(int width, int height, const DrawList& draws) {
  auto canvas = PaintManager::withSize(MakeSize(width, height));
  for (const auto& draw : draws) canvas->addDraw(draw);
  return canvas->image();
}

// --- expected pixels

// Whether the centre of pixel (x, y) lies in the rectangle.
bool CentreIn(int x, int y, const Rect& r) {
  const double cx = x + 0.5, cy = y + 0.5;
  return cx > r.minX() && cx < r.maxX() && cy > r.minY() && cy < r.maxY();
}

// The band a stroke of `width` with mitred corners covers around a rectangle.
bool CentreInStrokeBand(int x, int y, const Rect& r, double width) {
  return CentreIn(x, y, RectInset(r, -width / 2, -width / 2)) &&
         !CentreIn(x, y, RectInset(r, width / 2, width / 2));
}

// --- when fill and stroke apply

TEST(DrawStrokeAndFill, FaintColoursSwitchPaintingOff) {
  auto rectangle = Rectangle(MakeRect(0, 0, 10, 10), Color::calibratedRGB(1, 0, 0, 0.005),
                             Color::calibratedRGB(0, 0, 1, 0.005));
  EXPECT_FALSE(rectangle->drawFill());
  EXPECT_FALSE(rectangle->drawStroke());
  rectangle->setFillColor(Color::calibratedRGB(1, 0, 0, 0.01));
  rectangle->setStrokeColor(Color::calibratedRGB(0, 0, 1, 0.01));
  EXPECT_TRUE(rectangle->drawFill());
  EXPECT_TRUE(rectangle->drawStroke());
  rectangle->setFillColor(std::nullopt);
  rectangle->setStrokeColor(std::nullopt);
  EXPECT_FALSE(rectangle->drawFill());
  EXPECT_FALSE(rectangle->drawStroke());
}

TEST(DrawStrokeAndFill, GradientFillNeedsAGradientAndFlagsAndTraitsComeFirst) {
  auto rectangle = Rectangle(MakeRect(0, 0, 10, 10), Color::redColor(), Color::blueColor());
  rectangle->setFillWithGradient(true);
  EXPECT_FALSE(rectangle->drawFill());
  rectangle->setFillGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()));
  EXPECT_TRUE(rectangle->drawFill());
  rectangle->setEnableFill(false);
  rectangle->setEnableStroke(false);
  EXPECT_FALSE(rectangle->drawFill());
  EXPECT_FALSE(rectangle->drawStroke());

  // A gradient box never strokes, even with stroke switched on.
  auto gradient = MakeDraw<DrawGradient>();
  gradient->setEnableStroke(true);
  EXPECT_FALSE(gradient->drawStroke());
  EXPECT_TRUE(gradient->drawFill());
}

TEST(DrawStrokeAndFill, DrawsThatReplacePixelsPaintWhateverTheirColour) {
  auto clear = MakeDraw<DrawClear>();
  clear->setFillColor(Color::calibratedRGB(0, 0, 0, 0.005));
  EXPECT_TRUE(clear->drawFill());
  auto eraser = MakeDraw<DrawEraser>();
  eraser->setStrokeColor(Color::clearColor());
  EXPECT_TRUE(eraser->drawStroke());
}

// --- the rectangles around what a draw paints

TEST(DrawRect, GrowsByHalfTheLineWidthOnlyWhenStroked) {
  auto rectangle = Rectangle(MakeRect(10, 20, 30, 40), Color::redColor(), Color::blueColor(), 4);
  EXPECT_EQ(rectangle->drawRect(), MakeRect(8, 18, 34, 44));
  rectangle->setEnableStroke(false);
  EXPECT_EQ(rectangle->drawRect(), MakeRect(10, 20, 30, 40));
  // The half width is taken in single precision.
  rectangle->setEnableStroke(true);
  rectangle->setBezierPathLineWidth(0.1f);
  const float half = static_cast<float>(rectangle->bezierPath()->lineWidth()) / 2.0f;
  EXPECT_EQ(rectangle->drawRect().origin.x, 10 - static_cast<double>(half));
  EXPECT_EQ(MakeDraw<DrawRectangle>()->drawRect(), ZeroRect());
}

TEST(DrawRect, BoundsTheRotatedOutline) {
  auto rectangle = Rectangle(MakeRect(0, 0, 40, 20), Color::redColor(), std::nullopt);
  rectangle->setRotateDegree(90);
  test::ExpectRectNear(rectangle->drawRect(), MakeRect(10, -10, 20, 40));
}

TEST(RenderedRect, AddsTheShadowsOffsetAndBlurAndIsIntegral) {
  auto rectangle = Rectangle(MakeRect(10.25, 20, 30, 40), Color::redColor(), std::nullopt);
  rectangle->setEnableShadow(true);
  rectangle->setShadow(Shadow(Color::blackColor(), MakeSize(8, -8), 3));
  // Shadow: (18.25, 12, 30, 40) grown by 3 -> (15.25, 9, 36, 46).
  EXPECT_EQ(rectangle->renderedRect(), MakeRect(10, 9, 42, 51));
  // A shadow object without its flag adds nothing.
  rectangle->setEnableShadow(false);
  EXPECT_EQ(rectangle->renderedRect(), MakeRect(10, 20, 31, 40));
}

TEST(RenderedRect, ReservesTheFullMirroredHeightForAnyReflection) {
  auto rectangle = Rectangle(MakeRect(0, 100, 50, 100), Color::redColor(), std::nullopt);
  rectangle->setEnableReflection(true);
  rectangle->setReflection(0.5f);
  rectangle->setReflectionDis(10);
  // 100 units below the bottom edge, less the distance of 10, although the
  // painted reflection is only 50 units high.
  EXPECT_EQ(rectangle->renderedRect(), MakeRect(0, -10, 50, 210));
  rectangle->setReflection(1.5f);
  EXPECT_EQ(rectangle->renderedRect(), MakeRect(0, -60, 50, 260));
  // An unset distance counts as the nearest allowed one, -60.
  rectangle->setReflection(1.0f);
  rectangle->setReflectionDis(DrawBase::kReflectionDistanceUnset);
  EXPECT_EQ(rectangle->renderedRect(), MakeRect(0, 60, 50, 140));
  rectangle->setReflection(0);
  EXPECT_EQ(rectangle->renderedRect(), MakeRect(0, 100, 50, 100));
}

TEST(DisplayRect, WidensTheControlBoundsByTwiceTheLineWidthWithoutRounding) {
  auto rectangle = Rectangle(MakeRect(10.5, 20, 30, 40), Color::redColor(), Color::blueColor(), 3);
  EXPECT_EQ(rectangle->displayRect(), MakeRect(4.5, 14, 42, 52));
  rectangle->setEnableShadow(true);
  rectangle->setShadow(Shadow(Color::blackColor(), MakeSize(10, 0), 0));
  EXPECT_EQ(rectangle->displayRect(), MakeRect(4.5, 14, 52, 52));
  // The reflection hangs below drawRect (9, 18.5, 33, 43), not below the
  // widened control bounds: it reaches down to 18.5 - 43 = -24.5.
  rectangle->setEnableShadow(false);
  rectangle->setEnableReflection(true);
  rectangle->setReflection(1);
  rectangle->setReflectionDis(0);
  EXPECT_EQ(rectangle->displayRect(), MakeRect(4.5, -24.5, 42, 90.5));
}

// --- painting a draw alone

TEST(RenderedImage, PaintsTheDrawAloneAtItsRenderedRect) {
  auto rectangle = Rectangle(MakeRect(10, 20, 6, 4), Color::redColor(), std::nullopt);
  auto image = rectangle->renderedImage();
  ASSERT_TRUE(image);
  EXPECT_TRUE(ImagesMatch(*image, *MakeImage(6, 4, [](int, int) { return Rgba8{255, 0, 0, 255}; }),
                          0, "rendered_image"));
}

TEST(RenderedImage, NoneForEmptyOutlinesAndAreasWithoutWidth) {
  EXPECT_FALSE(MakeDraw<DrawRectangle>()->renderedImage());
  auto line = MakeDraw<DrawRectangle>();
  BezierPath vertical;
  vertical.moveTo({5, 0});
  vertical.lineTo({5, 10});
  line->setBezierPathWithData(ArchiveValue(vertical));
  line->setEnableStroke(false);
  EXPECT_FALSE(line->renderedImage());
}

TEST(Draw, SelectionToolsAndEmptyOutlinesPaintNothing) {
  auto selection = MakeDraw<DrawSelection>();
  selection->setBezierPathWithBounds(MakeRect(0, 0, 10, 10));
  selection->setEnableFill(true);
  auto empty = Rectangle(MakeRect(0, 0, 10, 10), Color::redColor(), Color::blueColor());
  empty->setBezierPathWithData(ArchiveValue(BezierPath()));
  auto image = Compose(10, 10, {selection, empty});
  EXPECT_EQ(ImageRectByTrimEmpty(image), ZeroRect());
}

TEST(Draw, WithoutFocusLogsAnErrorAndKeepsTheShadowFlag) {
  auto rectangle = Rectangle(MakeRect(0, 0, 10, 10), Color::redColor(), std::nullopt);
  rectangle->setEnableShadow(true);
  rectangle->setShadow(DrawBase::defaultShadow());
  rectangle->setEnableReflection(true);
  rectangle->setReflection(0.5);
  LogCapture log;
  rectangle->draw();
  EXPECT_TRUE(log.contains("Error: "));
  EXPECT_TRUE(rectangle->enableShadow());
}

// Values a damaged document can carry: not numbers, infinities and absurd
// sizes. Painting them must neither crash nor hang, and the canvas still
// yields its picture.
TEST(Draw, DamagedValuesPaintWithoutHarm) {
  const double nan = std::nan("");
  const double inf = std::numeric_limits<double>::infinity();
  const Gradient gradient = Gradient::withStartingColor(Color::redColor(), Color::blueColor());
  const std::vector<std::function<void(DrawRectangle&)>> damages = {
      [](DrawRectangle& d) { d.setBezierPathLineWidth(std::nanf("")); },
      [](DrawRectangle& d) { d.setBezierPathLineWidth(1e30f); },
      [&](DrawRectangle& d) {
        d.setEnableShadow(true);
        d.setShadow(Shadow(Color::blackColor(), {1e12, -1e4}, 1e9));
      },
      [&](DrawRectangle& d) {
        d.setEnableShadow(true);
        d.setShadow(Shadow(Color::blackColor(), {nan, 3}, nan));
      },
      [&](DrawRectangle& d) {
        d.setEnableInnerShadow(true);
        d.setInnerShadow(Shadow(Color::blackColor(), {-1e12, nan}, 1e12));
      },
      [](DrawRectangle& d) {
        d.setEnableReflection(true);
        d.setReflection(1e30f);
        d.setReflectionDis(1e30f);
      },
      [](DrawRectangle& d) {
        d.setEnableReflection(true);
        d.setReflection(std::nanf(""));
        d.setReflectionDis(std::nanf(""));
      },
      [&](DrawRectangle& d) { d.setBezierPathWithBounds(MakeRect(1e300, -1e300, 1e300, inf)); },
      [&](DrawRectangle& d) { d.setBezierPathWithBounds(MakeRect(nan, nan, 10, 10)); },
      [&](DrawRectangle& d) {
        d.setFillWithGradient(true);
        d.setFillGradient(gradient);
        d.setFillRadialGradient(true);
        d.setFillGradientCenter({nan, 1e300});
        d.setEnableShadow(true);
        d.setShadow(Shadow(Color::blackColor(), {1e4, -1e12}, 1e9));
      },
  };
  LogCapture quiet;
  for (size_t i = 0; i < damages.size(); ++i) {
    auto rectangle = Rectangle(MakeRect(10, 10, 100, 80), Color::redColor(), Color::blackColor());
    damages[i](*rectangle);
    EXPECT_TRUE(Compose(300, 200, {rectangle})) << "damage " << i;
    rectangle->renderedImage();  // may be refused as too large, never crash
  }
}

// --- painted pixels

// A stroke of odd width is moved by half a unit so that it covers whole
// pixels; an even width falls on pixel edges as it is.
TEST(StrokePixels, OddWidthsAreShiftedByHalfAUnitEvenWidthsAreNot) {
  const Rect box = MakeRect(10, 8, 20, 12);
  for (int width : {1, 2, 3, 4}) {
    auto rectangle = Rectangle(box, std::nullopt, Color::blackColor(), width);
    auto image = Compose(40, 30, {rectangle});
    const double shift = width % 2 == 1 ? 0.5 : 0.0;
    const Rect shifted = RectOffset(box, shift, shift);
    auto expected = MakeImage(40, 30, [&](int x, int y) {
      return CentreInStrokeBand(x, y, shifted, width) ? Rgba8{0, 0, 0, 255} : kTransparent;
    });
    EXPECT_TRUE(ImagesMatch(*image, *expected, 1, "stroke_width_" + std::to_string(width)))
        << "width " << width;
  }
}

// The fill casts the shape's shadow; the stroke's shadow shows only outside
// the filled outline, so the fill is never darkened by it.
TEST(ShadowPixels, FilledAndStrokedShapeCastsOneShadow) {
  const Rect box = MakeRect(20, 30, 40, 30);
  const double strokeWidth = 4;
  const Size offset = MakeSize(10, -10);
  auto rectangle = Rectangle(box, Color::calibratedRGB(1, 1, 0), Color::blueColor(), strokeWidth);
  rectangle->setEnableShadow(true);
  rectangle->setShadow(Shadow(Color::calibratedWhite(0, 0.5), offset, 0));
  auto image = Compose(100, 80, {rectangle});

  const PixelValue shadow = PixelValue::straight(0, 0, 0, 0.5);
  auto expected = MakeImage(100, 80, [&](int x, int y) {
    const int sx = x - static_cast<int>(offset.width), sy = y - static_cast<int>(offset.height);
    PixelValue pixel;
    if (CentreIn(sx, sy, box)) pixel = test::SourceOver(shadow, pixel);
    if (CentreIn(x, y, box)) pixel = PixelValue::straight(1, 1, 0, 1);
    if (CentreInStrokeBand(sx, sy, box, strokeWidth) && !CentreIn(x, y, box)) {
      pixel = test::SourceOver(shadow, pixel);
    }
    if (CentreInStrokeBand(x, y, box, strokeWidth)) pixel = PixelValue::straight(0, 0, 1, 1);
    return pixel.toRgba8();
  });
  EXPECT_TRUE(ImagesMatch(*image, *expected, 2, "fill_stroke_shadow"));
}

// The inner shadow darkens the inside of the outline along the edges opposite
// its offset: colour C at the shadow's alpha where the outline, moved by the
// offset, no longer covers.
TEST(ShadowPixels, InnerShadowIsABandInsideTheOutlineOppositeItsOffset) {
  const Rect box = MakeRect(10, 10, 40, 30);
  auto rectangle = Rectangle(box, Color::whiteColor(), std::nullopt);
  rectangle->setEnableInnerShadow(true);
  rectangle->setInnerShadow(Shadow(Color::calibratedWhite(0, 0.6), MakeSize(6, -6), 0));
  auto image = Compose(60, 50, {rectangle});

  const Rect moved = RectOffset(box, 6, -6);
  auto expected = MakeImage(60, 50, [&](int x, int y) {
    if (!CentreIn(x, y, box)) return kTransparent;
    PixelValue pixel = PixelValue::straight(1, 1, 1, 1);
    if (!CentreIn(x, y, moved)) pixel = test::SourceOver(PixelValue::straight(0, 0, 0, 0.6), pixel);
    return pixel.toRgba8();
  });
  EXPECT_TRUE(ImagesMatch(*image, *expected, 2, "inner_shadow"));
}

TEST(ShadowPixels, BlurredInnerShadowFadesInwardsAndStaysInside) {
  auto rectangle = Rectangle(MakeRect(10, 10, 40, 30), Color::whiteColor(), std::nullopt);
  rectangle->setEnableInnerShadow(true);
  rectangle->setInnerShadow(Shadow(Color::calibratedWhite(0, 1), MakeSize(4, -4), 4));
  auto image = Compose(60, 50, {rectangle});
  // Along the middle row, from the left edge inwards.
  const int row = 25;
  EXPECT_LT(PixelAt(*image, 10, row).red, PixelAt(*image, 14, row).red);
  EXPECT_LT(PixelAt(*image, 14, row).red, PixelAt(*image, 18, row).red);
  EXPECT_GE(PixelAt(*image, 30, row).red, 250);
  EXPECT_EQ(PixelAt(*image, 9, row), kTransparent);
  EXPECT_EQ(PixelAt(*image, 50, row), kTransparent);
}

// A linear gradient turns with its shape: 90 degrees on a box rotated by 30
// is painted at 120 degrees across the rotated outline's bounds.
TEST(GradientPixels, GradientBoxRotatedBy30DegreesPaintsAt120) {
  auto box = MakeDraw<DrawGradient>();
  box->setBezierPathWithBounds(MakeRect(30, 30, 60, 40));
  box->setFillGradientDegree(90);
  box->setFillGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()));
  box->setRotateDegree(30);
  auto image = Compose(120, 100, {box});

  const BezierPath outline = box->bezierPath()->transformed(box->transform());
  const Rect bounds = outline.bounds();
  const double radians = 120 * std::numbers::pi / 180;
  const Point direction{std::cos(radians), std::sin(radians)};
  const double length =
      std::abs(bounds.width() * direction.x) + std::abs(bounds.height() * direction.y);
  const Point start{bounds.midX() - length / 2 * direction.x,
                    bounds.midY() - length / 2 * direction.y};
  auto cornersInside = [&](int x, int y) {
    int inside = 0;
    for (Point corner : {Point{x + 0.0, y + 0.0}, Point{x + 1.0, y + 0.0}, Point{x + 0.0, y + 1.0},
                         Point{x + 1.0, y + 1.0}}) {
      inside += outline.containsPoint(corner) ? 1 : 0;
    }
    return inside;
  };
  auto expected = MakeImage(120, 100, [&](int x, int y) {
    if (cornersInside(x, y) == 0) return kTransparent;
    const double along =
        ((x + 0.5 - start.x) * direction.x + (y + 0.5 - start.y) * direction.y) / length;
    const double t = std::clamp(along, 0.0, 1.0);
    return PixelValue::straight(1 - t, 0, t, 1).toRgba8();
  });
  // Pixels cut by the outline's edge have no exact expected coverage.
  auto edge = [&](int x, int y) {
    const int inside = cornersInside(x, y);
    return inside > 0 && inside < 4;
  };
  EXPECT_TRUE(ImagesMatch(*image, *expected, 2, "gradient_box_rotated_30", edge));
}

// A gradient casts the shadow of its whole shape, exactly as a plain fill of
// that shape does, however far the blur reaches.
TEST(GradientPixels, GradientCastsOneShadowLikeAPlainFillOfItsShape) {
  const Shadow wideShadow(Color::calibratedWhite(0, 0.8), MakeSize(12, -9), 20);
  auto gradient = MakeDraw<DrawGradient>();
  gradient->setBezierPathWithBounds(MakeRect(50, 60, 60, 40));
  gradient->setFillGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()));
  gradient->setRotateDegree(20);
  gradient->setEnableShadow(true);
  gradient->setShadow(wideShadow);
  auto plain = Rectangle(MakeRect(50, 60, 60, 40), Color::greenColor(), std::nullopt);
  plain->setRotateDegree(20);
  plain->setEnableShadow(true);
  plain->setShadow(wideShadow);
  auto gradientImage = Compose(180, 160, {gradient});
  auto plainImage = Compose(180, 160, {plain});
  // Compare everywhere the shapes themselves (and their edges) do not paint.
  const BezierPath outline = gradient->bezierPath()->transformed(gradient->transform());
  const Rect shape = RectInset(outline.bounds(), -1, -1);
  auto onShape = [&](int x, int y) { return CentreIn(x, y, shape); };
  EXPECT_TRUE(ImagesMatch(*gradientImage, *plainImage, 1, "gradient_shadow", onShape));
  EXPECT_GT(PixelAt(*gradientImage, 135, 71).alpha, 0);  // the tail is there
}

// The reflection mirrors the draw below its bottom edge and fades it with a
// gradient from alpha min(max(s + 0.2, 0.4), 1) at the edge to
// min(max(s - 1, 0), 1) at the far end, over min(s, 1) of the draw's height.
void ExpectReflection(float strength, const std::string& name) {
  const Rect box = MakeRect(20, 60, 40, 40);
  auto rectangle = Rectangle(box, Color::redColor(), std::nullopt);
  rectangle->setEnableReflection(true);
  rectangle->setReflection(strength);
  rectangle->setReflectionDis(0);
  auto image = Compose(80, 110, {rectangle});

  const double height = std::min(strength, 1.0f) * box.height();
  const double nearAlpha = std::min(std::max(strength + 0.2, 0.4), 1.0);
  const double farAlpha = std::min(std::max(strength - 1.0, 0.0), 1.0);
  auto expected = MakeImage(80, 110, [&](int x, int y) {
    if (x < 20 || x >= 60) return kTransparent;
    if (y >= 60 && y < 100) return Rgba8{255, 0, 0, 255};
    const double below = box.minY() - (y + 0.5);
    if (below < 0 || below > height) return kTransparent;
    const double alpha = nearAlpha + (farAlpha - nearAlpha) * below / height;
    return PixelValue::straight(1, 0, 0, alpha).toRgba8();
  });
  EXPECT_TRUE(ImagesMatch(*image, *expected, 2, name)) << "strength " << strength;
}

// At strength 0.5 it fades out over half the height; at 1.5 it shows the whole
// height and ends half opaque.
TEST(ReflectionPixels, StrengthSetsTheHeightAndTheFade) {
  ExpectReflection(0.5f, "reflection_0_5");
  ExpectReflection(1.5f, "reflection_1_5");
}

TEST(ReflectionPixels, TheReflectionCastsNoShadowButTheDrawDoes) {
  auto rectangle = Rectangle(MakeRect(20, 60, 20, 20), Color::redColor(), std::nullopt);
  rectangle->setEnableReflection(true);
  rectangle->setReflection(1);
  rectangle->setReflectionDis(0);
  rectangle->setEnableShadow(true);
  rectangle->setShadow(Shadow(Color::calibratedRGB(0, 0, 1, 1), MakeSize(25, 0), 0));
  auto image = Compose(80, 100, {rectangle});
  EXPECT_EQ(PixelAt(*image, 50, 70), (Rgba8{0, 0, 255, 255}));  // the draw's shadow
  EXPECT_EQ(PixelAt(*image, 50, 50), kTransparent);             // none beside the reflection
  EXPECT_GT(PixelAt(*image, 30, 50).alpha, 0);
  EXPECT_TRUE(rectangle->enableShadow());
}

}  // namespace
}  // namespace paintdoc
