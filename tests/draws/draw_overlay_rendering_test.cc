// The editing overlays of a draw (highlight and border), painted in view
// units through a canvas view of the tests' own.
#include <gtest/gtest.h>

#include <set>

#include "draws/canvas_view.h"
#include "draws/draw_rectangle.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/bitmap_functions.h"
#include "support/geometry_near.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::PixelAt;

// A view showing the canvas at a zoom, with the canvas origin at `origin` in
// the view; window and view units coincide.
class ZoomedView : public CanvasView {
 public:
  explicit ZoomedView(float zoom, Point origin = {}, bool external = false)
      : zoom_(zoom), origin_(origin), external_(external) {}

  float scale() const override { return zoom_; }
  AffineTransform transformForDrawing() const override {
    AffineTransform transform = AffineTransform::scaling(zoom_, zoom_);
    transform.append(AffineTransform::translation(origin_.x, origin_.y));
    return transform;
  }
  bool highlightFromExternal() const override { return external_; }
  Size canvasSize() const override { return MakeSize(100, 100); }
  Point convertPointFromWindow(Point windowPoint) const override { return windowPoint; }
  Point convertPointToCanvasWithoutRound(Point viewPoint) const override {
    return {(viewPoint.x - origin_.x) / zoom_, (viewPoint.y - origin_.y) / zoom_};
  }
  Point convertPointFromCanvas(Point canvasPoint) const override {
    return transformForDrawing().transformPoint(canvasPoint);
  }
  Rect convertRectFromCanvas(Rect canvasRect) const override {
    const Point origin = convertPointFromCanvas(canvasRect.origin);
    return MakeRect(origin.x, origin.y, canvasRect.width() * zoom_, canvasRect.height() * zoom_);
  }

 private:
  float zoom_;
  Point origin_;
  bool external_;
};

std::shared_ptr<DrawRectangle> FilledBox(const Rect& box) {
  auto draw = MakeDraw<DrawRectangle>();
  draw->setBezierPathWithBounds(box);
  draw->setEnableFill(true);
  draw->setFillColor(Color::redColor());
  return draw;
}

// The view bitmap with the overlay painted by `paint`.
std::shared_ptr<Bitmap> PaintOverlay(int width, int height,
                                     const std::function<void()>& paint) {
  auto view = InitImageRep(width, height);
  WTLockFocus(view);
  paint();
  WTUnlockFocus(view);
  return view;
}

// The total coverage (alpha / 255) of the column x from row 0 to row `rows`:
// the width of a horizontal line crossing it, in view pixels.
double LineWidthAcross(const Bitmap& bitmap, int x, int rows) {
  double total = 0;
  for (int y = 0; y < rows; ++y) total += PixelAt(bitmap, x, y).alpha / 255.0;
  return total;
}

const Rgba8 kHighlight{29, 89, 236, 255};

TEST(Highlight, UnstrokedDrawIsOutlinedThreeViewPixelsWideAtAnyZoom) {
  auto box = FilledBox(MakeRect(5, 5, 20, 10));
  box->setEnableStroke(false);
  for (float zoom : {1.0f, 2.0f, 4.0f}) {
    ZoomedView view(zoom);
    auto bitmap = PaintOverlay(120, 80, [&] { box->drawHighlightInCanvasView(view); });
    // The bottom edge lies at view y = 5·zoom; the column at x = 15·zoom crosses it.
    const int column = static_cast<int>(15 * zoom);
    EXPECT_NEAR(LineWidthAcross(*bitmap, column, static_cast<int>(10 * zoom)), 3.0, 0.05)
        << "zoom " << zoom;
    EXPECT_EQ(PixelAt(*bitmap, column, static_cast<int>(5 * zoom)), kHighlight);
  }
}

TEST(Highlight, StrokedDrawIsOutlinedTwoCanvasUnitsWiderThanItsStrokeGradientBoxNot) {
  auto box = FilledBox(MakeRect(5, 5, 20, 10));
  box->setBezierPathLineWidth(4);  // highlight 6 canvas units: 12 view pixels
  ZoomedView view(2.0f);
  auto bitmap = PaintOverlay(80, 60, [&] { box->drawHighlightInCanvasView(view); });
  EXPECT_NEAR(LineWidthAcross(*bitmap, 30, 20), 12.0, 0.05);
  // A thin stroke is still highlighted at least 3 canvas units wide.
  box->setBezierPathLineWidth(0.5f);
  bitmap = PaintOverlay(80, 60, [&] { box->drawHighlightInCanvasView(view); });
  EXPECT_NEAR(LineWidthAcross(*bitmap, 30, 20), 6.0, 0.05);
  // A gradient box does not stroke: only its box outline shows, two view pixels wide.
  auto gradient = MakeDraw<DrawGradient>();
  gradient->setBezierPathWithBounds(MakeRect(5, 5, 20, 10));
  bitmap = PaintOverlay(80, 60, [&] { gradient->drawHighlightInCanvasView(view); });
  EXPECT_NEAR(LineWidthAcross(*bitmap, 30, 20), 2.0, 0.05);
}

TEST(Highlight, FromOutsideTheCanvasTheFillIsPaintedTooInAVisibleColour) {
  auto box = FilledBox(MakeRect(5, 5, 20, 10));
  const Point middle{30, 20};  // view units at zoom 2
  auto paintWith = [&](bool external) {
    ZoomedView view(2.0f, Point{}, external);
    return PaintOverlay(80, 60, [&] { box->drawHighlightInCanvasView(view); });
  };
  EXPECT_EQ(PixelAt(*paintWith(false), middle.x, middle.y).alpha, 0);
  box->setFillColor(Color::calibratedRGB(1, 0, 0, 0.5));
  EXPECT_EQ(PixelAt(*paintWith(true), middle.x, middle.y), (Rgba8{128, 0, 0, 128}));
  // Too faint to see (but still filled): the highlight colour stands in.
  box->setFillColor(Color::calibratedRGB(1, 0, 0, 0.05));
  EXPECT_EQ(PixelAt(*paintWith(true), middle.x, middle.y), kHighlight);
}

TEST(Border, MarchingAntsAreBlackUnderWhiteDashesAroundTheWidenedBox) {
  // A box-shaped draw has no border of its own, even while resized...
  auto box = FilledBox(MakeRect(5.3, 5.3, 20, 10));
  box->setResizing(true);
  auto none = PaintOverlay(80, 60, [&] { box->drawBorderInCanvasView(ZoomedView(2.0f)); });
  EXPECT_EQ(ImageRectByTrimEmpty(none), ZeroRect());

  // ...while a plain stroked draw shows one as long as it is resized.
  auto draw = MakeDraw<DrawBase>();
  draw->setBezierPathWithData(ArchiveValue(BezierPath::withRect(MakeRect(5.3, 5.3, 20, 10))));
  draw->setBezierPathLineWidth(2);
  draw->setResizing(true);
  auto bitmap = PaintOverlay(80, 60, [&] { draw->drawBorderInCanvasView(ZoomedView(2.0f)); });
  // The box rounded to (5, 5, 20, 10) and widened by half the line width:
  // (4, 4, 22, 12) in canvas units, (8, 8, 44, 24) in view units.
  test::ExpectRectNear(ImageRectByTrimEmpty(bitmap), MakeRect(8, 8, 44, 24), 1);
  // Without antialiasing only black and white pixels appear, both of them.
  std::set<std::tuple<int, int, int, int>> colours;
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 80; ++x) {
      const Rgba8 p = PixelAt(*bitmap, x, y);
      if (p.alpha != 0) colours.insert({p.red, p.green, p.blue, p.alpha});
    }
  }
  EXPECT_EQ(colours, (std::set<std::tuple<int, int, int, int>>{{0, 0, 0, 255},
                                                                 {255, 255, 255, 255}}));
}

}  // namespace
}  // namespace paintdoc
