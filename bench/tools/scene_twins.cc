// scene-twins WIDTH HEIGHT LAYERS OUT
//
// Writes OUT.paintdoc and OUT.svg, the same scene in both: a canvas of
// WIDTH x HEIGHT points with LAYERS layers of rectangles, ellipses filled
// with linear gradients and stroked lines, every fourth with a drop shadow.
// The benchmark against an SVG renderer draws the two side by side.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/values/file_bytes.h"
#include "preview/document_container.h"

namespace paintdoc {
namespace {

// A repeatable stream of numbers in [0, 1): the same scene on every run.
class Dice {
 public:
  double next() {
    state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<double>(state_ >> 11) / static_cast<double>(1ull << 53);
  }

 private:
  uint64_t state_ = 42;
};

struct Rgb {
  double r, g, b;
  std::string svg() const {
    char text[32];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", int(r * 255), int(g * 255), int(b * 255));
    return text;
  }
  Color color() const { return Color::calibratedRGB(r, g, b); }
};

// One layer in both forms.
struct Layer {
  std::shared_ptr<DrawBase> draw;
  std::string svg;
};

constexpr double kStrokeWidth = 4;
// The library's default drop shadow: 85 % black, 8 points right and down,
// a blur radius of 8 (an SVG standard deviation of half that). Spelled out
// as blur, offset, flood and merge, which every SVG renderer draws.
constexpr const char* kSvgShadow =
    "<filter id=\"shadow\" x=\"-20%\" y=\"-20%\" width=\"140%\" height=\"140%\">"
    "<feGaussianBlur in=\"SourceAlpha\" stdDeviation=\"4\"/><feOffset dx=\"8\" dy=\"8\" result=\"blur\"/>"
    "<feFlood flood-color=\"black\" flood-opacity=\"0.85\"/><feComposite in2=\"blur\" operator=\"in\"/>"
    "<feMerge><feMergeNode/><feMergeNode in=\"SourceGraphic\"/></feMerge></filter>\n";

// The canvas's y axis points up and SVG's down: `box` is in canvas
// coordinates, `canvasHeight` turns them around for the SVG.
Layer MakeLayer(int index, Rect box, double canvasHeight, Rgb fill, Rgb stroke) {
  const auto flip = [canvasHeight](double y) { return canvasHeight - y; };
  const bool shadow = index % 4 == 0;
  const std::string filter = shadow ? " filter=\"url(#shadow)\"" : "";
  std::ostringstream svg;
  Layer layer;
  switch (index % 3) {
    case 0:
      layer.draw = MakeDraw<DrawRectangle>();
      layer.draw->setBezierPathWithData(ArchiveValue(BezierPath::withRect(box)));
      layer.draw->setFillColor(fill.color());
      svg << "<rect x=\"" << box.origin.x << "\" y=\"" << flip(box.maxY()) << "\" width=\"" << box.size.width
          << "\" height=\"" << box.size.height << "\" fill=\"" << fill.svg() << "\" stroke=\""
          << stroke.svg() << "\" stroke-width=\"" << kStrokeWidth << "\"" << filter << "/>\n";
      break;
    case 1:
      layer.draw = MakeDraw<DrawEllipse>();
      layer.draw->setBezierPathWithData(ArchiveValue(BezierPath::withOvalInRect(box)));
      layer.draw->setFillWithGradient(true);
      layer.draw->setFillGradient(Gradient::withStartingColor(fill.color(), stroke.color()));
      svg << "<linearGradient id=\"g" << index << "\" x1=\"0\" y1=\"1\" x2=\"0\" y2=\"0\">"
          << "<stop offset=\"0\" stop-color=\"" << fill.svg() << "\"/><stop offset=\"1\" stop-color=\""
          << stroke.svg() << "\"/></linearGradient>\n"
          << "<ellipse cx=\"" << box.midX() << "\" cy=\"" << flip(box.midY()) << "\" rx=\"" << box.size.width / 2
          << "\" ry=\"" << box.size.height / 2 << "\" fill=\"url(#g" << index << ")\" stroke=\""
          << stroke.svg() << "\" stroke-width=\"" << kStrokeWidth << "\"" << filter << "/>\n";
      break;
    default: {
      layer.draw = MakeDraw<DrawLine>();
      BezierPath line;
      line.moveTo(box.origin);
      line.lineTo({box.maxX(), box.maxY()});
      layer.draw->setBezierPathWithData(ArchiveValue(line));
      svg << "<line x1=\"" << box.origin.x << "\" y1=\"" << flip(box.origin.y) << "\" x2=\"" << box.maxX()
          << "\" y2=\"" << flip(box.maxY()) << "\" stroke=\"" << stroke.svg() << "\" stroke-width=\""
          << kStrokeWidth << "\"" << filter << "/>\n";
    }
  }
  layer.draw->setEnableFill(index % 3 != 2);
  layer.draw->setEnableStroke(true);
  layer.draw->setStrokeColor(stroke.color());
  layer.draw->setBezierPathLineWidth(kStrokeWidth);
  if (shadow) {
    layer.draw->setEnableShadow(true);
    layer.draw->setShadow(DrawBase::defaultShadow());
  }
  layer.draw->setLayerTitle("Layer " + std::to_string(index));
  layer.svg = svg.str();
  return layer;
}

int Run(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: scene-twins WIDTH HEIGHT LAYERS OUT\n");
    return 2;
  }
  const double width = std::atof(argv[1]);
  const double height = std::atof(argv[2]);
  const int layers = std::atoi(argv[3]);
  const std::string out = argv[4];

  RegisterAllClasses();
  auto canvas = PaintManager::withSize({width, height});
  std::ostringstream svg;
  svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
      << "\" viewBox=\"0 0 " << width << " " << height << "\">\n<defs>" << kSvgShadow << "</defs>\n";
  Dice dice;
  for (int i = 0; i < layers; ++i) {
    const double w = width * (0.1 + 0.3 * dice.next());
    const double h = height * (0.1 + 0.3 * dice.next());
    const Rect box = MakeRect(dice.next() * (width - w), dice.next() * (height - h), w, h);
    const Rgb fill{dice.next(), dice.next(), dice.next()};
    const Rgb stroke{dice.next(), dice.next(), dice.next()};
    Layer layer = MakeLayer(i, box, height, fill, stroke);
    canvas->allDraws().push_back(layer.draw);
    svg << layer.svg;
  }
  svg << "</svg>\n";

  if (const Status written = WriteFileBytes(out + ".paintdoc", WriteDocumentContainer(*canvas));
      !written) {
    std::fprintf(stderr, "scene-twins: %s\n", written.reason().c_str());
    return 1;
  }
  std::ofstream(out + ".svg") << svg.str();
  return 0;
}

}  // namespace
}  // namespace paintdoc

int main(int argc, char** argv) { return paintdoc::Run(argc, argv); }
