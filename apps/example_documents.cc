#include "example_documents.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "document/paint_manager.h"
#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/values/bezier_path.h"
#include "platform/values/bitmap.h"
#include "raster/draw_image.h"
#include "shapes/draw_shapes.h"
#include "text/draw_text.h"

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

  // Lines with arrowheads and a filled polygon, in a group inside a group.
  auto arrow = MakeDraw<DrawLine>();
  arrow->setStartPoint({40, 250}, {360, 250});
  arrow->setBezierPathLineWidth(3);
  arrow->setArrowStyle(DrawArrowedOutline::kArrowAtBothEnds);
  arrow->setStrokeColor(Color::calibratedRGB(0.1, 0.2, 0.6));
  auto curve = MakeDraw<DrawCurve>();
  curve->setStartPoint({40, 60}, {120, 110}, {280, 10}, {360, 60});
  curve->setBezierPathLineWidth(6);
  curve->setArrowStyle(DrawArrowedOutline::kArrowAtEnd);
  curve->setStrokeColor(Color::calibratedRGB(0.8, 0.1, 0.1, 0.5));
  BezierPath kite;
  kite.moveTo({330, 200});
  kite.lineTo({360, 230});
  kite.lineTo({390, 200});
  kite.lineTo({360, 140});
  kite.closePath();
  auto polygon = Filled(Shape<DrawFreePolygon>(kite), Color::calibratedRGB(0.2, 0.6, 0.9),
                        Color::blackColor());
  auto marks = DrawGroup::withDraws({curve, polygon});
  marks->setLayerTitle("Marks");
  auto annotations = DrawGroup::withDraws({arrow, marks});
  annotations->setLayerTitle("Annotations");
  draws.push_back(annotations);

  auto frame = Shape<DrawRectangle>(BezierPath::withRect(MakeRect(10, 10, 380, 280)));
  frame->setLocked(true);
  frame->setLayerTitle("Frame");
  draws.push_back(frame);
  return {"layers", canvas};
}

// ---- Rendering effects: fills, gradients, shadows, strokes, reflections ----

std::shared_ptr<DrawBase> WithShadow(std::shared_ptr<DrawBase> draw, const Shadow& shadow) {
  draw->setEnableShadow(true);
  draw->setShadow(shadow);
  return draw;
}

std::shared_ptr<DrawBase> WithReflection(std::shared_ptr<DrawBase> draw, float strength,
                                         float distance) {
  draw->setEnableReflection(true);
  draw->setReflection(strength);
  draw->setReflectionDis(distance);
  return draw;
}

template <class T>
std::shared_ptr<T> Box(const Rect& bounds) {
  auto draw = MakeDraw<T>();
  draw->setBezierPathWithBounds(bounds);
  return draw;
}

// Every bounded shape with the painting effects it can have.
ExampleDocument Effects() {
  auto canvas = PaintManager::withSize({720, 540});
  auto add = [&](const std::shared_ptr<DrawBase>& draw) { canvas->addDraw(draw); };

  auto backdrop = Box<DrawGradient>(MakeRect(0, 0, 720, 540));
  backdrop->setFillGradientDegree(90);
  backdrop->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(0.78, 0.84, 0.92),
                                                        Color::calibratedRGB(0.98, 0.98, 1.0)));
  add(backdrop);

  // A filled and stroked rectangle casting one shadow.
  auto card = Box<DrawRectangle>(MakeRect(40, 330, 200, 150));
  Filled(card, Color::calibratedRGB(1.0, 0.85, 0.3), Color::calibratedRGB(0.45, 0.25, 0.05));
  card->setBezierPathLineWidth(6);
  add(WithShadow(card, DrawBase::defaultShadow()));

  // An ellipse with a radial gradient off its centre, an inner shadow and a
  // half-strength reflection.
  auto bubble = Box<DrawEllipse>(MakeRect(290, 330, 180, 150));
  bubble->setEnableFill(true);
  bubble->setFillWithGradient(true);
  bubble->setFillRadialGradient(true);
  bubble->setFillGradientCenter({-0.4, 0.5});
  bubble->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(0.85, 0.95, 1.0),
                                                      Color::calibratedRGB(0.1, 0.35, 0.75)));
  bubble->setEnableStroke(false);
  bubble->setEnableInnerShadow(true);
  bubble->setInnerShadow(DrawBase::defaultInnerShadow());
  add(WithReflection(bubble, 0.5f, 4));

  // A round rectangle with a linear gradient, turned by 30 degrees.
  auto tile = Box<DrawRoundRectangle>(MakeRect(520, 340, 160, 110));
  tile->setXRadius(18, 18);
  tile->setEnableFill(true);
  tile->setFillWithGradient(true);
  tile->setFillGradientDegree(90);
  tile->setFillGradient(Gradient::withColors(
      {Color::calibratedRGB(0.95, 0.3, 0.4), Color::calibratedRGB(0.6, 0.2, 0.7),
       Color::calibratedRGB(0.2, 0.3, 0.8)}));
  tile->setStrokeColor(Color::whiteColor());
  tile->setBezierPathLineWidth(3);
  tile->setRotateDegree(30);
  add(WithShadow(tile, Shadow(Color::calibratedWhite(0, 0.5), {6, -6}, 10)));

  // A gradient box with a full-strength reflection standing on the floor.
  auto panel = Box<DrawGradient>(MakeRect(60, 120, 170, 110));
  panel->setFillGradientDegree(0);
  panel->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(0.1, 0.6, 0.4),
                                                     Color::calibratedRGB(0.9, 0.95, 0.3)));
  add(WithReflection(panel, 1.0f, 2));

  // Strokes of odd and even widths, one of them dashed.
  auto ring = Box<DrawEllipse>(MakeRect(290, 110, 150, 150));
  ring->setStrokeColor(Color::calibratedRGB(0.8, 0.1, 0.2));
  ring->setBezierPathLineWidth(3);
  ring->setLineDashStyle("12:6");
  add(ring);
  auto frame = Box<DrawRectangle>(MakeRect(480, 110, 200, 150));
  frame->setStrokeColor(Color::calibratedRGB(0.15, 0.15, 0.2));
  frame->setBezierPathLineWidth(4);
  add(WithShadow(frame, Shadow(Color::calibratedRGB(0.1, 0.3, 0.9, 0.7), {0, 0}, 8)));

  // A translucent round rectangle over the frame, reflected more strongly.
  auto glass = Box<DrawRoundRectangle>(MakeRect(520, 150, 120, 70));
  Filled(glass, Color::calibratedRGB(1, 1, 1, 0.45), Color::calibratedRGB(1, 1, 1, 0.9));
  glass->setBezierPathLineWidth(1);
  add(WithReflection(glass, 1.5f, 0));
  return {"effects", canvas};
}

// ---- end of rendering effects ----

// ---- The shape library: every shape side by side ----

template <class... Shapes>
std::vector<std::shared_ptr<DrawRectShape>> NewShapes() {
  return {MakeDraw<Shapes>()...};
}

const std::array<Color, 5> kSheetColors = {
    Color::calibratedRGB(0.95, 0.45, 0.4), Color::calibratedRGB(0.98, 0.75, 0.3),
    Color::calibratedRGB(0.45, 0.8, 0.5), Color::calibratedRGB(0.4, 0.65, 0.95),
    Color::calibratedRGB(0.7, 0.5, 0.9)};

// Each library shape in a cell of its own, filled with one of a few colours
// and stroked dark, so that outlines, holes and pointers
// can all be checked at a glance.
ExampleDocument ShapeSheet() {
  constexpr int kColumns = 6;
  constexpr double kCell = 150;
  constexpr double kMargin = 24;
  std::vector<std::shared_ptr<DrawRectShape>> shapes = NewShapes<
      DrawRectPolygon, DrawRectPolygon, DrawRectPolygon, DrawRectStar, DrawRectStar,
      DrawRectHeart, DrawRectWaterDrip, DrawRectLocation, DrawRectBookmark, DrawRectCloud,
      DrawRectLightning, DrawRectPerson, DrawRectMail, DrawRectiMac, DrawRectAppleLogo,
      DrawRectButterfly, DrawRectCamera, DrawRectEye, DrawRectHome, DrawRectRefresh,
      DrawRectFolder, DrawRectPicture, DrawRectClock, DrawRectSignal, DrawRectMessage,
      DrawEllipseMessage>();
  const int rows = static_cast<int>((shapes.size() + kColumns - 1) / kColumns);
  auto canvas = PaintManager::withSize({kColumns * kCell, rows * kCell});
  canvas->addDraw(Filled(Box<DrawRectangle>(MakeRect(0, 0, kColumns * kCell, rows * kCell)),
                         Color::calibratedWhite(0.97)));

  for (size_t i = 0; i < shapes.size(); ++i) {
    DrawRectShape& shape = *shapes[i];
    // Cells fill from the top left; the canvas's y axis points up.
    const double left = static_cast<double>(i % kColumns) * kCell + kMargin;
    const double bottom = static_cast<double>(rows - 1 - static_cast<int>(i / kColumns)) * kCell +
                          kMargin;
    const double side = kCell - 2 * kMargin;
    // Pictograms take their preferred proportions inside the cell.
    const double ratio = shape.width2HeightRatioForShift();
    const double width = ratio >= 1 ? side : side * ratio;
    const double height = ratio >= 1 ? side / ratio : side;
    const double bubbleLift = 20;  // room below the bubbles for their pointers
    const bool bubble = dynamic_cast<DrawRectMessage*>(&shape) != nullptr ||
                        dynamic_cast<DrawEllipseMessage*>(&shape) != nullptr;
    shape.setBezierPathWithBounds(MakeRect(left + (side - width) / 2,
                                           bottom + (side - height) / 2 + (bubble ? bubbleLift : 0),
                                           width, height - (bubble ? bubbleLift : 0)));
    Filled(shapes[i], kSheetColors[i % kSheetColors.size()], Color::calibratedWhite(0.15));
    canvas->addDraw(shapes[i]);
  }
  // The repeated classes show their settings: a triangle, a pentagon and the
  // default hexagon; a default star and a slim one.
  std::static_pointer_cast<DrawRectPolygon>(shapes[0])->setPointsCount(3);
  std::static_pointer_cast<DrawRectPolygon>(shapes[1])->setPointsCount(5);
  std::static_pointer_cast<DrawRectStar>(shapes[4])->setInnerSize({0.25, 0.25});
  return {"shape-sheet", canvas};
}

TextAttributes TextStyle(const std::string& font, double size, const Color& color,
                         TextAlignment alignment = TextAlignment::Left) {
  TextAttributes attributes;
  attributes.font = Font{font, size};
  attributes.foregroundColor = color;
  ParagraphStyle paragraph = ParagraphStyle::defaultStyle();
  paragraph.alignment = alignment;
  attributes.paragraphStyle = paragraph;
  return attributes;
}

std::shared_ptr<DrawText> TextBox(const Rect& bounds, AttributedString text) {
  auto box = Box<DrawText>(bounds);
  box->setAttributedString(text);
  return box;
}

// Text boxes: fonts of the desktop mapped to installed twins, alignment,
// wrapping, underline, Chinese, Japanese and emoji, and the box effects.
ExampleDocument Texts() {
  auto canvas = PaintManager::withSize({720, 540});
  auto add = [&](const std::shared_ptr<DrawBase>& draw) { canvas->addDraw(draw); };
  add(Filled(Box<DrawRectangle>(MakeRect(0, 0, 720, 540)), Color::calibratedWhite(0.97)));

  AttributedString title = AttributedString::fromUTF8(
      "Text boxes\n", TextStyle("Helvetica-Bold", 40, Color::calibratedRGB(0.1, 0.2, 0.5)));
  TextAttributes underlined = TextStyle("TimesNewRomanPSMT", 20, Color::blackColor());
  underlined.underlineStyle = underline::kSingle;
  title.append(Utf8ToUtf16("Times, underlined, "), underlined);
  TextAttributes red = TextStyle("ArialMT", 20, Color::calibratedRGB(0.8, 0.1, 0.1));
  red.strikethroughStyle = underline::kSingle;
  title.append(Utf8ToUtf16("Arial struck through"), red);
  add(TextBox(MakeRect(30, 400, 660, 120), title));

  add(TextBox(MakeRect(30, 280, 200, 110),
              AttributedString::fromUTF8("Left aligned text that wraps inside its box",
                                         TextStyle("Helvetica", 18, Color::blackColor()))));
  add(TextBox(MakeRect(260, 280, 200, 110),
              AttributedString::fromUTF8("Centred text that wraps inside its box",
                                         TextStyle("Helvetica", 18, Color::calibratedRGB(0, 0.45, 0.2),
                                                   TextAlignment::Center))));
  add(TextBox(MakeRect(490, 280, 200, 110),
              AttributedString::fromUTF8("Right aligned text that wraps inside its box",
                                         TextStyle("Helvetica-Oblique", 18, Color::calibratedRGB(0.5, 0, 0.5),
                                                   TextAlignment::Right))));

  AttributedString scripts = AttributedString::fromUTF8(
      "\xe4\xbd\xa0\xe5\xa5\xbd\xef\xbc\x8c\xe4\xb8\x96\xe7\x95\x8c ",
      TextStyle("PingFangSC-Regular", 28, Color::blackColor()));
  scripts.append(Utf8ToUtf16("\xe3\x81\x93\xe3\x82\x93\xe3\x81\xab\xe3\x81\xa1\xe3\x81\xaf "),
                 TextStyle("HiraginoSans-W3", 28, Color::calibratedRGB(0.6, 0.1, 0.1)));
  scripts.append(Utf8ToUtf16("\xf0\x9f\x8e\xa8\xf0\x9f\x98\x80"),
                 TextStyle("AppleColorEmoji", 28, Color::blackColor()));
  add(TextBox(MakeRect(30, 180, 660, 60), scripts));

  auto gradientText = TextBox(
      MakeRect(30, 40, 400, 120),
      AttributedString::fromUTF8("Gradient", TextStyle("Helvetica-Bold", 72, Color::blackColor())));
  gradientText->setFillWithGradient(true);
  gradientText->setFillGradientDegree(0);
  gradientText->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(0.9, 0.2, 0.1),
                                                            Color::calibratedRGB(0.1, 0.3, 0.9)));
  gradientText->setEnableShadow(true);
  gradientText->setShadow(DrawBase::defaultShadow());
  add(gradientText);

  auto faded = TextBox(MakeRect(460, 40, 230, 120),
                       AttributedString::fromUTF8("Half opacity in a face that is not installed",
                                                  TextStyle("NoSuchFace-Bold", 22, Color::blackColor())));
  faded->setOpacity(0.5f);
  add(faded);
  return {"text", canvas};
}


// ---- Image layers and a masked background ----

// A bitmap whose pixel (x, y) (y from the top row) is `pixel(x, y)`, given
// with straight alpha.
template <class Pixel>
std::shared_ptr<Bitmap> Pixels(int width, int height, Pixel pixel) {
  std::vector<uint8_t> rgba(static_cast<size_t>(width) * height * 4);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Rgba8 c = pixel(x, y);
      uint8_t* p = &rgba[(static_cast<size_t>(y) * width + x) * 4];
      p[0] = c.red, p[1] = c.green, p[2] = c.blue, p[3] = c.alpha;
    }
  }
  return Bitmap::fromRGBA(width, height, rgba.data(), static_cast<size_t>(width) * 4,
                          AlphaMode::Straight);
}

uint8_t Channel(double value) {
  return static_cast<uint8_t>(std::clamp(value, 0.0, 1.0) * 255 + 0.5);
}

// A background that masks the picture: a sunset sky with round corners (its
// corners are transparent, so everything above is cut to the rounded card),
// under image layers at half opacity, turned with a drop shadow, and a
// cut-out whose inner shadow falls into its transparent parts.
ExampleDocument Images() {
  constexpr int kWidth = 640, kHeight = 420;
  auto canvas = PaintManager::withSize({kWidth, kHeight});
  canvas->setBackgroundImage(Pixels(kWidth, kHeight, [](int x, int y) {
    constexpr double kRadius = 48;
    const double dx = std::max({kRadius - x - 0.5, x + 0.5 - (kWidth - kRadius), 0.0});
    const double dy = std::max({kRadius - y - 0.5, y + 0.5 - (kHeight - kRadius), 0.0});
    const double edge = kRadius - std::hypot(dx, dy);
    const double t = static_cast<double>(y) / kHeight;
    return Rgba8{Channel(0.25 + 0.7 * t), Channel(0.35 + 0.3 * t), Channel(0.75 - 0.4 * t),
                 Channel(edge + 0.5)};
  }));
  canvas->setMaskBackground(true);

  // A sun of concentric rings at half opacity, stretched to twice its size.
  auto sun = DrawImage::withImage(Pixels(90, 90, [](int x, int y) {
    const double r = std::hypot(x - 44.5, y - 44.5);
    const bool ring = static_cast<int>(r / 6) % 2 == 0;
    return r > 45 ? Rgba8{} : ring ? Rgba8{255, 220, 60, 255} : Rgba8{255, 150, 40, 255};
  }));
  sun->setBezierPathWithBounds(MakeRect(60, 180, 180, 180));
  sun->setOpacity(0.5f);
  sun->setLayerTitle("Sun");
  canvas->addDraw(sun);

  // A striped card, turned and casting a shadow.
  auto card = DrawImage::withImage(Pixels(120, 80, [](int x, int y) {
    return (x / 10 + y / 10) % 2 ? Rgba8{245, 245, 250, 255} : Rgba8{40, 110, 200, 255};
  }));
  card->setBezierPathWithBounds(MakeRect(300, 200, 240, 160));
  card->setRotateDegree(-12);
  card->setEnableShadow(true);
  card->setShadow(Shadow(Color::calibratedWhite(0, 0.55), {10, -10}, 12));
  card->setLayerTitle("Card");
  canvas->addDraw(card);

  // A cut-out: an opaque diamond in a transparent frame; the inner shadow
  // falls into the transparent part, as if the diamond and the frame stood out.
  auto cutout = DrawImage::withImage(Pixels(100, 100, [](int x, int y) {
    const bool diamond = std::abs(x - 49.5) + std::abs(y - 49.5) < 35;
    return diamond ? Rgba8{200, 40, 90, 255} : Rgba8{};
  }));
  cutout->setBezierPathWithBounds(MakeRect(420, 40, 160, 160));
  cutout->setEnableInnerShadow(true);
  cutout->setInnerShadow(Shadow(Color::calibratedWhite(0.1, 0.8), {6, -6}, 6));
  cutout->setLayerTitle("Cut-out");
  canvas->addDraw(cutout);
  return {"images", canvas};
}

// ---- end of image layers ----

}  // namespace

std::vector<ExampleDocument> MakeExampleDocuments() {
  return {Shapes(), Layers(), Effects(), ShapeSheet(), Texts(), Images()};
}

}  // namespace paintdoc
