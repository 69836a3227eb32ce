// PlusDarker, which cairo lacks: R = max(0, S + D − 1) on premultiplied
// channels, alpha included, bounded by the shape (mixed by coverage at its
// edges), by the destination rectangle for images, by the clip for layers.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/drawing_test_support.h"
#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

using test::Inside;
using test::MakeImage;
using test::Mix;
using test::PixelValue;

PixelValue PlusDarker(const PixelValue& s, const PixelValue& d) {
  auto channel = [](double sc, double dc) { return std::max(0.0, 1 - ((1 - dc) + (1 - sc))); };
  return {channel(s.red, d.red), channel(s.green, d.green), channel(s.blue, d.blue),
          channel(s.alpha, d.alpha)};
}

PixelValue FromRgba8(Rgba8 p) { return {p.red / 255.0, p.green / 255.0, p.blue / 255.0, p.alpha / 255.0}; }

// How much of [from, from + 1) lies in [low, high).
double Overlap(int from, double low, double high) {
  return std::clamp(std::min(from + 1.0, high) - std::max<double>(from, low), 0.0, 1.0);
}

const PixelValue kBackground = PixelValue::straight(0.9, 0.6, 0.3, 1);
const Color kHalfYellow = Color::calibratedRGB(0.8, 0.8, 0.2, 0.75);
const PixelValue kHalfYellowValue = PixelValue::straight(0.8, 0.8, 0.2, 0.75);

void FillBackground(GraphicsContext& gc, int width, int height) {
  gc.setFillColor(Color::calibratedRGB(0.9, 0.6, 0.3, 1));
  gc.fillRect(MakeRect(0, 0, width, height));
}

// A fill mixed by coverage (edges at quarter and half pixels) and cut by the
// clip; an image on its rectangle, where a transparent pixel still counts as
// a source; a layer on the whole clip, where max(0, D − 1) leaves nothing; a
// shadow through the same operation, its colour masked by the fill's alpha.
TEST(PlusDarker, FillsImagesLayersAndShadowsFollowTheFormula) {
  auto image = MakeImage(4, 4, [](int x, int y) {
    if (x == 0 && y == 0) return Rgba8{};
    return Rgba8{static_cast<uint8_t>(40 + 60 * x), static_cast<uint8_t>(30 + 70 * y), 90, 255};
  });
  const PixelValue shadow = PixelValue::straight(0, 0, 0, 0.5);
  test::ExpectDrawings({
      {"plus_darker_fill", 12, 10, 2,
       [](GraphicsContext& gc) {
         FillBackground(gc, 12, 10);
         gc.clipToRect(MakeRect(0, 0, 12, 7));
         gc.setCompositingOperation(CompositingOperation::PlusDarker);
         gc.setFillColor(kHalfYellow);
         gc.fill(BezierPath::withRect(MakeRect(2.5, 1.75, 6.75, 6.75)));
       },
       [](int x, int y) {
         double coverage = y >= 7 ? 0 : Overlap(x, 2.5, 9.25) * Overlap(y, 1.75, 8.5);
         return Mix(kBackground, PlusDarker(kHalfYellowValue, kBackground), coverage).toRgba8();
       }},
      {"plus_darker_image", 10, 8, 2,
       [&](GraphicsContext& gc) {
         FillBackground(gc, 10, 8);
         gc.setAlpha(0.8);
         gc.setImageInterpolation(ImageInterpolation::None);
         gc.drawBitmap(*image, MakeRect(3, 2, 4, 4), ZeroRect(), CompositingOperation::PlusDarker, 0.75);
       },
       [&](int x, int y) {
         if (!Inside(x, y, 3, 2, 7, 6)) return kBackground.toRgba8();
         PixelValue source = FromRgba8(test::PixelAt(*image, x - 3, y - 2)) * (0.8 * 0.75);
         return PlusDarker(source, kBackground).toRgba8();
       }},
      {"plus_darker_layer", 12, 10, 2,
       [](GraphicsContext& gc) {
         FillBackground(gc, 12, 10);
         gc.clipToRect(MakeRect(2, 2, 8, 6));
         gc.setCompositingOperation(CompositingOperation::PlusDarker);
         gc.beginTransparencyLayer();
         gc.setFillColor(kHalfYellow);
         gc.fillRect(MakeRect(4, 4, 3, 2));
         gc.endTransparencyLayer();
       },
       [](int x, int y) {
         if (!Inside(x, y, 2, 2, 10, 8)) return kBackground.toRgba8();
         PixelValue source = Inside(x, y, 4, 4, 7, 6) ? kHalfYellowValue : PixelValue{};
         return PlusDarker(source, kBackground).toRgba8();
       }},
      {"plus_darker_shadow", 12, 10, 2,
       [](GraphicsContext& gc) {
         FillBackground(gc, 12, 10);
         gc.setCompositingOperation(CompositingOperation::PlusDarker);
         gc.setShadow(Shadow(Color::calibratedRGB(0, 0, 0, 0.5), {2, -2}, 0));
         gc.setFillColor(kHalfYellow);
         gc.fillRect(MakeRect(4, 5, 4, 3));
       },
       [&](int x, int y) {
         PixelValue pixel = kBackground;
         if (Inside(x, y, 6, 3, 10, 6)) pixel = Mix(pixel, PlusDarker(shadow, pixel), 0.75);
         if (Inside(x, y, 4, 5, 8, 8)) pixel = PlusDarker(kHalfYellowValue, pixel);
         return pixel.toRgba8();
       }},
  });
}

}  // namespace
}  // namespace paintdoc
