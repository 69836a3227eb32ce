// Shadows under fills, strokes and transparency layers, and the inner-shadow
// idiom, against expectations computed from the Gaussian: a box [a, b)
// blurred with σ has the value Φ((x − a)/σ) − Φ((x − b)/σ) at x.
#include <gtest/gtest.h>

#include "support/drawing_test_support.h"
#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

using test::BlurredBox;
using test::Draw;
using test::ImagesMatch;
using test::Inside;
using test::MakeImage;
using test::PixelValue;

const PixelValue kWhite = PixelValue::straight(1, 1, 1, 1);
const PixelValue kBlack = PixelValue::straight(0, 0, 0, 1);

// A rectangle [x0, x1) × [y0, y1) blurred with σ, at pixel (x, y).
double BlurredRect(int x, int y, double x0, double y0, double x1, double y1, double sigma) {
  return BlurredBox(x, x0, x1, sigma) * BlurredBox(y, y0, y1, sigma);
}

void FillWhite(GraphicsContext& gc, int width, int height) {
  gc.setFillColor(Color::whiteColor());
  gc.fillRect(MakeRect(0, 0, width, height));
}

TEST(ShadowBlur, RadiusMapsToSigmaAsTheReferenceCurve) {
  EXPECT_DOUBLE_EQ(ShadowBlurSigma(0), 0);
  EXPECT_DOUBLE_EQ(ShadowBlurSigma(4), 2);
  EXPECT_DOUBLE_EQ(ShadowBlurSigma(8), 4);
  EXPECT_DOUBLE_EQ(ShadowBlurSigma(10), 6);   // L(10) = 8 + 4·√1 = 12
  EXPECT_DOUBLE_EQ(ShadowBlurSigma(16), 8);   // L equals b again at 16
  EXPECT_DOUBLE_EQ(ShadowBlurSigma(40), 12);  // L(40) = 8 + 4·√16 = 24
}

// Fills, strokes and layers with shadows, each against its formula. A layer
// casts one shadow of everything in it (including shadows drawn inside),
// composited with the alpha and shadow in force at its beginning; the shadow
// ignores the transform (offset and blur in pixels) but not the clip.
TEST(ShadowDrawing, ShadowsUnderFillsStrokesAndLayers) {
  auto onWhite = [](double shadow) { return test::SourceOver(kBlack * shadow, kWhite).toRgba8(); };
  // Two overlapping squares with a 50% shadow 3 px below, drawn one by one or
  // inside a layer: the overlap of the two shadows darkens twice or once.
  auto overlapping = [](bool inLayer) {
    return [=](GraphicsContext& gc) {
      FillWhite(gc, 24, 20);
      gc.setShadow(Shadow(Color::calibratedWhite(0, 0.5), {0, -3}, 0));
      if (inLayer) gc.beginTransparencyLayer();
      gc.setFillColor(Color::calibratedRGB(1, 0, 0, 1));
      gc.fillRect(MakeRect(4, 8, 8, 8));
      gc.fillRect(MakeRect(8, 8, 8, 8));
      if (inLayer) gc.endTransparencyLayer();
    };
  };
  auto overlappingShadows = [](bool inLayer) {
    return [=](int x, int y) {
      if (Inside(x, y, 4, 8, 16, 16)) return Rgba8{255, 0, 0, 255};
      bool first = Inside(x, y, 4, 5, 12, 13), second = Inside(x, y, 8, 5, 16, 13);
      int layers = inLayer ? (first || second) : first + second;
      PixelValue result = kWhite;
      for (int i = 0; i < layers; ++i) result = test::SourceOver(kBlack * 0.5, result);
      return result.toRgba8();
    };
  };
  test::ExpectDrawings({
      // Blur 4 → σ 2; offset (5, −3) moves the shadow right and down.
      {"shadow_fill", 40, 36, 2,
       [](GraphicsContext& gc) {
         FillWhite(gc, 40, 36);
         gc.setShadow(Shadow(Color::calibratedWhite(0, 0.6), {5, -3}, 4));
         gc.setFillColor(Color::calibratedRGB(1, 0, 0, 1));
         gc.fill(BezierPath::withRect(MakeRect(10, 12, 16, 14)));
       },
       [&](int x, int y) {
         if (Inside(x, y, 10, 12, 26, 26)) return Rgba8{255, 0, 0, 255};
         return onWhite(0.6 * BlurredRect(x, y, 15, 9, 31, 23, 2));
       }},
      // Blur 6 → σ 3. A 4-wide outline of [8, 32)² is the outer square minus
      // the inner one; its blurred shadow is the difference too.
      {"shadow_stroke", 48, 48, 3,
       [](GraphicsContext& gc) {
         FillWhite(gc, 48, 48);
         gc.setShadow(Shadow(Color::blackColor(), {4, 4}, 6));
         gc.setStrokeColor(Color::calibratedRGB(0, 0, 1, 1));
         BezierPath outline = BezierPath::withRect(MakeRect(10, 10, 20, 20));
         outline.setLineWidth(4);
         gc.stroke(outline);
       },
       [&](int x, int y) {
         if (Inside(x, y, 8, 8, 32, 32) && !Inside(x, y, 12, 12, 28, 28)) return Rgba8{0, 0, 255, 255};
         return onWhite(BlurredRect(x, y, 12, 12, 36, 36, 3) - BlurredRect(x, y, 16, 16, 32, 32, 3));
       }},
      {"shadow_device_space", 30, 20, 0,
       [](GraphicsContext& gc) {
         gc.concat(AffineTransform::scaling(2, 2));
         gc.clipToRect(MakeRect(0, 0, 10, 10));  // pixels [0, 20)²
         gc.setShadow(Shadow(Color::blackColor(), {6, 0}, 0));
         gc.setFillColor(Color::calibratedRGB(0, 1, 0, 1));
         gc.fillRect(MakeRect(2, 2, 4, 4));  // pixels [4, 12)²; shadow [10, 18) × [4, 12)
       },
       [](int x, int y) {
         if (Inside(x, y, 4, 4, 12, 12)) return Rgba8{0, 255, 0, 255};
         return Inside(x, y, 12, 4, 18, 12) ? Rgba8{0, 0, 0, 255} : Rgba8{};
       }},
      {"shadow_each", 24, 20, 1, overlapping(false), overlappingShadows(false)},
      {"shadow_layer_once", 24, 20, 1, overlapping(true), overlappingShadows(true)},
      {"layer_alpha_shadow", 40, 40, 2,
       [](GraphicsContext& gc) {
         FillWhite(gc, 40, 40);
         gc.setAlpha(0.5);
         gc.setShadow(Shadow(Color::blackColor(), {4, -4}, 4));
         gc.beginTransparencyLayer();
         gc.setFillColor(Color::calibratedRGB(0, 0, 1, 1));  // drawn at full alpha inside
         gc.fillRect(MakeRect(10, 14, 16, 16));
         gc.endTransparencyLayer();
       },
       [](int x, int y) {
         PixelValue result = test::SourceOver(kBlack * (0.5 * BlurredRect(x, y, 14, 10, 30, 26, 2)), kWhite);
         if (Inside(x, y, 10, 14, 26, 30)) result = test::SourceOver(PixelValue::straight(0, 0, 1, 0.5), result);
         return result.toRgba8();
       }},
      // The layer holds a red square and its black shadow 10 to the right; the
      // layer's own shadow repeats both, 20 to the right, at half strength.
      {"layer_shadow_of_inner_shadow", 40, 20, 1,
       [](GraphicsContext& gc) {
         FillWhite(gc, 40, 20);
         gc.setShadow(Shadow(Color::calibratedWhite(0, 0.5), {20, 0}, 0));
         gc.beginTransparencyLayer();
         gc.setShadow(Shadow(Color::blackColor(), {10, 0}, 0));
         gc.setFillColor(Color::calibratedRGB(1, 0, 0, 1));
         gc.fillRect(MakeRect(2, 8, 4, 4));
         gc.endTransparencyLayer();
       },
       [&](int x, int y) {
         if (y < 8 || y >= 12) return Rgba8{255, 255, 255, 255};
         if (x >= 2 && x < 6) return Rgba8{255, 0, 0, 255};
         if (x >= 12 && x < 16) return Rgba8{0, 0, 0, 255};
         if ((x >= 22 && x < 26) || (x >= 32 && x < 36)) return onWhite(0.5);
         return Rgba8{255, 255, 255, 255};
       }},
  });
}

// The inner-shadow sequence: a band of colour C at alpha a inside P along the
// edges facing away from the offset, a·(1 − blur(P shifted)), nothing outside.
TEST(ShadowDrawing, InnerShadowIdiomPaintsABandInsideOnTheSideAwayFromTheOffset) {
  constexpr double kSigma = 2, kAlpha = 0.8;
  auto bitmap = Draw(48, 48, [&](GraphicsContext& gc) {
    FillWhite(gc, 48, 48);
    BezierPath path = BezierPath::withRect(MakeRect(12, 12, 24, 24));
    Color color = Color::calibratedRGB(0.2, 0.1, 0.6, kAlpha);
    gc.saveGraphicsState();
    gc.clipToRect(path.bounds());
    gc.setAlpha(color.alphaComponent());
    gc.beginTransparencyLayer();
    gc.setShadow(Shadow(color.withAlphaComponent(1), {5, -5}, 4));
    gc.setBlendMode(BlendMode::SourceOut);
    gc.beginTransparencyLayer();
    gc.setFillColor(color.withAlphaComponent(1));
    gc.fill(path);
    gc.endTransparencyLayer();
    gc.endTransparencyLayer();
    gc.restoreGraphicsState();
  });
  auto expected = MakeImage(48, 48, [&](int x, int y) {
    if (!Inside(x, y, 12, 12, 36, 36)) return Rgba8{255, 255, 255, 255};
    double band = kAlpha * (1 - BlurredRect(x, y, 17, 7, 41, 31, kSigma));
    return test::SourceOver(PixelValue::straight(0.2, 0.1, 0.6, 1) * band, kWhite).toRgba8();
  });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 2, "inner_shadow"));
  // The band lies along the top and left edges (the offset points right and down).
  EXPECT_LT(test::PixelAt(*bitmap, 13, 24).red, 200);
  EXPECT_LT(test::PixelAt(*bitmap, 24, 34).red, 200);
  EXPECT_EQ(test::PixelAt(*bitmap, 34, 24).red, 255);
  EXPECT_EQ(test::PixelAt(*bitmap, 24, 13).red, 255);
}

TEST(ShadowDrawing, InvisibleShadowsDrawNothingExtra) {
  auto draw = [](bool clearShadow) {
    return Draw(16, 16, [&](GraphicsContext& gc) {
      if (clearShadow) gc.setShadow(Shadow(Color::clearColor(), {3, 3}, 2));
      gc.fill(BezierPath::withOvalInRect(MakeRect(2, 2, 9, 9)));
      gc.setShadow(Shadow(Color::blackColor(), {0, 0}, 0));
      gc.fill(BezierPath::withOvalInRect(MakeRect(5, 5, 9, 9)));
    });
  };
  EXPECT_TRUE(draw(true)->samePixels(*draw(false)));
}

}  // namespace
}  // namespace paintdoc
