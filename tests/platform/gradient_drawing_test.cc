// Gradients by angle and by relative centre, checked against the geometry
// the platform defines: for an angle α across a w × h rectangle the colours
// run along d = (cos α, sin α) over L = |w cos α| + |h sin α| about the centre;
// a radial gradient runs from the centre to the smallest circle about the
// relative centre that covers the rectangle (largest t of the two-circle rule).
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "support/drawing_test_support.h"
#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

using test::Draw;
using test::ImagesMatch;
using test::MakeImage;
using test::PixelValue;

// Opaque red to half-transparent blue: straight-alpha interpolation shows.
const Gradient kGradient =
    Gradient::withStartingColor(Color::calibratedRGB(1, 0, 0, 1), Color::calibratedRGB(0, 0, 1, 0.5));

PixelValue GradientAt(double t, double globalAlpha = 1) {
  t = std::clamp(t, 0.0, 1.0);
  return PixelValue::straight(1 - t, 0, t, (1 - 0.5 * t) * globalAlpha);
}

double LinearT(int x, int y, const Rect& r, double angle) {
  double radians = angle * std::numbers::pi / 180;
  double dx = std::cos(radians), dy = std::sin(radians);
  double length = std::abs(r.width() * dx) + std::abs(r.height() * dy);
  return ((x + 0.5 - r.midX()) * dx + (y + 0.5 - r.midY()) * dy) / length + 0.5;
}

double RadialT(int x, int y, const Rect& r, Point relative) {
  Point c = r.center();
  Point e{c.x + relative.x * r.width() / 2, c.y + relative.y * r.height() / 2};
  double radius = 0;
  for (Point k : {Point{r.minX(), r.minY()}, Point{r.maxX(), r.minY()}, Point{r.minX(), r.maxY()},
                  Point{r.maxX(), r.maxY()}}) {
    radius = std::max(radius, std::hypot(k.x - e.x, k.y - e.y));
  }
  // |p − c − t(e − c)| = t·R: a t² − 2 b t + q = 0 with a < 0; the larger root.
  double px = x + 0.5 - c.x, py = y + 0.5 - c.y, ex = e.x - c.x, ey = e.y - c.y;
  double a = ex * ex + ey * ey - radius * radius, b = px * ex + py * ey, q = px * px + py * py;
  return (b - std::sqrt(b * b - a * q)) / a;
}

bool InRect(int x, int y, const Rect& r) {
  return x >= r.minX() && x < r.maxX() && y >= r.minY() && y < r.maxY();
}

TEST(GradientDrawing, LinearByAngleRunsCornerToCorner) {
  const Rect rect = MakeRect(4, 3, 60, 40);
  for (double angle : {0.0, 90.0, 30.0, 210.0}) {
    auto bitmap = Draw(68, 46, [&](GraphicsContext& gc) {
      gc.drawGradient(kGradient, BezierPath::withRect(rect), angle);
    });
    auto expected = MakeImage(68, 46, [&](int x, int y) {
      return InRect(x, y, rect) ? GradientAt(LinearT(x, y, rect, angle)).toRgba8() : Rgba8{};
    });
    EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 2,
                            "gradient_angle_" + std::to_string(static_cast<int>(angle))));
  }
}

TEST(GradientDrawing, RadialByRelativeCentreCoversTheRectangle) {
  const Rect rect = MakeRect(2, 2, 40, 30);
  for (Point relative : {Point{0, 0}, Point{1, 1}, Point{-0.5, 0.25}}) {
    auto bitmap = Draw(44, 34, [&](GraphicsContext& gc) {
      gc.setAlpha(0.5);  // multiplies every stop
      gc.drawGradient(kGradient, rect, relative);
    });
    auto expected = MakeImage(44, 34, [&](int x, int y) {
      return InRect(x, y, rect) ? GradientAt(RadialT(x, y, rect, relative), 0.5).toRgba8() : Rgba8{};
    });
    EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 2,
                            "gradient_radial_" + std::to_string(relative.x) + "_" +
                                std::to_string(relative.y)));
  }
}

TEST(GradientDrawing, PathGradientIsClippedToThePathAndSpansItsBounds) {
  const Rect box = MakeRect(0, 0, 40, 40);
  auto bitmap = Draw(40, 40, [&](GraphicsContext& gc) {
    gc.drawGradient(kGradient, BezierPath::withOvalInRect(box), 0.0);
  });
  // Pixels clearly inside the circle follow the bounds' gradient; clearly
  // outside stay empty; the antialiased rim is left out.
  auto expected = MakeImage(40, 40, [&](int x, int y) {
    double distance = std::hypot(x + 0.5 - 20, y + 0.5 - 20);
    return distance < 20 ? GradientAt(LinearT(x, y, box, 0)).toRgba8() : Rgba8{};
  });
  auto rim = [](int x, int y) { return std::abs(std::hypot(x + 0.5 - 20, y + 0.5 - 20) - 20) < 1.2; };
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 2, "gradient_in_oval", rim));
}

}  // namespace
}  // namespace paintdoc
