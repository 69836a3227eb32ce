// Paths and gradients from hostile documents: each is drawn the way a layer
// draws it (fill and stroke with their shadow, the stroke's shadow clipped to
// outside the outline) and either draws correctly or is refused with a
// one-line reason, quickly either way. The time each case takes is printed.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "platform/graphics/graphics_context.h"
#include "support/drawing_test_support.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::PixelAt;

// --- the hostile shapes (the same as tests/data/make_hostile_geometry.py)

// Curves along a spiral about `center` whose radius grows 0.005 a step, each
// curve's control points 5 units off its ends: neighbouring turns overlap.
BezierPath Spiral(int elements, Point center) {
  const double stepAngle = 0.05;
  BezierPath path;
  path.moveTo(center);
  for (int i = 0; i < elements; ++i) {
    double a0 = i * stepAngle, a1 = (i + 1) * stepAngle;
    double r0 = 0.005 * i, r1 = 0.005 * (i + 1);
    Point p0{center.x + r0 * std::cos(a0), center.y + r0 * std::sin(a0)};
    Point p1{center.x + r1 * std::cos(a1), center.y + r1 * std::sin(a1)};
    path.curveTo(p1, {p0.x + 5 * std::cos(a0), p0.y + 5 * std::sin(a0)},
                 {p1.x - 5 * std::cos(a1), p1.y - 5 * std::sin(a1)});
  }
  path.setLineWidth(3);
  return path;
}

BezierPath RandomLines(int elements, double width, double height) {
  std::mt19937 random(23);
  std::uniform_real_distribution<double> x(0, width), y(0, height);
  BezierPath path;
  path.moveTo({x(random), y(random)});
  for (int i = 0; i < elements; ++i) path.lineTo({x(random), y(random)});
  return path;
}

// A closed polygon whose every vertex lies 0.499 of a turn past the last.
BezierPath Star(int spikes, Point center, double radius) {
  BezierPath path;
  for (int i = 0; i < spikes; ++i) {
    double angle = 2 * std::numbers::pi * 0.499 * i;
    Point vertex{center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
    if (i == 0) {
      path.moveTo(vertex);
    } else {
      path.lineTo(vertex);
    }
  }
  path.closePath();
  path.setWindingRule(WindingRule::EvenOdd);
  return path;
}

// Lines back and forth across a width × height area, rising a step each time.
BezierPath Zigzag(int lines, double width, double height) {
  BezierPath path;
  path.moveTo({0, 0});
  for (int i = 1; i <= lines; ++i) path.lineTo({i % 2 ? width : 0, height * i / lines});
  return path;
}

const Color kFillColor = Color::calibratedRGB(1, 0.8, 0.2);
const Color kStrokeColor = Color::calibratedRGB(0.1, 0.2, 0.6);
const Shadow kDropShadow(Color::calibratedRGB(0, 0, 0, 0.5), {4, -4}, 6);

enum Paint { kFill = 1, kStroke = 2, kWithShadow = 4 };

// What a layer does with its outline: the fill with its shadow, then the
// stroke; with a fill below, the stroke's shadow only outside the outline.
void PaintLikeALayer(GraphicsContext& gc, const BezierPath& outline, int paint) {
  const bool shadow = paint & kWithShadow;
  gc.setFillColor(kFillColor);
  gc.setStrokeColor(kStrokeColor);
  if (paint & kFill) {
    if (shadow) gc.setShadow(kDropShadow);
    gc.fill(outline);
    gc.setShadow(std::nullopt);
  }
  if (!(paint & kStroke)) return;
  if (shadow && (paint & kFill)) {
    gc.saveGraphicsState();
    gc.setShadow(kDropShadow);
    BezierPath outside = BezierPath::withRect(RectInset(outline.bounds(), -20, -20));
    outside.appendPath(outline);
    gc.clip(outside, WindingRule::EvenOdd);
    gc.stroke(outline);
    gc.restoreGraphicsState();
  } else if (shadow) {
    gc.setShadow(kDropShadow);
  }
  gc.stroke(outline);
}

// --- checks of what was drawn

// Alpha summed over the whole bitmap.
double TotalAlpha(const Bitmap& bitmap) {
  double total = 0;
  for (int y = 0; y < bitmap.pixelsHigh(); ++y) {
    for (int x = 0; x < bitmap.pixelsWide(); ++x) total += PixelAt(bitmap, x, y).alpha;
  }
  return total;
}

// The spiral's fill covers its centre, and nothing is drawn far outside it.
void ExpectSpiralFilled(const Bitmap& bitmap) {
  EXPECT_GT(PixelAt(bitmap, 150, 150).alpha, 200);
  EXPECT_EQ(PixelAt(bitmap, 5, 295).alpha, 0);
}

// Dashes of 0.01 on, 0.01 off cover half of the line: the same ink as a solid
// line drawn at half alpha, however they fall on the pixels.
void ExpectHalfTheInkOfASolidLine(const Bitmap& bitmap) {
  auto solid = test::Draw(bitmap.pixelsWide(), bitmap.pixelsHigh(), [](GraphicsContext& gc) {
    gc.setStrokeColor(kStrokeColor);
    gc.stroke(Zigzag(50, 600, 600));
  });
  EXPECT_NEAR(TotalAlpha(bitmap) / TotalAlpha(*solid), 0.5, 0.02);
}

// A gradient of 100,000 stops in six runs of one colour each: every run's
// middle shows its colour exactly.
const std::vector<Color> kRuns = {
    Color::calibratedRGB(1, 0, 0), Color::calibratedRGB(1, 1, 0), Color::calibratedRGB(0, 1, 0),
    Color::calibratedRGB(0, 1, 1), Color::calibratedRGB(0, 0, 1), Color::calibratedRGB(1, 0, 1)};
constexpr int kGradientStops = 100000;
constexpr int kGradientWidth = 1200;

Gradient RunsGradient() {
  std::vector<Color> colors;
  for (int i = 0; i < kGradientStops; ++i) colors.push_back(kRuns[i * kRuns.size() / kGradientStops]);
  return Gradient::withColors(colors);
}

void ExpectGradientRuns(const Bitmap& bitmap) {
  for (size_t run = 0; run < kRuns.size(); ++run) {
    int x = static_cast<int>((run + 0.5) * kGradientWidth / kRuns.size());
    RGBA expected = kRuns[run].toCalibratedRGB();
    Rgba8 actual = PixelAt(bitmap, x, 10);
    EXPECT_EQ(actual, test::Premultiplied(expected.red, expected.green, expected.blue, 1))
        << "run " << run;
  }
}

// --- the cases

enum class Outcome { Drawn, Refused };

struct HostileCase {
  const char* name;
  int width, height;
  std::function<void(GraphicsContext&)> draw;
  Outcome expected;
  const char* reason;                             // a part of the refusal
  std::function<void(const Bitmap&)> checkDrawn;  // for a drawn case
};

std::vector<HostileCase> Cases() {
  auto spiral = [](int elements, int paint) {
    return [=](GraphicsContext& gc) { PaintLikeALayer(gc, Spiral(elements, {150, 150}), paint); };
  };
  const int all = kFill | kStroke | kWithShadow;
  return {
      {"spiral of 20000, filled and stroked, with shadow", 300, 300, spiral(20000, all),
       Outcome::Refused, "and its clipping path cross too often", nullptr},
      {"spiral of 50000, filled and stroked, with shadow", 300, 300, spiral(50000, all),
       Outcome::Refused, "has too many edges", nullptr},
      {"spiral of 20000, filled, with shadow", 300, 300, spiral(20000, kFill | kWithShadow),
       Outcome::Drawn, nullptr, ExpectSpiralFilled},
      {"spiral of 20000, stroked, with shadow", 300, 300, spiral(20000, kStroke | kWithShadow),
       Outcome::Drawn, nullptr, ExpectSpiralFilled},
      {"spiral of 20000, filled and stroked", 300, 300, spiral(20000, kFill | kStroke),
       Outcome::Drawn, nullptr, ExpectSpiralFilled},
      {"100000 lines to random points, filled and stroked", 4000, 3000,
       [](GraphicsContext& gc) { PaintLikeALayer(gc, RandomLines(100000, 4000, 3000), kFill | kStroke); },
       Outcome::Refused, "crosses itself too often", nullptr},
      {"star of 20000 spikes, filled even-odd", 800, 800,
       [](GraphicsContext& gc) { PaintLikeALayer(gc, Star(20000, {400, 400}, 380), kFill); },
       Outcome::Refused, "crosses itself too often", nullptr},
      {"clip to the star of 20000 spikes", 800, 800,
       [](GraphicsContext& gc) {
         gc.clip(Star(20000, {400, 400}, 380));
         gc.fillRect(MakeRect(0, 0, 800, 800));
       },
       Outcome::Refused, "crosses itself too often", nullptr},
      {"gradient in the star of 20000 spikes", 800, 800,
       [](GraphicsContext& gc) {
         gc.drawGradient(Gradient::withStartingColor(kFillColor, kStrokeColor),
                         Star(20000, {400, 400}, 380), 30.0);
       },
       Outcome::Refused, "crosses itself too often", nullptr},
      {"gradient of 100000 stops", kGradientWidth, 20,
       [](GraphicsContext& gc) {
         gc.drawGradient(RunsGradient(), MakeRect(0, 0, kGradientWidth, 20), 0.0);
       },
       Outcome::Drawn, nullptr, ExpectGradientRuns},
      {"dashes of 0.01 along 50 long lines", 600, 600,
       [](GraphicsContext& gc) {
         BezierPath zigzag = Zigzag(50, 600, 600);
         zigzag.setLineDash({0.01, 0.01}, 0);
         PaintLikeALayer(gc, zigzag, kStroke);
       },
       Outcome::Drawn, nullptr, ExpectHalfTheInkOfASolidLine},
      {"dashes of 0.5 along 2000 long lines, scaled up 2 times", 600, 600,
       [](GraphicsContext& gc) {
         gc.concat(AffineTransform::scaling(2, 2));
         BezierPath zigzag = Zigzag(2000, 300, 300);
         zigzag.setLineDash({0.25, 0.25}, 0);
         PaintLikeALayer(gc, zigzag, kStroke);
       },
       Outcome::Refused, "has too many dashes", nullptr},
  };
}

void ExpectOneLineReason(const std::string& reason) {
  ASSERT_FALSE(reason.empty());
  EXPECT_EQ(reason.find('\n'), std::string::npos) << reason;
  EXPECT_TRUE(std::islower(static_cast<unsigned char>(reason.front()))) << reason;
  EXPECT_NE(reason.back(), '.') << reason;
  EXPECT_EQ(reason.find("Error"), std::string::npos) << reason;
}

TEST(HostileGeometry, EachCaseDrawsCorrectlyOrIsRefusedWithOneLine) {
  for (const HostileCase& c : Cases()) {
    SCOPED_TRACE(c.name);
    auto bitmap = Bitmap::create(c.width, c.height);
    std::string failure;
    auto start = std::chrono::steady_clock::now();
    {
      BitmapFocus focus(bitmap);
      c.draw(focus.context());
      failure = focus.context().failure();
    }
    std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("  %-60s %6.3f s  %s\n", c.name, took.count(),
                failure.empty() ? "drawn" : failure.c_str());
    if (c.expected == Outcome::Refused) {
      ExpectOneLineReason(failure);
      EXPECT_NE(failure.find(c.reason), std::string::npos) << failure;
    } else {
      EXPECT_EQ(failure, "");
      c.checkDrawn(*bitmap);
    }
  }
}

// After a refusal nothing more is drawn, and the first reason is kept.
TEST(HostileGeometry, AFailedContextDrawsNothingMore) {
  auto bitmap = test::Draw(40, 40, [](GraphicsContext& gc) {
    gc.recordFailure("the first reason");
    gc.recordFailure("the second reason");
    EXPECT_TRUE(gc.failed());
    EXPECT_EQ(gc.failure(), "the first reason");
    gc.setFillColor(Color::redColor());
    gc.fillRect(MakeRect(0, 0, 40, 40));
    gc.fill(BezierPath::withOvalInRect(MakeRect(0, 0, 40, 40)));
    gc.stroke(BezierPath::withRect(MakeRect(5, 5, 30, 30)));
    gc.drawGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()),
                    MakeRect(0, 0, 40, 40), 0.0);
    gc.beginTransparencyLayer();
    gc.fillRect(MakeRect(0, 0, 40, 40));
    gc.endTransparencyLayer();
  });
  EXPECT_EQ(TotalAlpha(*bitmap), 0);
}

// The budget is counted in device pixels: a path refused at full size is
// drawn when a scale shrinks it, as a thumbnail does.
TEST(HostileGeometry, WorkIsCountedInDevicePixels) {
  struct Scaled {
    double scale;
    bool refused;
  };
  for (Scaled s : {Scaled{1.0, true}, Scaled{0.03, false}}) {
    std::string failure;
    const int width = static_cast<int>(4000 * s.scale), height = static_cast<int>(3000 * s.scale);
    test::Draw(width, height, [&](GraphicsContext& gc) {
      gc.concat(AffineTransform::scaling(s.scale, s.scale));
      gc.stroke(RandomLines(5000, 4000, 3000));
      failure = gc.failure();
    });
    EXPECT_EQ(!failure.empty(), s.refused) << s.scale << ": " << failure;
  }
}

}  // namespace
}  // namespace paintdoc
