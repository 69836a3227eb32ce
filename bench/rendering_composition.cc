// Composing a full-HD canvas of 200 shapes with shadows: the whole stack from
// scratch, the repaint after a change of the top draw, the rebuild after the
// buffer is dropped, and, as a peer, rsvg-convert rendering the same scene
// written as SVG (timed as a whole process, so its start-up is measured and
// reported separately).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "document/paint_manager.h"
#include "draws/draw_rectangle.h"
#include "platform/graphics/graphics_context.h"

namespace paintdoc {
namespace {

constexpr int kCanvasWidth = 1920;
constexpr int kCanvasHeight = 1080;
constexpr int kShapeCount = 200;

enum class Kind { Rectangle, Ellipse, RoundRectangle, GradientBox };

// One shape of the scene, in canvas units (origin lower left).
struct SceneShape {
  Kind kind;
  Rect box;
  double red, green, blue;
  double lineWidth;  // 0: not stroked
  float rotation;
};

// A fixed pseudo-random scene: every run and both renderers see the same one.
std::vector<SceneShape> MakeScene() {
  uint32_t seed = 12345;
  auto next = [&seed](double low, double high) {
    seed = seed * 1664525u + 1013904223u;
    return low + (high - low) * ((seed >> 8) / 16777216.0);
  };
  std::vector<SceneShape> scene;
  for (int i = 0; i < kShapeCount; ++i) {
    SceneShape shape;
    shape.kind = static_cast<Kind>(i % 4);
    const double width = next(60, 260), height = next(50, 200);
    shape.box = MakeRect(next(0, kCanvasWidth - width), next(0, kCanvasHeight - height), width,
                         height);
    shape.red = next(0, 1);
    shape.green = next(0, 1);
    shape.blue = next(0, 1);
    shape.lineWidth = shape.kind == Kind::GradientBox ? 0 : std::floor(next(2, 6));
    shape.rotation = i % 5 == 0 ? static_cast<float>(next(-45, 45)) : 0.0f;
    scene.push_back(shape);
  }
  return scene;
}

const Shadow kSceneShadow(Color::calibratedWhite(0, 0.85), {8, -8}, 8);

std::shared_ptr<DrawBase> MakeDrawFor(const SceneShape& shape) {
  std::shared_ptr<DrawRectangle> draw;
  switch (shape.kind) {
    case Kind::Rectangle: draw = MakeDraw<DrawRectangle>(); break;
    case Kind::Ellipse: draw = MakeDraw<DrawEllipse>(); break;
    case Kind::RoundRectangle: draw = MakeDraw<DrawRoundRectangle>(); break;
    case Kind::GradientBox: draw = MakeDraw<DrawGradient>(); break;
  }
  draw->setBezierPathWithBounds(shape.box);
  const Color fill = Color::calibratedRGB(shape.red, shape.green, shape.blue);
  if (shape.kind == Kind::GradientBox) {
    draw->setFillGradient(Gradient::withStartingColor(fill, Color::whiteColor()));
  } else {
    draw->setEnableFill(true);
    draw->setFillColor(fill);
    draw->setBezierPathLineWidth(static_cast<float>(shape.lineWidth));
    draw->setStrokeColor(Color::blackColor());
  }
  draw->setRotateDegree(shape.rotation);
  draw->setEnableShadow(true);
  draw->setShadow(kSceneShadow);
  return draw;
}

std::shared_ptr<PaintManager> MakeCanvas() {
  auto canvas = PaintManager::withSize({kCanvasWidth, kCanvasHeight});
  for (const SceneShape& shape : MakeScene()) canvas->addDraw(MakeDrawFor(shape));
  return canvas;
}

// The whole stack painted from nothing: both caches dropped first.
void BM_ComposeFullHd200ShapesWithShadows(benchmark::State& state) {
  auto canvas = MakeCanvas();
  for (auto _ : state) {
    canvas->clearMemeryBuffer();
    benchmark::DoNotOptimize(canvas->image());
  }
  state.counters["shapes"] = kShapeCount;
}
BENCHMARK(BM_ComposeFullHd200ShapesWithShadows)->Unit(benchmark::kMillisecond);

// The picture after nudging one draw back and forth and telling the canvas.
void TimeImageAfterMoving(benchmark::State& state, const std::shared_ptr<PaintManager>& canvas,
                          const std::shared_ptr<DrawBase>& draw) {
  canvas->image();
  float offset = 1;
  for (auto _ : state) {
    draw->moveBy(offset, 0);
    offset = -offset;
    canvas->respondToChangeOfDraws({draw});
    benchmark::DoNotOptimize(canvas->image());
  }
}

// Editing the top draw: the buffer stays, one draw is painted over a copy.
void BM_ImageAfterChangingTheTopDraw(benchmark::State& state) {
  auto canvas = MakeCanvas();
  TimeImageAfterMoving(state, canvas, canvas->toppestDraw());
}
BENCHMARK(BM_ImageAfterChangingTheTopDraw)->Unit(benchmark::kMillisecond);

// Editing a lower draw: the buffer is dropped and rebuilt on the next image.
void BM_ImageAfterDroppingTheBuffer(benchmark::State& state) {
  auto canvas = MakeCanvas();
  TimeImageAfterMoving(state, canvas, canvas->allDraws().front());
}
BENCHMARK(BM_ImageAfterDroppingTheBuffer)->Unit(benchmark::kMillisecond);

// --- the same scene as SVG, rendered by rsvg-convert

std::string SvgColor(double red, double green, double blue) {
  char text[32];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", static_cast<int>(std::lround(red * 255)),
                static_cast<int>(std::lround(green * 255)), static_cast<int>(std::lround(blue * 255)));
  return text;
}

// SVG is y-down: canvas y flips, and a counter-clockwise turn becomes a
// negative SVG rotation. Gradient boxes run from their colour on the left to
// white on the right (0 degrees), turning with the box. The shadow is an offset Gaussian drop shadow of the
// same deviation the canvas uses for a blur radius of 8.
std::string SceneAsSvg(const std::vector<SceneShape>& scene) {
  std::ostringstream svg;
  svg << "<svg xmlns='http://www.w3.org/2000/svg' width='" << kCanvasWidth << "' height='"
      << kCanvasHeight << "'>\n<defs><filter id='s' x='-30%' y='-30%' width='160%' height='160%'>"
      << "<feGaussianBlur in='SourceAlpha' stdDeviation='" << ShadowBlurSigma(8) << "'/>"
      << "<feOffset dx='8' dy='8' result='blurred'/>"
      << "<feFlood flood-color='black' flood-opacity='0.85'/>"
      << "<feComposite in2='blurred' operator='in'/>"
      << "<feMerge><feMergeNode/><feMergeNode in='SourceGraphic'/></feMerge></filter>\n";
  for (size_t i = 0; i < scene.size(); ++i) {
    const SceneShape& s = scene[i];
    if (s.kind != Kind::GradientBox) continue;
    svg << "<linearGradient id='g" << i << "' x1='0' y1='0' x2='1' y2='0'><stop offset='0' "
        << "stop-color='" << SvgColor(s.red, s.green, s.blue) << "'/><stop offset='1' "
        << "stop-color='#ffffff'/></linearGradient>\n";
  }
  svg << "</defs>\n";
  for (size_t i = 0; i < scene.size(); ++i) {
    const SceneShape& s = scene[i];
    const double x = s.box.origin.x, y = kCanvasHeight - s.box.maxY();
    const double w = s.box.width(), h = s.box.height();
    svg << "<g filter='url(#s)' transform='rotate(" << -s.rotation << " " << x + w / 2 << " "
        << y + h / 2 << ")'>";
    const std::string paint =
        s.kind == Kind::GradientBox
            ? "fill='url(#g" + std::to_string(i) + ")'"
            : "fill='" + SvgColor(s.red, s.green, s.blue) + "' stroke='black' stroke-width='" +
                  std::to_string(s.lineWidth) + "'";
    if (s.kind == Kind::Ellipse) {
      svg << "<ellipse cx='" << x + w / 2 << "' cy='" << y + h / 2 << "' rx='" << w / 2
          << "' ry='" << h / 2 << "' " << paint << "/>";
    } else {
      const double radius = s.kind == Kind::RoundRectangle ? 30 : 0;
      svg << "<rect x='" << x << "' y='" << y << "' width='" << w << "' height='" << h
          << "' rx='" << radius << "' " << paint << "/>";
    }
    svg << "</g>\n";
  }
  svg << "</svg>\n";
  return svg.str();
}

std::string WriteTemporary(const std::string& name, const std::string& text) {
  const std::string path = "/tmp/paintdoc_bench_" + name;
  std::ofstream(path) << text;
  return path;
}

// One rsvg-convert process per iteration, writing its PNG to a scratch file
// (it refuses anything but a regular file).
void TimeRsvgConvert(benchmark::State& state, const std::string& svgPath) {
  const std::string command = "rsvg-convert -o " + svgPath + ".png " + svgPath + " 2>/dev/null";
  if (std::system("command -v rsvg-convert >/dev/null 2>&1") != 0) {
    state.SkipWithError("rsvg-convert is not installed");
    return;
  }
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) {
      state.SkipWithError("rsvg-convert failed");
      return;
    }
  }
}

void BM_RsvgConvertSameScene(benchmark::State& state) {
  TimeRsvgConvert(state, WriteTemporary("scene.svg", SceneAsSvg(MakeScene())));
}
BENCHMARK(BM_RsvgConvertSameScene)->Unit(benchmark::kMillisecond)->UseRealTime();

// The process start-up and PNG encoding of an empty canvas of the same size,
// to subtract from the scene's time.
void BM_RsvgConvertEmptyCanvas(benchmark::State& state) {
  std::ostringstream empty;
  empty << "<svg xmlns='http://www.w3.org/2000/svg' width='" << kCanvasWidth << "' height='"
        << kCanvasHeight << "'/>\n";
  TimeRsvgConvert(state, WriteTemporary("empty.svg", empty.str()));
}
BENCHMARK(BM_RsvgConvertEmptyCanvas)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
