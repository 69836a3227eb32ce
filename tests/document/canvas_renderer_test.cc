// The canvas renderer at other scales and areas than the canvas's own: what a
// thumbnail drawn at its own size shows must be what the full-size picture
// shows once resampled to that size.
#include <gtest/gtest.h>

#include <cmath>

#include "document/canvas_renderer.h"
#include "document/paint_manager.h"
#include "draws/draw_rectangle.h"
#include "platform/values/bitmap.h"
#include "platform/values/pixel_memory.h"
#include "preview/bitmap_scaling.h"

namespace paintdoc {
namespace {

// Fills, a gradient, an odd stroke, a drop shadow and a reflection: the
// pieces that work in device pixels.
std::shared_ptr<PaintManager> ShadedCanvas() {
  auto canvas = PaintManager::withSize({320, 240});
  auto box = MakeDraw<DrawRectangle>();
  box->setBezierPathWithBounds(MakeRect(40, 60, 120, 90));
  box->setFillColor(Color::calibratedRGB(0.9, 0.3, 0.1, 1));
  box->setBezierPathLineWidth(3);
  box->setEnableShadow(true);
  box->setShadow(Shadow(Color::calibratedWhite(0, 0.6), {8, -8}, 10));
  canvas->addDraw(box);
  auto oval = MakeDraw<DrawEllipse>();
  oval->setBezierPathWithBounds(MakeRect(170, 110, 120, 100));
  oval->setFillWithGradient(true);
  oval->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(0.1, 0.4, 0.9, 1),
                                                    Color::calibratedRGB(1, 1, 0.2, 0.5)));
  oval->setEnableReflection(true);
  oval->setReflection(0.6f);
  canvas->addDraw(oval);
  return canvas;
}

std::shared_ptr<Bitmap> Render(const PaintManager& canvas, int wide, int high, const Rect& area) {
  auto bitmap = Bitmap::create(wide, high);
  {
    CanvasRenderer renderer(canvas, bitmap, area);
    renderer.paintAll();
    EXPECT_FALSE(renderer.failed()) << renderer.failure();
  }
  EXPECT_EQ(bitmap->size(), (Size{double(wide), double(high)})) << "point size given back";
  return bitmap;
}

TEST(CanvasRenderer, DrawsAnyScaleAsTheFullPictureResampled) {
  const auto canvas = ShadedCanvas();
  const std::shared_ptr<Bitmap> full = canvas->image();
  ASSERT_TRUE(full);
  struct Case {
    double scale;
    double maxMean;  // mean difference per channel, in levels
  } const cases[] = {{1, 0}, {0.5, 0.15}, {0.25, 0.3}, {0.125, 0.4}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.scale);
    const int wide = int(320 * c.scale), high = int(240 * c.scale);
    const auto drawn = Render(*canvas, wide, high, canvas->canvasRect());
    const auto expected = c.scale == 1 ? full : ScaleBitmapByArea(*full, wide, high);
    const auto difference = CompareBitmaps(*drawn, *expected);
    ASSERT_TRUE(difference);
    EXPECT_LE(difference->mean, c.maxMean) << "max " << difference->max;
    if (c.scale == 1) {
      EXPECT_EQ(difference->max, 0) << "the full size is the cached picture";
    }
  }
}

TEST(CanvasRenderer, AreaOfTheCanvasIsTheSamePixelsAsTheWhole) {
  const auto canvas = ShadedCanvas();
  const auto whole = Render(*canvas, 320, 240, canvas->canvasRect());
  // The upper right quarter: canvas x 160…320, y 120…240, which is storage
  // rows 0…119 (top first) and columns 160…319 of the whole.
  const auto quarter = Render(*canvas, 160, 120, MakeRect(160, 120, 160, 120));
  int differing = 0;
  for (int y = 0; y < 120; ++y) {
    for (int x = 0; x < 160; ++x) differing += quarter->pixelAt(x, y) != whole->pixelAt(x + 160, y);
  }
  EXPECT_EQ(differing, 0);
}

// A layer whose drawing could not get the pixel memory it asked for.
class StarvedBox : public DrawRectangle {
 public:
  void drawInImage(const std::shared_ptr<Bitmap>& image) override {
    NotePixelMemoryFailure("no memory for a bitmap of 9 x 9 pixels");
    DrawRectangle::drawInImage(image);
  }
};

// A filled star of 20,000 spikes, each vertex almost half a turn from the
// last: few elements, but more edge crossings than any preview may spend.
std::shared_ptr<DrawBase> SpikyStar() {
  BezierPath star;
  for (int vertex = 0; vertex <= 20000; ++vertex) {
    const double angle = vertex * 0.499 * 2 * M_PI;
    const Point point{400 + 380 * std::cos(angle), 400 + 380 * std::sin(angle)};
    vertex == 0 ? star.moveTo(point) : star.lineTo(point);
  }
  star.closePath();
  auto draw = MakeDraw<DrawRectangle>();
  draw->setBezierPathWithData(ArchiveValue(star));
  draw->setEnableStroke(false);
  draw->setEnableFill(true);
  return draw;
}

// A picture missing a layer is no picture of the document: the renderer, and
// the preview drawn through it, fail with the line that says why.
TEST(CanvasRenderer, LayerThatCouldNotBeDrawnFailsTheRender) {
  const struct {
    std::shared_ptr<DrawBase> layer;
    std::string failure;
  } cases[] = {{MakeDraw<StarvedBox>(), "no memory for a bitmap of 9 x 9 pixels"},
               {SpikyStar(), "crosses itself too often to draw"}};
  for (const auto& c : cases) {
    auto canvas = PaintManager::withSize({800, 800});
    canvas->addDraw(c.layer);
    auto bitmap = Bitmap::create(800, 800);
    CanvasRenderer renderer(*canvas, bitmap, canvas->canvasRect());
    EXPECT_FALSE(renderer.failed());
    renderer.paintAll();
    EXPECT_NE(renderer.failure().find(c.failure), std::string::npos) << renderer.failure();
  }
}

TEST(CanvasRenderer, EmptyTargetsDrawNothingAndFailNothing) {
  const auto canvas = ShadedCanvas();
  for (const auto& [bitmap, area] :
       {std::pair{Bitmap::create(0, 0), canvas->canvasRect()},
        std::pair{Bitmap::create(8, 8), MakeRect(0, 0, 0, 10)}}) {
    CanvasRenderer renderer(*canvas, bitmap, area);
    renderer.paintAll();
    EXPECT_FALSE(renderer.failed());
  }
  CanvasRenderer none(*canvas, nullptr, canvas->canvasRect());
  EXPECT_TRUE(none.failed());
}

}  // namespace
}  // namespace paintdoc
