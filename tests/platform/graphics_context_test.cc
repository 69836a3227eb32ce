// The current-context stack, graphics state, coordinates, strokes, clips and
// the platform's bounded compositing operations.
#include "platform/graphics/graphics_context.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include "platform/values/log.h"
#include "support/drawing_test_support.h"
#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

using test::Draw;
using test::ImagesMatch;
using test::Inside;
using test::MakeImage;
using test::PixelAt;
using test::PixelValue;

const Color kBlue = Color::calibratedRGB(0, 0, 1, 1);
const Color kHalfRed = Color::calibratedRGB(1, 0, 0, 0.5);
const Rgba8 kBlue8{0, 0, 255, 255};
const PixelValue kBlueValue = PixelValue::straight(0, 0, 1, 1);

// Paints the whole width × height area blue first.
void FillBlue(GraphicsContext& gc, int width, int height) {
  gc.setFillColor(kBlue);
  gc.fillRect(MakeRect(0, 0, width, height));
}

TEST(GraphicsContextStack, LockFocusNestsPerThread) {
  EXPECT_EQ(GraphicsContext::current(), nullptr);
  auto first = Bitmap::create(4, 4), second = Bitmap::create(2, 2);
  GraphicsContext& outer = GraphicsContext::lockFocus(first);
  EXPECT_EQ(GraphicsContext::current(), &outer);
  {
    BitmapFocus inner(second);
    EXPECT_EQ(GraphicsContext::current(), &inner.context());
    EXPECT_EQ(GraphicsContext::current()->bitmap(), second);
    // Another thread has its own, empty stack.
    GraphicsContext* seenByOtherThread = &outer;
    std::thread([&] { seenByOtherThread = GraphicsContext::current(); }).join();
    EXPECT_EQ(seenByOtherThread, nullptr);
  }
  EXPECT_EQ(GraphicsContext::current(), &outer);
  GraphicsContext::unlockFocus();
  EXPECT_EQ(GraphicsContext::current(), nullptr);

  LogCapture log;
  GraphicsContext::unlockFocus();
  EXPECT_TRUE(log.contains("Error: unlockFocus without a matching lockFocus"));
}

TEST(GraphicsContextStack, MissingBitmapIsLoggedAndStaysBalanced) {
  LogCapture log;
  {
    BitmapFocus focus(nullptr);
    focus.context().fillRect(MakeRect(0, 0, 10, 10));  // goes nowhere, harmlessly
  }
  EXPECT_TRUE(log.contains("Error: lockFocus on a missing bitmap"));
  EXPECT_EQ(GraphicsContext::current(), nullptr);
}

TEST(GraphicsContextState, SaveAndRestoreNest) {
  auto bitmap = Bitmap::create(4, 4);
  GraphicsContext gc(bitmap);
  EXPECT_EQ(gc.compositingOperation(), CompositingOperation::SourceOver);
  EXPECT_EQ(gc.alpha(), 1);
  EXPECT_TRUE(gc.shouldAntialias());
  gc.saveGraphicsState();
  gc.setAlpha(0.25);
  gc.setBlendMode(BlendMode::SourceOut);
  gc.setShadow(Shadow(std::nullopt, {1, 2}, 3));
  gc.translate(5, 6);
  gc.saveGraphicsState();
  gc.setCompositingOperation(CompositingOperation::Copy);
  gc.setShouldAntialias(false);
  EXPECT_EQ(gc.blendMode(), BlendMode::Copy);
  gc.restoreGraphicsState();
  EXPECT_EQ(gc.compositingOperation(), CompositingOperation::SourceOut);
  EXPECT_TRUE(gc.shouldAntialias());
  EXPECT_EQ(gc.currentTransform(), AffineTransform::translation(5, 6));
  gc.restoreGraphicsState();
  EXPECT_EQ(gc.alpha(), 1);
  EXPECT_FALSE(gc.shadow());
  EXPECT_TRUE(gc.currentTransform().isIdentity());

  LogCapture log;
  gc.restoreGraphicsState();
  EXPECT_TRUE(log.contains("Error: restoreGraphicsState without a matching saveGraphicsState"));
  gc.setAlpha(3);
  EXPECT_EQ(gc.alpha(), 1);
}

TEST(GraphicsContextState, LayerResetsAlphaShadowAndOperationAndRestoresThemAtTheEnd) {
  auto bitmap = Bitmap::create(4, 4);
  GraphicsContext gc(bitmap);
  gc.setAlpha(0.5);
  gc.setShadow(Shadow(Color::blackColor(), {1, -1}, 0));
  gc.setBlendMode(BlendMode::Multiply);
  gc.setFillColor(kBlue);
  gc.beginTransparencyLayer();
  EXPECT_EQ(gc.alpha(), 1);
  EXPECT_FALSE(gc.shadow());
  EXPECT_EQ(gc.compositingOperation(), CompositingOperation::SourceOver);
  EXPECT_EQ(gc.fillColor(), kBlue);  // everything else carries in
  gc.setFillColor(kHalfRed);
  {
    LogCapture log;
    gc.restoreGraphicsState();  // may not end the layer
    EXPECT_TRUE(log.contains("use endTransparencyLayer"));
  }
  gc.endTransparencyLayer();
  EXPECT_EQ(gc.alpha(), 0.5);
  EXPECT_TRUE(gc.shadow());
  EXPECT_EQ(gc.blendMode(), BlendMode::Multiply);
  EXPECT_EQ(gc.fillColor(), kBlue);
  LogCapture log;
  gc.endTransparencyLayer();
  EXPECT_TRUE(log.contains("Error: endTransparencyLayer without"));
}

TEST(GraphicsContextCoordinates, OriginIsLowerLeftAndPointsFollowResolution) {
  auto bitmap = Draw(8, 6, [](GraphicsContext& gc) {
    gc.setFillColor(kBlue);
    gc.fillRect(MakeRect(2, 1, 3, 2));
  });
  auto expected = MakeImage(8, 6, [](int x, int y) { return Inside(x, y, 2, 1, 5, 3) ? kBlue8 : Rgba8{}; });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "origin_lower_left"));
  EXPECT_EQ(bitmap->pixelAt(2, 6 - 1 - 1), kBlue8);  // storage rows run from the top

  // 20 × 10 pixels at 144 dpi: 10 × 5 points, two pixels a point.
  auto hiDpi = Bitmap::create(20, 10);
  hiDpi->setSizeWithDPI(144);
  test::DrawInto(hiDpi, [](GraphicsContext& gc) {
    gc.setFillColor(kBlue);
    gc.fillRect(MakeRect(1, 1, 2, 2));
  });
  auto expectedHiDpi = MakeImage(20, 10, [](int x, int y) { return Inside(x, y, 2, 2, 6, 6) ? kBlue8 : Rgba8{}; });
  EXPECT_TRUE(ImagesMatch(*hiDpi, *expectedHiDpi, 0, "points_follow_resolution"));
}

// Each operation applied by a half-transparent red square onto opaque blue
// must follow its formula inside the square and leave the outside alone.
TEST(GraphicsContextCompositing, PorterDuffOperationsAreBoundedByTheShape) {
  struct Case {
    CompositingOperation operation;
    PixelValue (*formula)(PixelValue s, PixelValue d);
  };
  const Case cases[] = {
      {CompositingOperation::Clear, [](PixelValue, PixelValue) { return PixelValue{}; }},
      {CompositingOperation::Copy, [](PixelValue s, PixelValue) { return s; }},
      {CompositingOperation::SourceOver, [](PixelValue s, PixelValue d) { return s + d * (1 - s.alpha); }},
      {CompositingOperation::SourceIn, [](PixelValue s, PixelValue d) { return s * d.alpha; }},
      {CompositingOperation::SourceOut, [](PixelValue s, PixelValue d) { return s * (1 - d.alpha); }},
      {CompositingOperation::SourceAtop,
       [](PixelValue s, PixelValue d) { return s * d.alpha + d * (1 - s.alpha); }},
      {CompositingOperation::DestinationOver, [](PixelValue s, PixelValue d) { return s * (1 - d.alpha) + d; }},
      {CompositingOperation::DestinationIn, [](PixelValue s, PixelValue d) { return d * s.alpha; }},
      {CompositingOperation::DestinationOut, [](PixelValue s, PixelValue d) { return d * (1 - s.alpha); }},
      {CompositingOperation::DestinationAtop,
       [](PixelValue s, PixelValue d) { return s * (1 - d.alpha) + d * s.alpha; }},
      {CompositingOperation::XOR,
       [](PixelValue s, PixelValue d) { return s * (1 - d.alpha) + d * (1 - s.alpha); }},
  };
  const PixelValue red = PixelValue::straight(1, 0, 0, 0.5);
  for (const Case& c : cases) {
    auto bitmap = Draw(12, 10, [&](GraphicsContext& gc) {
      FillBlue(gc, 12, 10);
      gc.setFillColor(kHalfRed);
      gc.setCompositingOperation(c.operation);
      gc.fill(BezierPath::withRect(MakeRect(3, 2, 5, 4)));
    });
    PixelValue inside = c.formula(red, kBlueValue);
    auto expected = MakeImage(12, 10, [&](int x, int y) {
      return (Inside(x, y, 3, 2, 8, 6) ? inside : kBlueValue).toRgba8();
    });
    EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 1,
                            "operation_" + std::to_string(static_cast<int>(c.operation))));
  }
}

TEST(GraphicsContextCompositing, StrokesAndAntialiasedEdgesStayBoundedToo) {
  // SourceIn through a stroke: cairo alone would clear everything else.
  auto bitmap = Draw(16, 16, [](GraphicsContext& gc) {
    FillBlue(gc, 16, 16);
    gc.setStrokeColor(kHalfRed);
    gc.setCompositingOperation(CompositingOperation::SourceIn);
    BezierPath line;
    line.moveTo({0, 8});
    line.lineTo({16, 8});
    line.setLineWidth(4);
    gc.stroke(line);
    // A half-transparent antialiased oval with DestinationIn halves the
    // inside, mixes the edge by coverage and keeps the outside.
    gc.setFillColor(Color::calibratedRGB(0, 1, 0, 0.5));
    gc.setCompositingOperation(CompositingOperation::DestinationIn);
    gc.fill(BezierPath::withOvalInRect(MakeRect(1.3, 0.6, 5.1, 4.7)));
  });
  const PixelValue redInBlue = PixelValue::straight(1, 0, 0, 0.5);
  auto expected = MakeImage(16, 16, [&](int, int y) {
    return (y >= 6 && y < 10 ? redInBlue : kBlueValue).toRgba8();
  });
  // The oval's area is checked separately below.
  auto inOval = [](int x, int y) { return x < 7 && y < 6; };
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 1, "bounded_stroke", inOval));
  EXPECT_EQ(PixelAt(*bitmap, 3, 3), (Rgba8{0, 0, 128, 128}));  // inside the oval
  EXPECT_EQ(PixelAt(*bitmap, 0, 5), kBlue8);                   // outside: kept
  Rgba8 edge = PixelAt(*bitmap, 1, 2);                         // partly covered: between
  EXPECT_GT(edge.alpha, 128);
  EXPECT_LT(edge.alpha, 255);
  EXPECT_EQ(edge.blue, edge.alpha);
}

TEST(GraphicsContextCompositing, LayerCompositeActsOnTheWholeClip) {
  auto bitmap = Draw(12, 10, [](GraphicsContext& gc) {
    FillBlue(gc, 12, 10);
    gc.clipToRect(MakeRect(2, 2, 8, 6));
    gc.setCompositingOperation(CompositingOperation::DestinationIn);
    gc.beginTransparencyLayer();
    gc.setFillColor(Color::redColor());
    gc.fillRect(MakeRect(4, 4, 2, 2));
    gc.endTransparencyLayer();
  });
  auto expected = MakeImage(12, 10, [](int x, int y) {
    bool inClip = Inside(x, y, 2, 2, 10, 8), inSquare = Inside(x, y, 4, 4, 6, 6);
    return inClip && !inSquare ? Rgba8{} : kBlue8;
  });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "layer_unbounded_in_clip"));
}

// Text and other cairo drawing pass through drawWithCairo: in user space, as
// one primitive with the context's operation, alpha and shadow.
TEST(GraphicsContextCompositing, CairoDrawingIsOnePrimitiveBoundedByWhatItDrew) {
  auto bitmap = Draw(12, 10, [](GraphicsContext& gc) {
    FillBlue(gc, 12, 10);
    gc.setCompositingOperation(CompositingOperation::Copy);
    gc.setAlpha(0.5);
    gc.setShadow(Shadow(Color::blackColor(), {0, -2}, 0));
    gc.drawWithCairo([](cairo_t* cr) {
      cairo_set_source_rgba(cr, 1, 0, 0, 1);
      cairo_rectangle(cr, 2, 6, 4, 3);  // y up, like the context
      cairo_fill(cr);
      cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);  // must not leak out
    });
    EXPECT_EQ(gc.compositingOperation(), CompositingOperation::Copy);
  });
  // The shadow (2 below) is copied at half alpha, then the red at half alpha
  // replaces what lies under it; the rest stays blue.
  auto expected = MakeImage(12, 10, [](int x, int y) {
    if (Inside(x, y, 2, 6, 6, 9)) return PixelValue::straight(1, 0, 0, 0.5).toRgba8();
    if (Inside(x, y, 2, 4, 6, 6)) return PixelValue::straight(0, 0, 0, 0.5).toRgba8();
    return kBlue8;
  });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 1, "cairo_drawing_primitive"));
}

TEST(GraphicsContextCompositing, GlobalAlphaScalesFillsAndCopyReplacesWithIt) {
  auto bitmap = Draw(6, 2, [](GraphicsContext& gc) {
    FillBlue(gc, 6, 2);
    gc.setAlpha(0.5);
    gc.setFillColor(Color::redColor());
    gc.fillRect(MakeRect(0, 0, 3, 2));
    gc.fillRect(MakeRect(3, 0, 3, 2), CompositingOperation::Copy);
  });
  const PixelValue halfRed = PixelValue::straight(1, 0, 0, 0.5);
  auto expected = MakeImage(6, 2, [&](int x, int) {
    return (x < 3 ? test::SourceOver(halfRed, kBlueValue) : halfRed).toRgba8();
  });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 1, "global_alpha"));
}

TEST(GraphicsContextClip, BothWindingRulesAndAntialiasingOff) {
  BezierPath ring;
  ring.appendRect(MakeRect(2, 2, 12, 12));
  ring.appendRect(MakeRect(5, 5, 6, 6));  // same direction: a hole only under even-odd
  for (WindingRule rule : {WindingRule::NonZero, WindingRule::EvenOdd}) {
    auto bitmap = Draw(16, 16, [&](GraphicsContext& gc) {
      gc.clip(ring, rule);
      FillBlue(gc, 16, 16);
    });
    auto expected = MakeImage(16, 16, [&](int x, int y) {
      bool outer = Inside(x, y, 2, 2, 14, 14), hole = Inside(x, y, 5, 5, 11, 11);
      return outer && !(rule == WindingRule::EvenOdd && hole) ? kBlue8 : Rgba8{};
    });
    EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0,
                            rule == WindingRule::EvenOdd ? "clip_even_odd" : "clip_nonzero"));
  }

  auto aliased = Draw(20, 20, [](GraphicsContext& gc) {
    gc.setShouldAntialias(false);
    gc.fill(BezierPath::withOvalInRect(MakeRect(1.3, 2.2, 15.1, 13.7)));
  });
  int partial = 0, full = 0;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 20; ++x) {
      uint8_t a = PixelAt(*aliased, x, y).alpha;
      partial += a != 0 && a != 255;
      full += a == 255;
    }
  }
  EXPECT_EQ(partial, 0);
  // About π/4 of the 15.1 × 13.7 box.
  EXPECT_NEAR(full, 3.14159 / 4 * 15.1 * 13.7, 12);
}

// A vertical line at x covers columns [x − w/2, x + w/2): odd widths on pixel
// centres and even widths on pixel edges cover whole pixels.
TEST(GraphicsContextStroke, OddWidthsOnCentresAndEvenWidthsOnEdgesCoverWholePixels) {
  struct Case {
    double x, width;
    int firstColumn, lastColumn;
  };
  for (const Case& c : {Case{10.5, 1, 10, 10}, Case{10, 2, 9, 10}, Case{10.5, 3, 9, 11},
                        Case{10, 4, 8, 11}}) {
    auto bitmap = Draw(20, 6, [&](GraphicsContext& gc) {
      BezierPath line;
      line.moveTo({c.x, -1});
      line.lineTo({c.x, 7});
      line.setLineWidth(c.width);
      gc.setStrokeColor(kBlue);
      gc.stroke(line);
    });
    auto expected = MakeImage(20, 6, [&](int x, int) {
      return x >= c.firstColumn && x <= c.lastColumn ? kBlue8 : Rgba8{};
    });
    EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0,
                            "stroke_width_" + std::to_string(static_cast<int>(c.width))));
  }
}

TEST(GraphicsContextStroke, WidthZeroIsOneDevicePixelAndDashesAlternate) {
  auto bitmap = Draw(20, 6, [](GraphicsContext& gc) {
    gc.concat(AffineTransform::scaling(2, 2));
    BezierPath hairline;
    hairline.moveTo({5.25, -1});
    hairline.lineTo({5.25, 4});
    hairline.setLineWidth(0);  // device pixel 10 after the scale
    gc.setStrokeColor(kBlue);
    gc.stroke(hairline);
  });
  auto expected = MakeImage(20, 6, [](int x, int) { return x == 10 ? kBlue8 : Rgba8{}; });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "stroke_width_zero"));

  auto dashed = Draw(12, 1, [](GraphicsContext& gc) {
    BezierPath line;
    line.moveTo({0, 0.5});
    line.lineTo({12, 0.5});
    line.setLineDash({3, 1}, 1);  // starts one unit into the first dash
    gc.stroke(line);
  });
  // Phase 1: on for 2, off 1, on 3, off 1, ...
  const bool on[12] = {1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 0, 1};
  for (int x = 0; x < 12; ++x) {
    EXPECT_EQ(PixelAt(*dashed, x, 0).alpha, on[x] ? 255 : 0) << x;
  }
}

TEST(GraphicsContextTransform, ConcatAppliesBeforeTheCurrentTransform) {
  auto bitmap = Draw(10, 10, [](GraphicsContext& gc) {
    gc.translate(6, 2);
    gc.concat(AffineTransform::rotationDegrees(90));  // (x, y) → (−y, x), then translate
    gc.setFillColor(kBlue);
    gc.fillRect(MakeRect(1, 1, 4, 2));  // → x in [3, 5), y in [3, 7)
    LogCapture log;
    gc.concat(AffineTransform::scaling(0, 1));
    EXPECT_TRUE(log.contains("singular"));
  });
  auto expected = MakeImage(10, 10, [](int x, int y) { return Inside(x, y, 3, 3, 5, 7) ? kBlue8 : Rgba8{}; });
  EXPECT_TRUE(ImagesMatch(*bitmap, *expected, 0, "concat_rotation"));
}

// Damaged documents carry NaNs and absurd sizes; none may put cairo into its
// error state, which would silently end all later drawing.
TEST(GraphicsContextRobustness, HostileValuesDrawNothingAndLeaveTheContextWorking) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  auto image = Bitmap::create(2, 2);
  auto bitmap = Draw(8, 8, [&](GraphicsContext& gc) {
    BezierPath broken;
    broken.moveTo({0, 0});
    broken.lineTo({nan, 4});
    broken.lineTo({4, infinity});
    gc.fill(broken);
    gc.stroke(broken);
    BezierPath wide = BezierPath::withRect(MakeRect(1, 1, 2, 2));
    wide.setLineWidth(infinity);
    wide.setLineDash({1, -1}, nan);  // a negative length: drawn solid
    gc.setShadow(Shadow(Color::blackColor(), {nan, 1}, 3));
    gc.fill(wide);
    gc.setShadow(Shadow(Color::blackColor(), {1, 1}, 1e12));  // huge blur: bounded
    gc.fill(wide);
    gc.setShadow(std::nullopt);
    gc.fillRect(MakeRect(nan, 0, 4, 4));
    gc.drawBitmap(*image, MakeRect(0, 0, infinity, 4), ZeroRect(), CompositingOperation::Copy, 1);
    gc.drawGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()), wide, nan);
    gc.setFillColor(Color::calibratedRGB(nan, 2, -1, 1));
    gc.fillRect(MakeRect(4, 4, 4, 4));
  });
  // The last fill still landed: the context never broke.
  EXPECT_EQ(PixelAt(*bitmap, 6, 6), (Rgba8{0, 255, 0, 255}));
}

}  // namespace
}  // namespace paintdoc
