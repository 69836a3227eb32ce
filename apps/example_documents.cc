#include "example_documents.h"

#include "document/paint_manager.h"
#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/bezier_path.h"

namespace paintdoc {

namespace {

template <class T>
std::shared_ptr<T> Shape(const BezierPath& outline) {
  auto draw = MakeDraw<T>();
  draw->setBezierPathWithData(ArchiveValue(outline));
  return draw;
}

std::shared_ptr<DrawBase> Filled(std::shared_ptr<DrawBase> draw, const Color& fill,
                                 std::optional<Color> stroke = std::nullopt) {
  draw->setEnableFill(true);
  draw->setFillColor(fill);
  draw->setEnableStroke(stroke.has_value());
  if (stroke) draw->setStrokeColor(*stroke);
  return draw;
}

ExampleDocument Shapes() {
  auto canvas = PaintManager::withSize({640, 480});
  DrawList& draws = canvas->allDraws();
  draws.push_back(Filled(Shape<DrawRectangle>(BezierPath::withRect(MakeRect(40, 260, 240, 160))),
                         Color::calibratedRGB(0.11, 0.35, 0.93), Color::blackColor()));

  auto ellipse = Shape<DrawEllipse>(BezierPath::withOvalInRect(MakeRect(340, 240, 240, 200)));
  ellipse->setEnableFill(true);
  ellipse->setFillWithGradient(true);
  ellipse->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(1, 0.8, 0.2),
                                                       Color::calibratedRGB(0.9, 0.2, 0.1)));
  ellipse->setFillGradientDegree(45);
  draws.push_back(ellipse);

  auto rounded = Shape<DrawRoundRectangle>(
      BezierPath::withRoundedRect(MakeRect(60, 40, 220, 160), 24, 24));
  Filled(rounded, Color::calibratedRGB(0.2, 0.7, 0.35));
  rounded->setEnableShadow(true);
  rounded->setShadow(DrawBase::defaultShadow());
  draws.push_back(rounded);

  BezierPath zigzag;
  zigzag.moveTo({340, 60});
  zigzag.lineTo({400, 180});
  zigzag.lineTo({460, 60});
  zigzag.lineTo({520, 180});
  zigzag.lineTo({580, 60});
  auto line = Shape<DrawBrokenLine>(zigzag);
  line->setStrokeColor(Color::calibratedRGB(0.5, 0.1, 0.6));
  line->setLineDashStyle("12:6");
  draws.push_back(line);
  return {"shapes", canvas};
}

ExampleDocument Layers() {
  auto canvas = PaintManager::withSize({400, 300});
  DrawList& draws = canvas->allDraws();
  draws.push_back(Filled(Shape<DrawRectangle>(BezierPath::withRect(MakeRect(0, 0, 400, 300))),
                         Color::calibratedWhite(0.95)));

  auto group = MakeDraw<DrawGroup>();
  group->setLayerTitle("Flowers");
  DrawList petals;
  for (int i = 0; i < 3; ++i) {
    auto petal = Shape<DrawEllipse>(BezierPath::withOvalInRect(MakeRect(60 + 100 * i, 120, 80, 80)));
    Filled(petal, Color::calibratedRGB(0.9, 0.3 + 0.2 * i, 0.5));
    petals.push_back(petal);
  }
  group->setDraws(petals);
  draws.push_back(group);

  auto star = Shape<DrawEllipse>(BezierPath::withOvalInRect(MakeRect(160, 20, 80, 80)));
  Filled(star, Color::calibratedRGB(1, 0.85, 0));
  star->setLayerTitle("Hidden sun");
  star->setVisible(false);
  draws.push_back(star);

  auto frame = Shape<DrawRectangle>(BezierPath::withRect(MakeRect(10, 10, 380, 280)));
  frame->setLocked(true);
  frame->setLayerTitle("Frame");
  draws.push_back(frame);
  return {"layers", canvas};
}

}  // namespace

std::vector<ExampleDocument> MakeExampleDocuments() { return {Shapes(), Layers()}; }

}  // namespace paintdoc
